// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "undorecord.h"

#include "filesystem.h"
#include "replacingfile.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// "UNDO", and the version of the format.
constexpr quint32 magic = 0x554E444F;
constexpr quint32 version = 1;
constexpr int digestSize = 32;
/// In bytes: two tails with the longest comment, and room for the other fields.
constexpr qint64 maxRecordSize = 256 * 1024;
/// Number of bytes before the offset that identify a file. In a package they are the end of the central directory, with
/// sizes and CRCs of entries.
constexpr qint64 markedSize = 4096;

QByteArray digestOf(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

} // namespace

QString UndoRecord::pathFor(const QString &filePath)
{
    const QFileInfo file(filePath);
    const QUuid space(QStringLiteral("{5b1f2f0c-6d0e-4d57-9c8b-0d5a6f3e2b41}"));
    const QString id = QUuid::createUuidV5(space, file.fileName()).toString();
    return file.absolutePath() + QStringLiteral("/.") + id.mid(1, id.size() - 2) + QStringLiteral(".undo");
}

bool UndoRecord::isUndoRecord(const QString &fileName)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\A\\.[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\.undo\\z"));
    return pattern.match(fileName).hasMatch();
}

bool UndoRecord::isStale(const QString &recordPath)
{
    return ReplacingFile::isStale(QFileInfo(recordPath));
}

UndoRecord::Reading UndoRecord::read(const QString &recordPath)
{
    QFile file(recordPath);
    if (!QFileInfo(recordPath).isFile() || !file.open(QIODevice::ReadOnly))
        return Reading::Unreadable;
    const QByteArray bytes = file.read(maxRecordSize);
    if (file.error() != QFileDevice::NoError)
        return Reading::Unreadable;
    const QByteArray content = bytes.mid(digestSize);
    QDataStream stream(content);
    stream.setVersion(QDataStream::Qt_5_9);
    quint32 foundMagic = 0;
    quint32 foundVersion = 0;
    stream >> foundMagic >> foundVersion >> strFileName >> nOffset >> mark >> before >> after >> nModified;
    const bool isWhole = bytes.left(digestSize) == digestOf(content) && stream.status() == QDataStream::Ok &&
                         foundMagic == magic && foundVersion == version;
    // A record must not lead out of its folder.
    return isWhole && QFileInfo(strFileName).fileName() == strFileName && nOffset >= 0 ? Reading::Whole
                                                                                       : Reading::Broken;
}

bool UndoRecord::write(const QString &recordPath) const
{
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_9);
    stream << magic << version << strFileName << nOffset << mark << before << after << nModified;
    const QByteArray bytes = digestOf(content) + content;
    // Not a ReplacingFile: flushing the rename would double the cost, and an incomplete record does no harm.
    const FileSystem::Folder folder(QFileInfo(recordPath).absolutePath());
    QFile record(recordPath);
    return folder.isOpen() && record.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered) &&
           record.write(bytes) == bytes.size() && FileSystem::flush(record.handle()) && folder.flush();
}

QByteArray UndoRecord::markOf(QFile &file, qint64 offset)
{
    const qint64 size = std::min(offset, markedSize);
    const QByteArray bytes = file.seek(offset - size) ? file.read(size) : QByteArray();
    return bytes.size() == size ? digestOf(bytes) : QByteArray();
}

bool UndoRecord::fits(QFile &file) const
{
    return file.size() >= nOffset && !mark.isEmpty() && markOf(file, nOffset) == mark;
}

bool UndoRecord::isTorn(const QByteArray &tail) const
{
    if (tail == before || tail == after || tail.size() < std::min(before.size(), after.size()) ||
        tail.size() > std::max(before.size(), after.size()))
        return false;
    for (int i = 0; i < tail.size(); ++i) {
        const char byte = tail.at(i);
        const bool isOld = i < before.size() && byte == before.at(i);
        const bool isNew = i < after.size() && byte == after.at(i);
        if (!isOld && !isNew && byte != '\0')
            return false;
    }
    return true;
}

} // namespace Internal
} // namespace ProjectFileCfg
