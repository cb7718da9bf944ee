// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace ProjectFileCfg {
namespace Internal {

namespace FileSystem {
class FileIdentity;
}
class PackageReader;

/// A package's info record and path.
struct EngineerPacketInfo
{
    /// Full path of the package file. The caller sets it before reading the other three.
    QString strFilePath;
    QString strProjectName;
    QString strComment;
    /// 32 lower-case hexadecimal digits.
    QString strChecksum;
};

/// A save's additional requirements for its package.
struct PacketDemands
{
    /// Required entries: sizes in bytes by name.
    QHash<QString, qint64> entries;
    /// The only file that the package may replace: the one at ReplacingFile::resolvedTarget() of its path when the save
    /// began.
    const FileSystem::FileIdentity &previous;
};

/// Creates, lists, extracts and inspects packages, and reads or writes their info record: a small JSON object in the
/// zip archive's comment (docs/package-format.md). Nothing else interprets or changes a package's content, except that
/// the load job copies its package with PackageSnapshot and keeps the copy open with a PackageReader.
///
/// Every operation opens and closes its own files, keeps no state and may run on any thread. None throws. Those that
/// open an archive set the process's locale codec to UTF-8, permanently: QuaZip takes its codecs for names and comments
/// from it.
///
/// A file is replaced completely or not at all, even if the disk is full or the process is killed.
///
/// Operations with a `reason` set it on failure (see reason.h). None logs a failure, except a missing file where the
/// contract says so.
class ZipPackageHandle
{
public:
    /// Packs the tree below `dirPath` into the package `info.strFilePath` and writes its record from `info`, whose
    /// checksum it sets. False if the directory does not exist or cannot be packed completely, or the package as read
    /// back differs from the one written: the previous file is unchanged then. Also false if the finished package is in
    /// place but its name could not be flushed to disk.
    static bool compressEngineerPacket(const QString &dirPath, EngineerPacketInfo &info);

    /// The same for a save, during which other programs may change both directories. Also false, leaving the file at
    /// the path unchanged, if a required entry is missing or has another size, if another file is at the path by then,
    /// or if a folder of the path is missing.
    static bool compressEngineerPacket(const QString &dirPath, EngineerPacketInfo &info, const PacketDemands &demands,
                                       QString *reason);

    /// Fills `info` from the record of the package `info.strFilePath`. True if the record can be read and its checksum
    /// is the package's; the fields stay filled if only the checksum is wrong. Logs "File is not exist" at debug level
    /// if there is no file.
    static bool getZipFileEngineerInfo(EngineerPacketInfo &info);
    static bool getZipFileEngineerInfo(EngineerPacketInfo &info, QString *reason);
    /// The same for an open package, whatever `info.strFilePath` is.
    static bool getZipFileEngineerInfo(const PackageReader &package, EngineerPacketInfo &info,
                                       QString *reason = nullptr);

    /// True if the file has a record whose checksum is the package's.
    static bool isValidEngineerPacket(const QString &packetPath);
    static bool isValidEngineerPacket(const QString &packetPath, QString *reason);

    /// The same test for a package that is about to be applied; false if the file does not exist.
    static bool checkPacketChecksum(const QString &packetPath);
    static bool checkPacketChecksum(const QString &packetPath, QString *reason);
    /// The same for an open package.
    static bool checkPacketChecksum(const PackageReader &package, QString *reason = nullptr);

    /// Extracts every entry whose name ends in ".json", in any case, to `destDir` + "/" + its name. Returns the written
    /// paths in the archive's order, with an empty string for each entry that could not be extracted; an empty list if
    /// the file does not exist or does not have the package extension.
    static QStringList extractJsonFiles(const QString &packetPath, const QString &destDir);

    /// Extracts one entry and returns the absolute path written, or an empty string. See PackageReader::extractFile()
    /// for what is refused. Opens the package each time: for more than a few entries use a PackageReader.
    static QString extractFile(const QString &packetPath, const QString &entryName, const QString &destPath);

    /// The names of all entries in the archive's order; empty if it cannot be read.
    static QStringList getFileList(const QString &packetPath);

    /// The archive's comment; empty if there is none or the archive cannot be read.
    ///
    /// The path check of this, setZipComment(), isValidEngineerPacket() and writeTextChecksum() is lenient on purpose:
    /// it fails at once only if the path neither exists nor has the package extension.
    static QString getZipComment(const QString &packetPath);

    /// Replaces the archive's comment in place: nothing is copied, and the file keeps its identity, permissions and
    /// modification time (see InPlaceFile). True only after the new comment was flushed to disk and read back;
    /// otherwise the package is unchanged. Does not recreate a package that is deleted meanwhile.
    ///
    /// Refuses an archive that is not a classic one or has bytes after its comment; a file that is not a plain one or
    /// is read-only; a comment that exceeds 65,513 bytes of UTF-8, or contains bytes that QuaZip would take for the
    /// archive's end.
    static bool setZipComment(const QString &packetPath, const QString &comment);

    /// Writes `info` as the record of the package `info.strFilePath`, in the same way. Sets its checksum to that of the
    /// package as it is now, even if another program has replaced it since it was listed: a valid package stays valid.
    /// Also fails, leaving `info` unchanged, if the package cannot be read completely.
    static bool setEngineerInfo(EngineerPacketInfo &info, QString *reason = nullptr);

    /// Reads a record: a JSON object with at least three keys. A missing key, or a value that is not a string, gives an
    /// empty field. Does not change `info.strFilePath`; on failure, changes nothing.
    static bool parseEngineerInfo(EngineerPacketInfo &info, const QString &recordJson);

    /// The checksum of the archive without its comment; empty if it cannot be opened. It covers only the leading bytes
    /// of each 10 MiB, for compatibility with existing packages.
    static QString calcPacketChecksum(const QString &packetPath);

    /// This plugin does not call the next three. Other software may: do not change their results.

    /// 0 packed, 1 not packed, 2 no such directory. Never packs unless `overwrite` is set, since it checks the
    /// existence of the directory and not of the package.
    int compressDir(const QString &dirPath, const QString &packetPath, bool overwrite);

    /// 0 extracted, 1 the destination exists and `overwrite` is not set, 2 no such package, 3 nothing extracted, even
    /// if PackageReader::extractFile() refuses only one entry.
    int extractDir(const QString &packetPath, const QString &destDir, bool overwrite);

    /// Sets the archive's comment to the MD5 digest of the file, read as text.
    static bool writeTextChecksum(const QString &packetPath);
};

} // namespace Internal
} // namespace ProjectFileCfg
