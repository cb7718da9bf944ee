// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// Atomic operations on files and folders, and flushing them so that they survive a power failure. A `reason` is set on
/// failure (see reason.h). Operations without one leave `errno` as the failed call set it; their callers know the path.
namespace FileSystem {

/// An open folder, to flush changes of the names in it. Open it before the change, so that a failure to open it ends
/// the operation before anything has changed.
class Folder
{
public:
    explicit Folder(const QString &path, QString *reason = nullptr);
    ~Folder();

    bool isOpen() const;
    /// Also true on platforms and file systems that cannot flush a folder.
    bool flush(QString *reason = nullptr) const;
    /// Locks it exclusively while this object lives, also against a kill of the process. False if it is locked already.
    /// Seen on this computer only. Also true on platforms and file systems without such locks.
    bool lock() const;

private:
    Q_DISABLE_COPY(Folder)

    const QString m_strPath;
    int m_nHandle = -1;
};

/// Flushes an open file to disk. True once its bytes are on the disk, not only in the system's memory.
bool flush(int handle);

/// Makes the open, empty file `to` a copy of the open file `from` that shares its blocks until one of them changes:
/// nothing is read or written. False, without a change, if the file system cannot do that.
bool shareContent(int from, int to);

/// Flushes everything below the folder. Use it for many files: flushing each one takes milliseconds.
bool flushTree(const QString &folderPath, QString *reason = nullptr);

/// Creates the folder and its parents, and flushes them. Also true if it already exists.
bool makeFolder(const QString &path, QString *reason = nullptr);

/// Identifies the file that is at a path now, to distinguish it from one that replaces it later. Does not follow links.
/// Uses device and inode number, which the system does not reuse while this object lives; on Windows size and
/// modification time, so there a changed file counts as another one.
class FileIdentity
{
public:
    explicit FileIdentity(const QString &path);
    ~FileIdentity();

    /// True if there was no file.
    bool isNothing() const { return !m_bExists; }
    /// True if the file is at `path` now; if there was none, true if there is still none.
    bool isAt(const QString &path) const;

private:
    Q_DISABLE_COPY(FileIdentity)
    friend bool replaceSame(const QString &from, const QString &to, const FileIdentity &expected, QString *reason);

    bool m_bExists = false;
    bool m_bFolder = false;
    quint64 m_nVolume = 0;
    quint64 m_nInode = 0;
    int m_nHandle = -1;
};

/// Renames within a volume, replacing a file at `to`. Not flushed.
bool replace(const QString &from, const QString &to, QString *reason = nullptr);

/// The same, but fails if another file is at `to`: anything but the file itself under a name that differs in case only.
/// Not flushed.
bool renameToFreeName(const QString &from, const QString &to, QString *reason = nullptr);

/// Renames within a volume, replacing `expected` and nothing else: false if there is another file or a folder at `to`.
/// If there is nothing at `to` any more, the same as renameToFreeName(). Afterwards the replaced file is at `from`, or
/// removed. Not flushed.
///
/// Atomic if the system and the file system can exchange two names. Otherwise a file that appears between the last
/// check and the rename is replaced.
bool replaceSame(const QString &from, const QString &to, const FileIdentity &expected, QString *reason = nullptr);

/// renameToFreeName(), with a flush. Not QFile::rename(): it copies a file that it cannot rename, and a kill during the
/// copy leaves half a file under the new name.
bool renameDurably(const QString &from, const QString &to, QString *reason = nullptr);

/// Opens an existing plain file for reading and writing and returns its handle, -1 on failure. Never creates a file,
/// and never blocks, as opening a pipe would.
int openToChange(const QString &path, QString *reason = nullptr);

/// Locks the open file exclusively until it is closed, even by a kill. False if another process has locked it. Also
/// true on file systems without locks.
bool lock(int handle);

/// Locks the open file for reading, shared with other readers, until unlock(). False while a writer has locked it.
bool lockToRead(int handle);
void unlock(int handle);

/// Keeps writers from changing the open file during the lifetime of this object. Waits up to 200 ms, much longer than
/// an edit takes, for a writer that has locked the file; after that it goes on without the lock, so the caller must
/// check what it reads.
class ReadLock
{
public:
    explicit ReadLock(int handle);
    ~ReadLock();

private:
    Q_DISABLE_COPY(ReadLock)

    const int m_nHandle;
    bool m_bHeld = false;
};

/// True if the open file is still the one at `path`: it was neither removed nor replaced since it was opened.
bool isOpenFile(const QString &path, int handle);

/// The open file's size in bytes, 0 on failure.
qint64 size(int handle);

/// True if the open file has no name any more.
bool isRemoved(int handle);

/// A second handle of the open file, to keep it open after the first one is closed; -1 on failure.
int duplicate(int handle);
void close(int handle);

/// The open file's modification time, in nanoseconds since 1970.
qint64 modified(int handle);
bool setModified(int handle, qint64 nanoseconds);

} // namespace FileSystem

} // namespace Internal
} // namespace ProjectFileCfg
