// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QFile;
class QString;

namespace ProjectFileCfg {
namespace Internal {

/// Opens `file` for reading if it is a plain file, or a link to one; with `unbuffered`, without a buffer of its own.
/// False at once for anything else, even if it became so after the caller's last check: QFile::open() on a named pipe
/// would block until somebody writes into it.
bool openPlainFile(QFile &file, bool unbuffered = false, QString *reason = nullptr);

} // namespace Internal
} // namespace ProjectFileCfg
