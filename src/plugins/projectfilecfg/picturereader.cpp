#include "picturereader.h"

#include <QFile>
#include <QPixelFormat>
#include <QtEndian>

#include <utility>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr qint64 MiB = 1024 * 1024;
constexpr qint64 maxPictureBytes = 192 * MiB;
/// Texts, profiles and the like: what a picture may carry besides its pixels.
constexpr qint64 maxDescriptionBytes = 4 * MiB;
/// Each of those that are packed may become 8 MB, and twice that as text.
constexpr int maxPackedDescriptions = 4;

bool isPackedDescription(const QByteArray &chunkType)
{
    return chunkType == "zTXt" || chunkType == "iTXt" || chunkType == "iCCP";
}

bool isDescription(const QByteArray &chunkType)
{
    return chunkType.at(0) >= 'a' && chunkType.at(0) <= 'z';
}

/// False for what is no PNG, and for one that asks for more memory than its pixels do: all texts are unpacked
/// and kept before the first pixel is read, so that a megabyte of them fills gigabytes. Whether the chunks are
/// in order is left to who reads them.
bool isReadable(QIODevice &file)
{
    static const QByteArray signature("\x89PNG\r\n\x1a\n", 8);
    if (file.size() > PictureReader::maxFileSize || file.read(signature.size()) != signature)
        return false;

    constexpr int typeSize = 4;
    constexpr int headSize = 4 + typeSize;
    constexpr int checksumSize = 4;
    qint64 descriptionBytes = 0;
    int packedDescriptions = 0;
    for (QByteArray head = file.read(headSize); head.size() == headSize; head = file.read(headSize)) {
        const QByteArray type = head.right(typeSize);
        const qint64 length = qFromBigEndian<quint32>(head.constData());
        if (isDescription(type))
            descriptionBytes += headSize + length + checksumSize;
        if (isPackedDescription(type))
            ++packedDescriptions;
        if (descriptionBytes > maxDescriptionBytes || packedDescriptions > maxPackedDescriptions)
            return false;
        // What follows the end is not read.
        const qint64 next = file.pos() + length + checksumSize;
        if (type == "IEND" || next > file.size() || !file.seek(next))
            break;
    }
    return file.seek(0);
}

bool isReadable(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && isReadable(file);
}

/// While it is read, and then as what it is wanted as.
qint64 bytesToRead(const QSize &size, QImage::Format format)
{
    constexpr int wantedBits = 32;
    const qint64 pixels = qint64(size.width()) * size.height();
    const int bits = QImage::toPixelFormat(format).bitsPerPixel();
    return pixels * (bits == wantedBits ? wantedBits : wantedBits + bits) / 8;
}

} // namespace

PictureReader::PictureReader(const QString &path)
    : m_reader(path, "png")
    , m_isReadable(isReadable(path))
{
    m_reader.setAutoDetectImageFormat(false);
}

PictureReader::PictureReader(QIODevice *device)
    : m_reader(device, "png")
    , m_isReadable(isReadable(*device))
{
    m_reader.setAutoDetectImageFormat(false);
}

QSize PictureReader::size() const
{
    return m_isReadable ? m_reader.size() : QSize();
}

QImage PictureReader::read()
{
    if (size().isEmpty() || bytesToRead(size(), m_reader.imageFormat()) > maxPictureBytes)
        return QImage();
    QImage image;
    if (!m_reader.read(&image))
        return QImage();
    return std::move(image).convertToFormat(QImage::Format_ARGB32);
}

} // namespace Internal
} // namespace ProjectFileCfg
