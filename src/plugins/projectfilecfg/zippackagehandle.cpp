#include "zippackagehandle.h"

#include "archivecomment.h"
#include "inplacefile.h"
#include "localecodec.h"
#include "packagechecksum.h"
#include "packagereader.h"
#include "packagewriter.h"
#include "plainfile.h"
#include "projectfilefacts.h"
#include "replacingfile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageLogger>
#include <QTextStream>

#include <functional>
#include <optional>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr int checksumDigits = 32;

/// The lenient guard: see the header.
bool isWorthOpening(const QString &packetPath)
{
    return QFileInfo::exists(packetPath) || ProjectFileFacts::hasPackageExtension(packetPath);
}

bool hasOwnChecksum(const PackageReader &package, EngineerPacketInfo &info)
{
    return ZipPackageHandle::parseEngineerInfo(info, package.comment()) && info.strChecksum == package.checksum();
}

/// A null object where the comment is no JSON, or has fewer keys than a record.
QJsonObject recordIn(const QString &commentJson)
{
    constexpr int leastKeys = 3;
    const QJsonObject record = QJsonDocument::fromJson(commentJson.toLocal8Bit()).object();
    return record.size() < leastKeys ? QJsonObject() : record;
}

/// Half a surrogate pair becomes a question mark, and the text ends at its first zero.
QString throughUtf8(const QJsonValue &value)
{
    const QByteArray bytes = value.toString().toUtf8();
    return QString::fromUtf8(bytes.constData());
}

QString recordOf(const EngineerPacketInfo &info)
{
    const QJsonObject record{{ProjectFileFacts::checksumKey, info.strChecksum},
                             {ProjectFileFacts::projectNameKey, info.strProjectName},
                             {ProjectFileFacts::commentKey, info.strComment}};
    return QString::fromUtf8(QJsonDocument(record).toJson());
}

/// Gives the archive that `replacement` holds, which was written aside and has no comment yet, one, and checks what a
/// reader will find there.
bool writeVerifiedComment(ReplacingFile &replacement, const QString &comment)
{
    const QByteArray bytes = comment.toUtf8();
    QFile &file = replacement.file();
    const ArchiveComment old(file);
    return old.isFound() && old.bytes().isEmpty() && ArchiveComment::isReadable(bytes) && file.seek(old.offset()) &&
           file.write(ArchiveComment::tailWith(bytes)) == bytes.size() + ArchiveComment::lengthSize && file.flush() &&
           PackageReader(replacement.path()).comment() == QString::fromUtf8(bytes);
}

/// Replaces the comment of the package where it lies. `comment` is asked for it when the package is open; without one
/// the package stays as it is.
bool editComment(const QString &packetPath,
                 const std::function<std::optional<QByteArray>(QFile &package, const ArchiveComment &old)> &comment)
{
    InPlaceFile package(packetPath);
    if (!isWorthOpening(packetPath) || !package.open()) {
        return false;
    }
    const ArchiveComment old(package.file());
    // What the zip library takes for the comment must be what is going to be replaced.
    const PackageReader reader(packetPath);
    if (!old.isFound() || !reader.isOpen() || reader.comment() != QString::fromUtf8(old.bytes().constData())) {
        return false;
    }
    const std::optional<QByteArray> bytes = comment(package.file(), old);
    return bytes && ArchiveComment::isReadable(*bytes) &&
           package.replaceTail(old.offset(), ArchiveComment::tailWith(*bytes));
}

bool packAside(PackageWriter &writer, ReplacingFile &package,
               ReplacingFile::MissingFolders folders = ReplacingFile::Made)
{
    return writer.scan() && package.create(folders) && writer.write(package.file()) &&
           writer.isListedIn(package.path());
}

