#include "packagereader.h"

#include "localecodec.h"
#include "packagechecksum.h"
#include "packagefile.h"
#include "projectfilefacts.h"
#include "replacingfile.h"
#include "streamcopy.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QHash>

#include <quazip.h>
#include <quazipfile.h>

#include <algorithm>
#include <filesystem>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr qint64 maxDescriptionSize = 64LL * 1024 * 1024;
constexpr qint64 maxEntrySize = 1024LL * 1024 * 1024;
/// In characters, of all names together: 256 for each of as many entries as there can be.
constexpr int maxNamesLength = 16 * 1024 * 1024;
constexpr int maxDepth = 64;
constexpr int maxEntries = 65535;
/// One counts; the user interface waits for all.
constexpr int maxDescriptions = 1000;

bool isFolder(const QString &entryName)
{
    return entryName.endsWith(QLatin1Char('/'));
}

bool isJson(const QString &entryName)
{
    return entryName.endsWith(QLatin1String(".json"), Qt::CaseInsensitive);
}

bool hasDriveLetter(const QString &name)
{
    return name.size() > 1 && name.at(1) == QLatin1Char(':') && name.at(0).isLetter();
}

/// Judges the name as every platform might read it: packages travel.
bool isSafeName(const QString &entryName)
{
    if (entryName.isEmpty() || entryName.contains(QChar(QChar::Null))) {
        return false;
    }
    const QString name = QString(entryName).replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (name.startsWith(QLatin1Char('/'))) {
        return false;
    }
    const QStringList parts = name.split(QLatin1Char('/'));
    // A file called "." would be written aside in the folder above.
    return parts.size() <= maxDepth && parts.last() != QLatin1String(".") &&
           std::none_of(parts.begin(), parts.end(), [](const QString &part) {
               return part.trimmed() == QLatin1String("..") || hasDriveLetter(part);
           });
}

bool isCalledLikeAFolder(const QString &name)
{
    using namespace ProjectFileFacts;
    return name.compare(backgroundFolder, Qt::CaseInsensitive) == 0 ||
           name.compare(logoFolder, Qt::CaseInsensitive) == 0 || name.compare(presetFolder, Qt::CaseInsensitive) == 0;
}

bool isCalledLikeAFile(const QString &name)
{
    return isJson(name) || name.endsWith(QLatin1String(".png"), Qt::CaseInsensitive) ||
           name.endsWith(QLatin1String(".RPst"), Qt::CaseInsensitive);
}

/// A folder that is called like the files of packages, or a file that is called like their folders, would be in the
/// way of every package that is extracted to the same place later.
bool blocksLaterPackages(const QString &entryName)
{
    const QString name = QDir::cleanPath(entryName);
    if (!isFolder(entryName) && isCalledLikeAFolder(name)) {
        return true;
    }
    const QStringList folders = name.split(QLatin1Char('/')).mid(0, name.count(QLatin1Char('/')) + isFolder(entryName));
    return std::any_of(folders.begin(), folders.end(), isCalledLikeAFile);
}

/// False for links, devices and the like, and for what only a password opens. Archives that were not made on
/// Unix carry no type.
bool isOrdinary(const unz_file_info64 &info, const QString &entryName)
{
    constexpr quint32 typeMask = 0170000;
    constexpr quint32 regularFile = 0100000;
    constexpr quint32 directory = 0040000;
    constexpr quint32 encrypted = 1;
    const quint32 type = quint32(info.external_fa >> 16) & typeMask;
    return (info.flag & encrypted) == 0 &&
           (type == 0 || type == regularFile || (type == directory && isFolder(entryName)));
}

bool isSymbolicLink(const QString &path)
{
    return QFileInfo(path).isSymLink();
}

qint64 freeSpace(const QString &folder)
{
    std::error_code error;
#ifdef Q_OS_WIN
    const auto space = std::filesystem::space(folder.toStdWString(), error);
#else
    const auto space = std::filesystem::space(QFile::encodeName(folder).toStdString(), error);
#endif
    return error ? maxEntrySize : qint64(std::min<std::uintmax_t>(space.available, maxEntrySize));
}

} // namespace

struct PackageReader::Entry
{
    unz64_file_pos position{};
    qint64 size = 0;
    bool isOrdinary = false;
};

struct PackageReader::Directory
{
    QStringList names;
    /// So that taking an entry does not walk over those before it. Of two of the same name the first counts.
    QHash<QString, Entry> entries;
    /// Of all names, of all contents, and of these as they are packed.
    qint64 namesLength = 0;
    quint64 contentSize = 0;
    quint64 packedSize = 0;

