// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QDateTime>
#include <QString>
#include <QVector>

namespace Corvelpro {

/// A project as the panel lists it, and what its package contains.
struct ProjectRow
{
    QString file;
    QString name;
    QString comment;
    qint64 size = 0;
    QDateTime modified;
    /// Entries in the galleries and presets in their folder, by the archive's directory; none if that is damaged.
    int pictures = 0;
    int presets = 0;
};

/// The rows that the panel shows for the directory, in its order, with what is on the disk now. Only reads: a package
/// whose edit was interrupted is restored by the panel's own scan, and may be missing here.
QVector<ProjectRow> projectRows(const QString &directory);

} // namespace Corvelpro
