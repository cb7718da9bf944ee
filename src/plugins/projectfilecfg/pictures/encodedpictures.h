#pragma once

#include <QByteArray>
#include <QCache>
#include <QMutex>

#include <functional>

class QImage;

namespace ProjectFileCfg {
namespace Internal {

/// Remembers how pictures were encoded, so that a picture that did not change since the last save is not
/// encoded again. Any thread.
///
/// A picture is known by a digest (HMAC with SHA-1 and a secret that no other object has) of everything that decides
/// on its file: format, size, every row of pixels, and what the encoder writes besides the pixels. The bytes are those
/// that a fresh encoding would give.
class EncodedPictures
{
public:
    enum { DefaultCapacity = 256 * 1024 * 1024 };

    /// Gives a picture's bytes, empty when it cannot be encoded. Any thread.
    using Encoder = std::function<QByteArray(const QImage &picture)>;
    /// A PNG file of default quality, as QImage::save writes it.
    static QByteArray encodePng(const QImage &picture);

    /// `capacity` in bytes of encoded pictures. Beyond it those go that were not asked for the longest.
    explicit EncodedPictures(int capacity = DefaultCapacity, const Encoder &encoder = &encodePng);
    ~EncodedPictures();

    /// What the encoder makes of the picture.
    QByteArray png(const QImage &picture);

    /// How many pictures were encoded so far, and not remembered.
    int encodedCount() const;

private:
    Q_DISABLE_COPY(EncodedPictures)

    const Encoder m_encoder;
    const QByteArray m_secret;
    mutable QMutex m_mutex;
    QCache<QByteArray, QByteArray> m_pictures;
    int m_nEncoded = 0;
};

} // namespace Internal
} // namespace ProjectFileCfg
