#pragma once

#include <QByteArray>
#include <QString>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// The checksum that a package's record carries. Packages that exist decide how it is formed.
namespace PackageChecksum {

/// The archive is digested in chunks of this many bytes.
constexpr qint64 chunkSize = 10 * 1024 * 1024;

/// The MD5 digest, in lower-case hexadecimal digits, over the digits of the digests of the chunks of the first
/// `length` bytes of the file. A chunk's digest covers its bytes up to, not including, the first zero byte; the
/// whole chunk where it holds none. Reads little more than what is digested, and stops where
/// the file ends. `file` is open for reading.
///
/// `end`, where it is given, stands for the last ones of these bytes: the file is taken as if they were so. `*isComplete`
/// tells whether all of it could be read: only then is the digest that of the archive.
QString ofLeadingBytes(QFile &file, qint64 length, const QByteArray &end = QByteArray(), bool *isComplete = nullptr);

} // namespace PackageChecksum

} // namespace Internal
} // namespace ProjectFileCfg
