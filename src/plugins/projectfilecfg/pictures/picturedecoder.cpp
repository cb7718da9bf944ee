#include "picturedecoder.h"

#include "picturereader.h"

#include <QBuffer>
#include <QtConcurrentRun>

namespace ProjectFileCfg {
namespace Internal {

static QImage decode(QByteArray bytes, const QSize &size)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    PictureReader reader(&buffer);
    return reader.size() == size ? reader.read() : QImage();
}

PictureDecoder::PictureDecoder()
{
    m_pool.setMaxThreadCount(1);
}

PictureDecoder::~PictureDecoder()
{
    m_pool.clear();
    m_pool.waitForDone();
}

void PictureDecoder::begin(const QString &name, const QByteArray &bytes, const QSize &size)
{
    m_pictures.insert(name, QtConcurrent::run(&m_pool, decode, bytes, size));
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
