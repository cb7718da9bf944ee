// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "zippackagehandle.h"

#include "archivecomment.h"
#include "inplacefile.h"
#include "localecodec.h"
#include "packagechecksum.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "packagewriter.h"
#include "plainfile.h"
#include "reason.h"
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

// The keys of the info record.
constexpr QLatin1String checksumKey = PackageLayout::literal("Checksum");
constexpr QLatin1String projectNameKey = PackageLayout::literal("projectName");
constexpr QLatin1String commentKey = PackageLayout::literal("comment");

constexpr int checksumDigits = 32;

/// Lenient on purpose: see getZipComment().
bool isWorthOpening(const QString &packetPath)
{
    return QFileInfo::exists(packetPath) || PackageLayout::hasPackageExtension(packetPath);
}

bool hasChecksum(const PackageReader &package, const QString &checksum, QString *reason)
{
    const QString found = package.checksum();
    return found == checksum ||
           failBecause(reason,
                       QStringLiteral("the package's checksum is %1, its record says \"%2\"").arg(found, checksum));
}

bool hasNoRecord(QString *reason)
{
    return failBecause(reason, QStringLiteral("the archive's comment is not an info record"));
}

/// Prefixes the cause with the path, unless it names the path already.
bool failWith(QString *reason, const QString &path, const QString &cause)
{
    return failBecause(reason, cause.contains(path) ? cause : QStringLiteral("%1: %2").arg(path, cause));
}

/// An empty object if the text is not a JSON object, or has fewer keys than a record.
QJsonObject recordIn(const QString &recordJson)
{
    useUtf8LocaleCodec();
    constexpr int leastKeys = 3;
    const QJsonObject record = QJsonDocument::fromJson(recordJson.toLocal8Bit()).object();
    return record.size() < leastKeys ? QJsonObject() : record;
}

/// An unpaired surrogate becomes "?", and the text ends at its first NUL.
QString throughUtf8(const QJsonValue &value)
{
    const QByteArray bytes = value.toString().toUtf8();
    return QString::fromUtf8(bytes.constData());
}

/// Why ArchiveComment::isReadable() is false.
QString unreadableRecord()
{
    return QStringLiteral("the record has more than %1 bytes, or contains an end-of-archive signature")
        .arg(PackageLimits::maxArchiveCommentSize);
}

QString recordOf(const EngineerPacketInfo &info)
{
    const QJsonObject record{
        {checksumKey, info.strChecksum}, {projectNameKey, info.strProjectName}, {commentKey, info.strComment}};
    // Indented, as in existing packages.
    return QString::fromUtf8(QJsonDocument(record).toJson());
}

/// Appends the record to the archive in `package`, which has no comment yet. Sets the checksum in `info`.
bool writeRecord(ReplacingFile &package, EngineerPacketInfo &info, QString *reason)
{
    const auto cannotWrite = [&info, reason](const QString &cause) {
        return failBecause(reason, QStringLiteral("cannot write the record of %1: %2").arg(info.strFilePath, cause));
    };
    QFile &file = package.file();
    const ArchiveComment none(file);
    bool isComplete = false;
    info.strChecksum = PackageChecksum::ofLeadingBytes(file, file.size(), QByteArray(), &isComplete);
    const QByteArray record = recordOf(info).toUtf8();
    if (!ArchiveComment::isReadable(record))
        return cannotWrite(unreadableRecord());
    if (!isComplete || !none.isFound() || !none.bytes().isEmpty())
        return cannotWrite(QStringLiteral("the file written is not an archive"));
    const QByteArray tail = ArchiveComment::tailWith(record);
    return (file.seek(none.offset()) && file.write(tail) == tail.size() && file.flush()) ||
           cannotWrite(writeError(file));
}

/// True if the package has all of these entries with these sizes.
bool holdsAll(const PackageReader &package, const QHash<QString, qint64> &entries, const QString &dirPath,
              QString *reason)
{
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        if (package.entrySize(entry.key()) != entry.value())
            return failBecause(
                reason,
                QStringLiteral("%1 was removed from %2 or changed before it was packed").arg(entry.key(), dirPath));
    }
    return true;
}

/// Packs the directory into `package` with a record from `info`, and verifies the file by reading it back.
bool packVerified(const QString &dirPath, EngineerPacketInfo &info, ReplacingFile &package,
                  ReplacingFile::MissingFolders folders, const QHash<QString, qint64> &demanded, QString *reason)
{
    PackageWriter writer(dirPath, info.strFilePath);
    if (!writer.scan(reason) || !package.create(folders, reason) || !writer.write(package.file(), reason) ||
        !writeRecord(package, info, reason))
        return false;
    QString cause;
    const PackageReader written(package.path());
    const bool isAsWritten =
        written.isOpen(&cause) &&
        (written.archiveComment() == recordOf(info) || failBecause(&cause, QStringLiteral("its record differs"))) &&
        writer.isListedIn(written, &cause) && ZipPackageHandle::checkPacketChecksum(written, &cause);
    if (!isAsWritten)
        return failBecause(reason, QStringLiteral("%1 does not read back as written: %2").arg(info.strFilePath, cause));
    return holdsAll(written, demanded, dirPath, reason);
}

