// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"
#include "packagedpicture.h"
#include "picturedecoder.h"

#include <QImage>
#include <QString>
#include <QStringList>

namespace ProjectFileCfg {
namespace Internal {

/// The pictures of a package, one after the other, for an apply to an online device: while one is sent, the next one is
/// decoded on another thread. If that fails, the picture is read and decoded again when it is next, and fails then. Use
/// it only on the thread that created it.
class PictureReadAhead
{
public:
    /// A picture of the package, and whether it can be sent.
    struct Picture
    {
        PackagedPicture packaged;
        /// The path of the extracted file; empty if the extraction failed, which does not keep the picture from being
        /// sent.
        QString strExtractedPath;
        /// LoadSuccess, or the code with which the apply ends: that of PackagedPicture::open(), or LoadGalleryFileError
        /// if it cannot be decoded.
        LoadResultCode code;
        /// The reason, unless the code is LoadSuccess.
        QString strReason;
        /// Null on failure, and outside the gallery.
        QImage image;
    };

    /// `device` is the package's device description. Extracts the pictures to `folder`, where other software expects
    /// them.
    PictureReadAhead(PackageReader &package, const Model::Device &device, const QString &folder);

    bool hasNext() const { return m_nNext < m_listEntries.size(); }
    /// Reads the next picture in the archive's order, whether it is in the gallery or not.
    Picture next();

private:
    void decodeAhead(const QString &entry);
    LoadResultCode read(PackagedPicture &picture, QImage &image, QString *reason);

    PackageReader &m_package;
    const Model::Device &m_device;
    const QString m_strFolder;
    PictureDecoder m_decoder;
    QStringList m_listEntries;
    int m_nNext = 0;
};

} // namespace Internal
} // namespace ProjectFileCfg
