// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>

namespace Corvelpro {

/// What both of an entry's headers state: the local one before its content and the one in the archive's directory.
struct EntryHeader
{
    /// Flags.
    static constexpr quint16 encrypted = 0x0001;
    static constexpr quint16 sizesBehindContent = 0x0008;
    static constexpr quint16 nameInUtf8 = 0x0800;
    /// Methods.
    static constexpr quint16 stored = 0;
    static constexpr quint16 deflated = 8;

    quint16 versionNeeded = 0;
    quint16 flags = 0;
    quint16 method = 0;
    quint16 time = 0;
    quint16 date = 0;
    quint32 crc = 0;
    quint32 packedSize = 0;
    quint32 size = 0;
    quint16 nameLength = 0;
    quint16 extraLength = 0;

    /// `bytes` are those of a header from its "version needed" on.
    void readFrom(const char *bytes);
};

/// The header before an entry's content, without name and extra fields.
struct LocalHeader : EntryHeader
{
    /// False if the bytes, ZipFormat::localHeaderSize of them, do not begin with the signature.
    bool read(const QByteArray &bytes);
};

/// The header in the directory, without what follows it: name, extra fields, comment.
struct DirectoryHeader : EntryHeader
{
    quint16 madeBy = 0;
    quint16 commentLength = 0;
    quint16 disk = 0;
    quint16 internalAttributes = 0;
    quint32 externalAttributes = 0;
    quint32 localOffset = 0;

    /// False if the bytes, ZipFormat::centralHeaderSize of them, do not begin with the signature.
    bool read(const QByteArray &bytes);
};

/// The record at the end of an archive, without the comment.
struct EndRecord
{
    quint16 disk = 0;
    quint16 directoryDisk = 0;
    quint16 entriesOnDisk = 0;
    quint16 entries = 0;
    quint32 directorySize = 0;
    quint32 directoryOffset = 0;
    quint16 commentLength = 0;

    static QByteArray signature();
    /// `bytes` are ZipFormat::endRecordSize, with the signature.
    void read(const QByteArray &bytes);
    /// True if a value is in the 64-bit extension.
    bool isExtended() const;
};

/// True if the extra fields of a header fill it exactly, each with its length.
bool isExtraSound(const QByteArray &extra);

} // namespace Corvelpro
