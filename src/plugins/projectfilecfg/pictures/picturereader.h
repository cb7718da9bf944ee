// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "contentscan.h"

#include <QImageReader>
#include <QSize>
#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// Reads a picture from a package. Such a file may come from anywhere, so reading it takes bounded memory, whatever it
/// contains.
class PictureReader
{
public:
    explicit PictureReader(const QString &path);
    /// Reads from a seekable device that is at the beginning of the picture.
    explicit PictureReader(QIODevice *device);

    /// Width and height as stated in the file. Invalid, with `reason` set to a text without the path (see reason.h), if
    /// the file is missing, is not a PNG, whatever its name, or exceeds PackageLimits: its size, width, height, or
    /// texts and profiles.
    QSize size(QString *reason = nullptr) const;

    /// Makes read() reduce a larger picture to these bounds, in its proportions, while it decodes: of most PNG files
    /// only the reduced picture is ever in memory.
    void fitInto(const QSize &bounds);

    /// The picture as QImage::Format_ARGB32. Null if it cannot be read completely, or would take more memory than
    /// PackageLimits::maxPictureMemory.
    QImage read(QString *reason = nullptr);

private:
    /// An empty scan if the file cannot be read or is too large.
    static PictureScan scanOf(const QString &path);
    static PictureScan scanOf(QIODevice &file);

    QImageReader m_reader;
    PictureScan m_scan;
};

} // namespace Internal
} // namespace ProjectFileCfg
