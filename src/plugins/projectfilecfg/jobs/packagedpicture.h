// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"

#include <host/fwd.h>

#include <QSize>
#include <QString>

#include <memory>

class QIODevice;

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;

/// A picture in a package, as an apply to an online device uses it: its place in the gallery, which its name
/// determines, and its content, which is read only from the open package.
class PackagedPicture
{
public:
    /// `device` is the package's device description.
    PackagedPicture(const QString &entry, const Model::Device &device);

    QString entry() const { return m_strEntry; }
    bool isLogo() const;
    /// True if it is in one of the two gallery folders. Only these pictures are sent; others are only extracted.
    bool isOfGallery() const;
    /// The name under which it is sent: "LOGO_7", "BKG_300".
    QString name() const;
    /// The first of the device's pictures of that kind and number; null if there is none, or outside the gallery.
    std::shared_ptr<Model::Materail> materail() const { return m_pMaterail; }

    /// Extracts it to `folder` under the entry's name, where other software expects it, and returns the path. Empty,
    /// after logging it, if that fails.
    QString extract(PackageReader &package, const QString &folder, QString *reason = nullptr) const;

    /// Reads the content from the package, and checks its header. Above 32 MiB it goes to a nameless file in `folder`,
    /// or to memory if there is no room and it is within PackageLimits::maxPictureFileSize. LoadDecompressFailed if it
    /// cannot be read to its end with the right CRC; LoadImageContentError if its width or height is below 1;
    /// LoadGalleryFileError if it is in the gallery and has no material there, or one of another size. Otherwise
    /// LoadSuccess, with content() at its beginning.
    LoadResultCode open(PackageReader &package, const QString &folder, QString *reason = nullptr);
    std::shared_ptr<QIODevice> content() const { return m_pContent; }
    QSize size() const { return m_size; }

private:
    bool takeContent(PackageReader &package, const QString &folder, QString *reason);

    QString m_strEntry;
    /// The entry's normalised path, which determines the kind.
    QString m_strPath;
    std::shared_ptr<Model::Materail> m_pMaterail;
    std::shared_ptr<QIODevice> m_pContent;
    QSize m_size;
};

} // namespace Internal
} // namespace ProjectFileCfg
