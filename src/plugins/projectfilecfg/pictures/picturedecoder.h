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

/// Decodes pictures on threads of its own. A picture that was not begun, or that could not be decoded, is an empty one.
/// All operations on the thread that made it.
class PictureDecoder
{
public:
    /// So many pictures are decoded at once.
    explicit PictureDecoder(int threads);
    /// Waits for the pictures that are being decoded.
    ~PictureDecoder();

    /// Begins with the PNG file that `content` holds, to be taken under that name. One that tells another size is not
    /// decoded. Nobody else uses `content` from then on.
    void begin(const QString &name, const std::shared_ptr<QIODevice> &content, const QSize &size);
    /// Waits for the picture, if it was begun, and forgets it.
    QImage take(const QString &name);

private:
    Q_DISABLE_COPY(PictureDecoder)

    QThreadPool m_pool;
    QHash<QString, QFuture<QImage>> m_pictures;
};

} // namespace Internal
} // namespace ProjectFileCfg
