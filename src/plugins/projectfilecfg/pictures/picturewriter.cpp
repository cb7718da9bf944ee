// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "picturewriter.h"

#include "encodedpictures.h"
#include "reason.h"
#include "writewhole.h"

#include <QDebug>
#include <QFile>
#include <QtConcurrentRun>

#include <utility>

namespace ProjectFileCfg {
namespace Internal {

PictureWriter::File PictureWriter::writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (bytes.isEmpty() || !file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qDebug() << "Save picture failed:" << path
                 << (bytes.isEmpty() ? QStringLiteral("it is empty or cannot be encoded") : file.errorString());
        return {leftOut, QString()};
    }
    QString reason;
    return writeWhole(file, bytes, &reason) ? File{bytes.size(), QString()} : File{cut, reason};
}

PictureWriter::PictureWriter(const std::shared_ptr<EncodedPictures> &encoded, qint64 budget, int threads)
    : m_pEncoded(encoded)
    , m_nBudget(budget)
{
    m_pool.setMaxThreadCount(threads);
}

PictureWriter::~PictureWriter()
{
    m_pool.clear();
    m_pool.waitForDone();
}

bool PictureWriter::hasRoomFor(qint64 pixelBytes) const
{
    return m_listPending.isEmpty() ||
           (m_listPending.size() <= m_pool.maxThreadCount() && m_nPixelBytes + pixelBytes <= m_nBudget);
}

/// Waits until a pending picture is written, and removes it from the list.
void PictureWriter::take(int index)
{
    const Pending pending = m_listPending.takeAt(index);
    m_nPixelBytes -= pending.nPixelBytes;
    const File file = pending.end.result();
    if (m_strCutReason.isEmpty())
        m_strCutReason = file.strReason;
    if (file.nSize >= 0)
        m_written.insert(pending.strPath, file.nSize);
}

void PictureWriter::write(QImage picture, const QString &path)
{
    for (int index = m_listPending.size() - 1; index >= 0; --index) {
        if (m_listPending.at(index).end.isFinished() || m_listPending.at(index).strPath == path)
            take(index);
    }
    const qint64 pixelBytes = qint64(picture.bytesPerLine()) * picture.height();
    while (!hasRoomFor(pixelBytes))
        take(0);
    const auto task = [this, picture = std::move(picture), path]() mutable {
        // Released here: the pool destroys the task, and the pixels in it, only after the future has finished.
        const QImage held = std::exchange(picture, QImage());
        return writeFile(path, m_pEncoded->png(held));
    };
    m_nPixelBytes += pixelBytes;
    m_listPending.append({path, pixelBytes, QtConcurrent::run(&m_pool, task)});
}

bool PictureWriter::waitForDone(QString *reason)
{
    while (!m_listPending.isEmpty())
        take(0);
    return m_strCutReason.isEmpty() || failBecause(reason, m_strCutReason);
}

} // namespace Internal
} // namespace ProjectFileCfg
