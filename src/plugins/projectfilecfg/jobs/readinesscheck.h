#pragma once

#include "operationresultcodes.h"

#include <QPair>
#include <QQueue>
#include <QString>

namespace Model {
class Device;
} // namespace Model

namespace ProjectFileCfg {
namespace Internal {

class PackagedPicture;
class PackageReader;
class PictureDecoder;

/// Does everything with the pictures of a package that an apply to an online device does before it sends them: what
/// would end the apply is found while the device still has what it had. Pictures are decoded on all cores, at most two
/// more than there are cores at once and at most 256 MiB of pixels beyond the first.
class ReadinessCheck
{
public:
    /// `device` is the one that the package describes. Pictures are extracted to `folder`, as the apply does it, and
    /// removed again: so it has room, and nothing is in the way.
    ReadinessCheck(PackageReader &package, const Model::Device &device, const QString &folder);

    /// LoadSuccess, or the code with which the apply would end, that of the first picture in the archive's order: see
    /// PackagedPicture::open(), LoadDecompressFailed also where it cannot be extracted, and LoadGalleryFileError where
    /// it cannot be decoded or where there are too many pixels, which is told before anything is read.
    LoadResultCode run();

    /// True when the pictures have more pixels together than PackageLimits allows, as the description has their sizes:
    /// an offline device, whose thumbnails are made of them, is not kept busy for minutes either.
    bool hasTooManyPixels() const;

private:
    bool isExtracted(const QString &entry);
    LoadResultCode begin(const QString &entry, PictureDecoder &decoder);
    bool isOldestDecoded(PictureDecoder &decoder);

    PackageReader &m_package;
    const Model::Device &m_device;
    const QString m_folder;
    /// What is being decoded, with its pixels in bytes, in the archive's order.
    QQueue<QPair<QString, qint64>> m_begun;
    qint64 m_begunBytes = 0;
};

} // namespace Internal
} // namespace ProjectFileCfg
