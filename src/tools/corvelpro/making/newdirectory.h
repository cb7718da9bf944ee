// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "filesystem.h"

#include <QString>

#include <memory>

namespace Corvelpro {

/// A directory that gets its name only when it is complete. Until then it is hidden, in the same folder, with a name
/// like that of a fragment (see ReplacingFile), and locked; only a killed process leaves that behind.
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
    /// Creates the hidden directory; the folder around it must exist. Removes stale ones from that folder: those that
    /// nobody works in and that were last changed more than a day ago, since the lock of another computer does not
    /// show.
    bool create(QString *reason);
    /// Where to write until commit().
    QString hiddenPath() const { return m_hiddenPath; }
    /// Flushes everything to the disk and gives it its name. False if something has that name by now.
    bool commit(QString *reason);

    /// True if a process of this computer works in this hidden directory.
    static bool isInUse(const QString &hiddenPath);

private:
    Q_DISABLE_COPY(NewDirectory)

    void removeStale() const;

    const QString m_path;
    const QString m_hiddenPath;
    bool m_isCreated = false;
    /// The hidden directory, locked.
    std::unique_ptr<ProjectFileCfg::Internal::FileSystem::Folder> m_lock;
};

} // namespace Corvelpro
