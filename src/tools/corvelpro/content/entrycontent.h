// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "entryheader.h"

#include <functional>

class QIODevice;
class QString;

namespace Corvelpro {

/// Called with each portion of an entry's unpacked content.
using ContentSink = std::function<void(const char *data, qint64 size)>;

/// Reads an entry's content from `packed`, which is at its beginning, in bounded memory, and checks it against
/// `header`, whose method is stored or deflated: its length, packed and unpacked, and its CRC. Faster than
/// PackageReader, and also for an entry whose name another one has. `passed` is called with the size of each packed
/// portion. `reason` is set on failure (see reason.h).
bool readContent(QIODevice &packed, const EntryHeader &header, const ContentSink &sink,
                 const std::function<void(qint64 bytes)> &passed, QString *reason);

} // namespace Corvelpro
