#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace ProjectFileCfg {
namespace Internal {

namespace DurableFile {
class FileIdentity;
}
class PackageReader;

/// What a package says about itself.
struct EngineerPacketInfo
{
    /// Full path of the package file. The caller fills it before it asks for the other three.
    QString strFilePath;
    QString strProjectName;
    QString strComment;
    /// 32 lower-case hexadecimal digits.
    QString strChecksum;
};

/// What a save demands of its package beyond that it holds the directory.
struct PacketDemands
{
    /// What must be in it: the size in bytes of each entry, by its name.
    QHash<QString, qint64> entries;
    /// What it may replace: what lay at ReplacingFile::targetBehind() its path when the save began.
    const DurableFile::FileIdentity &previous;
};

/// Creates, lists, extracts and inspects packages, and reads or writes their info record: a small JSON
/// object in the zip archive's comment (docs/package-format.md). Nothing else touches a package's bytes,
/// except that a job which takes many entries out of one package keeps it open with a PackageReader.
///
/// Every operation opens and closes its own files, keeps no state and may run on any thread. None throws.
/// Those that touch an archive make UTF-8 the process's locale codec, and it stays so: QuaZip takes the
/// codecs of names and comments from there.
///
/// What replaces a file does so completely or not at all, also when the disk is full or the process is
/// killed on the way.
class ZipPackageHandle
{
public:
    /// Packs the tree below `dirPath` into the package `info.strFilePath` and writes its record from `info`,
    /// whose checksum it fills in. False when the directory does not exist, cannot be packed whole, or the
    /// package as read back is not the one written: whatever was at the path before is then untouched. False as
    /// well when the finished package is in place but its name could not be flushed to disk.
    static bool compressEngineerPacket(const QString &dirPath, EngineerPacketInfo &info);

    /// The same for a save, with which other programs may meet in both directories. Also false, and whatever is at the
    /// path stays, when an entry that is demanded is missing or has another size, when another file has come to the
    /// path, and when a folder that leads there is missing. `reason` then says in English what was in the way.
    static bool compressEngineerPacket(const QString &dirPath, EngineerPacketInfo &info, const PacketDemands &demands,
                                       QString &reason);

    /// Fills `info` from the record of the package `info.strFilePath`. True when the record can be read and
    /// its checksum is the package's; the fields stay filled when only the checksum is wrong.
    static bool getZipFileEngineerInfo(EngineerPacketInfo &info);

    /// True when the file carries a record whose checksum is the package's.
    static bool isValidEngineerPacket(const QString &packetPath);

    /// The same test for a package that is about to be applied: only an existing file can pass.
    static bool checkPacketChecksum(const QString &packetPath);
    /// The same of one that is open.
    static bool checkPacketChecksum(const PackageReader &package);

    /// Extracts every entry whose name ends in ".json", in any case, to `destDir` + "/" + its name. Returns
    /// the written paths in the archive's order, an empty string for each entry that could not be extracted,
    /// and nothing at all when the file does not exist or does not carry the package extension.
    static QStringList extractJsonFiles(const QString &packetPath, const QString &destDir);

    /// Extracts one entry and returns the absolute path written, or an empty string. See
    /// PackageReader::extractFile for what is refused. Opens the package anew: for more than a few entries
    /// use a PackageReader.
    static QString extractFile(const QString &packetPath, const QString &entryName, const QString &destPath);

    /// The names of all entries in the archive's order; empty when it cannot be read.
    static QStringList getFileList(const QString &packetPath);

    /// The archive's comment; empty when there is none or the archive cannot be read.
    ///
    /// The path guard of this, setZipComment, isValidEngineerPacket and writeTextChecksum is lenient on
    /// purpose: it gives up at once only where the path neither exists nor carries the package extension.
    static QString getZipComment(const QString &packetPath);

    /// Replaces the archive's comment where it lies and leaves all else alone: nothing is copied, and the file keeps
    /// its identity, its permissions and its modification time (see InPlaceFile). True only after the new comment was
    /// read back and flushed to disk; otherwise the package is what it was. A package that goes meanwhile stays gone.
    ///
    /// Refused: what is no classic archive, or has bytes behind its comment; a file that is no plain one, or may not be
    /// written; a comment above 65,513 bytes of UTF-8, or one in which QuaZip would take something for the archive's
    /// end.
    static bool setZipComment(const QString &packetPath, const QString &comment);

    /// Writes `info` as the record of the package `info.strFilePath`, in the same way. The checksum that goes in, and
    /// into `info`, is the one that the package has now, which another program may have replaced since it was listed: a
    /// valid package stays valid.
    static bool setEngineerInfo(EngineerPacketInfo &info);

    /// Reads a record: a JSON object of at least three keys. A missing key, or one that is no string, gives
    /// an empty field. `info.strFilePath` is left as it is; on failure so are the others.
    static bool parseEngineerInfo(EngineerPacketInfo &info, const QString &commentJson);

    /// The checksum of the archive without its comment; empty when it cannot be opened. It covers only the
    /// leading bytes of each 10 MiB, and has to: packages that exist carry it so.
    static QString calcPacketChecksum(const QString &packetPath);

    /// The next three are called by nothing in this plugin and are kept as they always answered.

    /// 0 packed, 1 not packed, 2 no such directory. Never packs unless `overwrite` is set, since what it
    /// looks for is the directory and not the package.
    int compressDir(const QString &dirPath, const QString &packetPath, bool overwrite);

    /// 0 extracted, 1 the destination exists and `overwrite` is not set, 2 no such package, 3 nothing
    /// extracted. Entries that PackageReader::extractFile refuses make it 3.
    int extractDir(const QString &packetPath, const QString &destDir, bool overwrite);

    /// Makes the MD5 digest of the file, read as text, the archive's comment.
    static bool writeTextChecksum(const QString &packetPath);
};

} // namespace Internal
} // namespace ProjectFileCfg
