// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QString>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// The checksum in a package's record. Do not change how it is computed: existing packages rely on it.
namespace PackageChecksum {

/// Size of a chunk in bytes.
constexpr qint64 chunkSize = 10 * 1024 * 1024;

/// Splits the first `length` bytes of the file into chunks, and returns the MD5 digest over the chunks' digests, all in
/// lower-case hexadecimal digits. A chunk's digest covers its bytes before the first zero byte, or the whole chunk if
/// it has none. Reads little more than what is digested, and stops at the end of the file. `file` is open for reading.
///
/// `end`, if given, replaces the last of these bytes in the computation. `*isComplete` returns whether everything could
/// be read; otherwise the digest is not that of the archive.
QString ofLeadingBytes(QFile &file, qint64 length, const QByteArray &end = QByteArray(), bool *isComplete = nullptr);

} // namespace PackageChecksum

} // namespace Internal
} // namespace ProjectFileCfg
