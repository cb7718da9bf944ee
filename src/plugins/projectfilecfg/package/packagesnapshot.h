// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QStringList>

#include <memory>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// A private copy of a package. A job that reads a package more than once works on such a copy, since other programs
/// may replace the file, and even truncate or overwrite it while it is open.
///
/// The copy has no name (see openNamelessFile()). It shares its blocks with the package if the file system can do that,
/// without reading or writing anything; otherwise it needs as much space as the package.
class PackageSnapshot
{
public:
    enum class Outcome {
        Taken,
        /// Missing, not a plain file, or not readable to its end.
        Unreadable,
        /// None of the folders has room or is writable.
        NoRoom
    };

    /// Copies the package to the first of the existing folders in which that is possible. Any thread. Waits for the end
    /// of an edit by another program (FileSystem::ReadLock).
    Outcome take(const QString &packetPath, const QStringList &folders, QString *reason = nullptr);

    /// Returns the copy, open for reading, and forgets it; null if there is none.
    std::unique_ptr<QFile> release();

private:
    std::unique_ptr<QFile> m_pCopy;
};

} // namespace Internal
} // namespace ProjectFileCfg
