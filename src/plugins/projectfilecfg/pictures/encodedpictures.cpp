// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "encodedpictures.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDataStream>
#include <QImage>
#include <QMessageAuthenticationCode>
#include <QMutexLocker>
#include <QUuid>

namespace ProjectFileCfg {
namespace Internal {

QByteArray EncodedPictures::encodePng(const QImage &picture)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return picture.save(&buffer, "PNG") ? bytes : QByteArray();
}

namespace {

QByteArray digestOf(const QImage &picture, const QByteArray &secret)
{
    // The file of one pixel contains everything that the encoder adds: resolution, texts, colour table, colour space.
    // Only the offset is missing, since QImage::copy() drops it.
    const QByteArray additions = EncodedPictures::encodePng(picture.copy(0, 0, 1, 1));
    QByteArray facts;
    QDataStream(&facts, QIODevice::WriteOnly)
        << int(picture.format()) << picture.size() << picture.offset() << additions;

    QMessageAuthenticationCode digest(QCryptographicHash::Sha1, secret);
    digest.addData(facts);
    for (int row = 0; row < picture.height(); ++row)
        digest.addData(reinterpret_cast<const char *>(picture.constScanLine(row)), picture.bytesPerLine());
    return digest.result();
}

} // namespace

EncodedPictures::EncodedPictures(int capacity, const Encoder &encoder)
    : m_encoder(encoder)
    , m_secret(QUuid::createUuid().toRfc4122())
    , m_pictures(capacity)
{}

EncodedPictures::~EncodedPictures() = default;

QByteArray EncodedPictures::png(const QImage &picture)
{
    if (picture.isNull())
        return QByteArray();
    const QByteArray digest = digestOf(picture, m_secret);
    {
        const QMutexLocker locker(&m_mutex);
        if (const QByteArray *known = m_pictures.object(digest))
            return *known;
    }
    // Without the lock: encoding is slow, and several threads do it at once.
    QByteArray bytes = m_encoder(picture);
    const QMutexLocker locker(&m_mutex);
    ++m_nEncoded;
    if (!bytes.isEmpty())
        m_pictures.insert(digest, new QByteArray(bytes), bytes.size());
    return bytes;
}

int EncodedPictures::encodedCount() const
{
    const QMutexLocker locker(&m_mutex);
    return m_nEncoded;
}

} // namespace Internal
} // namespace ProjectFileCfg
