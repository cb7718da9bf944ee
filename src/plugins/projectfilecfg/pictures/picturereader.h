// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "contentscan.h"

#include <QImageReader>
#include <QSize>
#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// Reads a picture from a package. Such a file may come from anywhere: reading it takes bounded memory, whatever it
/// contains.
class PictureReader
{
public:
    explicit PictureReader(const QString &path);
    /// Reads from a seekable device that is at the beginning of the picture.
    explicit PictureReader(QIODevice *device);

    /// Width and height as the file states them. Invalid if the file is missing, is not a PNG, whatever its name, or is
    /// beyond PackageLimits: its size, width, height, or texts and profiles. `reason` is set then (see reason.h), and
    /// names no path.
    QSize size(QString *reason = nullptr) const;

    /// Has read() reduce a larger picture to these bounds, in its proportions, while it decodes: of most PNG files only
    /// the reduced picture is ever in memory.
    void fitInto(const QSize &bounds);

    /// The picture as QImage::Format_ARGB32. Null if it cannot be read completely, or if that would take more memory
    /// than PackageLimits::maxPictureMemory.
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
