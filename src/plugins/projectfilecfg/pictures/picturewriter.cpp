#include "picturewriter.h"

#include "encodedpictures.h"
#include "stagedfile.h"

#include <QDebug>
#include <QFile>
#include <QtConcurrentRun>

#include <algorithm>
#include <utility>

namespace ProjectFileCfg {
namespace Internal {

/// False only for a picture that was begun and is cut.
static bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (bytes.isEmpty() || !file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qDebug() << "Save picture failed:" << path;
        return true;
    }
    return writeWhole(file, bytes);
}

PictureWriter::PictureWriter(const std::shared_ptr<EncodedPictures> &encoded)
    : m_pEncoded(encoded)
{}

PictureWriter::~PictureWriter()
{
    m_pool.clear();
    m_pool.waitForDone();
}

void PictureWriter::makeRoomFor(const QString &path)
{
    const auto isFinished = [](const Pending &pending) { return pending.end.isFinished(); };
    const auto hasPath = [&path](const Pending &pending) { return pending.path == path; };
    const auto forget = [this](const auto &condition) {
        m_listPending.erase(std::remove_if(m_listPending.begin(), m_listPending.end(), condition), m_listPending.end());
    };
    forget(isFinished);
    const auto same = std::find_if(m_listPending.begin(), m_listPending.end(), hasPath);
    if (same != m_listPending.end())
        same->end.waitForFinished();
    if (m_listPending.size() > m_pool.maxThreadCount())
        m_listPending.first().end.waitForFinished();
    forget(isFinished);
}

void PictureWriter::write(QImage picture, const QString &path)
{
    makeRoomFor(path);
    const auto task = [this, picture = std::move(picture), path]() mutable {
        // Let go of here: the pool destroys the task only after it has told that it is done.
        const QImage held = std::exchange(picture, QImage());
        if (!writeFile(path, m_pEncoded->png(held)))
            m_bCut = true;
    };
    m_listPending.append({path, QtConcurrent::run(&m_pool, task)});
}

bool PictureWriter::waitForDone()
{
    for (Pending &pending : m_listPending)
        pending.end.waitForFinished();
    m_listPending.clear();
    return !m_bCut;
}

} // namespace Internal
} // namespace ProjectFileCfg