    /// False for what no honest archive says of itself: it was made to fill the memory or the disk, with contents
    /// that no file of `archiveSize` holds unless the entries share them.
    bool isCredible(qint64 archiveSize) const
    {
        return names.size() <= maxEntries && namesLength <= maxNamesLength && contentSize <= quint64(maxContentSize) &&
               packedSize <= quint64(archiveSize);
    }
};

PackageReader::PackageReader(const QString &packetPath)
    : PackageReader(std::make_unique<PackageFile>(packetPath))
{}

PackageReader::PackageReader(std::unique_ptr<QFile> packet)
    : PackageReader(std::make_unique<PackageFile>(std::move(packet)))
{}

PackageReader::PackageReader(std::unique_ptr<PackageFile> file)
    : m_file(std::move(file))
{
    useUtf8LocaleCodec();
    m_zip.reset(new QuaZip(m_file.get()));
    m_zip->setAutoClose(false);
    if (m_file->open(QIODevice::ReadOnly)) {
        m_zip->open(QuaZip::mdUnzip);
    }
}

PackageReader::~PackageReader() = default;

bool PackageReader::isOpen() const
{
    return m_zip->isOpen();
}

QStringList PackageReader::fileList() const
{
    return directory().names;
}

QStringList PackageReader::entries() const
{
    QStringList names = fileList();
    names.removeDuplicates();
    return names;
}

qint64 PackageReader::maxSizeOf(const QString &entryName)
{
    return isJson(entryName) ? maxDescriptionSize : maxEntrySize;
}

qint64 PackageReader::entrySize(const QString &entryName) const
{
    const auto entry = directory().entries.constFind(entryName);
    return entry == directory().entries.constEnd() ? -1 : entry->size;
}

// Straight from the archive's bytes: to QuaZip a zero byte ends it or does not, as the first entry says; where that one
// cannot be read, as chance would have it.
QString PackageReader::comment() const
{
    unz_global_info64 info;
    if (!m_zip->isOpen() || unzGetGlobalInfo64(m_zip->getUnzFile(), &info) != UNZ_OK) {
        return QString();
    }
    QByteArray comment(int(info.size_comment), '\0');
    return unzGetGlobalComment(m_zip->getUnzFile(), comment.data(), info.size_comment) < 0
               ? QString()
               : QString::fromUtf8(comment.constData());
}

QString PackageReader::checksum() const
{
    return isOpen() ? PackageChecksum::ofLeadingBytes(m_file->file(), m_file->size() - comment().toUtf8().size())
                    : QString();
}

const PackageReader::Directory &PackageReader::directory() const
{
    if (m_directory) {
        return *m_directory;
    }
    m_directory.reset(new Directory);
    const qint64 archiveSize = m_file->size();
    bool isSound = true;
    for (bool more = m_zip->isOpen() && m_zip->goToFirstFile(); more && isSound; more = m_zip->goToNextFile()) {
        isSound = readCurrentHeader() && m_directory->isCredible(archiveSize);
    }
    if (!isSound || m_zip->getZipError() != UNZ_OK) {
        *m_directory = Directory();
    }
    return *m_directory;
}

// Straight from the archive's bytes: QuaZip would read each header twice and cut a name at a NUL.
bool PackageReader::readCurrentHeader() const
{
    constexpr int longestName = 0xFFFF;
    QByteArray name(longestName, Qt::Uninitialized);
    unz_file_info64 info;
    Entry entry;
    if (unzGetCurrentFileInfo64(m_zip->getUnzFile(), &info, name.data(), longestName, nullptr, 0, nullptr, 0) !=
            UNZ_OK ||
        unzGetFilePos64(m_zip->getUnzFile(), &entry.position) != UNZ_OK) {
        return false;
    }
    const QString entryName = QString::fromUtf8(name.constData(), int(info.size_filename));
    entry.size = qint64(info.uncompressed_size);
    entry.isOrdinary = isOrdinary(info, entryName);
    m_directory->names.append(entryName);
    m_directory->namesLength += entryName.size();
    // Many of the largest numbers must not add up to a small one.
    m_directory->contentSize += std::min<quint64>(info.uncompressed_size, maxContentSize + 1);
    m_directory->packedSize += std::min<quint64>(info.compressed_size, maxContentSize + 1);
    if (!m_directory->entries.contains(entryName)) {
        m_directory->entries.insert(entryName, entry);
    }
    return true;
}

