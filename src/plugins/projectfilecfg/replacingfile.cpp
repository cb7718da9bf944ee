#include "replacingfile.h"

#include <QDir>
#include <QFileInfo>
#include <QUuid>

#include <filesystem>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace ProjectFileCfg {
namespace Internal {

namespace {

QString behindLink(const QString &path)
{
    const QString linkedPath = QFileInfo(path).isSymLink() ? QFileInfo(path).canonicalFilePath() : QString();
    return linkedPath.isEmpty() ? QFileInfo(path).absoluteFilePath() : linkedPath;
}

QString fragmentPath(const QString &targetPath)
{
    // Not the target's name with something added: that could be longer than a name may be.
    const QString id = QUuid::createUuid().toString().remove(QLatin1Char('{')).remove(QLatin1Char('}'));
    return QFileInfo(targetPath).absolutePath() + QStringLiteral("/.") + id + QStringLiteral(".part");
}

std::filesystem::path nativePath(const QString &path)
{
#ifdef Q_OS_WIN
    return path.toStdWString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

bool flushToDisk(int handle)
{
#ifdef Q_OS_WIN
    return _commit(handle) == 0;
#else
    return fsync(handle) == 0;
#endif
}

/// Makes the renaming itself outlive a power failure, where the platform has a way to. Not an error where it
/// has none: the target is whole either way.
void flushDirectory(const QString &path)
{
#ifdef Q_OS_WIN
    Q_UNUSED(path)
#else
    const int handle = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (handle < 0) {
        return;
    }
    flushToDisk(handle);
    ::close(handle);
#endif
}

} // namespace

ReplacingFile::ReplacingFile(const QString &targetPath)
    : m_targetPath(behindLink(targetPath))
    , m_fragment(fragmentPath(m_targetPath))
{}

ReplacingFile::~ReplacingFile()
{
    if (!m_isCommitted) {
        m_fragment.close();
        m_fragment.remove();
    }
}

bool ReplacingFile::create()
{
    return QDir().mkpath(QFileInfo(m_targetPath).absolutePath()) &&
           m_fragment.open(QIODevice::ReadWrite | QIODevice::Truncate);
}

bool ReplacingFile::createFromTarget()
{
    return QFile::copy(m_targetPath, m_fragment.fileName()) && m_fragment.open(QIODevice::ReadWrite) &&
           m_fragment.size() == QFileInfo(m_targetPath).size();
}

bool ReplacingFile::commit(Durability durability)
{
    if (!m_fragment.flush() || m_fragment.error() != QFileDevice::NoError) {
        return false;
    }
    if (durability == FlushedToDisk && !flushToDisk(m_fragment.handle())) {
        return false;
    }
    m_fragment.close();
    if (m_fragment.error() != QFileDevice::NoError) {
        return false;
    }
    std::error_code error;
    std::filesystem::rename(nativePath(m_fragment.fileName()), nativePath(m_targetPath), error);
    if (error) {
        return false;
    }
    m_isCommitted = true;
    if (durability == FlushedToDisk) {
        flushDirectory(QFileInfo(m_targetPath).absolutePath());
    }
    return true;
}

} // namespace Internal
} // namespace ProjectFileCfg