/// Packs the directory into `package`, with a record that `info` gives, and reads back what was written.
bool packVerified(const QString &dirPath, EngineerPacketInfo &info, ReplacingFile &package,
                  ReplacingFile::MissingFolders folders)
{
    useUtf8LocaleCodec();
    if (!QDir(dirPath).exists()) {
        return false;
    }
    PackageWriter writer(dirPath, info.strFilePath);
    if (!packAside(writer, package, folders)) {
        return false;
    }
    info.strChecksum = ZipPackageHandle::calcPacketChecksum(package.path());
    if (info.strChecksum.isEmpty()) {
        return false;
    }
    return writeVerifiedComment(package, recordOf(info)) && writer.isListedIn(package.path()) &&
           ZipPackageHandle::checkPacketChecksum(package.path());
}

/// The first of the entries that the package does not hold with its size; empty when it holds them all.
QString missingEntry(const QString &packetPath, const QHash<QString, qint64> &entries)
{
    const PackageReader package(packetPath);
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        if (package.entrySize(entry.key()) != entry.value()) {
            return entry.key();
        }
    }
    return QString();
}

void removeFiles(const QStringList &paths)
{
    for (const QString &path : paths) {
        QFile::remove(path);
    }
}

} // namespace

// docs/package-format.md says the state on disk after a crash at each of these steps.
bool ZipPackageHandle::compressEngineerPacket(const QString &dirPath, EngineerPacketInfo &info)
{
    ReplacingFile package(info.strFilePath, ReplacingFile::FlushedToDisk);
    return packVerified(dirPath, info, package, ReplacingFile::Made) && package.commit();
}

bool ZipPackageHandle::compressEngineerPacket(const QString &dirPath, EngineerPacketInfo &info,
                                              const PacketDemands &demands, QString &reason)
{
    ReplacingFile package(info.strFilePath, ReplacingFile::FlushedToDisk);
    if (!packVerified(dirPath, info, package, ReplacingFile::NotMade)) {
        reason = QStringLiteral("%1 cannot be packed into %2").arg(dirPath, info.strFilePath);
        return false;
    }
    const QString missing = missingEntry(package.path(), demands.entries);
    if (!missing.isEmpty()) {
        reason = QStringLiteral("%1 was taken out of %2 or changed before it was packed").arg(missing, dirPath);
        return false;
    }
    if (!package.commitInPlaceOf(demands.previous)) {
        reason = QStringLiteral("%1 cannot be put in its place, or another file has come there").arg(info.strFilePath);
        return false;
    }
    return true;
}

bool ZipPackageHandle::getZipFileEngineerInfo(EngineerPacketInfo &info)
{
    if (!QFileInfo::exists(info.strFilePath)) {
        QMessageLogger("src/plugins/projectfilecfg/zippackagehandle.cpp", __LINE__, Q_FUNC_INFO)
            .debug("File is not exist");
        return false;
    }
    return hasOwnChecksum(PackageReader(info.strFilePath), info);
}

bool ZipPackageHandle::isValidEngineerPacket(const QString &packetPath)
{
    EngineerPacketInfo info;
    return isWorthOpening(packetPath) && hasOwnChecksum(PackageReader(packetPath), info);
}

bool ZipPackageHandle::checkPacketChecksum(const QString &packetPath)
{
    useUtf8LocaleCodec();
    return QFileInfo::exists(packetPath) && checkPacketChecksum(PackageReader(packetPath));
}

// As it stands in the record, and so stricter than isValidEngineerPacket().
bool ZipPackageHandle::checkPacketChecksum(const PackageReader &package)
{
    const QJsonObject record = recordIn(package.comment());
    return !record.isEmpty() && record.value(ProjectFileFacts::checksumKey).toString() == package.checksum();
}

QStringList ZipPackageHandle::extractJsonFiles(const QString &packetPath, const QString &destDir)
{
    if (!QFileInfo::exists(packetPath) || !ProjectFileFacts::hasPackageExtension(packetPath)) {
        return QStringList();
    }
    return PackageReader(packetPath).extractJsonFiles(destDir);
}

QString ZipPackageHandle::extractFile(const QString &packetPath, const QString &entryName, const QString &destPath)
{
    return PackageReader(packetPath).extractFile(entryName, destPath);
}

QStringList ZipPackageHandle::getFileList(const QString &packetPath)
{
    return PackageReader(packetPath).fileList();
}

