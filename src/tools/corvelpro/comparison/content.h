// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <memory>

class QIODevice;
class QString;

namespace Corvelpro {

class EntrySource;

/// The content of a file, seekable and at its beginning: in memory, or above 32 MiB in a file without a name in the
/// folder for temporary files. Null if it cannot be read or stored.
std::unique_ptr<QIODevice> contentOf(EntrySource &source, const QString &file, QString *reason);

} // namespace Corvelpro
