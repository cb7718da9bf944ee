// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"

#include <host/fwd.h>

#include <QPair>
#include <QQueue>
#include <QString>

namespace ProjectFileCfg {
namespace Internal {

class PackagedPicture;
class PackageReader;
class PictureDecoder;

/// Does everything with the pictures of a package that an apply to an online device does before it sends them. So
/// whatever would end the apply is found while the device is still unchanged. Decodes on all cores; at most two
/// pictures more than there are cores are in memory, and at most 256 MiB of pixels beyond the first.
class ReadinessCheck
{
public:
    /// `device` is the package's device description. Extracts pictures to `folder`, as the apply does, and removes them
    /// again, to make sure that there is room and nothing in the way.
    ReadinessCheck(PackageReader &package, const Model::Device &device, const QString &folder);

    /// LoadSuccess, or the code with which the apply would end, for the first picture in the archive's order that
    /// fails: a code of PackagedPicture::open(), LoadDecompressFailed if it cannot be extracted, LoadGalleryFileError
    /// if it cannot be decoded. If hasTooManyPixels(), LoadGalleryFileError before anything is read. Runs on the
    /// caller's thread.
    LoadResultCode run(QString *reason);

    /// The same for an offline device, to which the pictures are only copied: LoadGalleryFileError if
    /// hasTooManyPixels(), since decoding them for the thumbnails would take minutes. Otherwise LoadSuccess.
    LoadResultCode runOffline(QString *reason) const;

private:
    /// True if the pictures, by their sizes in the description, have more pixels in total than PackageLimits allows.
    bool hasTooManyPixels(QString *reason) const;
    LoadResultCode begin(const QString &entry, PictureDecoder &decoder, QString *reason);
    bool isOldestDecoded(PictureDecoder &decoder, QString *reason);

    PackageReader &m_package;
    const Model::Device &m_device;
    const QString m_strFolder;
    /// The pictures being decoded, each with the size of its pixels in bytes, in the archive's order.
    QQueue<QPair<QString, qint64>> m_begun;
    qint64 m_nBegunBytes = 0;
};

} // namespace Internal
} // namespace ProjectFileCfg
