// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "headercheck.h"

#include "findings.h"

#include "packagelayout.h"
#include "zipformat.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;
using namespace ProjectFileCfg::Internal::ZipFormat;
using Entry = ArchiveDirectory::Entry;

namespace {

QByteArray little(quint32 value)
{
    QByteArray bytes(int(sizeof value), '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

constexpr int unixSystem = 3;
constexpr int macSystem = 19;

template<int count>
bool isOneOf(const int (&known)[count], int value)
{
    return std::find(std::begin(known), std::end(known), value) != std::end(known);
}

bool isKnownMaker(quint16 madeBy)
{
    // FAT, the two numbers in use for NTFS, VFAT.
    constexpr int systems[] = {0, unixSystem, 10, 11, 14, macSystem};
    // Of the format, in tenths: those in which something was added.
    constexpr int versions[] = {10, 11, 20, 21, 23, 25, 27, 30, 31, 32, 45, 46, 50, 51, 52, 60, 61, 62, 63};
    return isOneOf(systems, madeBy >> 8) && isOneOf(versions, madeBy & 0xFF);
}

/// Those of DOS and Windows; on Unix the few that programs there set. In both the mark for a mode in the upper half.
quint32 knownAttributes(quint16 madeBy)
{
    const bool isUnix = madeBy >> 8 == unixSystem || madeBy >> 8 == macSystem;
    return isUnix ? 0x8031 : 0xBFB7;
}

/// The rights and the type of a file on Unix; 0 where the archive comes from elsewhere.
bool isMode(quint32 mode, bool isFolder)
{
    constexpr quint32 typeMask = 0170000;
    constexpr quint32 regularFile = 0100000;
    constexpr quint32 directory = 0040000;
    constexpr quint32 special = 0007000;
    const quint32 type = mode & typeMask;
    if (isFolder)
        return type == 0 || type == directory;
    return (type == 0 || type == regularFile) && (mode & special) == 0;
}

} // namespace

HeaderCheck::HeaderCheck(QFile &file, const ArchiveDirectory &directory, Findings &findings)
    : m_file(file)
    , m_directory(directory)
    , m_findings(findings)
{}

qint64 HeaderCheck::contentOffset(const Entry &entry)
{
    checkAttributes(entry);
    LocalHeader local;
    const bool isThere = entry.localOffset >= 0 && m_file.seek(entry.localOffset);
    if (!isThere || !local.read(m_file.read(localHeaderSize))) {
        m_findings.add(entry.name, entry.localOffset, QStringLiteral("there is no local header"));
        return -1;
    }
    compare(entry, local);
    const QByteArray name = m_file.read(local.nameLength);
    if (name != entry.rawName)
        m_findings.add(entry.name, entry.localOffset,
                       QStringLiteral("its local header has the name \"%1\"").arg(QString::fromUtf8(name)));
    if (!isExtraSound(m_file.read(local.extraLength)))
        m_findings.add(entry.name, entry.localOffset, QStringLiteral("its local header's extra fields are damaged"));
    const qint64 content = entry.localOffset + localHeaderSize + local.nameLength + local.extraLength;
    const qint64 end = content + entry.header.packedSize;
    if (end > m_directory.start()) {
        m_findings.add(entry.name, entry.localOffset, QStringLiteral("its content would reach into the directory"));
        return -1;
    }
    m_extents.append({entry.localOffset, end + sizeBehind(entry, end), entry.name});
    return content;
}

void HeaderCheck::checkAttributes(const Entry &entry)
{
    constexpr quint16 textFile = 1;
    constexpr quint16 knownFlags = 0x080F;
    constexpr quint32 folderAttribute = 0x10;
    const DirectoryHeader &header = entry.header;
    const auto isWrong = [&](const QString &text) { m_findings.add(entry.name, entry.offset, text); };
    const bool isFolder = PackageLayout::isFolder(entry.name);
    if (!isKnownMaker(header.madeBy))
        isWrong(QStringLiteral("its maker %1 is unknown").arg(header.madeBy));
    if (header.flags & EntryHeader::encrypted)
        isWrong(QStringLiteral("it is encrypted"));
    else if (header.flags & ~knownFlags)
        isWrong(QStringLiteral("its flags %1 are unknown").arg(header.flags));
    if (header.disk != 0)
        isWrong(QStringLiteral("it is said to be on disk %1").arg(header.disk));
    if (header.internalAttributes & ~textFile)
        isWrong(QStringLiteral("its internal attributes %1 are unknown").arg(header.internalAttributes));
    if (!isMode(header.externalAttributes >> 16, isFolder))
        isWrong(QStringLiteral("its mode %1 is that of a link or a special file, or is odd")
                    .arg(header.externalAttributes >> 16, 0, 8));
    if ((header.externalAttributes & 0xFFFF & ~knownAttributes(header.madeBy)) != 0 ||
        ((header.externalAttributes & folderAttribute) != 0 && !isFolder))
        isWrong(QStringLiteral("its attributes %1 are odd").arg(header.externalAttributes & 0xFFFF));
    if (isFolder && header.size != 0)
        isWrong(QStringLiteral("it is a folder with content"));
}

void HeaderCheck::compare(const Entry &entry, const LocalHeader &local)
{
    constexpr quint16 versionWithUtf8 = 63;
    const DirectoryHeader &header = entry.header;
    const auto same = [&](quint32 localValue, quint32 value, const char *what) {
        if (localValue != value)
            m_findings.add(entry.name, entry.localOffset,
                           QStringLiteral("its local header has the %1 %2, and the directory %3")
                               .arg(QString::fromLatin1(what), QString::number(localValue), QString::number(value)));
    };
    // The zip library of the control application raises this one for a name in UTF-8, and only here.
    if (!(header.flags & EntryHeader::nameInUtf8) || local.versionNeeded != versionWithUtf8)
        same(local.versionNeeded, header.versionNeeded, "version needed");
    same(local.flags, header.flags, "flags");
    same(local.method, header.method, "method");
    same(local.time, header.time, "time");
    same(local.date, header.date, "date");
    // A writer that cannot go back leaves out here what it did not know yet.
    const bool isLater = (local.flags & EntryHeader::sizesBehindContent) != 0;
    const auto sameOrLater = [&](quint32 localValue, quint32 value, const char *what) {
        if (!isLater || localValue != 0)
            same(localValue, value, what);
    };
    sameOrLater(local.crc, header.crc, "CRC");
    sameOrLater(local.packedSize, header.packedSize, "packed size");
    sameOrLater(local.size, header.size, "size");
}

/// CRC and sizes once more, behind the content, with a signature or without.
qint64 HeaderCheck::sizeBehind(const Entry &entry, qint64 offset)
{
    if (!(entry.header.flags & EntryHeader::sizesBehindContent))
        return 0;
    const QByteArray signature("PK\x07\x08");
    const QByteArray expected = little(entry.header.crc) + little(entry.header.packedSize) + little(entry.header.size);
    const QByteArray found = m_file.seek(offset) ? m_file.read(signature.size() + expected.size()) : QByteArray();
    if (found == signature + expected)
        return found.size();
    if (!found.startsWith(expected))
        m_findings.add(entry.name, offset, QStringLiteral("CRC and sizes behind its content are damaged"));
    return found.startsWith(signature) ? found.size() : expected.size();
}

void HeaderCheck::checkExtents()
{
    std::sort(m_extents.begin(), m_extents.end(),
              [](const Extent &one, const Extent &other) { return one.begin < other.begin; });
    m_extents.append({m_directory.start(), m_directory.start(), QString()});
    qint64 end = 0;
    for (const Extent &extent : qAsConst(m_extents)) {
        if (extent.begin > end)
            m_findings.add({}, end,
                           QStringLiteral("%1 bytes before %2 belong to no entry")
                               .arg(QString::number(extent.begin - end),
                                    extent.entry.isEmpty() ? QStringLiteral("the directory") : extent.entry));
        else if (extent.begin < end)
            m_findings.add(extent.entry, extent.begin, QStringLiteral("it overlaps the entry before it"));
        end = std::max(end, extent.end);
    }
}

} // namespace Corvelpro
