#pragma once

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
    /// No larger file is read.
    static constexpr qint64 maxFileSize = 256 * 1024 * 1024;
    /// No picture of more pixels is read; of those with more than 8 bits per channel, none of fewer either.
    static constexpr qint64 maxPixels = 192 * 1024 * 1024 / 4;

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
    QImageReader m_reader;
    bool m_isReadable;
};

} // namespace Internal
} // namespace ProjectFileCfg
