// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

namespace Corvelpro {

/// A directory that gets its name only when it is complete. Until then it is hidden, in the same folder, with a name
/// like that of a fragment (see ReplacingFile); only a killed process leaves that behind.
///
/// A `reason` is set on failure.
class NewDirectory
{
public:
    explicit NewDirectory(const QString &path);
    /// Removes everything unless it was committed.
    ~NewDirectory();

    /// The final path, absolute.
    QString path() const { return m_path; }
    /// Creates the hidden directory; the folder around it must exist.
    bool create(QString *reason);
    /// Where to write until commit().
    QString hiddenPath() const { return m_hiddenPath; }
    /// Flushes everything to the disk and gives it its name. False if something has that name by now.
    bool commit(QString *reason);

private:
    Q_DISABLE_COPY(NewDirectory)

    const QString m_path;
    const QString m_hiddenPath;
    bool m_isCreated = false;
};

} // namespace Corvelpro
