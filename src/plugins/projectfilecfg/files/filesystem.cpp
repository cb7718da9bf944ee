// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "filesystem.h"

#include "reason.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#ifdef Q_OS_WIN
#include <fcntl.h>
#include <filesystem>
#include <io.h>
#include <sys/locking.h>
#include <sys/stat.h>
#include <sys/utime.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

namespace ProjectFileCfg {
namespace Internal {
namespace FileSystem {

namespace {

constexpr qint64 nanosecondsPerSecond = 1000000000;

} // namespace

#ifdef Q_OS_WIN

Folder::Folder(const QString &path, QString *)
    : m_strPath(path)
{}
Folder::~Folder() = default;
bool Folder::isOpen() const
{
    return true;
}
bool Folder::flush(QString *) const
{
    return true;
}
bool Folder::lock() const
{
    return true;
}

bool flush(int handle)
{
    return _commit(handle) == 0;
}

FileIdentity::FileIdentity(const QString &path)
{
    const QFileInfo file(path);
    m_bExists = file.exists() || file.isSymLink();
    m_bFolder = file.isDir();
    m_nVolume = m_bExists ? quint64(file.size()) : 0;
    m_nInode = m_bExists ? quint64(file.lastModified().toMSecsSinceEpoch()) : 0;
}

FileIdentity::~FileIdentity() = default;

int openToChange(const QString &path, QString *reason)
{
    if (!QFileInfo(path).isFile()) {
        failBecause(reason, QStringLiteral("%1 is missing or not a plain file").arg(path));
        return -1;
    }
    const int handle = _wopen(path.toStdWString().c_str(), _O_RDWR | _O_BINARY | _O_NOINHERIT);
    if (handle < 0)
        failBecause(reason, QStringLiteral("cannot open %1 for writing: %2").arg(path, systemError()));
    return handle;
}

bool lock(int handle)
{
    // One byte far beyond the end of any package: on Windows, other processes cannot even read a locked byte.
    constexpr long one = 1;
    constexpr qint64 farBehind = qint64(1) << 40;
    return _lseeki64(handle, farBehind, SEEK_SET) == farBehind && _locking(handle, _LK_NBRLCK, one) == 0;
}

bool lockToRead(int)
{
    // Readers see a single write completely or not at all.
    return true;
}

void unlock(int) {}

bool isOpenFile(const QString &path, int)
{
    // Windows does not remove or rename a file that is open like this.
    return QFileInfo(path).isFile();
}

qint64 size(int handle)
{
    return std::max<qint64>(_filelengthi64(handle), 0);
}

bool isRemoved(int)
{
    // Windows removes no open file's name.
    return false;
}

int duplicate(int handle)
{
    return _dup(handle);
}

void close(int handle)
{
    _close(handle);
}

qint64 modified(int handle)
{
    struct _stat64 status;
    return _fstat64(handle, &status) == 0 ? status.st_mtime * nanosecondsPerSecond : 0;
}

bool setModified(int handle, qint64 nanoseconds)
{
    const time_t seconds = nanoseconds / nanosecondsPerSecond;
    struct __utimbuf64 times = {seconds, seconds};
    return _futime64(handle, &times) == 0;
}

#else

Folder::Folder(const QString &path, QString *reason)
    : m_strPath(path)
    , m_nHandle(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (!isOpen())
        failBecause(reason, QStringLiteral("cannot open the folder %1: %2").arg(path, systemError()));
}

Folder::~Folder()
{
    if (isOpen())
        ::close(m_nHandle);
}

bool Folder::isOpen() const
{
    return m_nHandle >= 0;
}

bool Folder::flush(QString *reason) const
{
    return FileSystem::flush(m_nHandle) || errno == EINVAL || errno == ENOTSUP ||
           failBecause(reason, QStringLiteral("cannot flush the folder %1: %2").arg(m_strPath, systemError()));
}

bool Folder::lock() const
{
    return FileSystem::lock(m_nHandle);
}

bool flush(int handle)
{
    return fsync(handle) == 0;
}

int openToChange(const QString &path, QString *reason)
{
    const int handle = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (handle < 0) {
        failBecause(reason, QStringLiteral("cannot open %1 for writing: %2").arg(path, systemError()));
        return -1;
    }
    struct stat status;
    if (fstat(handle, &status) == 0 && S_ISREG(status.st_mode))
        return handle;
    ::close(handle);
    failBecause(reason, QStringLiteral("%1 is not a plain file").arg(path));
    return -1;
}

bool lock(int handle)
{
    return flock(handle, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool lockToRead(int handle)
{
    return flock(handle, LOCK_SH | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void unlock(int handle)
{
    flock(handle, LOCK_UN);
}

bool isOpenFile(const QString &path, int handle)
{
    struct stat opened;
    struct stat found;
    return fstat(handle, &opened) == 0 && stat(QFile::encodeName(path).constData(), &found) == 0 &&
           opened.st_dev == found.st_dev && opened.st_ino == found.st_ino;
}

qint64 size(int handle)
{
    struct stat status;
    return fstat(handle, &status) == 0 ? status.st_size : 0;
}

bool isRemoved(int handle)
{
    struct stat status;
    return fstat(handle, &status) == 0 && status.st_nlink == 0;
}

int duplicate(int handle)
{
    return fcntl(handle, F_DUPFD_CLOEXEC, 0);
}

void close(int handle)
{
    ::close(handle);
}

qint64 modified(int handle)
{
    struct stat status;
    if (fstat(handle, &status) != 0)
        return 0;
#ifdef Q_OS_MACOS
    const timespec &time = status.st_mtimespec;
#else
    const timespec &time = status.st_mtim;
#endif
    return time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
}

bool setModified(int handle, qint64 nanoseconds)
{
    const timespec kept = {0, UTIME_OMIT};
    qint64 seconds = nanoseconds / nanosecondsPerSecond;
    qint64 rest = nanoseconds % nanosecondsPerSecond;
    if (rest < 0) {
        // Before 1970.
        --seconds;
        rest += nanosecondsPerSecond;
    }
    const timespec time = {time_t(seconds), long(rest)};
    const timespec times[] = {kept, time};
    return futimens(handle, times) == 0;
}

FileIdentity::FileIdentity(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
#ifdef O_PATH
    // O_PATH needs no read permission and does not block on a pipe. While the handle is open, the system does not
    // reuse the inode number.
    m_nHandle = ::open(name.constData(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
#endif
    struct stat status = {};
    m_bExists = (m_nHandle >= 0 ? fstat(m_nHandle, &status) : lstat(name.constData(), &status)) == 0;
    m_bFolder = m_bExists && S_ISDIR(status.st_mode);
    m_nVolume = status.st_dev;
    m_nInode = status.st_ino;
}

FileIdentity::~FileIdentity()
{
    if (m_nHandle >= 0)
        ::close(m_nHandle);
}

#endif

bool FileIdentity::isAt(const QString &path) const
{
    const FileIdentity other(path);
    return other.m_bExists == m_bExists && other.m_nVolume == m_nVolume && other.m_nInode == m_nInode;
}

bool shareContent(int from, int to)
{
#ifdef FICLONE
    return ioctl(to, FICLONE, from) == 0;
#else
    Q_UNUSED(from)
    Q_UNUSED(to)
    return false;
#endif
}

bool flushTree(const QString &folderPath, QString *reason)
{
    const auto failed = [&](const QString &path) {
        return failBecause(reason, QStringLiteral("cannot flush %1: %2").arg(path, systemError()));
    };
#ifdef Q_OS_LINUX
    const int handle = ::open(QFile::encodeName(folderPath).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return failed(folderPath);
    const bool flushed = syncfs(handle) == 0 || failed(folderPath);
    ::close(handle);
    return flushed;
#else
    bool flushed = Folder(folderPath).flush(reason);
    QDirIterator walk(folderPath, QDir::AllEntries | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext() && flushed) {
        QFile file(walk.next());
        if (walk.fileInfo().isDir())
            flushed = Folder(file.fileName()).flush(reason);
        else
            flushed = (file.open(QIODevice::ReadWrite) && flush(file.handle())) || failed(file.fileName());
    }
    return flushed;
#endif
}

bool makeFolder(const QString &path, QString *reason)
{
    const QString folder = QDir(path).absolutePath();
    if (QFileInfo(folder).isDir())
        return true;
    const QString parentPath = QFileInfo(folder).absolutePath();
    if (parentPath == folder)
        return failBecause(reason, QStringLiteral("there is no %1").arg(folder));
    if (!makeFolder(parentPath, reason))
        return false;
    const Folder parent(parentPath, reason);
    if (!parent.isOpen())
        return false;
    if (!QDir().mkdir(folder)) {
        const QString error = systemError();
        // Another program may have created it first.
        if (!QFileInfo(folder).isDir())
            return failBecause(reason, QStringLiteral("cannot create the folder %1: %2").arg(folder, error));
    }
    return parent.flush(reason);
}

namespace {

bool cannotRename(QString *reason, const QString &from, const QString &to, const QString &error)
{
    return failBecause(reason, QStringLiteral("cannot rename %1 to %2: %3").arg(from, to, error));
}

} // namespace

bool replace(const QString &from, const QString &to, QString *reason)
{
#ifdef Q_OS_WIN
    // On Windows, rename() does not replace.
    std::error_code error;
    std::filesystem::rename(from.toStdWString(), to.toStdWString(), error);
    return !error || cannotRename(reason, from, to, QString::fromLocal8Bit(error.message().c_str()));
#else
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0 ||
           cannotRename(reason, from, to, systemError());
#endif
}

bool renameToFreeName(const QString &from, const QString &to, QString *reason)
{
#ifdef Q_OS_WIN
    return _wrename(from.toStdWString().c_str(), to.toStdWString().c_str()) == 0 ||
           cannotRename(reason, from, to, systemError());
#else
    // A file system that ignores case finds the file itself at a name that differs in case only.
    const auto isOwnName = [&] { return to.compare(from, Qt::CaseInsensitive) == 0 && FileIdentity(from).isAt(to); };
#ifdef RENAME_NOREPLACE
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    if (renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0)
        return true;
    const int cause = errno;
    const QString error = systemError();
    // Not every file system and kernel supports it.
    const bool isSupported = cause != EINVAL && cause != ENOSYS;
    if (isSupported && !(cause == EEXIST && isOwnName()))
        return cannotRename(reason, from, to, error);
#endif
    const QFileInfo existing(to);
    if ((existing.exists() || existing.isSymLink()) && !isOwnName())
        return cannotRename(reason, from, to, QStringLiteral("it already exists"));
    return replace(from, to, reason);
#endif
}

#ifdef RENAME_EXCHANGE
namespace {

bool exchange(const QString &one, const QString &other)
{
    return renameat2(AT_FDCWD, QFile::encodeName(one).constData(), AT_FDCWD, QFile::encodeName(other).constData(),
                     RENAME_EXCHANGE) == 0;
}

} // namespace
#endif

bool replaceSame(const QString &from, const QString &to, const FileIdentity &expected, QString *reason)
{
    if (FileIdentity(to).isNothing())
        return renameToFreeName(from, to, reason);
    if (expected.m_bFolder)
        return failBecause(reason, QStringLiteral("%1 is a folder").arg(to));
    const auto isAnother = [&] { return failBecause(reason, QStringLiteral("another file is at %1 now").arg(to)); };
    if (!expected.isAt(to))
        return isAnother();
#ifdef RENAME_EXCHANGE
    if (exchange(from, to)) {
        // Checked after the exchange: nobody else can replace what is at `from` now.
        if (expected.isAt(from))
            return true;
        if (!exchange(from, to))
            renameToFreeName(from, to);
        return isAnother();
    }
    if (errno == ENOENT)
        return renameToFreeName(from, to, reason);
    // Not every file system and kernel supports it.
    if (errno != EINVAL && errno != ENOSYS)
        return cannotRename(reason, from, to, systemError());
#endif
    return expected.isAt(to) ? replace(from, to, reason) : isAnother();
}

bool renameDurably(const QString &from, const QString &to, QString *reason)
{
    const Folder folder(QFileInfo(to).absolutePath(), reason);
    return folder.isOpen() && renameToFreeName(from, to, reason) && folder.flush(reason);
}

ReadLock::ReadLock(int handle)
    : m_nHandle(handle)
{
    constexpr int patience = 200;
    for (int waited = 0; !(m_bHeld = lockToRead(m_nHandle)) && waited < patience; ++waited)
        QThread::msleep(1);
}

ReadLock::~ReadLock()
{
    if (m_bHeld)
        unlock(m_nHandle);
}

} // namespace FileSystem
} // namespace Internal
} // namespace ProjectFileCfg
