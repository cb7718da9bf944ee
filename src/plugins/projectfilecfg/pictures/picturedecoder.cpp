#include "picturedecoder.h"

#include "picturereader.h"

#include <QIODevice>
#include <QtConcurrentRun>

namespace ProjectFileCfg {
namespace Internal {

static QImage decode(const std::shared_ptr<QIODevice> &content, const QSize &size)
{
    PictureReader reader(content.get());
    return reader.size() == size ? reader.read() : QImage();
}

PictureDecoder::PictureDecoder(int threads)
{
    m_pool.setMaxThreadCount(threads);
}

PictureDecoder::~PictureDecoder()
{
    m_pool.clear();
    m_pool.waitForDone();
}

void PictureDecoder::begin(const QString &name, const std::shared_ptr<QIODevice> &content, const QSize &size)
{
    m_pictures.insert(name, QtConcurrent::run(&m_pool, decode, content, size));
}

QImage PictureDecoder::take(const QString &name)
{
    const auto picture = m_pictures.find(name);
    if (picture == m_pictures.end())
        return QImage();
    const QImage image = picture->result();
    m_pictures.erase(picture);
    return image;
}

} // namespace Internal
} // namespace ProjectFileCfg
