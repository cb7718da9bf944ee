// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "archivedirectory.h"

#include <QVector>

class QFile;

namespace Corvelpro {

class Findings;

/// Compares the headers of an archive's entries with each other and with the places of what they describe.
class HeaderCheck
{
public:
    HeaderCheck(QFile &file, const ArchiveDirectory &directory, Findings &findings);

    /// Reads the entry's local header, and what follows its content if anything does. Returns where the content
    /// begins; -1 if that is unknown, since the header is damaged.
    qint64 contentOffset(const ArchiveDirectory::Entry &entry);

    /// After all entries: finds bytes that belong to none or to two of them.
    void checkExtents();

private:
    struct Extent
    {
        qint64 begin;
        qint64 end;
        QString entry;
    };

    void checkAttributes(const ArchiveDirectory::Entry &entry);
    void compare(const ArchiveDirectory::Entry &entry, const LocalHeader &local);
    qint64 sizeBehind(const ArchiveDirectory::Entry &entry, qint64 offset);

    QFile &m_file;
    const ArchiveDirectory &m_directory;
    Findings &m_findings;
    QVector<Extent> m_extents;
};

} // namespace Corvelpro
