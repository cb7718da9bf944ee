// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

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

/// Writes pictures as PNG files on its own threads, one per core, while its owner fetches the next ones. Use it only on
/// the thread that created it.
class PictureWriter
{
public:
    /// Bytes of pixels that may be pending, whatever the number of pictures: enough for two 8K pictures.
    static constexpr qint64 defaultBudget = 256LL * 1024 * 1024;

    /// `encoded` encodes the pictures, or returns them from its cache. `budget` is in bytes of pixels.
    explicit PictureWriter(const std::shared_ptr<EncodedPictures> &encoded, qint64 budget = defaultBudget,
                           int threads = QThread::idealThreadCount());
    /// Waits for the pictures that are being written, and drops those that have not started.
    ~PictureWriter();

    /// Queues the picture to be written to `path`. Blocks while threads + 1 pictures are pending or the budget would be
    /// exceeded. So, including the one that the owner is fetching, at most threads + 2 pictures are in memory, and
    /// without that one at most `budget` bytes; a picture that is larger than the budget is written alone. If two
    /// pictures have the same path, the later one remains. A picture that cannot be encoded, or whose file cannot be
    /// opened, is logged and left out. An exception from the encoder is rethrown here or in waitForDone().
    void write(QImage picture, const QString &path);

    /// True if pictures are pending.
    bool hasPictures() const { return !m_listPending.isEmpty(); }

    /// Waits until everything is written. False if a picture's file is incomplete: the staged files must not be packed
    /// then.
    bool waitForDone(QString *reason = nullptr);

    /// After waitForDone(): the paths of the pictures that were written, with the sizes of their files in bytes.
    const QHash<QString, qint64> &written() const { return m_written; }

private:
    Q_DISABLE_COPY(PictureWriter)

    static constexpr int leftOut = -1;
    static constexpr int cut = -2;
    struct File
    {
        /// In bytes, or leftOut, or cut.
        qint64 nSize;
        QString strReason;
    };
    struct Pending
    {
        QString strPath;
        qint64 nPixelBytes;
        QFuture<File> end;
    };

    static File writeFile(const QString &path, const QByteArray &bytes);
    bool hasRoomFor(qint64 pixelBytes) const;
    void take(int index);

    const std::shared_ptr<EncodedPictures> m_pEncoded;
    const qint64 m_nBudget;
    qint64 m_nPixelBytes = 0;
    /// The reason of the first incomplete file; empty if there is none.
    QString m_strCutReason;
    QHash<QString, qint64> m_written;
    QThreadPool m_pool;
    QList<Pending> m_listPending;
};

} // namespace Internal
} // namespace ProjectFileCfg
