// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "flushbehind.h"

#include <QFile>

#include <functional>

class QFileInfo;

namespace ProjectFileCfg {
namespace Internal {

namespace FileSystem {
class FileIdentity;
}

/// A temporary file that replaces the target only when it is complete: the target stays unchanged until commit(), and
/// if that is never called or fails. Not a QSaveFile: QuaZip reads back and seeks in what it writes, and the content is
/// verified before it replaces anything.
///
/// The temporary file is called the fragment: a hidden file `.<id>.part` beside the target, which no listing shows and
/// no package includes. Only a killed process leaves one behind.
class ReplacingFile
{
public:
    enum class Durability {
        /// After commit(), the result survives a power failure.
        FlushedToDisk,
        /// Complete unless the system crashes: for files that can be recreated.
        NotFlushed
    };
    enum class ExistingTarget {
        Replaced,
        /// commit() fails if there is a target.
        Kept
    };

    enum class MissingFolders { Made, NotMade };

    /// The path of the file to replace: `targetPath`, or the target of a symbolic link there.
    static QString resolvedTarget(const QString &targetPath);

    /// If `targetPath` is a symbolic link, its target is replaced and the link stays.
    ///
    /// `flushBehind` is for files that need not be flushed and may be large; it outlives this object. A file that is
    /// flushed has its own.
    ReplacingFile(const QString &targetPath, Durability durability, FlushBehind *flushBehind = nullptr);
    /// Removes the fragment unless it was committed.
    ~ReplacingFile();

    /// Creates an empty fragment, by default with missing folders, and opens it for reading and writing. With
    /// Durability::FlushedToDisk, also removes stale fragments from the folder.
    bool create(MissingFolders folders = MissingFolders::Made, QString *reason = nullptr);

    /// The same with the content and the permissions of the plain file at `sourcePath`, positioned at the beginning.
    /// Creates no folders: the copy must fail if the stick there was removed.
    bool createFrom(const QString &sourcePath, QString *reason = nullptr);

    /// The fragment; open after create() or createFrom().
    QFile &file() { return m_fragment; }
    QString path() const { return m_fragment.fileName(); }

    /// Flushes and closes the fragment and renames it to the target's name. Of all failures, only one in the last step,
    /// flushing the folder, leaves the new target in place.
    bool commit(ExistingTarget existing = ExistingTarget::Replaced, QString *reason = nullptr);

    /// The same, but replaces only `previous` (see FileSystem::replaceSame()): fails if another file is at the target
    /// by then, and leaves that file there.
    bool commitInPlaceOf(const FileSystem::FileIdentity &previous, QString *reason = nullptr);

    /// True for names of fragments.
    static bool isFragment(const QString &fileName);

    /// True if it was last written more than a day ago. A younger one may belong to another instance of the program;
    /// the clock of a network share, or the local time on a stick, differs by less than a day.
    static bool isStale(const QFileInfo &fragment);

    /// Removes the stale fragments in the folder. If a fragment in use is removed nevertheless, its commit() fails.
    static void removeStaleFragments(const QString &folderPath);

private:
    Q_DISABLE_COPY(ReplacingFile)

    bool openFragment(QString *reason);
    bool cannotWrite(QString *reason) const;
    bool cannotFlush(QString *reason) const;
    bool finish(const std::function<bool()> &rename, QString *reason);

    QString m_strTargetPath;
    QString m_strFolderPath;
    Durability m_durability;
    FlushBehind m_ownFlushBehind{FlushBehind::Begin::AtOnce};
    FlushBehind *const m_pFlushBehind;
    FlushedBehind<QFile> m_fragment;
    bool m_bCommitted = false;
};

/// Copies a file with its permissions, completely or not at all, and flushes it to disk. Fails if anything is at
/// `targetPath`. Not QFile::copy(): it does not check whether flushing failed.
bool copyToFreeName(const QString &sourcePath, const QString &targetPath, QString *reason = nullptr);

} // namespace Internal
} // namespace ProjectFileCfg
