// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <support/testmain.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

/// Runs the built tool and keeps what it printed.
namespace ToolTesting {

struct Outcome
{
    /// -1 if it did not start, crashed or hung.
    int code = -1;
    QByteArray out;
    QByteArray messages;

    QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
};

inline Outcome runTool(const QStringList &arguments)
{
    Outcome outcome;
    QProcess process;
    process.start(QStringLiteral(CORVELPRO_PROGRAM), arguments, QIODevice::ReadOnly);
    if (process.waitForFinished(TestSupport::patience) && process.exitStatus() == QProcess::NormalExit)
        outcome.code = process.exitCode();
    outcome.out = process.readAllStandardOutput();
    outcome.messages = process.readAllStandardError();
    process.kill();
    process.waitForFinished();
    return outcome;
}

/// The exit codes, as scripts rely on them.
constexpr int yes = 0;
constexpr int no = 1;
constexpr int unknown = 2;

} // namespace ToolTesting