/// Replaces the archive's comment in place. `comment` is called with the open, locked package; if it returns none, the
/// package is unchanged.
bool editArchiveComment(
    const QString &packetPath,
    const std::function<std::optional<QByteArray>(QFile &package, const ArchiveComment &old)> &comment, QString *reason)
{
    useUtf8LocaleCodec();
    InPlaceFile package(packetPath);
    if (!isWorthOpening(packetPath))
        return failBecause(reason, QStringLiteral("%1 does not exist").arg(packetPath));
    if (!package.open(reason))
        return false;
    const ArchiveComment old(package.file());
    // The zip library must find the same comment as ArchiveComment.
    const PackageReader reader(packetPath);
    if (!reader.isOpen(reason))
        return false;
    if (!old.isFound() || reader.archiveComment() != QString::fromUtf8(old.bytes().constData()))
        return failBecause(reason, QStringLiteral("cannot replace the comment of %1: the archive is zip64 or spans "
                                                  "several disks, or something follows its comment")
                                       .arg(packetPath));
    const std::optional<QByteArray> bytes = comment(package.file(), old);
    if (!bytes)
        return failBecause(reason, QStringLiteral("%1 cannot be read completely").arg(packetPath));
    if (!ArchiveComment::isReadable(*bytes))
        return failBecause(reason, QStringLiteral("%1: %2").arg(packetPath, unreadableRecord()));
    return package.replaceTail(old.offset(), ArchiveComment::tailWith(*bytes), reason);
}

void removeFiles(const QStringList &paths)
{
    for (const QString &path : paths)
        QFile::remove(path);
}

} // namespace

// docs/package-format.md lists the state on disk after a crash at each of these steps.
bool ZipPackageHandle::compressEngineerPacket(const QString &dirPath, EngineerPacketInfo &info)
{
    ReplacingFile package(info.strFilePath, ReplacingFile::Durability::FlushedToDisk);
    return packVerified(dirPath, info, package, ReplacingFile::MissingFolders::Made, {}, nullptr) && package.commit();
}

bool ZipPackageHandle::compressEngineerPacket(const QString &dirPath, EngineerPacketInfo &info,
                                              const PacketDemands &demands, QString *reason)
{
    ReplacingFile package(info.strFilePath, ReplacingFile::Durability::FlushedToDisk);
    return packVerified(dirPath, info, package, ReplacingFile::MissingFolders::NotMade, demands.entries, reason) &&
           package.commitInPlaceOf(demands.previous, reason);
}

bool ZipPackageHandle::getZipFileEngineerInfo(EngineerPacketInfo &info)
{
    return getZipFileEngineerInfo(info, nullptr);
}

bool ZipPackageHandle::getZipFileEngineerInfo(EngineerPacketInfo &info, QString *reason)
{
    if (!QFileInfo::exists(info.strFilePath)) {
        // Not qDebug(): the location must not depend on the build's folder.
        QMessageLogger("src/plugins/projectfilecfg/zippackagehandle.cpp", __LINE__, Q_FUNC_INFO)
            .debug("File is not exist");
        return failBecause(reason, QStringLiteral("%1 does not exist").arg(info.strFilePath));
    }
    QString cause;
    return getZipFileEngineerInfo(PackageReader(info.strFilePath), info, &cause) ||
           failWith(reason, info.strFilePath, cause);
}

bool ZipPackageHandle::getZipFileEngineerInfo(const PackageReader &package, EngineerPacketInfo &info, QString *reason)
{
    if (!package.isOpen(reason))
        return false;
    if (!parseEngineerInfo(info, package.archiveComment()))
        return hasNoRecord(reason);
    return hasChecksum(package, info.strChecksum, reason);
}

bool ZipPackageHandle::isValidEngineerPacket(const QString &packetPath)
{
    return isValidEngineerPacket(packetPath, nullptr);
}

bool ZipPackageHandle::isValidEngineerPacket(const QString &packetPath, QString *reason)
{
    if (!isWorthOpening(packetPath))
        return failBecause(reason, QStringLiteral("%1 does not exist").arg(packetPath));
    EngineerPacketInfo info;
    QString cause;
    return getZipFileEngineerInfo(PackageReader(packetPath), info, &cause) || failWith(reason, packetPath, cause);
}

bool ZipPackageHandle::checkPacketChecksum(const QString &packetPath)
{
    return checkPacketChecksum(packetPath, nullptr);
}

bool ZipPackageHandle::checkPacketChecksum(const QString &packetPath, QString *reason)
{
    QString cause;
    return checkPacketChecksum(PackageReader(packetPath), &cause) || failWith(reason, packetPath, cause);
}

