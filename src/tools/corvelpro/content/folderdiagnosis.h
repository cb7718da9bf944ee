// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>
#include <QVector>

namespace Corvelpro {

/// A file in a folder of project files that may puzzle an operator.
struct Complaint
{
    QString file;
    /// English sentences without a full stop.
    QString reason;
    QString advice;
    /// The project name that cannot be used for another project; empty if there is none.
    QString blockedName;
};

/// Finds the files that the panel does not list, those that it lists under a misleading name, and those that an
/// interrupted operation has left behind. Only reads.
QVector<Complaint> diagnoseFolder(const QString &directory);

} // namespace Corvelpro
