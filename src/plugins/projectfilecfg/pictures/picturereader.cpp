// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "picturereader.h"

#include "packagelimits.h"
#include "reason.h"

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

// No auto-detection in either reader: PictureScan checks PNG files only, and a decoder of another format would bypass
// its limits.
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

QSize PictureReader::size(QString *reason) const
{
    if (!m_scan.isPng())
        failBecause(reason, QStringLiteral("it cannot be read, is not a PNG, or is larger than %1 bytes")
                                .arg(PackageLimits::maxPictureFileSize));
    else if (m_scan.isBeyondLimits())
        failBecause(reason, QStringLiteral("it is too wide or too high, or has too many texts and profiles"));
    else if (m_reader.size().isValid())
        return m_reader.size();
    else
        failBecause(reason, QStringLiteral("its header is damaged"));
    return QSize();
}

void PictureReader::fitInto(const QSize &bounds)
{
    const QSize stated = size();
    if (!stated.isEmpty())
        m_reader.setScaledSize(stated.boundedTo(stated.scaled(bounds, Qt::KeepAspectRatio).expandedTo(QSize(1, 1))));
}

QImage PictureReader::read(QString *reason)
{
    const QSize stated = size(reason);
    if (!stated.isValid())
        return QImage();
    const bool isTooLarge = m_scan.memory() > PackageLimits::maxPictureMemory;
    QImage image;
    if (stated.isEmpty() || isTooLarge || !m_reader.read(&image)) {
        failBecause(reason, stated.isEmpty() ? QStringLiteral("it has no pixels")
                            : isTooLarge     ? QStringLiteral("its pixels need too much memory")
                                             : m_reader.errorString());
        return QImage();
    }
    return std::move(image).convertToFormat(QImage::Format_ARGB32);
}

} // namespace Internal
} // namespace ProjectFileCfg
