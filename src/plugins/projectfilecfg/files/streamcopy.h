// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

#include <functional>

class QFile;
class QIODevice;
class QString;

namespace ProjectFileCfg {
namespace Internal {

/// Copies the rest of `source`, in bounded memory. False if reading or writing fails, or if there are more than `limit`
/// bytes; never writes more than that. `*copied` returns how many bytes were read. `look`, if given, is called with
/// each portion. `reason` does not contain a path, since the caller knows both.
bool copyStream(QIODevice &source, QIODevice &destination, qint64 limit, qint64 *copied,
                const std::function<void(const char *data, qint64 size)> &look = nullptr, QString *reason = nullptr);

/// The same for a file that is read once: leaves nothing of it in the page cache that was not there before (see
/// DropBehind), and reads a large file ahead on another thread (see ReadAhead). `look` and the writes stay on the
/// caller's thread. On failure, the position of `source` is undefined.
bool copyFile(QFile &source, QIODevice &destination, qint64 limit, qint64 *copied,
              const std::function<void(const char *data, qint64 size)> &look = nullptr, QString *reason = nullptr);

} // namespace Internal
} // namespace ProjectFileCfg
