#include "picturereader.h"

#include "packagelimits.h"

#include <QFile>

#include <utility>

namespace ProjectFileCfg {
namespace Internal {

PictureScan PictureReader::scanOf(QIODevice &file)
{
    PictureScan scan;
    return file.size() <= PackageLimits::maxPictureFileSize && scan.feed(file) ? scan : PictureScan();
}

PictureScan PictureReader::scanOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? scanOf(file) : PictureScan();
}

PictureReader::PictureReader(const QString &path)
    : m_reader(path, "png")
    , m_scan(scanOf(path))
{
    m_reader.setAutoDetectImageFormat(false);
}

PictureReader::PictureReader(QIODevice *device)
    : m_reader(device, "png")
    , m_scan(scanOf(*device))
{
    m_reader.setAutoDetectImageFormat(false);
}

QSize PictureReader::size() const
{
    return m_scan.isPng() && !m_scan.isBeyondLimits() ? m_reader.size() : QSize();
}

QImage PictureReader::read()
{
    if (size().isEmpty() || m_scan.memory() > PackageLimits::maxPictureMemory)
        return QImage();
    QImage image;
    if (!m_reader.read(&image))
        return QImage();
    return std::move(image).convertToFormat(QImage::Format_ARGB32);
}

} // namespace Internal
} // namespace ProjectFileCfg
