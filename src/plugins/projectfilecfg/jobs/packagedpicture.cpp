// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagedpicture.h"

#include "namelessfile.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "picturereader.h"
#include "reason.h"

#include <host/devices.h>

#include <QBuffer>
#include <QDebug>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// Larger files are kept on disk: several pictures are in memory at once, together with their pixels.
constexpr qint64 maxSizeInMemory = 32 * 1024 * 1024;

} // namespace

PackagedPicture::PackagedPicture(const QString &entry, const Model::Device &device)
    : m_strEntry(entry)
    , m_strPath(PackageLayout::plainName(entry))
{
    if (!isOfGallery())
        return;
    // Key numbers have 8 bits.
    const auto keyNo = static_cast<quint8>(PackageLayout::galleryNumber(m_strPath));
    for (const auto &reference : isLogo() ? device.getLogos() : device.getBKGs()) {
        const std::shared_ptr<Model::Materail> candidate = reference.lock();
        if (candidate && candidate->getKeyNo() == keyNo) {
            m_pMaterail = candidate;
            return;
        }
    }
}

bool PackagedPicture::isLogo() const
{
    return PackageLayout::isLogo(m_strPath);
}

bool PackagedPicture::isOfGallery() const
{
    return PackageLayout::isInGallery(m_strPath);
}

QString PackagedPicture::name() const
{
    return PackageLayout::galleryFolder(m_strPath) + QLatin1Char('_') +
           QString::number(PackageLayout::galleryNumber(m_strPath));
}

QString PackagedPicture::extract(PackageReader &package, const QString &folder, QString *reason) const
{
    QString path = QStringLiteral("%1/%2").arg(folder, m_strEntry);
    if (!package.extractFile(m_strEntry, path, reason).isEmpty())
        return path;
    qDebug() << "Extract file failed:" << path;
    return QString();
}

LoadResultCode PackagedPicture::open(PackageReader &package, const QString &folder, QString *reason)
{
    if (!takeContent(package, folder, reason))
        return LoadDecompressFailed;
    QString cause = QStringLiteral("it has no pixels");
    m_size = PictureReader(m_pContent.get()).size(&cause);
    if (m_size.width() < 1 || m_size.height() < 1) {
        failBecause(reason, QStringLiteral("the picture %1: %2").arg(m_strEntry, cause));
        return LoadImageContentError;
    }
    if (isOfGallery() && (!m_pMaterail || m_pMaterail->size() != m_size)) {
        failBecause(reason,
                    QStringLiteral("the picture %1 has no place in the description, or its place has another size")
                        .arg(m_strEntry));
        return LoadGalleryFileError;
    }
    return m_pContent->seek(0) ? LoadSuccess : LoadDecompressFailed;
}

bool PackagedPicture::takeContent(PackageReader &package, const QString &folder, QString *reason)
{
    const qint64 size = package.entrySize(m_strEntry);
    if (size > maxSizeInMemory) {
        m_pContent = openNamelessFile(folder, reason);
        if (m_pContent && package.read(m_strEntry, *m_pContent, size, reason) && m_pContent->seek(0))
            return true;
    }
    // A full disk must not leave a device without its picture.
    if (size > PackageLimits::maxPictureFileSize)
        return false;
    const auto buffer = std::make_shared<QBuffer>();
    buffer->buffer().reserve(int(std::max<qint64>(size, 0)));
    m_pContent = buffer;
    return buffer->open(QIODevice::ReadWrite) && package.read(m_strEntry, *buffer, size, reason) && buffer->seek(0);
}

} // namespace Internal
} // namespace ProjectFileCfg
