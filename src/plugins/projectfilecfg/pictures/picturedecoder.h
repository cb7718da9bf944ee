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

/// Decodes pictures on threads of its own. Use it only on the thread that created it.
class PictureDecoder
{
public:
    /// `threads`: how many pictures are decoded at once.
    explicit PictureDecoder(int threads);
    /// Waits for the pictures that are being decoded.
    ~PictureDecoder();

    /// Starts decoding the PNG file in `content`; take() returns it by `name`. A file that states another size is not
    /// decoded. The decoder alone uses `content` from now on.
    void begin(const QString &name, const std::shared_ptr<QIODevice> &content, const QSize &size);
    /// Waits for the picture and removes it. Null if it was not started or could not be decoded; `reason` (see
    /// reason.h) is set in the latter case.
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
