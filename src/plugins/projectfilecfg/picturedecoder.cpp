#include "picturedecoder.h"

#include <QBuffer>
#include <QImageReader>
#include <QtConcurrentRun>

namespace ProjectFileCfg {
namespace Internal {

static QImage decode(QByteArray bytes, const QSize &size)
{
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, "png");
    return reader.size() == size ? PictureDecoder::read(reader) : QImage();
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

QImage PictureDecoder::read(QImageReader &reader)
{
    QImage image(reader.size(), QImage::Format_ARGB32);
    if (!reader.read(&image))
        return QImage();
    return image.convertToFormat(QImage::Format_ARGB32);
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
