#include "packagefile.h"

#include "archivecomment.h"
#include "durablefile.h"
#include "plainfile.h"
#include "zipformat.h"

#include <QThread>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

/// The longest comment, the record that ends an archive, and the mark of a 64-bit one before it.
static const qint64 endSize = ZipFormat::maxTextSize + ZipFormat::endRecordSize + ZipFormat::locatorSize;

PackageFile::PackageFile(const QString &path)
    : m_path(path)
    , m_file(std::make_unique<QFile>(path))
{}

PackageFile::PackageFile(std::unique_ptr<QFile> file)
    : m_path(file->fileName())
    , m_file(std::move(file))
{}

PackageFile::~PackageFile() = default;

bool PackageFile::open(OpenMode mode)
{
    QString reason;
    if (mode != QIODevice::ReadOnly || (!m_file->isOpen() && !openPlainFile(*m_file, false, &reason))) {
        setErrorString(reason);
        return false;
    }
    if (!readEndAtRest()) {
        setErrorString(QStringLiteral("cannot read %1: %2").arg(m_path, m_file->errorString()));
        return false;
    }
    // Without a buffer of its own: the parts that are read in small steps are in memory, or in the file's buffer.
    return QIODevice::open(mode | QIODevice::Unbuffered);
}

bool PackageFile::readEnd()
{
    m_nSize = m_file->size();
    const qint64 expected = std::min(m_nSize, endSize);
    m_end = m_file->seek(m_nSize - expected) ? m_file->read(expected) : QByteArray();
    return m_end.size() == expected;
}

/// The end of a package that somebody edits is in motion for less than a millisecond, and at rest before and behind it.
bool PackageFile::readEndAtRest()
{
    constexpr int patience = 200;
    for (int waited = 0; waited < patience; ++waited) {
        const bool isQuiet = DurableFile::lockToRead(m_file->handle());
        const bool isRead = readEnd();
        if (isQuiet) {
            DurableFile::unlock(m_file->handle());
            return isRead;
        }
        const QByteArray first = m_end;
        if (readEnd() && m_end == first && ArchiveComment::isConsistent(m_end))
            return true;
        QThread::msleep(1);
    }
    return readEnd();
}

bool PackageFile::isSequential() const
{
    return false;
}

qint64 PackageFile::size() const
{
    return m_nSize;
}

bool PackageFile::seek(qint64 position)
{
    m_nPosition = position;
    return QIODevice::seek(position);
}

qint64 PackageFile::readData(char *data, qint64 maxSize)
{
    qint64 count = 0;
    const qint64 endStart = m_nSize - m_end.size();
    if (m_nPosition >= endStart) {
        count = qBound<qint64>(0, m_nSize - m_nPosition, maxSize);
        std::copy_n(m_end.constData() + (m_nPosition - endStart), count, data);
    } else {
        // The zip library reads its numbers byte by byte, and each seek is a call of the system.
        const bool isThere = m_file->pos() == m_nPosition || m_file->seek(m_nPosition);
        count = isThere ? m_file->read(data, maxSize) : -1;
    }
    m_nPosition += std::max<qint64>(count, 0);
    return count;
}

qint64 PackageFile::writeData(const char *, qint64)
{
    return -1;
}

} // namespace Internal
} // namespace ProjectFileCfg
