#include "packagereader.h"

#include "localecodec.h"
#include "packagechecksum.h"
#include "packagefile.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "replacingfile.h"
#include "streamcopy.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <quazip.h>
#include <quazipfile.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace ProjectFileCfg {
namespace Internal {

using namespace PackageLayout;
using namespace PackageLimits;

namespace {

/// False for links, devices and the like, and for what only a password opens. Archives that were not made on
/// Unix carry no type.
bool isOrdinary(const unz_file_info64 &info, bool isFolder)
{
    constexpr quint32 typeMask = 0170000;
    constexpr quint32 regularFile = 0100000;
    constexpr quint32 directory = 0040000;
    constexpr quint32 encrypted = 1;
    const quint32 type = quint32(info.external_fa >> 16) & typeMask;
    return (info.flag & encrypted) == 0 && (type == 0 || type == regularFile || (type == directory && isFolder));
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
    /// As the archive has them, and as text.
    QByteArrayList rawNames;
    QStringList names;
    /// In the same order, and by name, so that taking an entry does not walk over those before it. Of two of the same
    /// name the first counts.
    std::vector<Entry> all;
    QHash<QString, Entry> entries;
    /// Of all names, of all contents, and of these as they are packed.
    qint64 namesLength = 0;
    quint64 contentSize = 0;
    quint64 packedSize = 0;

    /// False for what no honest archive says of itself: it was made to fill the memory or the disk, with contents
    /// that no file of `archiveSize` holds unless the entries share them.
    bool isCredible(qint64 archiveSize) const
    {
        return rawNames.size() <= maxEntries && namesLength <= maxNamesLength &&
               contentSize <= quint64(maxContentSize) && packedSize <= quint64(archiveSize);
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
    QStringList counting;
    QSet<QString> paths;
    for (const QString &name : fileList()) {
        const QString path = plainName(name);
        if (!paths.contains(path)) {
            paths.insert(path);
            counting.append(name);
        }
    }
    return counting;
}

qint64 PackageReader::maxSizeOf(const QString &entryName)
{
    return isDescription(entryName) ? maxDescriptionSize : maxEntrySize;
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
    const QStringList names = namesOf(m_directory->rawNames);
    if (!isSound || m_zip->getZipError() != UNZ_OK || names.size() != m_directory->rawNames.size()) {
        *m_directory = Directory();
        return *m_directory;
    }
    for (int index = 0; index < names.size(); ++index) {
        if (!m_directory->entries.contains(names.at(index))) {
            m_directory->entries.insert(names.at(index), m_directory->all.at(std::size_t(index)));
        }
    }
    m_directory->names = names;
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
    name.truncate(int(info.size_filename));
    name.squeeze();
    entry.size = qint64(info.uncompressed_size);
    entry.isOrdinary = isOrdinary(info, name.endsWith('/'));
    m_directory->rawNames.append(name);
    m_directory->all.push_back(entry);
    m_directory->namesLength += name.size();
    // Many of the largest numbers must not add up to a small one.
    m_directory->contentSize += std::min<quint64>(info.uncompressed_size, maxContentSize + 1);
    m_directory->packedSize += std::min<quint64>(info.compressed_size, maxContentSize + 1);
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
    for (const QString &entryName : entries()) {
        if (isDescription(entryName)) {
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
