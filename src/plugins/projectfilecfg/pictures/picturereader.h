#pragma once

#include "contentscan.h"

#include <QImageReader>
#include <QSize>
#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// Reads a picture that a package brought. Such a file may come from anywhere: whatever it holds, reading it
/// takes bounded memory.
class PictureReader
{
public:
    explicit PictureReader(const QString &path);
    /// Reads from a device that stands at the beginning of the picture and can seek.
    explicit PictureReader(QIODevice *device);

    /// Width and height as the file states them. Invalid when it is missing or no PNG, whatever it is called,
    /// or when the texts and profiles in it are more than a picture needs.
    QSize size() const;

    /// The whole picture as QImage::Format_ARGB32. Null when it cannot be read whole, or when that would take
    /// more than 192 MiB: 50 million pixels of 8 bits per channel.
    QImage read();

private:
    /// An empty one for what is no file to read, or too large a one.
    static PictureScan scanOf(const QString &path);
    static PictureScan scanOf(QIODevice &file);

    QImageReader m_reader;
    PictureScan m_scan;
};

} // namespace Internal
} // namespace ProjectFileCfg
