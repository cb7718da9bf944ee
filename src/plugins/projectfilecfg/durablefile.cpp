#include "durablefile.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace ProjectFileCfg {
namespace Internal {
namespace DurableFile {

namespace {

std::filesystem::path nativePath(const QString &path)
{
#ifdef Q_OS_WIN
    return path.toStdWString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

} // namespace

#ifdef Q_OS_WIN

Folder::Folder(const QString &) {}
Folder::~Folder() = default;
bool Folder::isOpen() const
{
    return true;
}
bool Folder::flush() const
{
    return true;
}

bool flush(int handle)
{
    return _commit(handle) == 0;
}

#else

Folder::Folder(const QString &path)
    : m_handle(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{}

Folder::~Folder()
{
    if (isOpen())
        ::close(m_handle);
}

bool Folder::isOpen() const
{
    return m_handle >= 0;
}

bool Folder::flush() const
{
    return DurableFile::flush(m_handle) || errno == EINVAL || errno == ENOTSUP;
}

bool flush(int handle)
{
    return fsync(handle) == 0;
}

#endif

bool flushTree(const QString &folderPath)
{
#ifdef Q_OS_LINUX
    const int handle = ::open(QFile::encodeName(folderPath).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return false;
    const bool flushed = syncfs(handle) == 0;
    ::close(handle);
    return flushed;
#else
    bool flushed = Folder(folderPath).flush();
    QDirIterator walk(folderPath, QDir::AllEntries | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext() && flushed) {
        QFile file(walk.next());
        flushed = walk.fileInfo().isDir() ? Folder(file.fileName()).flush()
                                          : file.open(QIODevice::ReadWrite) && flush(file.handle());
    }
    return flushed;
#endif
}

bool makeFolder(const QString &path)
{
    const QString folder = QDir(path).absolutePath();
    if (QFileInfo(folder).isDir())
        return true;
    const QString parentPath = QFileInfo(folder).absolutePath();
    if (parentPath == folder || !makeFolder(parentPath))
        return false;
    const Folder parent(parentPath);
    // Somebody else may have made it meanwhile.
    return parent.isOpen() && (QDir().mkdir(folder) || QFileInfo(folder).isDir()) && parent.flush();
}

bool replace(const QString &from, const QString &to)
{
    std::error_code error;
    std::filesystem::rename(nativePath(from), nativePath(to), error);
    return !error;
}

bool renameToFreeName(const QString &from, const QString &to)
{
#ifdef Q_OS_WIN
    return _wrename(nativePath(from).c_str(), nativePath(to).c_str()) == 0;
#else
#ifdef RENAME_NOREPLACE
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    if (renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0)
        return true;
    // Not every file system and kernel has it.
    if (errno != EINVAL && errno != ENOSYS)
        return false;
#endif
    const QFileInfo existing(to);
    return !existing.exists() && !existing.isSymLink() && replace(from, to);
#endif
}

bool renameDurably(const QString &from, const QString &to)
{
    const Folder folder(QFileInfo(to).absolutePath());
    return folder.isOpen() && renameToFreeName(from, to) && folder.flush();
}

} // namespace DurableFile
} // namespace Internal
} // namespace ProjectFileCfg
