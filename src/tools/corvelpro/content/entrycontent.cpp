// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "entrycontent.h"

#include "reason.h"

#include <QIODevice>

#include <zlib.h>

#include <algorithm>
#include <optional>

namespace Corvelpro {

using ProjectFileCfg::Internal::failBecause;

namespace {

constexpr qint64 largestBlock = 256 * 1024;

/// For so many bytes, read or unpacked portion by portion. Most entries are small, and there may be thousands.
QByteArray blockFor(qint64 size)
{
    return QByteArray(int(qBound<qint64>(1, size, largestBlock)), Qt::Uninitialized);
}

/// Passes the content on, and compares it with its header at the end.
class Content
{
public:
    Content(const EntryHeader &header, const ContentSink &sink)
        : m_header(header)
        , m_sink(sink)
    {}

    /// False if there is more than the header states.
    bool take(const char *data, qint64 size)
    {
        m_size += size;
        if (m_size > m_header.size)
            return false;
        m_crc = crc32(m_crc, reinterpret_cast<const Bytef *>(data), uInt(size));
        m_sink(data, size);
        return true;
    }

    bool isAsStated(QString *reason) const
    {
        if (m_size != m_header.size)
            return failBecause(reason, QStringLiteral("it has %1%2 bytes instead of %3")
                                           .arg(m_size > m_header.size ? QStringLiteral("more than ") : QString(),
                                                QString::number(std::min<qint64>(m_size, m_header.size)),
                                                QString::number(m_header.size)));
        return m_crc == m_header.crc || failBecause(reason, QStringLiteral("its CRC is wrong"));
    }

private:
    const EntryHeader &m_header;
    const ContentSink &m_sink;
    qint64 m_size = 0;
    uLong m_crc = 0;
};

/// The bits of a deflate stream that nothing reads, so that no CRC covers them: behind the header of a stored block,
/// and behind the last block. Every writer leaves zeros there.
class SpareBits
{
public:
    /// `unread` bits of the byte that ends a block are not part of it. `isLast`: no block follows.
    void atBlockEnd(uchar byte, int unread, bool isLast)
    {
        m_bits = byte >> (8 - unread);
        m_count = unread;
        m_needsNext = !isLast && unread < headerBits;
        if (isLast)
            m_isClear = m_isClear && m_bits == 0;
        else if (!m_needsNext)
            checkHeader();
    }

    /// The byte after that one, or the first one of all.
    void follow(uchar byte)
    {
        if (!m_needsNext)
            return;
        m_bits |= byte << m_count;
        m_needsNext = false;
        checkHeader();
    }

    bool isClear() const { return m_isClear; }

private:
    static constexpr int headerBits = 3;

    void checkHeader()
    {
        const bool isStored = (m_bits & 6) == 0;
        m_isClear = m_isClear && !(isStored && m_bits >> headerBits != 0);
    }

    /// The next block's first bits, as far as they are known.
    int m_bits = 0;
    int m_count = 0;
    bool m_needsNext = true;
    bool m_isClear = true;
};

/// Unpacks portion by portion.
class Inflater
{
public:
    /// `size` is what the stream should unpack to, in bytes.
    explicit Inflater(qint64 size)
        : m_unpacked(blockFor(size))
    {
        m_isReady = inflateInit2(&m_stream, -MAX_WBITS) == Z_OK;
    }
    ~Inflater() { inflateEnd(&m_stream); }

    /// False if the portion is no continuation of the stream, or if `content` is over.
    bool unpack(const QByteArray &portion, Content &content)
    {
        auto *const begin = reinterpret_cast<Bytef *>(const_cast<char *>(portion.constData()));
        m_stream.next_in = begin;
        m_stream.avail_in = uInt(portion.size());
        for (bool isMore = true; isMore && m_isReady && !m_isAtEnd;) {
            if (m_stream.avail_in > 0)
                m_spareBits.follow(*m_stream.next_in);
            m_stream.next_out = reinterpret_cast<Bytef *>(m_unpacked.data());
            m_stream.avail_out = uInt(m_unpacked.size());
            const int state = inflate(&m_stream, Z_BLOCK);
            m_isAtEnd = state == Z_STREAM_END;
            m_isReady = m_isAtEnd || state == Z_OK || state == Z_BUF_ERROR;
            if (m_isReady && !content.take(m_unpacked.constData(), m_unpacked.size() - qint64(m_stream.avail_out)))
                return false;
            const bool isBlockOver = state == Z_OK && (m_stream.data_type & blockOver);
            const bool isLastBlockOver = isBlockOver && (m_stream.data_type & lastBlock);
            if (isBlockOver && m_stream.next_in > begin)
                m_spareBits.atBlockEnd(m_stream.next_in[-1], m_stream.data_type & unusedBits, isLastBlockOver);
            isMore = state == Z_OK && (m_stream.avail_in > 0 || m_stream.avail_out == 0 || isLastBlockOver);
        }
        return m_isReady && m_stream.avail_in == 0;
    }

    /// True if the stream has ended, and its spare bits are zero.
    bool isWhole() const { return m_isAtEnd && m_spareBits.isClear(); }

private:
    Q_DISABLE_COPY(Inflater)

    /// In z_stream::data_type: in the last block; a block has just ended; how many bits of its last byte are unused.
    static constexpr int lastBlock = 64;
    static constexpr int blockOver = 128;
    static constexpr int unusedBits = 7;

    z_stream m_stream{};
    QByteArray m_unpacked;
    bool m_isReady = false;
    bool m_isAtEnd = false;
    SpareBits m_spareBits;
};

} // namespace

bool readContent(QIODevice &packed, const EntryHeader &header, const ContentSink &sink,
                 const std::function<void(qint64 bytes)> &passed, QString *reason)
{
    Content content(header, sink);
    // Nothing at all is a valid form of nothing.
    std::optional<Inflater> inflater;
    if (header.method == EntryHeader::deflated && header.packedSize > 0)
        inflater.emplace(header.size);
    QByteArray block = blockFor(header.packedSize);
    bool isSound = true;
    for (qint64 left = header.packedSize; isSound && left > 0;) {
        const qint64 count = packed.read(block.data(), std::min<qint64>(left, block.size()));
        if (count <= 0)
            return failBecause(reason, count == 0 ? QStringLiteral("the file ends before it")
                                                  : QStringLiteral("it cannot be read: %1").arg(packed.errorString()));
        left -= count;
        passed(count);
        isSound = inflater ? inflater->unpack(QByteArray::fromRawData(block.constData(), int(count)), content)
                           : content.take(block.constData(), count);
    }
    if (!content.isAsStated(reason))
        return false;
    return !inflater || (isSound && inflater->isWhole()) ||
           failBecause(reason, QStringLiteral("its packed content is damaged"));
}

} // namespace Corvelpro
