// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagechecksum.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {
namespace PackageChecksum {

namespace {

constexpr qint64 firstStep = 4 * 1024;
constexpr qint64 largestStep = 1024 * 1024;

/// The digest of the next `length` bytes of the file, up to the first zero byte; empty if they cannot be read.
QByteArray chunkDigest(QFile &file, qint64 length, QByteArray &buffer)
{
    QCryptographicHash digest(QCryptographicHash::Md5);
    qint64 step = firstStep;
    while (length > 0) {
        const qint64 count = file.read(buffer.data(), std::min(step, length));
        if (count <= 0)
            return QByteArray();
        const char *end = buffer.constData() + count;
        const char *zero = std::find(buffer.constData(), end, '\0');
        digest.addData(buffer.constData(), int(zero - buffer.constData()));
        if (zero != end)
            break;
        length -= count;
        step = std::min(step * 4, largestStep);
    }
    return digest.result().toHex();
}

} // namespace

QString ofLeadingBytes(QFile &file, qint64 length, const QByteArray &end, bool *isComplete)
{
    bool isRead = true;
    const qint64 endStart = length - end.size();
    QByteArray buffer(int(std::min(length, largestStep)), Qt::Uninitialized);
    QCryptographicHash digest(QCryptographicHash::Md5);
    for (qint64 start = 0; start < length; start += chunkSize) {
        // Only a chunk that begins inside `end` needs it: in any other chunk there is a zero byte before the bytes that
        // differ.
        QByteArray digits;
        if (start >= endStart) {
            const QByteArray chunk = end.mid(int(start - endStart));
            digits = QCryptographicHash::hash(chunk.left(int(qstrnlen(chunk.constData(), uint(chunk.size())))),
                                              QCryptographicHash::Md5)
                         .toHex();
        } else if (file.seek(start)) {
            digits = chunkDigest(file, std::min(chunkSize, length - start), buffer);
        }
        if (digits.isEmpty()) {
            isRead = false;
            break;
        }
        digest.addData(digits);
    }
    if (isComplete)
        *isComplete = isRead;
    return QString::fromLatin1(digest.result().toHex());
}

} // namespace PackageChecksum
} // namespace Internal
} // namespace ProjectFileCfg
