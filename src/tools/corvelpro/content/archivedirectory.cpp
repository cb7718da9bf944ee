// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "archivedirectory.h"

#include "findings.h"

#include "packagelayout.h"
#include "packagelimits.h"
#include "zipformat.h"

#include <QByteArrayList>
#include <QFile>

#include <algorithm>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;
using namespace ProjectFileCfg::Internal::ZipFormat;

namespace {

/// Of the last end record in the last bytes of a file, which the zip library takes; -1 if there is none.
int findLastEnd(const QByteArray &tail)
{
    return tail.lastIndexOf(EndRecord::signature(), tail.size() - endRecordSize);
}

/// Of the last one whose comment ends with the file, otherwise of the last one; -1 if there is none.
int findEnd(const QByteArray &tail)
{
    const int last = findLastEnd(tail);
    for (int at = last; at >= 0; at = at > 0 ? tail.lastIndexOf(EndRecord::signature(), at - 1) : -1) {
        EndRecord end;
        end.read(tail.mid(at, endRecordSize));
        if (at + endRecordSize + end.commentLength == tail.size())
            return at;
    }
    return last;
}

} // namespace

ArchiveDirectory::ArchiveDirectory(QFile &file, Findings &findings)
    : m_archiveStart(file.size())
    , m_start(file.size())
    , m_commentOffset(file.size())
{
    if (!readEnd(file, findings))
        return;
    checkEnd(file.size(), findings);
    m_isComplete = readEntries(file, findings);
    QByteArrayList rawNames;
    for (const Entry &entry : qAsConst(m_entries))
        rawNames.append(entry.rawName);
    const QStringList names = PackageLayout::namesOf(rawNames);
    for (int i = 0; i < m_entries.size(); ++i)
        m_entries[i].name = names.isEmpty() ? QString::fromLatin1(rawNames.at(i)) : names.at(i);
}

bool ArchiveDirectory::readEnd(QFile &file, Findings &findings)
{
    const qint64 size = std::min<qint64>(file.size(), locatorSize + endRecordSize + maxTextSize);
    const QByteArray tail = file.seek(file.size() - size) ? file.read(size) : QByteArray();
    const int at = tail.size() == size && size >= endRecordSize ? findEnd(tail) : -1;
    if (at < 0) {
        findings.add({}, -1, QStringLiteral("it has no end record: it is cut off, or no zip archive"));
        return false;
    }
    m_end.read(tail.mid(at, endRecordSize));
    const qint64 endOffset = file.size() - size + at;
    m_commentOffset = endOffset + endRecordSize;
    if (at != findLastEnd(tail))
        findings.add({}, file.size() - size + findLastEnd(tail),
                     QStringLiteral("its comment holds another end record, and a load takes that one"));
    if (m_end.isExtended() || m_end.directorySize > endOffset) {
        findings.add({}, endOffset,
                     m_end.isExtended() ? QStringLiteral("it uses the 64-bit extension, in which no record is found")
                                        : QStringLiteral("its directory would begin before the file"));
        return false;
    }
    m_start = endOffset - m_end.directorySize;
    m_archiveStart = m_start - m_end.directoryOffset;
    return true;
}

void ArchiveDirectory::checkEnd(qint64 fileSize, Findings &findings) const
{
    const qint64 endOffset = m_commentOffset - endRecordSize;
    if (m_end.disk != 0 || m_end.directoryDisk != 0 || m_end.entriesOnDisk != m_end.entries)
        findings.add({}, endOffset, QStringLiteral("its end record speaks of several disks"));
    if (m_archiveStart != 0)
        findings.add({}, endOffset,
                     QStringLiteral("its end record has its directory at %1, and it is at %2")
                         .arg(m_end.directoryOffset)
                         .arg(m_start));
    if (m_commentOffset + m_end.commentLength != fileSize)
        findings.add({}, endOffset,
                     QStringLiteral("its end record has a comment of %1 bytes, and %2 follow")
                         .arg(m_end.commentLength)
                         .arg(fileSize - m_commentOffset));
}

bool ArchiveDirectory::readEntries(QFile &file, Findings &findings)
{
    const qint64 end = m_commentOffset - endRecordSize;
    if (!file.seek(m_start))
        return false;
    m_entries.reserve(m_end.entries);
    while (m_entries.size() < m_end.entries) {
        if (!readEntry(file, findings))
            return false;
    }
    if (file.pos() == end)
        return true;
    findings.add({}, file.pos(),
                 QStringLiteral("its directory, of %1 entries, ends at %2, and should end at %3")
                     .arg(QString::number(m_end.entries), QString::number(file.pos()), QString::number(end)));
    return false;
}

bool ArchiveDirectory::readEntry(QFile &file, Findings &findings)
{
    Entry entry;
    entry.offset = file.pos();
    const bool isHeader = entry.header.read(file.read(centralHeaderSize));
    if (isHeader)
        entry.rawName = file.read(entry.header.nameLength);
    const QByteArray extra = isHeader ? file.read(entry.header.extraLength) : QByteArray();
    const QByteArray comment = isHeader ? file.read(entry.header.commentLength) : QByteArray();
    if (!isHeader || file.pos() > m_commentOffset || comment.size() != entry.header.commentLength) {
        findings.add(
            {}, entry.offset,
            QStringLiteral("its directory breaks off after %1 of %2 entries").arg(m_entries.size()).arg(m_end.entries));
        return false;
    }
    m_namesLength += entry.rawName.size();
    if (m_namesLength > PackageLimits::maxNamesLength) {
        findings.add({}, entry.offset,
                     QStringLiteral("its names have more than %1 bytes").arg(PackageLimits::maxNamesLength));
        return false;
    }
    if (!isExtraSound(extra))
        findings.add(QString::fromUtf8(entry.rawName), entry.offset,
                     QStringLiteral("the extra fields of its header in the directory are damaged"));
    entry.localOffset = m_archiveStart + entry.header.localOffset;
    m_entries.append(entry);
    return true;
}

} // namespace Corvelpro
