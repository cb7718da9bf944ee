#include "zippackagehandle.h"

#include "localecodec.h"
#include "packagereader.h"
#include "packagewriter.h"
#include "projectfilefacts.h"
#include "replacingfile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageLogger>
#include <QTextStream>

#include <quazip.h>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// Beyond this QuaZip no longer finds the end of the archive, and with it neither comment nor entries.
constexpr int maxCommentSize = 65513;

/// The lenient guard: see the header.
bool isWorthOpening(const QString &packetPath)
{
    return QFileInfo::exists(packetPath) || ProjectFileFacts::hasPackageExtension(packetPath);
}

bool hasOwnChecksum(const PackageReader &package, EngineerPacketInfo &info)
{
    return ZipPackageHandle::parseEngineerInfo(info, package.comment()) && info.strChecksum == package.checksum();
}

QString recordOf(const EngineerPacketInfo &info)
{
    const QJsonObject record{{ProjectFileFacts::checksumKey, info.strChecksum},
                             {ProjectFileFacts::projectNameKey, info.strProjectName},
                             {ProjectFileFacts::commentKey, info.strComment}};
    return QString::fromUtf8(QJsonDocument(record).toJson());
}

/// Makes `comment` the comment of the archive that `file` holds.
bool writeComment(QFile &file, const QString &comment)
{
    QuaZip zip(&file);
    zip.setAutoClose(false);
    if (!zip.open(QuaZip::mdAdd)) {
        return false;
    }
    // To QuaZip a null comment means: keep the old one.
    zip.setComment(comment.isNull() ? QLatin1String("") : comment);
    zip.close();
    // QuaZip never cuts: behind a shorter comment the tail of the old one would stay. A cut at the end of the file
    // would be none, but some file systems wait for the disk even so.
    return zip.getZipError() == UNZ_OK && file.flush() && (file.size() == file.pos() || file.resize(file.pos()));
}

/// Replaces the comment in `replacement`, an archive written aside, and checks what a reader will find there.
bool writeVerifiedComment(ReplacingFile &replacement, const QString &comment)
{
    const QString written = QString::fromUtf8(comment.toUtf8());
    return written.toUtf8().size() <= maxCommentSize && writeComment(replacement.file(), written) &&
           PackageReader(replacement.path()).comment() == written;
}

/// Copies the package aside and gives the copy the comment.
bool copyAsideWithComment(const QString &packetPath, const QString &comment, ReplacingFile &replacement)
{
    // QuaZip's add mode would make an empty archive of a file that is missing or is none. A package that may not
    // be written stays as it is, although its folder would let it be replaced.
    return isWorthOpening(packetPath) && PackageReader(packetPath).isOpen() && QFileInfo(packetPath).isWritable() &&
           replacement.createFrom(packetPath) && writeVerifiedComment(replacement, comment) &&
           PackageReader(replacement.path()).fileList() == PackageReader(packetPath).fileList();
}

bool packAside(PackageWriter &writer, ReplacingFile &package)
{
    return writer.scan() && package.create() && writer.write(package.file()) && writer.isListedIn(package.path());
}

void removeFiles(const QStringList &paths)
{
    for (const QString &path : paths) {
        QFile::remove(path);
    }
}

} // namespace

// docs/package-format.md says what a cut in each of these steps leaves behind.
bool ZipPackageHandle::compressEngineerPacket(const QString &dirPath, EngineerPacketInfo &info)
{
    useUtf8LocaleCodec();
    if (!QDir(dirPath).exists()) {
        return false;
    }
    PackageWriter writer(dirPath, info.strFilePath);
    ReplacingFile package(info.strFilePath, ReplacingFile::FlushedToDisk);
    if (!packAside(writer, package)) {
        return false;
    }
    info.strChecksum = calcPacketChecksum(package.path());
    if (info.strChecksum.isEmpty()) {
        return false;
    }
    return writeVerifiedComment(package, recordOf(info)) && writer.isListedIn(package.path()) &&
           checkPacketChecksum(package.path()) && package.commit();
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
    EngineerPacketInfo info;
    return QFileInfo::exists(packetPath) && hasOwnChecksum(PackageReader(packetPath), info);
}

bool ZipPackageHandle::checkPacketChecksum(const PackageReader &package)
{
    EngineerPacketInfo info;
    return hasOwnChecksum(package, info);
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

// docs/package-format.md says what a cut in each of these steps leaves behind.
bool ZipPackageHandle::setZipComment(const QString &packetPath, const QString &comment)
{
    useUtf8LocaleCodec();
    ReplacingFile package(packetPath, ReplacingFile::FlushedToDisk);
    return copyAsideWithComment(packetPath, comment, package) && package.commit();
}

bool ZipPackageHandle::setEngineerInfo(const EngineerPacketInfo &info)
{
    useUtf8LocaleCodec();
    ReplacingFile package(info.strFilePath, ReplacingFile::FlushedToDisk);
    return copyAsideWithComment(info.strFilePath, recordOf(info), package) && checkPacketChecksum(package.path()) &&
           package.commit();
}

bool ZipPackageHandle::parseEngineerInfo(EngineerPacketInfo &info, const QString &commentJson)
{
    useUtf8LocaleCodec();
    QJsonParseError error;
    const QJsonObject record = QJsonDocument::fromJson(commentJson.toLocal8Bit(), &error).object();
    constexpr int leastKeys = 3;
    if (error.error != QJsonParseError::NoError || record.size() < leastKeys) {
        return false;
    }
    info.strChecksum = record.value(ProjectFileFacts::checksumKey).toString();
    info.strProjectName = record.value(ProjectFileFacts::projectNameKey).toString();
    info.strComment = record.value(ProjectFileFacts::commentKey).toString();
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
    for (const QString &entryName : package.fileList()) {
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
    if (!isWorthOpening(packetPath) || !file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray text = QTextStream(&file).readAll().toLatin1();
    file.close();
    const QByteArray digest = QCryptographicHash::hash(text, QCryptographicHash::Md5);
    return setZipComment(packetPath, QString::fromLatin1(digest.toHex()));
}

} // namespace Internal
} // namespace ProjectFileCfg
