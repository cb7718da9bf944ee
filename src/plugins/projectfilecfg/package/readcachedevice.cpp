// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "readcachedevice.h"

#include "archivecomment.h"
#include "filesystem.h"
#include "plainfile.h"
#include "zipformat.h"

#include <QThread>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// In bytes: the longest comment, the end record, and the zip64 locator before it.
constexpr qint64 endSize = ZipFormat::maxTextSize + ZipFormat::endRecordSize + ZipFormat::locatorSize;

} // namespace

ReadCacheDevice::ReadCacheDevice(const QString &path)
    : m_strPath(path)
    , m_pFile(std::make_unique<QFile>(path))
{}

ReadCacheDevice::ReadCacheDevice(std::unique_ptr<QFile> file)
    : m_strPath(file->fileName())
    , m_pFile(std::move(file))
{}

ReadCacheDevice::~ReadCacheDevice() = default;

bool ReadCacheDevice::open(OpenMode mode)
{
    QString reason;
    if (mode != QIODevice::ReadOnly || (!m_pFile->isOpen() && !openPlainFile(*m_pFile, false, &reason))) {
        setErrorString(reason);
        return false;
    }
    if (!readEndAtRest()) {
        setErrorString(QStringLiteral("cannot read %1: %2").arg(m_strPath, m_pFile->errorString()));
        return false;
    }
    // Unbuffered: what the library reads in small steps is in m_end or in the file's own buffer.
    return QIODevice::open(mode | QIODevice::Unbuffered);
}

bool ReadCacheDevice::readEnd()
{
    m_nSize = m_pFile->size();
    const qint64 expected = std::min(m_nSize, endSize);
    m_end = m_pFile->seek(m_nSize - expected) ? m_pFile->read(expected) : QByteArray();
    return m_end.size() == expected;
}

/// Reads the end while nobody edits it; an edit takes less than a millisecond. If the package is locked, two equal,
/// consistent readings are accepted; after 200 ms, any reading is.
bool ReadCacheDevice::readEndAtRest()
{
    constexpr int patience = 200;
    for (int waited = 0; waited < patience; ++waited) {
        const bool isQuiet = FileSystem::lockToRead(m_pFile->handle());
        const bool isRead = readEnd();
        if (isQuiet) {
            FileSystem::unlock(m_pFile->handle());
            return isRead;
        }
        const QByteArray first = m_end;
        if (readEnd() && m_end == first && ArchiveComment::isConsistent(m_end))
            return true;
        QThread::msleep(1);
    }
    return readEnd();
}

bool ReadCacheDevice::isSequential() const
{
    return false;
}

qint64 ReadCacheDevice::size() const
{
    return m_nSize;
}

bool ReadCacheDevice::seek(qint64 position)
{
    m_nPosition = position;
    return QIODevice::seek(position);
}

qint64 ReadCacheDevice::readData(char *data, qint64 maxSize)
{
    qint64 count = 0;
    const qint64 endStart = m_nSize - m_end.size();
    if (m_nPosition >= endStart) {
        count = qBound<qint64>(0, m_nSize - m_nPosition, maxSize);
        std::copy_n(m_end.constData() + (m_nPosition - endStart), count, data);
    } else {
        // The zip library reads numbers byte by byte, and each seek would be a system call.
        const bool isThere = m_pFile->pos() == m_nPosition || m_pFile->seek(m_nPosition);
        count = isThere ? m_pFile->read(data, maxSize) : -1;
    }
    m_nPosition += std::max<qint64>(count, 0);
    return count;
}

qint64 ReadCacheDevice::writeData(const char *, qint64)
{
    return -1;
}

} // namespace Internal
} // namespace ProjectFileCfg
