// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "archivedirectory.h"

#include "picturedecoder.h"

#include <QQueue>

#include <memory>

class QIODevice;

namespace Corvelpro {

class Findings;

/// Checks that pictures can be decoded and have a place that a gallery can have. Decodes on threads of its own while
/// the caller reads on, in bounded memory.
class PictureCheck
{
public:
    explicit PictureCheck(Findings &findings);

    /// A place for the content of a picture of that size in bytes, open for writing: in memory, or for a large one a
    /// nameless file. Null, with a finding, if that is not possible.
    std::shared_ptr<QIODevice> placeFor(const ArchiveDirectory::Entry &entry);

    /// Checks a picture whose content is in its place. The caller does not use `content` any more.
    void begin(const ArchiveDirectory::Entry &entry, const std::shared_ptr<QIODevice> &content);

    /// After all pictures: waits for those that are being decoded.
    void finish();

    /// How many could be decoded.
    int decoded() const { return m_decoded; }

private:
    struct Picture
    {
        QString entry;
        qint64 offset;
        qint64 memory;
    };

    bool isBegun(const QString &entryName) const;
    void takeOldest();

    Findings &m_findings;
    ProjectFileCfg::Internal::PictureDecoder m_decoder;
    QQueue<Picture> m_begun;
    qint64 m_begunMemory = 0;
    qint64 m_pixels = 0;
    int m_decoded = 0;
};

} // namespace Corvelpro
