// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QFuture>
#include <QHash>
#include <QImage>
#include <QString>
#include <QThreadPool>

#include <memory>

class QIODevice;

namespace ProjectFileCfg {
namespace Internal {

/// Decodes pictures on its own threads. Use it only on the thread that created it.
class PictureDecoder
{
public:
    /// Decodes at most `threads` pictures at once.
    explicit PictureDecoder(int threads);
    /// Waits for the pictures that are being decoded.
    ~PictureDecoder();

    /// Starts decoding the PNG file in `content`; take() returns the picture by `name`. A file whose header states
    /// another size is not decoded. From now on, only the decoder may use `content`.
    void begin(const QString &name, const std::shared_ptr<QIODevice> &content, const QSize &size);
    /// Waits for the picture, returns it and forgets it. Null if begin() was not called for it, or if it could not be
    /// decoded, which sets `reason` (see reason.h).
    QImage take(const QString &name, QString *reason = nullptr);

private:
    Q_DISABLE_COPY(PictureDecoder)

    struct Decoded
    {
        QImage picture;
        QString strReason;
    };

    static Decoded decode(const std::shared_ptr<QIODevice> &content, const QSize &size);

    QThreadPool m_pool;
    QHash<QString, QFuture<Decoded>> m_pictures;
};

} // namespace Internal
} // namespace ProjectFileCfg
