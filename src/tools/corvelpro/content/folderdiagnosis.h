// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>
#include <QVector>

namespace Corvelpro {

/// Something in a folder of project files that an operator may wonder about.
struct Complaint
{
    QString file;
    /// English sentences without a full stop.
    QString reason;
    QString advice;
    /// The project name that cannot be used for another project; empty if there is none.
    QString blockedName;
};

/// Which files the panel leaves out, which it shows under a name that misleads, and what an interrupted operation has
/// left. Only reads.
QVector<Complaint> diagnoseFolder(const QString &directory);

} // namespace Corvelpro
