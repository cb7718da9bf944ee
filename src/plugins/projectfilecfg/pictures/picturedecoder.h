#pragma once

#include <QByteArray>
#include <QFuture>
#include <QHash>
#include <QImage>
#include <QString>
#include <QThreadPool>

namespace ProjectFileCfg {
namespace Internal {

/// Decodes pictures ahead of their turn on a thread of its own. Only a help: a picture that was not begun, or that
/// could not be decoded, is an empty one, and whoever needs it decodes it when its turn has come.
/// All operations on the thread that made it.
class PictureDecoder
{
public:
    PictureDecoder();
    /// Waits for a picture that is being decoded.
    ~PictureDecoder();

    /// Begins with the PNG file `bytes`, to be taken under that name. One that tells another size is not decoded.
    void begin(const QString &name, const QByteArray &bytes, const QSize &size);
    /// Waits for the picture, if it was begun, and forgets it.
    QImage take(const QString &name);

private:
    Q_DISABLE_COPY(PictureDecoder)

    QThreadPool m_pool;
    QHash<QString, QFuture<QImage>> m_pictures;
};

} // namespace Internal
} // namespace ProjectFileCfg