// Compares the unconverted value, without throughUtf8(): stricter than isValidEngineerPacket().
bool ZipPackageHandle::checkPacketChecksum(const PackageReader &package, QString *reason)
{
    if (!package.isOpen(reason))
        return false;
    const QJsonObject record = recordIn(package.archiveComment());
    if (record.isEmpty())
        return hasNoRecord(reason);
    return hasChecksum(package, record.value(checksumKey).toString(), reason);
}

QStringList ZipPackageHandle::extractJsonFiles(const QString &packetPath, const QString &destDir)
{
    if (!QFileInfo::exists(packetPath) || !PackageLayout::hasPackageExtension(packetPath))
        return QStringList();
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
    const PackageReader package(packetPath);
    return isWorthOpening(packetPath) ? package.archiveComment() : QString();
}

bool ZipPackageHandle::setZipComment(const QString &packetPath, const QString &comment)
{
    return editArchiveComment(
        packetPath, [&comment](QFile &, const ArchiveComment &) { return comment.toUtf8(); }, nullptr);
}

bool ZipPackageHandle::setEngineerInfo(EngineerPacketInfo &info, QString *reason)
{
    EngineerPacketInfo edited = info;
    const auto record = [&edited](QFile &package, const ArchiveComment &old) -> std::optional<QByteArray> {
        // The length of the record does not depend on the checksum, and of the record, the checksum can cover only the
        // length.
        edited.strChecksum = QString(checksumDigits, QLatin1Char('0'));
        const QByteArray end = old.endRecordWith(recordOf(edited).toUtf8());
        bool isComplete = false;
        edited.strChecksum =
            PackageChecksum::ofLeadingBytes(package, old.offset() + ArchiveComment::lengthSize, end, &isComplete);
        return isComplete ? std::make_optional(recordOf(edited).toUtf8()) : std::nullopt;
    };
    const bool isWritten = editArchiveComment(info.strFilePath, record, reason);
    if (isWritten)
        info = edited;
    return isWritten;
}

bool ZipPackageHandle::parseEngineerInfo(EngineerPacketInfo &info, const QString &recordJson)
{
    const QJsonObject record = recordIn(recordJson);
    if (record.isEmpty())
        return false;
    info.strChecksum = throughUtf8(record.value(checksumKey));
    info.strProjectName = throughUtf8(record.value(projectNameKey));
    info.strComment = throughUtf8(record.value(commentKey));
    return true;
}

QString ZipPackageHandle::calcPacketChecksum(const QString &packetPath)
{
    return PackageReader(packetPath).checksum();
}

int ZipPackageHandle::compressDir(const QString &dirPath, const QString &packetPath, bool overwrite)
{
    constexpr int packed = 0;
    constexpr int notPacked = 1;
    constexpr int noSuchDirectory = 2;
    if (!QDir(dirPath).exists())
        return noSuchDirectory;
    if (!overwrite)
        return notPacked;
    PackageWriter writer(dirPath, packetPath);
    ReplacingFile package(packetPath, ReplacingFile::Durability::FlushedToDisk);
    const bool isPacked = writer.scan() && package.create() && writer.write(package.file()) &&
                          writer.isListedIn(PackageReader(package.path())) && package.commit();
    return isPacked ? packed : notPacked;
}

int ZipPackageHandle::extractDir(const QString &packetPath, const QString &destDir, bool overwrite)
{
    constexpr int extracted = 0;
    constexpr int destinationExists = 1;
    constexpr int noSuchPackage = 2;
    constexpr int nothingExtracted = 3;
    if (!QFileInfo::exists(packetPath))
        return noSuchPackage;
    if (QDir(destDir).exists() && !overwrite)
        return destinationExists;
    PackageReader package(packetPath);
    QStringList writtenPaths;
    for (const QString &entryName : package.entries()) {
        const QString path = package.extractFile(entryName, QStringLiteral("%1/%2").arg(destDir, entryName));
        if (path.isEmpty()) {
            removeFiles(writtenPaths);
            return nothingExtracted;
        }
        writtenPaths.append(path);
    }
    return writtenPaths.isEmpty() ? nothingExtracted : extracted;
}

bool ZipPackageHandle::writeTextChecksum(const QString &packetPath)
{
    QFile file(packetPath);
    // QTextStream decodes with the locale codec.
    useUtf8LocaleCodec();
    if (!isWorthOpening(packetPath) || !openPlainFile(file))
        return false;
    const QByteArray text = QTextStream(&file).readAll().toLatin1();
    file.close();
    const QByteArray digest = QCryptographicHash::hash(text, QCryptographicHash::Md5);
    return setZipComment(packetPath, QString::fromLatin1(digest.toHex()));
}

} // namespace Internal
} // namespace ProjectFileCfg
