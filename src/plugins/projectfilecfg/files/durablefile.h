#pragma once

#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// Steps on files and folders that no kill cuts in two, and what makes them outlive a power failure.
namespace DurableFile {

/// A folder, opened so that what is made or renamed in it can be flushed. Open it before the change: where that
/// is not possible, the operation ends while nothing has happened yet.
class Folder
{
public:
    explicit Folder(const QString &path);
    ~Folder();

    bool isOpen() const;
    /// True as well on platforms and file systems that have no way to flush a folder.
    bool flush() const;

private:
    Q_DISABLE_COPY(Folder)

    int m_handle = -1;
};

/// Flushes an open file: true means that its bytes are on the disk, and not only in the system's memory.
bool flush(int handle);

/// Makes the open, empty file `to` a copy of the open file `from` that shares its blocks until one of them is changed:
/// nothing is read or written. False, and nothing changed, where the file system cannot.
bool shareContent(int from, int to);

/// Has the system begin to write what an open file holds so far, and does not wait for it: flush() then finds
/// less to do. Does nothing where the platform has no such hint. A failure is told by the flush().
void beginFlush(int handle);

/// Flushes everything that was written below the folder so far. For many files: one by one takes milliseconds each.
bool flushTree(const QString &folderPath);

/// Makes the folder and those that lead there, and flushes them. True when it was there already.
bool makeFolder(const QString &path);

/// What lies at a path at one moment, to be told from what takes its place later. Links are not followed. Known by
/// device and number, which the system gives to no other file while this object lives; on Windows by its size and the
/// time of its last change, so that there a file that was changed counts as another one.
class FileIdentity
{
public:
    explicit FileIdentity(const QString &path);
    ~FileIdentity();

    /// Nothing was there.
    bool isNothing() const { return !m_exists; }
    /// True when it lies at `path` now; where it is nothing, when nothing lies there.
    bool isAt(const QString &path) const;

private:
    Q_DISABLE_COPY(FileIdentity)
    friend bool replaceSame(const QString &from, const QString &to, const FileIdentity &expected);

    bool m_exists = false;
    bool m_isFolder = false;
    quint64 m_volume = 0;
    quint64 m_number = 0;
    int m_handle = -1;
};

/// Renames within a volume, over the file at `to` if there is one. Not flushed.
bool replace(const QString &from, const QString &to);

/// The same, but fails where anything is at `to`. Not flushed.
bool renameToFreeName(const QString &from, const QString &to);

/// Renames within a volume to the place of `expected`, and never over anything else: false where another file or a
/// folder lies there. Where nothing lies there any more, as renameToFreeName(). What was replaced lies at `from`
/// afterwards, or is gone. Not flushed.
///
/// Where system and file system can exchange two names, no other program can come in between. Elsewhere there is a
/// moment between the last look and the renaming: what comes in that moment is replaced.
bool replaceSame(const QString &from, const QString &to, const FileIdentity &expected);

/// renameToFreeName(), flushed. QFile::rename() cannot stand here: what it cannot rename it writes anew, and a
/// kill on the way leaves half a file under the new name.
bool renameDurably(const QString &from, const QString &to);

/// Opens an existing plain file for reading and writing and returns its handle, -1 where that fails. Never makes a
/// file, and never waits, as opening a pipe would.
int openToChange(const QString &path);

/// Keeps others from locking the open file until it is closed, also by a kill. False when another one has it now. True
/// as well where the file system knows no locks.
bool lock(int handle);

/// The same for a moment, for who only reads: several may. False when somebody has locked the file to change it.
bool lockToRead(int handle);
void unlock(int handle);

/// True when the open file is the one that stands at `path`: it was neither removed nor replaced since it was opened.
bool isOpenFile(const QString &path, int handle);

/// When the open file was changed last, in nanoseconds since 1970.
qint64 modified(int handle);
bool setModified(int handle, qint64 nanoseconds);

} // namespace DurableFile

} // namespace Internal
} // namespace ProjectFileCfg
