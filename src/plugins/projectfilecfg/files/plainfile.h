// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QFile;
class QString;

namespace ProjectFileCfg {
namespace Internal {

/// Opens `file` for reading if it is a plain file, or a link to one; with `unbuffered`, without Qt's buffer. False at
/// once for anything else, even if it replaced a plain file after the caller's last check: QFile::open() on a named
/// pipe would block until another process opens it for writing.
bool openPlainFile(QFile &file, bool unbuffered = false, QString *reason = nullptr);

} // namespace Internal
} // namespace ProjectFileCfg
