// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "picturedecoder.h"

#include "picturereader.h"
#include "reason.h"

#include <QIODevice>
#include <QtConcurrentRun>

namespace ProjectFileCfg {
namespace Internal {

PictureDecoder::Decoded PictureDecoder::decode(const std::shared_ptr<QIODevice> &content, const QSize &size)
{
    PictureReader reader(content.get());
    if (reader.size() != size)
        return {QImage(), QStringLiteral("its size is not the expected one")};
    Decoded decoded;
    decoded.picture = reader.read(&decoded.strReason);
    return decoded;
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
    m_pictures.insert(name, QtConcurrent::run(&m_pool, &PictureDecoder::decode, content, size));
}

QImage PictureDecoder::take(const QString &name, QString *reason)
{
    const auto picture = m_pictures.find(name);
    if (picture == m_pictures.end())
        return QImage();
    const Decoded decoded = picture->result();
    m_pictures.erase(picture);
    if (decoded.picture.isNull())
        failBecause(reason, QStringLiteral("cannot decode %1: %2").arg(name, decoded.strReason));
    return decoded.picture;
}

} // namespace Internal
} // namespace ProjectFileCfg
