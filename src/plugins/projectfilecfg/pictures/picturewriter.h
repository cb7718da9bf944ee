#pragma once

#include <QFuture>
#include <QImage>
#include <QList>
#include <QString>
#include <QThreadPool>

#include <atomic>
#include <memory>

namespace ProjectFileCfg {
namespace Internal {

class EncodedPictures;

/// Writes pictures as PNG files on threads of its own, one per core, while its owner fetches the next ones.
/// All operations on the thread that made it.
class PictureWriter
{
public:
    /// `encoded` is asked before a picture is encoded, and told afterwards.
    explicit PictureWriter(const std::shared_ptr<EncodedPictures> &encoded);
    /// Waits for the pictures that are being written; those whose turn has not come are not written any more.
    ~PictureWriter();

    /// Has the picture written to `path`. Returns at once, unless as many pictures are under way as there are
    /// cores and one more: then when there is room again. With the one that its owner fetches, there are never
    /// more than cores + 2 in memory. Of two pictures for one path the later one stays. A picture that
    /// cannot be encoded, or whose file cannot be opened, is logged and left out.
    void write(QImage picture, const QString &path);

    /// Returns when everything is written: false when a picture was begun and is cut, so that what is staged must
    /// not be packed.
    bool waitForDone();

private:
    Q_DISABLE_COPY(PictureWriter)

    struct Pending
    {
        QString path;
        QFuture<void> end;
    };

    void makeRoomFor(const QString &path);

    const std::shared_ptr<EncodedPictures> m_pEncoded;
    std::atomic<bool> m_bCut{false};
    QThreadPool m_pool;
    QList<Pending> m_listPending;
};

} // namespace Internal
} // namespace ProjectFileCfg