QString ZipPackageHandle::getZipComment(const QString &packetPath)
{
    useUtf8LocaleCodec();
    return isWorthOpening(packetPath) ? PackageReader(packetPath).comment() : QString();
}

bool ZipPackageHandle::setZipComment(const QString &packetPath, const QString &comment)
{
    useUtf8LocaleCodec();
    return editComment(packetPath, [&comment](QFile &, const ArchiveComment &) { return comment.toUtf8(); });
}

bool ZipPackageHandle::setEngineerInfo(EngineerPacketInfo &info)
{
    useUtf8LocaleCodec();
    EngineerPacketInfo edited = info;
    const auto record = [&edited](QFile &package, const ArchiveComment &old) -> std::optional<QByteArray> {
        // A record is as long with any checksum, and its length is all of it that the checksum may reach.
        edited.strChecksum = QString(checksumDigits, QLatin1Char('0'));
        const QByteArray end = old.endRecordWith(recordOf(edited).toUtf8());
        bool isComplete = false;
        edited.strChecksum =
            PackageChecksum::ofLeadingBytes(package, old.offset() + ArchiveComment::lengthSize, end, &isComplete);
        return isComplete ? std::make_optional(recordOf(edited).toUtf8()) : std::nullopt;
    };
    const bool isWritten = editComment(info.strFilePath, record);
    if (isWritten) {
        info = edited;
    }
    return isWritten;
}

bool ZipPackageHandle::parseEngineerInfo(EngineerPacketInfo &info, const QString &commentJson)
{
    useUtf8LocaleCodec();
    const QJsonObject record = recordIn(commentJson);
    if (record.isEmpty()) {
        return false;
    }
    info.strChecksum = throughUtf8(record.value(ProjectFileFacts::checksumKey));
    info.strProjectName = throughUtf8(record.value(ProjectFileFacts::projectNameKey));
    info.strComment = throughUtf8(record.value(ProjectFileFacts::commentKey));
    return true;
}

QString ZipPackageHandle::calcPacketChecksum(const QString &packetPath)
{
    return PackageReader(packetPath).checksum();
}

int ZipPackageHandle::compressDir(const QString &dirPath, const QString &packetPath, bool overwrite)
{
    enum { Packed = 0, NotPacked = 1, NoSuchDirectory = 2 };
    if (!QDir(dirPath).exists()) {
        return NoSuchDirectory;
    }
    if (!overwrite) {
        return NotPacked;
    }
    PackageWriter writer(dirPath, packetPath);
    ReplacingFile package(packetPath, ReplacingFile::FlushedToDisk);
    return packAside(writer, package) && package.commit() ? Packed : NotPacked;
}

int ZipPackageHandle::extractDir(const QString &packetPath, const QString &destDir, bool overwrite)
{
    enum { Extracted = 0, DestinationExists = 1, NoSuchPackage = 2, NothingExtracted = 3 };
    if (!QFileInfo::exists(packetPath)) {
        return NoSuchPackage;
    }
    if (QDir(destDir).exists() && !overwrite) {
        return DestinationExists;
    }
    PackageReader package(packetPath);
    QStringList writtenPaths;
    for (const QString &entryName : package.entries()) {
        const QString path = package.extractFile(entryName, QStringLiteral("%1/%2").arg(destDir, entryName));
        if (path.isEmpty()) {
            removeFiles(writtenPaths);
            return NothingExtracted;
        }
        writtenPaths.append(path);
    }
    return writtenPaths.isEmpty() ? NothingExtracted : Extracted;
}

bool ZipPackageHandle::writeTextChecksum(const QString &packetPath)
{
    useUtf8LocaleCodec();
    QFile file(packetPath);
    if (!isWorthOpening(packetPath) || !openPlainFile(file)) {
        return false;
    }
    const QByteArray text = QTextStream(&file).readAll().toLatin1();
    file.close();
    const QByteArray digest = QCryptographicHash::hash(text, QCryptographicHash::Md5);
    return setZipComment(packetPath, QString::fromLatin1(digest.toHex()));
}

} // namespace Internal
} // namespace ProjectFileCfg
