// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "archivecomment.h"

#include "packagelimits.h"
#include "zipformat.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

using namespace ZipFormat;

namespace {

/// Offsets of the end record's fields.
constexpr int disksPosition = 4;
constexpr int entriesPosition = 10;
constexpr int directoryPosition = 12;
constexpr int lengthPosition = 20;

QByteArray endMark()
{
    return QByteArrayLiteral("PK\x05\x06");
}

QByteArray locatorMark()
{
    return QByteArrayLiteral("PK\x06\x07");
}

quint16 lengthIn(const QByteArray &endRecord)
{
    return qFromLittleEndian<quint16>(endRecord.constData() + lengthPosition);
}

bool isClassic(const QByteArray &endRecord)
{
    // One disk, and no field whose bits are all ones: that marks a value in the zip64 extension.
    return endRecord.mid(disksPosition, 4) == QByteArray(4, '\0') &&
           endRecord.mid(entriesPosition, 2) != QByteArray(2, '\xFF') &&
           !endRecord.mid(directoryPosition, 8).contains(QByteArray(4, '\xFF'));
}

} // namespace

ArchiveComment::ArchiveComment(QFile &file)
{
    const qint64 size = std::min<qint64>(file.size(), locatorSize + endRecordSize + maxTextSize);
    if (!file.seek(file.size() - size))
        return;
    const QByteArray end = file.read(size);
    const int record = end.lastIndexOf(endMark());
    if (end.size() != size || !isConsistent(end) || end.mid(record - locatorSize).startsWith(locatorMark()))
        return;
    m_endRecord = end.mid(record, endRecordSize);
    m_comment = end.mid(record + endRecordSize);
    if (isClassic(m_endRecord) && m_comment.size() <= PackageLimits::maxArchiveCommentSize)
        m_nOffset = file.size() - m_comment.size() - lengthSize;
}

QByteArray ArchiveComment::endRecordWith(const QByteArray &comment) const
{
    return m_endRecord.left(lengthPosition) + tailWith(comment).left(lengthSize);
}

QByteArray ArchiveComment::tailWith(const QByteArray &comment)
{
    QByteArray length(lengthSize, '\0');
    qToLittleEndian<quint16>(quint16(comment.size()), length.data());
    return length + comment;
}

bool ArchiveComment::isReadable(const QByteArray &comment)
{
    return comment.size() <= PackageLimits::maxArchiveCommentSize && !comment.contains('\0') &&
           !comment.contains(endMark()) && !comment.contains(locatorMark());
}

bool ArchiveComment::isConsistent(const QByteArray &end)
{
    const int record = end.lastIndexOf(endMark());
    const int comment = record + endRecordSize;
    return record >= 0 && comment <= end.size() && end.size() - comment == lengthIn(end.mid(record, endRecordSize));
}

} // namespace Internal
} // namespace ProjectFileCfg
