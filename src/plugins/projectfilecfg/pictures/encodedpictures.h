// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QCache>
#include <QMutex>

#include <functional>

class QImage;

namespace ProjectFileCfg {
namespace Internal {

/// A cache of encoded pictures, so that a picture that has not changed since an earlier save is not encoded again.
/// Thread-safe.
///
/// The key is a digest (HMAC with SHA-1 and a secret of this object) of everything that determines the file: format,
/// size, every row of pixels, and everything else that the encoder writes. A cached file has the same bytes as a new
/// encoding.
class EncodedPictures
{
public:
    static constexpr int defaultCapacity = 256 * 1024 * 1024;

    /// Returns the encoded file, or an empty array if the picture cannot be encoded. Called on any thread.
    using Encoder = std::function<QByteArray(const QImage &picture)>;
    /// A PNG file of default quality, as QImage::save writes it.
    static QByteArray encodePng(const QImage &picture);

    /// `capacity` is in bytes of encoded pictures. When it is exceeded, the least recently used ones are dropped.
    explicit EncodedPictures(int capacity = defaultCapacity, const Encoder &encoder = &encodePng);
    ~EncodedPictures();

    /// The picture's file, from the cache or from the encoder.
    QByteArray png(const QImage &picture);

    /// How many pictures were encoded because they were not in the cache.
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
