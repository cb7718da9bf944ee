#include "picturereadahead.h"

#include "packagelayout.h"
#include "packagereader.h"
#include "picturereader.h"

#include <model/device.h>

namespace ProjectFileCfg {
namespace Internal {

/// Pictures with larger files or more pixels are decoded at their turn only, since two are in memory otherwise.
static const qint64 maxSizeAhead = 32 * 1024 * 1024;
static const qint64 maxPixelsAhead = 16 * 1024 * 1024;

PictureReadAhead::PictureReadAhead(PackageReader &package, const Model::Device &device, const QString &folder)
    : m_package(package)
    , m_device(device)
    , m_folder(folder)
    , m_decoder(1)
{
    for (const QString &entry : package.entries()) {
        if (PackageLayout::isPicture(entry))
            m_entries.append(entry);
    }
}

PictureReadAhead::Picture PictureReadAhead::next()
{
    const QString entry = m_entries.at(m_nNext);
    ++m_nNext;
    if (hasNext())
        decodeAhead(m_entries.at(m_nNext));
    Picture picture{PackagedPicture(entry, m_device), QString(), LoadSuccess, QImage()};
    picture.extractedPath = picture.packaged.extract(m_package, m_folder);
    picture.code = read(picture.packaged, picture.image);
    return picture;
}

void PictureReadAhead::decodeAhead(const QString &entry)
{
    PackagedPicture picture(entry, m_device);
    const QSize size = picture.materail() ? picture.materail()->size() : QSize();
    const bool isSmall =
        qint64(size.width()) * size.height() <= maxPixelsAhead && m_package.entrySize(entry) <= maxSizeAhead;
    if (picture.materail() && isSmall && picture.open(m_package, m_folder) == LoadSuccess)
        m_decoder.begin(entry, picture.content(), size);
}

LoadResultCode PictureReadAhead::read(PackagedPicture &picture, QImage &image)
{
    image = m_decoder.take(picture.entry());
    if (!image.isNull())
        return LoadSuccess;
    const LoadResultCode code = picture.open(m_package, m_folder);
    if (code != LoadSuccess || !picture.isOfGallery())
        return code;
    image = PictureReader(picture.content().get()).read();
    // A cut file still tells its size, and so does one that is too large to be read.
    return image.isNull() ? LoadGalleryFileError : LoadSuccess;
}

} // namespace Internal
} // namespace ProjectFileCfg
