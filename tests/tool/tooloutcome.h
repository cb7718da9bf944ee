// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace ToolTesting {

/// The result of a run of the tool.
struct Outcome
{
    /// -1 if it did not start, crashed or hung.
    int code = -1;
    QByteArray out;
    QByteArray messages;

    QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
};

/// The exit codes, as scripts rely on them.
constexpr int yes = 0;
constexpr int no = 1;
constexpr int unknown = 2;

} // namespace ToolTesting
