// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagebuilder.h"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>

#include <zlib.h>

namespace TestSupport {

namespace {

void append16(QByteArray &bytes, quint16 value)
{
    const quint16 little = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char *>(&little), sizeof little);
}

void append32(QByteArray &bytes, quint32 value)
{
    const quint32 little = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char *>(&little), sizeof little);
}

QByteArray rawDeflate(const QByteArray &bytes)
{
    // qCompress puts four bytes of length and two of header before the raw deflate stream, and four of checksum after
    // it.
    const QByteArray wrapped = qCompress(bytes);
    return wrapped.mid(6, wrapped.size() - 10);
}

constexpr quint16 utf8NamesFlag = 1 << 11;
// 2020-01-02 01:30, so that archives are the same on every run.
const quint16 dosTime = (13 << 11) | (30 << 5);
const quint16 dosDate = ((2020 - 1980) << 9) | (1 << 5) | 2;

} // namespace

PackageBuilder &PackageBuilder::file(const QByteArray &name, const QByteArray &bytes, Method method, quint32 unixMode)
{
    Entry entry;
    entry.name = name;
    entry.stored = method == Deflated && !bytes.isEmpty() ? rawDeflate(bytes) : bytes;
    entry.method = bytes.isEmpty() ? Stored : method;
    entry.crc = crc32(bytes);
    entry.size = quint32(bytes.size());
    entry.unixMode = unixMode;
    entry.flags = utf8NamesFlag;
    m_entries.append(entry);
    return *this;
}

PackageBuilder &PackageBuilder::folder(const QByteArray &name)
{
    return file(name.endsWith('/') ? name : name + '/', QByteArray(), Stored, Directory);
}

PackageBuilder &PackageBuilder::symbolicLink(const QByteArray &name, const QByteArray &target)
{
    return file(name, target, Stored, SymbolicLink);
}

PackageBuilder &PackageBuilder::claimCrc(quint32 crc)
{
    m_entries.last().crc = crc;
    return *this;
}

PackageBuilder &PackageBuilder::claimSize(quint32 uncompressedSize)
{
    m_entries.last().size = uncompressedSize;
    return *this;
}

PackageBuilder &PackageBuilder::claimMethod(quint16 method)
{
    m_entries.last().method = method;
    return *this;
}

PackageBuilder &PackageBuilder::claimFlags(quint16 flags)
{
    m_entries.last().flags = flags;
    return *this;
}

PackageBuilder &PackageBuilder::claimVersionNeeded(quint16 version)
{
    m_entries.last().versionNeeded = version;
    return *this;
}

PackageBuilder &PackageBuilder::archiveComment(const QByteArray &bytes)
{
    Q_ASSERT(bytes.size() <= 0xffff);
    m_comment = bytes;
    return *this;
}

PackageBuilder &PackageBuilder::record(const QString &projectName, const QString &projectComment)
{
    // Computed before the comment is set, like writers of packages do.
    return recordWithChecksum(QString::fromLatin1(checksum(archive(QByteArray()), 0)), projectName, projectComment);
}

PackageBuilder &PackageBuilder::recordWithChecksum(const QString &checksum, const QString &projectName,
                                                   const QString &projectComment)
{
    return archiveComment(infoRecord(checksum, projectName, projectComment));
}

PackageBuilder &PackageBuilder::trailingBytes(const QByteArray &bytes)
{
    m_trailing = bytes;
    return *this;
}

QByteArray PackageBuilder::archive(const QByteArray &archiveComment) const
{
    QByteArray locals;
    QByteArray central;
    for (const Entry &entry : m_entries) {
        QByteArray common;
        append16(common, entry.versionNeeded);
        append16(common, entry.flags);
        append16(common, entry.method);
        append16(common, dosTime);
        append16(common, dosDate);
        append32(common, entry.crc);
        append32(common, quint32(entry.stored.size()));
        append32(common, entry.size);
        append16(common, quint16(entry.name.size()));
        append16(common, 0); // extra field

        const quint32 offset = quint32(locals.size());
        append32(locals, 0x04034b50);
        locals += common + entry.name + entry.stored;

        append32(central, 0x02014b50);
        append16(central, (3 << 8) | 30); // made by: Unix, which makes the mode below count
        central += common;
        append16(central, 0); // comment of the entry
        append16(central, 0); // disk
        append16(central, 0); // internal attributes
        append32(central, entry.unixMode << 16);
        append32(central, offset);
        central += entry.name;
    }

    QByteArray end;
    append32(end, 0x06054b50);
    append16(end, 0); // this disk
    append16(end, 0); // disk of the directory
    append16(end, quint16(m_entries.size()));
    append16(end, quint16(m_entries.size()));
    append32(end, quint32(central.size()));
    append32(end, quint32(locals.size()));
    append16(end, quint16(archiveComment.size()));
    return locals + central + end + archiveComment;
}

QByteArray PackageBuilder::build() const
{
    return archive(m_comment) + m_trailing;
}

bool PackageBuilder::write(const QString &path) const
{
    const QByteArray bytes = build();
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

QByteArray PackageBuilder::checksum(const QByteArray &packageBytes, int commentLength)
{
    const int chunkSize = 10 * 1024 * 1024;
    const int end = packageBytes.size() - commentLength;
    QByteArray digests;
    for (int begin = 0; begin < end; begin += chunkSize) {
        const QByteArray chunk = packageBytes.mid(begin, qMin(chunkSize, end - begin));
        const int zero = chunk.indexOf('\0');
        digests += QCryptographicHash::hash(zero < 0 ? chunk : chunk.left(zero), QCryptographicHash::Md5).toHex();
    }
    return QCryptographicHash::hash(digests, QCryptographicHash::Md5).toHex();
}

QByteArray PackageBuilder::infoRecord(const QString &checksum, const QString &projectName,
                                      const QString &projectComment)
{
    const QJsonObject record{{QStringLiteral("Checksum"), checksum},
                             {QStringLiteral("projectName"), projectName},
                             {QStringLiteral("comment"), projectComment}};
    return QJsonDocument(record).toJson(QJsonDocument::Indented);
}

quint32 PackageBuilder::crc32(const QByteArray &bytes)
{
    return quint32(::crc32(0, reinterpret_cast<const Bytef *>(bytes.constData()), uInt(bytes.size())));
}

} // namespace TestSupport
