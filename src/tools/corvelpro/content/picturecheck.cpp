// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "picturecheck.h"

#include "findings.h"
#include "scratch.h"

#include "contentscan.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "picturereader.h"

#include <QThread>

#include <algorithm>
#include <limits>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;
using namespace ProjectFileCfg::Internal::PackageLayout;

namespace {

/// Bytes of content, and of pixels with it, beyond those of one picture.
constexpr qint64 maxContentInMemory = 8 * PackageLimits::mebibyte;
constexpr qint64 maxMemory = 24 * PackageLimits::mebibyte;

/// A load finds a picture's place by the number in its name, which has 8 bits.
bool hasKeyNumber(const QString &entryName)
{
    const QString path = plainName(entryName);
    const quint16 number = galleryNumber(path);
    const QString expected = isLogo(path) ? logoEntry(number) : backgroundEntry(number);
    return number <= std::numeric_limits<quint8>::max() && path.compare(expected, Qt::CaseInsensitive) == 0;
}

} // namespace

PictureCheck::PictureCheck(Findings &findings)
    : m_findings(findings)
    , m_decoder(QThread::idealThreadCount())
{}

std::shared_ptr<QIODevice> PictureCheck::placeFor(const ArchiveDirectory::Entry &entry)
{
    if (isInGallery(plainName(entry.name)) && !hasKeyNumber(entry.name))
        m_findings.add(entry.name, entry.offset, QStringLiteral("its name has no key number from 0 to 255"));
    if (entry.header.size > PackageLimits::maxPictureFileSize) {
        m_findings.add(entry.name, entry.offset,
                       QStringLiteral("it has %1 bytes, and a picture may have %2")
                           .arg(entry.header.size)
                           .arg(PackageLimits::maxPictureFileSize));
        return nullptr;
    }
    QString reason;
    std::shared_ptr<QIODevice> place = openScratch(entry.header.size, maxContentInMemory, &reason);
    if (!place)
        m_findings.addUnknown(entry.name, QStringLiteral("whether it can be decoded: %1").arg(reason));
    return place;
}

void PictureCheck::begin(const ArchiveDirectory::Entry &entry, const std::shared_ptr<QIODevice> &content)
{
    QString reason;
    PictureScan scan;
    content->seek(0);
    scan.feed(*content);
    const QSize size = PictureReader(content.get()).size(&reason);
    if (size.isEmpty()) {
        m_findings.add(entry.name, entry.localOffset,
                       reason.isEmpty() ? QStringLiteral("it has no pixels")
                                        : QStringLiteral("the picture: ") + reason);
        return;
    }
    const bool isOfGallery = isInGallery(plainName(entry.name));
    if (!isOfGallery && scan.memory() > PackageLimits::maxPictureMemory) {
        m_findings.addUnknown(entry.name,
                              QStringLiteral("whether it can be decoded: it is too large, and no load does"));
        return;
    }
    m_pixels += isOfGallery ? scan.pixels() : 0;
    if (m_pixels > PackageLimits::maxPixels) {
        m_findings.addUnknown(entry.name,
                              QStringLiteral("whether it can be decoded: there are too many pixels before it"));
        return;
    }
    const qint64 memory = scan.memory() + std::min(content->size(), maxContentInMemory);
    while (!m_begun.isEmpty() &&
           (m_begun.size() > QThread::idealThreadCount() || m_begunMemory + memory > maxMemory || isBegun(entry.name)))
        takeOldest();
    content->seek(0);
    m_decoder.begin(entry.name, content, size);
    m_begun.enqueue({entry.name, entry.localOffset, memory});
    m_begunMemory += memory;
}

bool PictureCheck::isBegun(const QString &entryName) const
{
    return std::any_of(m_begun.begin(), m_begun.end(),
                       [&entryName](const Picture &picture) { return picture.entry == entryName; });
}

void PictureCheck::takeOldest()
{
    const Picture oldest = m_begun.dequeue();
    m_begunMemory -= oldest.memory;
    QString reason;
    if (!m_decoder.take(oldest.entry, &reason).isNull())
        ++m_decoded;
    else
        m_findings.add(oldest.entry, oldest.offset, reason);
}

void PictureCheck::finish()
{
    while (!m_begun.isEmpty())
        takeOldest();
    if (m_pixels > PackageLimits::maxPixels)
        m_findings.add({}, -1, QStringLiteral("its pictures have %1 pixels in total").arg(m_pixels));
}

} // namespace Corvelpro
