// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packedfile.h"

#include "content/entrycontent.h"

#include <QIODevice>

#include <cstring>

#ifndef Q_OS_WIN
#include <unistd.h>
#endif

namespace Corvelpro {

namespace {

/// Returns less than `size` at the end of the file, and -1 on failure. Does not move the file position, which others
/// use.
qint64 readAt(int handle, qint64 offset, char *data, qint64 size)
{
#ifdef Q_OS_WIN
    Q_UNUSED(handle)
    Q_UNUSED(offset)
    Q_UNUSED(data)
    Q_UNUSED(size)
    return -1;
#else
    return ::pread(handle, data, size_t(size), off_t(offset));
#endif
}

/// Reads the packed bytes of both, and fails at the first difference.
class CommonBytes : public QIODevice
{
public:
    CommonBytes(const PackedFile &one, const PackedFile &other)
        : m_one(one)
        , m_other(other)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        m_block.resize(int(size));
        if (readAt(m_one.handle, m_one.offset + m_read, data, size) != size ||
            readAt(m_other.handle, m_other.offset + m_read, m_block.data(), size) != size ||
            std::memcmp(data, m_block.constData(), size_t(size)) != 0)
            return -1;
        m_read += size;
        return size;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const PackedFile &m_one;
    const PackedFile &m_other;
    QByteArray m_block;
    qint64 m_read = 0;
};

} // namespace

// The CRC of one content is enough: the other has the same bytes, and the same CRC in its header.
bool areSoundAndEqual(const PackedFile &one, const PackedFile &other)
{
    const EntryHeader &header = one.header;
    if (header.method != other.header.method || header.crc != other.header.crc ||
        header.packedSize != other.header.packedSize || header.size != other.header.size)
        return false;
    CommonBytes bytes(one, other);
    return readContent(
        bytes, header, [](const char *, qint64) {}, [](qint64) {}, nullptr);
}

} // namespace Corvelpro
