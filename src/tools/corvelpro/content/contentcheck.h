// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "archivedirectory.h"
#include "entrycontent.h"
#include "picturecheck.h"

#include <functional>

namespace Corvelpro {

class Findings;

/// Checks that entries contain what their names promise: the description that a load reads, pictures, presets.
class ContentCheck
{
public:
    /// Reads an entry to its end, and passes its content to the sink. False, with a reason, if that fails.
    using Read = std::function<bool(const ContentSink &sink, QString *reason)>;

    ContentCheck(const ArchiveDirectory &directory, Findings &findings);

    /// Reads an entry of the directory once.
    void check(const ArchiveDirectory::Entry &entry, const Read &read);

    /// After all entries.
    void finish();

    /// Pictures that could be decoded.
    int pictures() const { return m_pictures.decoded(); }

private:
    void checkDescription(const ArchiveDirectory::Entry &entry, const Read &read);
    void checkPicture(const ArchiveDirectory::Entry &entry, const Read &read);
    void checkPreset(const ArchiveDirectory::Entry &entry, const Read &read);
    bool isRead(const ArchiveDirectory::Entry &entry, const Read &read, const ContentSink &sink);

    Findings &m_findings;
    PictureCheck m_pictures;
    /// The first of its name in the directory; null if there is none.
    const ArchiveDirectory::Entry *m_description = nullptr;
};

} // namespace Corvelpro