// The caller's own folder may be reached through a link; what the archive adds to it may not.
bool PackageReader::leadsThroughLink(const QString &entryName, const QString &destPath)
{
    // Both without dots and doubled separators, behind which a folder would not be recognised.
    const QString path = QDir::cleanPath(QFileInfo(destPath).absoluteFilePath());
    const QString relativePath = QLatin1Char('/') + QDir::cleanPath(entryName);
    const int callersOwn = path.endsWith(relativePath) ? path.size() - relativePath.size() : path.size();
    const QPair<int, QString> folder(callersOwn, path.left(path.lastIndexOf(QLatin1Char('/'))));
    if (folder != m_plainFolder) {
        for (int end = path.indexOf(QLatin1Char('/'), callersOwn + 1); end >= 0;
             end = path.indexOf(QLatin1Char('/'), end + 1)) {
            if (isSymbolicLink(path.left(end))) {
                return true;
            }
        }
        m_plainFolder = folder;
    }
    return isSymbolicLink(path);
}

QString PackageReader::extractFile(const QString &entryName, const QString &destPath)
{
    const QString target = destPath.isEmpty() ? entryName : destPath;
    const auto entry = directory().entries.constFind(entryName);
    if (entry == directory().entries.constEnd() || !entry->isOrdinary || !isSafeName(entryName) ||
        blocksLaterPackages(entryName) || leadsThroughLink(entryName, target)) {
        return QString();
    }
    const bool extracted =
        isFolder(entryName) ? QDir().mkpath(target) : writeEntry(*entry, target, maxSizeOf(entryName));
    return extracted ? QFileInfo(target).absoluteFilePath() : QString();
}

bool PackageReader::goTo(const Entry &entry)
{
    // QuaZip reads only where it believes that it stands on an entry; behind the last one it does not.
    unz64_file_pos position = entry.position;
    return (m_zip->hasCurrentFile() || m_zip->goToFirstFile()) &&
           unzGoToFilePos64(m_zip->getUnzFile(), &position) == UNZ_OK;
}

bool PackageReader::copyEntry(const Entry &entry, QIODevice &destination, qint64 limit)
{
    QuaZipFile source(m_zip.get());
    qint64 copied = 0;
    if (entry.size > limit || !goTo(entry) || !source.open(QIODevice::ReadOnly) ||
        !copyStream(source, destination, limit, &copied) || copied != entry.size)
        return false;
    // Closing compares the checksum of what was read.
    source.close();
    return source.getZipError() == UNZ_OK;
}

bool PackageReader::writeEntry(const Entry &entry, const QString &destPath, qint64 limit)
{
    if (entry.size > limit || isFolder(destPath))
        return false;
    const QString folderPath = QFileInfo(destPath).absolutePath();
    if (!m_tidiedFolders.contains(folderPath)) {
        ReplacingFile::removeStaleFragments(folderPath);
        m_tidiedFolders.insert(folderPath);
    }
    // Of thousands of small files each would be asked for, and on a full disk it fails soon enough.
    constexpr qint64 smallSize = 64 * 1024;
    const qint64 room = entry.size > smallSize ? freeSpace(folderPath) : smallSize;
    ReplacingFile destination(destPath, ReplacingFile::NotFlushed);
    return destination.create() && copyEntry(entry, destination.file(), std::min(limit, room)) && destination.commit();
}

QByteArray PackageReader::read(const QString &entryName, qint64 limit)
{
    QBuffer content;
    content.open(QIODevice::WriteOnly);
    return read(entryName, content, limit) ? content.data() : QByteArray();
}

bool PackageReader::read(const QString &entryName, QIODevice &destination, qint64 limit)
{
    const auto entry = directory().entries.constFind(entryName);
    return entry != directory().entries.constEnd() && entry->isOrdinary && isSafeName(entryName) &&
           copyEntry(*entry, destination, std::min(limit, maxEntrySize));
}

QStringList PackageReader::extractJsonFiles(const QString &destDir)
{
    QStringList writtenPaths;
    qint64 size = 0;
    for (const QString &entryName : fileList()) {
        if (isJson(entryName)) {
            size += directory().entries.value(entryName).size;
            const bool isWithinLimits = size <= maxDescriptionSize && writtenPaths.size() < maxDescriptions;
            writtenPaths.append(isWithinLimits ? extractFile(entryName, QStringLiteral("%1/%2").arg(destDir, entryName))
                                               : QString());
        }
    }
    return writtenPaths;
}

} // namespace Internal
} // namespace ProjectFileCfg
