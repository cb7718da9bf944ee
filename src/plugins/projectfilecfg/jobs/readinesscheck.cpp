// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "readinesscheck.h"

#include "packagedpicture.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "picturedecoder.h"
#include "reason.h"

#include <host/devices.h>

#include <QFile>
#include <QThread>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr qint64 bytesPerPixel = 4;
constexpr qint64 maxBytesBeyondFirst = 256 * 1024 * 1024;

} // namespace

ReadinessCheck::ReadinessCheck(PackageReader &package, const Model::Device &device, const QString &folder)
    : m_package(package)
    , m_device(device)
    , m_strFolder(folder)
{}

LoadResultCode ReadinessCheck::run(QString *reason)
{
    if (hasTooManyPixels(reason))
        return LoadGalleryFileError;
    PictureDecoder decoder(QThread::idealThreadCount());
    LoadResultCode code = LoadSuccess;
    const QStringList entries = m_package.entries();
    for (auto entry = entries.begin(); entry != entries.end() && code == LoadSuccess; ++entry) {
        if (PackageLayout::isPicture(*entry))
            code = begin(*entry, decoder, reason);
    }
    // These come before the entry with that code in the archive, so a failure among them takes precedence.
    while (!m_begun.isEmpty()) {
        if (!isOldestDecoded(decoder, reason))
            return LoadGalleryFileError;
    }
    return code;
}

LoadResultCode ReadinessCheck::runOffline(QString *reason) const
{
    return hasTooManyPixels(reason) ? LoadGalleryFileError : LoadSuccess;
}

// Adds up the sizes of the materials, which the pictures must match. A picture of another size is refused later, and so
// is one that is too large by itself.
bool ReadinessCheck::hasTooManyPixels(QString *reason) const
{
    qint64 pixels = 0;
    for (const QString &entry : m_package.entries()) {
        if (!PackageLayout::isPicture(entry))
            continue;
        const std::shared_ptr<Model::Materail> materail = PackagedPicture(entry, m_device).materail();
        const qint64 ofPicture = materail ? qint64(materail->size().width()) * materail->size().height() : 0;
        if (ofPicture <= PackageLimits::maxPictureMemory / bytesPerPixel)
            pixels += ofPicture;
    }
    return pixels > PackageLimits::maxPixels &&
           !failBecause(reason, QStringLiteral("its pictures have %1 pixels in total").arg(pixels));
}

LoadResultCode ReadinessCheck::begin(const QString &entry, PictureDecoder &decoder, QString *reason)
{
    PackagedPicture picture(entry, m_device);
    const QString extractedPath = picture.extract(m_package, m_strFolder, reason);
    if (extractedPath.isEmpty())
        return LoadDecompressFailed;
    QFile::remove(extractedPath);
    const LoadResultCode code = picture.open(m_package, m_strFolder, reason);
    if (code != LoadSuccess || !picture.isOfGallery())
        return code;
    const qint64 bytes = qint64(picture.size().width()) * picture.size().height() * bytesPerPixel;
    const auto isTooMuch = [&] {
        return m_begun.size() >= QThread::idealThreadCount() + 2 ||
               m_nBegunBytes - m_begun.head().second + bytes > maxBytesBeyondFirst;
    };
    while (!m_begun.isEmpty() && isTooMuch()) {
        if (!isOldestDecoded(decoder, reason))
            return LoadGalleryFileError;
    }
    decoder.begin(entry, picture.content(), picture.size());
    m_begun.enqueue({entry, bytes});
    m_nBegunBytes += bytes;
    return LoadSuccess;
}

bool ReadinessCheck::isOldestDecoded(PictureDecoder &decoder, QString *reason)
{
    const QPair<QString, qint64> oldest = m_begun.dequeue();
    m_nBegunBytes -= oldest.second;
    return !decoder.take(oldest.first, reason).isNull();
}

} // namespace Internal
} // namespace ProjectFileCfg
