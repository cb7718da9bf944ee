#pragma once

#include <QFuture>
#include <QHash>
#include <QImage>
#include <QList>
#include <QString>
#include <QThread>
#include <QThreadPool>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

class EncodedPictures;

/// Writes pictures as PNG files on threads of its own, one per core, while its owner fetches the next ones.
/// All operations on the thread that made it.
class PictureWriter
{
public:
    /// How much of pictures may be under way, whatever their number: two of 8K.
    static constexpr qint64 defaultBudget = 256LL * 1024 * 1024;

    /// `encoded` is asked before a picture is encoded, and told afterwards. `budget` in bytes of pixels.
    explicit PictureWriter(const std::shared_ptr<EncodedPictures> &encoded, qint64 budget = defaultBudget,
                           int threads = QThread::idealThreadCount());
    /// Waits for the pictures that are being written; those whose turn has not come are not written any more.
    ~PictureWriter();

    /// Has the picture written to `path`. Returns at once, unless as many pictures are under way as there are threads
    /// and one more, or the budget would be passed: then when there is room again. With the one that its owner
    /// fetches, there are never more than threads + 2 in memory, and beyond that one never more bytes than the budget;
    /// a picture that is larger alone goes alone. Of two pictures for one path the later one stays. A picture that
    /// cannot be encoded, or whose file cannot be opened, is logged and left out. What an encoder throws comes out of
    /// this or of waitForDone().
    void write(QImage picture, const QString &path);

    /// Whether pictures were handed over since the last waitForDone().
    bool hasPictures() const { return !m_listPending.isEmpty(); }

    /// Returns when everything is written: false when a picture was begun and is cut, so that what is staged must
    /// not be packed.
    bool waitForDone();

    /// After waitForDone(): the paths of the pictures that were written, with the sizes of their files in bytes.
    const QHash<QString, qint64> &written() const { return m_written; }

private:
    Q_DISABLE_COPY(PictureWriter)

    struct Pending
    {
        QString path;
        qint64 pixelBytes;
        /// The file's size, or one of the next two.
        QFuture<qint64> end;
    };
    enum { LeftOut = -1, Cut = -2 };

    static qint64 writeFile(const QString &path, const QByteArray &bytes);
    bool hasRoomFor(qint64 pixelBytes) const;
    void take(int index);

    const std::shared_ptr<EncodedPictures> m_pEncoded;
    const qint64 m_nBudget;
    qint64 m_nPixelBytes = 0;
    bool m_bCut = false;
    QHash<QString, qint64> m_written;
    QThreadPool m_pool;
    QList<Pending> m_listPending;
};

} // namespace Internal
} // namespace ProjectFileCfg
