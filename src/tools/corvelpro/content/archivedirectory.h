// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "entryheader.h"

#include <QString>
#include <QVector>

class QFile;

namespace Corvelpro {

class Findings;

/// The directory at the end of a zip archive, as its bytes state it. PackageReader reads it too, but reports neither
/// where something is nor what it passes over.
class ArchiveDirectory
{
public:
    struct Entry
    {
        DirectoryHeader header;
        QByteArray rawName;
        /// Decoded by PackageLayout::namesOf().
        QString name;
        /// Of its header in the directory, in the file.
        qint64 offset = 0;
        /// Of its local header, in the file.
        qint64 localOffset = 0;
    };

    /// Reads the directory of `file`, which is open for reading, in bounded memory.
    ArchiveDirectory(QFile &file, Findings &findings);

    /// False if the end record is missing, or if the directory could be read in part only.
    bool isComplete() const { return m_isComplete; }
    const QVector<Entry> &entries() const { return m_entries; }

    /// Where the archive's first byte should be, where the directory begins, and where the comment does. Without an end
    /// record all are the end of the file.
    qint64 archiveStart() const { return m_archiveStart; }
    qint64 start() const { return m_start; }
    qint64 commentOffset() const { return m_commentOffset; }

private:
    bool readEnd(QFile &file, Findings &findings);
    void checkEnd(qint64 fileSize, Findings &findings) const;
    bool readEntries(QFile &file, Findings &findings);
    bool readEntry(QFile &file, Findings &findings);

    EndRecord m_end;
    QVector<Entry> m_entries;
    qint64 m_namesLength = 0;
    qint64 m_archiveStart;
    qint64 m_start;
    qint64 m_commentOffset;
    bool m_isComplete = false;
};

} // namespace Corvelpro
