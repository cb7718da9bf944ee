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
    /// Waits for the picture and removes it. Null if it was not started or could not be decoded.
    QImage take(const QString &name);

private:
    Q_DISABLE_COPY(PictureDecoder)

    QThreadPool m_pool;
    QHash<QString, QFuture<QImage>> m_pictures;
};

} // namespace Internal
} // namespace ProjectFileCfg
