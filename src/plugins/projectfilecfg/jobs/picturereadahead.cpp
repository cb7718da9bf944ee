// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "picturereadahead.h"

#include "packagelayout.h"
#include "packagereader.h"
#include "picturereader.h"
#include "reason.h"

#include <host/devices.h>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// Larger pictures are not decoded ahead, since two would be in memory at once.
constexpr qint64 maxSizeAhead = 32 * 1024 * 1024;
constexpr qint64 maxPixelsAhead = 16 * 1024 * 1024;

} // namespace

PictureReadAhead::PictureReadAhead(PackageReader &package, const Model::Device &device, const QString &folder)
    : m_package(package)
    , m_device(device)
    , m_strFolder(folder)
    , m_decoder(1)
{
    for (const QString &entry : package.entries()) {
        if (PackageLayout::isPicture(entry))
            m_listEntries.append(entry);
    }
}

PictureReadAhead::Picture PictureReadAhead::next()
{
    const QString entry = m_listEntries.at(m_nNext);
    ++m_nNext;
    if (hasNext())
        decodeAhead(m_listEntries.at(m_nNext));
    Picture picture{PackagedPicture(entry, m_device), QString(), LoadSuccess, QString(), QImage()};
    picture.strExtractedPath = picture.packaged.extract(m_package, m_strFolder);
    picture.code = read(picture.packaged, picture.image, &picture.strReason);
    return picture;
}

void PictureReadAhead::decodeAhead(const QString &entry)
{
    PackagedPicture picture(entry, m_device);
    const QSize size = picture.materail() ? picture.materail()->size() : QSize();
    const bool isSmall =
        qint64(size.width()) * size.height() <= maxPixelsAhead && m_package.entrySize(entry) <= maxSizeAhead;
    if (picture.materail() && isSmall && picture.open(m_package, m_strFolder) == LoadSuccess)
        m_decoder.begin(entry, picture.content(), size);
}

LoadResultCode PictureReadAhead::read(PackagedPicture &picture, QImage &image, QString *reason)
{
    image = m_decoder.take(picture.entry());
    if (!image.isNull())
        return LoadSuccess;
    const LoadResultCode code = picture.open(m_package, m_strFolder, reason);
    if (code != LoadSuccess || !picture.isOfGallery())
        return code;
    QString cause;
    image = PictureReader(picture.content().get()).read(&cause);
    if (!image.isNull())
        return LoadSuccess;
    // open() cannot tell: the header of a truncated file, or of one too large to decode, still has a size.
    failBecause(reason, QStringLiteral("cannot decode %1: %2").arg(picture.entry(), cause));
    return LoadGalleryFileError;
}

} // namespace Internal
} // namespace ProjectFileCfg
