// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "contentscan.h"

#include "packagelimits.h"

#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <limits>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr int typeSize = 4;
constexpr int headSize = 4 + typeSize;
constexpr int chunkChecksumSize = 4;
constexpr int headerSize = 13;

const QByteArray &signature()
{
    static const QByteArray bytes("\x89PNG\r\n\x1a\n", 8);
    return bytes;
}

bool isPackedText(const QByteArray &chunkType)
{
    return chunkType == "zTXt" || chunkType == "iTXt" || chunkType == "iCCP";
}

/// An ancillary chunk: its type begins with a lower-case letter.
bool isText(const QByteArray &chunkType)
{
    return chunkType.at(0) >= 'a' && chunkType.at(0) <= 'z';
}

} // namespace

void PictureScan::feed(const char *data, qint64 size)
{
    while (size > 0 && !m_bOver) {
        const qint64 passed = std::min(size, m_nGap);
        m_nGap -= passed;
        const int expected = m_expected == Part::Signature   ? signature().size()
                             : m_expected == Part::ChunkHead ? headSize
                                                             : headerSize;
        const qint64 taken = std::min<qint64>(size - passed, expected - m_part.size());
        m_part.append(data + passed, int(taken));
        data += passed + taken;
        size -= passed + taken;
        if (m_part.size() == expected) {
            take(m_part);
            m_part.clear();
        }
    }
}

bool PictureScan::feed(QIODevice &file)
{
    while (!m_bOver) {
        const QByteArray bytes = file.read(m_expected == Part::Header ? headerSize : headSize);
        feed(bytes.constData(), bytes.size());
        const qint64 next = file.pos() + m_nGap;
        if (bytes.isEmpty() || next > file.size() || !file.seek(next))
            break;
        m_nGap = 0;
    }
    return file.seek(0);
}

void PictureScan::take(const QByteArray &part)
{
    switch (m_expected) {
    case Part::Signature:
        m_bPng = part == signature();
        m_bOver = !m_bPng;
        m_expected = Part::ChunkHead;
        break;
    case Part::ChunkHead:
        takeChunkHead(part);
        break;
    case Part::Header:
        m_nWidth = qFromBigEndian<quint32>(part.constData());
        m_nHeight = qFromBigEndian<quint32>(part.constData() + 4);
        m_nDepth = static_cast<uchar>(part.at(8));
        m_nColourType = static_cast<uchar>(part.at(9));
        m_bBeyondLimits = std::max(m_nWidth, m_nHeight) > PackageLimits::maxPictureSide;
        m_bOver = m_bBeyondLimits;
        m_nGap = chunkChecksumSize;
        m_expected = Part::ChunkHead;
        break;
    }
}

void PictureScan::takeChunkHead(const QByteArray &head)
{
    const QByteArray type = head.right(typeSize);
    const qint64 length = qFromBigEndian<quint32>(head.constData());
    if (m_bFirstChunk && type == "IHDR" && length == headerSize)
        m_expected = Part::Header;
    else
        m_nGap = length + chunkChecksumSize;
    m_bFirstChunk = false;
    m_bTransparentColour = m_bTransparentColour || type == "tRNS";
    m_nTextSize += isText(type) ? headSize + length + chunkChecksumSize : 0;
    m_nPackedTexts += isPackedText(type) ? 1 : 0;
    m_bBeyondLimits =
        m_nTextSize > PackageLimits::maxPictureTextSize || m_nPackedTexts > PackageLimits::maxPackedPictureTexts;
    // The decoder reads nothing after IEND.
    m_bOver = m_bBeyondLimits || type == "IEND";
}

QSize PictureScan::size() const
{
    constexpr qint64 most = std::numeric_limits<int>::max();
    return QSize(int(std::min(m_nWidth, most)), int(std::min(m_nHeight, most)));
}

qint64 PictureScan::pixels() const
{
    return m_bBeyondLimits ? 0 : m_nWidth * m_nHeight;
}

qint64 PictureScan::memory() const
{
    // The bits of a pixel in the format in which Qt reads it. Unless those are 32, the converted copy comes on top.
    constexpr int grey = 0;
    constexpr int palette = 3;
    constexpr int wanted = 32;
    int bits = m_nDepth == 16 ? 64 : wanted;
    if (m_nColourType == palette || m_nColourType == grey)
        bits = m_nDepth == 1 ? 1 : m_nDepth < 16 ? 8 : m_bTransparentColour ? 64 : 16;
    return pixels() * (bits == wanted ? wanted : wanted + bits) / 8;
}

void DescriptionScan::feed(const char *data, qint64 size)
{
    for (const char *end = data + size; data != end; ++data) {
        const char c = *data;
        if (m_bEscaped)
            m_bEscaped = false;
        else if (c == '"')
            m_bInString = !m_bInString;
        else if (m_bInString)
            m_bEscaped = c == '\\';
        else if (c == ',' || c == ':' || c == '[' || c == '{')
            ++m_nParts;
    }
}

} // namespace Internal
} // namespace ProjectFileCfg
