// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace TestSupport {

/// Builds zip archives byte by byte, valid and odd ones, without the product's or QuaZip's writer, so that the tests'
/// input is independent of the code under test.
class PackageBuilder
{
public:
    enum Method { Stored = 0, Deflated = 8 };
    enum : quint32 { RegularFile = 0100644, Directory = 040755, SymbolicLink = 0120777, Fifo = 0010644 };

    /// An entry; `unixMode` goes into its external attributes.
    PackageBuilder &file(const QByteArray &name, const QByteArray &bytes, Method method = Deflated,
                         quint32 unixMode = RegularFile);
    /// A directory entry; `name` gets a trailing "/" if it has none.
    PackageBuilder &folder(const QByteArray &name);
    /// An entry that unpackers turn into a symbolic link to `target`.
    PackageBuilder &symbolicLink(const QByteArray &name, const QByteArray &target);

    /// Changes the last entry: its headers, not its content.
    PackageBuilder &claimCrc(quint32 crc);
    PackageBuilder &claimSize(quint32 uncompressedSize);
    PackageBuilder &claimMethod(quint16 method);
    PackageBuilder &claimFlags(quint16 flags);
    PackageBuilder &claimVersionNeeded(quint16 version);

    /// The archive comment, up to 65,535 bytes of any value.
    PackageBuilder &archiveComment(const QByteArray &bytes);
    /// An info record as comment, with the archive's checksum.
    PackageBuilder &record(const QString &projectName, const QString &projectComment);
    /// The same with the given checksum.
    PackageBuilder &recordWithChecksum(const QString &checksum, const QString &projectName,
                                       const QString &projectComment);
    /// Bytes after the end of the archive.
    PackageBuilder &trailingBytes(const QByteArray &bytes);

    QByteArray build() const;
    /// Writes the archive to `path`; false when that fails.
    bool write(const QString &path) const;

    /// The package checksum, computed step by step by its definition: over the bytes of a package without its last
    /// `commentLength` bytes, for each chunk of 10 MiB the MD5 of the bytes before its first zero byte, then the MD5 of
    /// these hexadecimal digests concatenated.
    static QByteArray checksum(const QByteArray &packageBytes, int commentLength);
    static QByteArray infoRecord(const QString &checksum, const QString &projectName, const QString &projectComment);
    static quint32 crc32(const QByteArray &bytes);

private:
    struct Entry
    {
        QByteArray name;
        QByteArray stored;
        quint32 crc = 0;
        quint32 size = 0;
        quint32 unixMode = RegularFile;
        quint16 method = Stored;
        quint16 flags = 0;
        quint16 versionNeeded = 20;
    };

    QByteArray archive(const QByteArray &archiveComment) const;

    QVector<Entry> m_entries;
    QByteArray m_comment;
    QByteArray m_trailing;
};

} // namespace TestSupport
