#include "packagedpicture.h"

#include "namelessfile.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "picturereader.h"

#include <model/device.h>

#include <QBuffer>
#include <QDebug>

namespace ProjectFileCfg {
namespace Internal {

/// Larger files are no content for the memory: several pictures are there at once, and their pixels besides.
static const qint64 maxSizeInMemory = 32 * 1024 * 1024;

PackagedPicture::PackagedPicture(const QString &entry, const Model::Device &device)
    : m_entry(entry)
    , m_path(PackageLayout::plainName(entry))
{
    if (!isOfGallery())
        return;
    // Key numbers have 8 bits.
    const auto keyNo = static_cast<quint8>(PackageLayout::galleryNumber(m_path));
    for (const auto &reference : isLogo() ? device.getLogos() : device.getBKGs()) {
        const std::shared_ptr<Model::Materail> candidate = reference.lock();
        if (candidate && candidate->getKeyNo() == keyNo) {
            m_materail = candidate;
            return;
        }
    }
}

bool PackagedPicture::isLogo() const
{
    return PackageLayout::isLogo(m_path);
}

bool PackagedPicture::isOfGallery() const
{
    return PackageLayout::isInGallery(m_path);
}

QString PackagedPicture::name() const
{
    return PackageLayout::galleryFolder(m_path) + QLatin1Char('_') +
           QString::number(PackageLayout::galleryNumber(m_path));
}

QString PackagedPicture::extract(PackageReader &package, const QString &folder) const
{
    const QString path = QStringLiteral("%1/%2").arg(folder, m_entry);
    if (!package.extractFile(m_entry, path).isEmpty())
        return path;
    qDebug() << "Extract file failed:" << path;
    return QString();
}

LoadResultCode PackagedPicture::open(PackageReader &package, const QString &folder)
{
    if (!takeContent(package, folder))
        return LoadDecompressFailed;
    m_size = PictureReader(m_content.get()).size();
    if (m_size.width() < 1 || m_size.height() < 1)
        return LoadImageContentError;
    if (isOfGallery() && (!m_materail || m_materail->size() != m_size))
        return LoadGalleryFileError;
    return m_content->seek(0) ? LoadSuccess : LoadDecompressFailed;
}

bool PackagedPicture::takeContent(PackageReader &package, const QString &folder)
{
    const qint64 size = package.entrySize(m_entry);
    if (size > maxSizeInMemory) {
        m_content = openNamelessFile(folder);
        if (m_content && package.read(m_entry, *m_content, size) && m_content->seek(0))
            return true;
    }
    // A full disk is no reason to leave a device without its picture.
    if (size > PackageLimits::maxPictureFileSize)
        return false;
    const auto buffer = std::make_shared<QBuffer>();
    buffer->buffer().reserve(int(std::max<qint64>(size, 0)));
    m_content = buffer;
    return buffer->open(QIODevice::ReadWrite) && package.read(m_entry, *buffer, size) && buffer->seek(0);
}

} // namespace Internal
} // namespace ProjectFileCfg
