// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagereader.h"

#include "dropbehind.h"
#include "packagechecksum.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "pagecache.h"
#include "readcachedevice.h"
#include "reason.h"
#include "replacingfile.h"
#include "streamcopy.h"
#include "utf8zip.h"
#include "zipformat.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <quazipfile.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace ProjectFileCfg {
namespace Internal {

using namespace PackageLayout;
using namespace PackageLimits;

namespace {

/// False for links and special files, and for encrypted entries. Archives that were not made on Unix have no file type.
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

/// In bytes, at most maxEntrySize; also maxEntrySize if the system reports an error.
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
    qint64 nSize = 0;
    qint64 nPackedSize = 0;
    quint32 nCrc = 0;
    quint16 nMethod = 0;
    bool bOrdinary = false;
};

struct PackageReader::Directory
{
    bool bSound = true;
    /// As stored in the archive, and decoded by namesOf().
    QByteArrayList listRawNames;
    QStringList listNames;
    /// In the same order, and by name, since the zip library would search linearly. Of two entries with the same name,
    /// the first is used.
    std::vector<Entry> all;
    QHash<QString, Entry> entries;
    /// Bytes of all names, of all contents, and of all packed contents.
    qint64 nNamesLength = 0;
    quint64 nContentSize = 0;
    quint64 nPackedSize = 0;

    /// False for a zip bomb, which is made to fill the memory or the disk: one beyond PackageLimits, or with more
    /// packed content than `archiveSize` (its entries share content).
    bool isCredible(qint64 archiveSize) const
    {
        return listRawNames.size() <= maxEntries && nNamesLength <= maxNamesLength &&
               nContentSize <= quint64(maxContentSize) && nPackedSize <= quint64(archiveSize);
    }
};

PackageReader::PackageReader(const QString &packetPath)
    : PackageReader(std::make_unique<ReadCacheDevice>(packetPath))
{}

PackageReader::PackageReader(std::unique_ptr<QFile> packet)
    : PackageReader(std::make_unique<ReadCacheDevice>(std::move(packet)))
{}

PackageReader::PackageReader(std::unique_ptr<ReadCacheDevice> file)
    : m_pFile(std::move(file))
    , m_pZip(std::make_unique<Utf8Zip>(*m_pFile))
{
    if (!m_pFile->open(QIODevice::ReadOnly))
        m_strOpenError = m_pFile->errorString();
    else if (!m_pZip->open(QuaZip::mdUnzip))
        m_strOpenError = QStringLiteral("%1 is not a zip archive, or is incomplete").arg(m_pFile->path());
}

PackageReader::~PackageReader() = default;

bool PackageReader::isOpen(QString *reason) const
{
    return m_pZip->isOpen() || failBecause(reason, m_strOpenError);
}

QStringList PackageReader::fileList() const
{
    return directory().listNames;
}

bool PackageReader::isListable(QString *reason) const
{
    return isOpen(reason) && (directory().bSound ||
                              failBecause(reason, QStringLiteral("%1: its directory is damaged").arg(m_pFile->path())));
}

QFile &PackageReader::file() const
{
    return m_pFile->file();
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
    return entry == directory().entries.constEnd() ? -1 : entry->nSize;
}

// Not QuaZip::getComment(): there, the first entry decides whether a zero byte ends the comment, which is undefined if
// that entry cannot be read.
QString PackageReader::archiveComment() const
{
    unz_global_info64 info;
    if (!m_pZip->isOpen() || unzGetGlobalInfo64(m_pZip->getUnzFile(), &info) != UNZ_OK)
        return QString();
    QByteArray comment(int(info.size_comment), '\0');
    return unzGetGlobalComment(m_pZip->getUnzFile(), comment.data(), info.size_comment) < 0
               ? QString()
               : QString::fromUtf8(comment.constData());
}

// Leaves out as many bytes as the comment's text has in UTF-8, not the length stated in the archive: existing packages
// have always been checked like this.
QString PackageReader::checksum() const
{
    return isOpen()
               ? PackageChecksum::ofLeadingBytes(m_pFile->file(), m_pFile->size() - archiveComment().toUtf8().size())
               : QString();
}

const PackageReader::Directory &PackageReader::directory() const
{
    if (m_pDirectory)
        return *m_pDirectory;
    m_pDirectory.reset(new Directory);
    const qint64 archiveSize = m_pFile->size();
    bool isSound = true;
    for (bool more = m_pZip->isOpen() && m_pZip->goToFirstFile(); more && isSound; more = m_pZip->goToNextFile())
        isSound = readCurrentHeader() && m_pDirectory->isCredible(archiveSize);
    const QStringList names = namesOf(m_pDirectory->listRawNames);
    if (!isSound || m_pZip->getZipError() != UNZ_OK || names.size() != m_pDirectory->listRawNames.size()) {
        *m_pDirectory = Directory();
        m_pDirectory->bSound = false;
        return *m_pDirectory;
    }
    for (int index = 0; index < names.size(); ++index) {
        if (!m_pDirectory->entries.contains(names.at(index)))
            m_pDirectory->entries.insert(names.at(index), m_pDirectory->all.at(std::size_t(index)));
    }
    m_pDirectory->listNames = names;
    return *m_pDirectory;
}

// Not QuaZip::getCurrentFileInfo(): it reads each header twice and cuts a name at a NUL.
bool PackageReader::readCurrentHeader() const
{
    QByteArray name(ZipFormat::maxTextSize, Qt::Uninitialized);
    unz_file_info64 info;
    Entry entry;
    if (unzGetCurrentFileInfo64(m_pZip->getUnzFile(), &info, name.data(), ZipFormat::maxTextSize, nullptr, 0, nullptr,
                                0) != UNZ_OK ||
        unzGetFilePos64(m_pZip->getUnzFile(), &entry.position) != UNZ_OK)
        return false;
    name.truncate(int(info.size_filename));
    name.squeeze();
    // An archive may state any 64 bits. Capped beyond every limit, no size is negative, and no sum overflows.
    const auto capped = [](quint64 size) { return qint64(std::min<quint64>(size, maxContentSize + 1)); };
    entry.nSize = capped(info.uncompressed_size);
    entry.nPackedSize = capped(info.compressed_size);
    entry.nCrc = quint32(info.crc);
    entry.nMethod = quint16(info.compression_method);
    entry.bOrdinary = isOrdinary(info, name.endsWith('/'));
    m_pDirectory->listRawNames.append(name);
    m_pDirectory->all.push_back(entry);
    m_pDirectory->nNamesLength += name.size();
    m_pDirectory->nContentSize += entry.nSize;
    m_pDirectory->nPackedSize += entry.nPackedSize;
    return true;
}

// The caller's folder may be reached through a link, but no folder that the entry's name adds may be one.
bool PackageReader::leadsThroughLink(const QString &entryName, const QString &destPath)
{
    // Both normalised: with "." or "//" in it, the path might not end with the name, and a link be missed.
    const QString path = QDir::cleanPath(QFileInfo(destPath).absoluteFilePath());
    const QString relativePath = QLatin1Char('/') + QDir::cleanPath(entryName);
    const int callersOwn = path.endsWith(relativePath) ? path.size() - relativePath.size() : path.size();
    const QPair<int, QString> folder(callersOwn, path.left(path.lastIndexOf(QLatin1Char('/'))));
    if (folder != m_plainFolder) {
        for (int end = path.indexOf(QLatin1Char('/'), callersOwn + 1); end >= 0;
             end = path.indexOf(QLatin1Char('/'), end + 1)) {
            if (isSymbolicLink(path.left(end)))
                return true;
        }
        m_plainFolder = folder;
    }
    return isSymbolicLink(path);
}

const PackageReader::Entry *PackageReader::findReadable(const QString &entryName, QString *reason) const
{
    const auto entry = directory().entries.constFind(entryName);
    if (entry == directory().entries.constEnd())
        failBecause(reason, QStringLiteral("there is no such entry, or the archive's directory is damaged"));
    else if (!entry->bOrdinary)
        failBecause(reason, QStringLiteral("it is a link, a special file or encrypted"));
    else if (!isSafeName(entryName))
        failBecause(reason, QStringLiteral("its name could lead out of the folder"));
    else
        return &*entry;
    return nullptr;
}

QString PackageReader::extractFile(const QString &entryName, const QString &destPath, QString *reason)
{
    const QString target = destPath.isEmpty() ? entryName : destPath;
    QString cause;
    if (extract(entryName, target, &cause))
        return QFileInfo(target).absoluteFilePath();
    failBecause(reason, QStringLiteral("cannot extract %1 to %2: %3").arg(entryName, target, cause));
    return QString();
}

bool PackageReader::extract(const QString &entryName, const QString &destPath, QString *reason)
{
    const Entry *entry = findReadable(entryName, reason);
    if (!entry)
        return false;
    if (blocksLaterPackages(entryName))
        return failBecause(reason, QStringLiteral("it would block later packages"));
    if (leadsThroughLink(entryName, destPath))
        return failBecause(reason, QStringLiteral("a symbolic link is in the way"));
    if (!isFolder(entryName))
        return writeEntry(*entry, destPath, maxSizeOf(entryName), reason);
    return QDir().mkpath(destPath) || failBecause(reason, systemError());
}

bool PackageReader::goTo(const Entry &entry)
{
    // QuaZip reads only while it has a current file, and after the last one it has none.
    unz64_file_pos position = entry.position;
    return (m_pZip->hasCurrentFile() || m_pZip->goToFirstFile()) &&
           unzGoToFilePos64(m_pZip->getUnzFile(), &position) == UNZ_OK;
}

std::optional<PackageReader::PackedContent> PackageReader::packedContent(const QString &entryName)
{
    const Entry *entry = findReadable(entryName, nullptr);
    // Opening it is what checks its local header, and what finds its content.
    if (!entry || !goTo(*entry) || unzOpenCurrentFile(m_pZip->getUnzFile()) != UNZ_OK)
        return std::nullopt;
    const auto offset = qint64(unzGetCurrentFileZStreamPos64(m_pZip->getUnzFile()));
    unzCloseCurrentFile(m_pZip->getUnzFile());
    return PackedContent{offset, entry->nMethod, entry->nCrc, entry->nPackedSize, entry->nSize};
}

namespace {

bool failAsTooLarge(QString *reason, qint64 size, qint64 limit)
{
    return failBecause(reason, QStringLiteral("it has %1 bytes, and there is room for %2").arg(size).arg(limit));
}

} // namespace

bool PackageReader::copyEntry(const Entry &entry, QIODevice &destination, qint64 limit, QString *reason)
{
    QuaZipFile source(m_pZip.get());
    qint64 copied = 0;
    if (entry.nSize > limit)
        return failAsTooLarge(reason, entry.nSize, limit);
    if (!goTo(entry) || !source.open(QIODevice::ReadOnly))
        return failBecause(reason, QStringLiteral("its header is damaged"));
    if (!m_pDropBehind && entry.nPackedSize >= PageCache::smallFileSize)
        m_pDropBehind = std::make_unique<DropBehind>(m_pFile->file().handle());
    const auto dropBehind = [this](const char *, qint64) {
        if (m_pDropBehind)
            m_pDropBehind->advance(m_pFile->pos());
    };
    if (!copyStream(source, destination, entry.nSize, &copied, dropBehind, reason))
        return false;
    if (copied != entry.nSize)
        return failBecause(reason, QStringLiteral("it has %1 of %2 bytes").arg(copied).arg(entry.nSize));
    // close() checks the CRC.
    source.close();
    return source.getZipError() == UNZ_OK || failBecause(reason, QStringLiteral("its CRC is wrong"));
}

bool PackageReader::writeEntry(const Entry &entry, const QString &destPath, qint64 limit, QString *reason)
{
    if (entry.nSize > limit)
        return failAsTooLarge(reason, entry.nSize, limit);
    if (isFolder(destPath))
        return failBecause(reason, QStringLiteral("the destination is a folder"));
    const QString folderPath = QFileInfo(destPath).absolutePath();
    if (!m_tidiedFolders.contains(folderPath)) {
        ReplacingFile::removeStaleFragments(folderPath);
        m_tidiedFolders.insert(folderPath);
    }
    // Not checked for small files: there may be thousands, and on a full disk the write fails soon enough.
    constexpr qint64 smallSize = 64 * 1024;
    const qint64 room = entry.nSize > smallSize ? freeSpace(folderPath) : smallSize;
    ReplacingFile destination(destPath, ReplacingFile::Durability::NotFlushed, &m_flushBehind);
    return destination.create(ReplacingFile::MissingFolders::Made, reason) &&
           copyEntry(entry, destination.file(), std::min(limit, room), reason) &&
           destination.commit(ReplacingFile::ExistingTarget::Replaced, reason);
}

QByteArray PackageReader::read(const QString &entryName, qint64 limit, QString *reason)
{
    QBuffer content;
    content.open(QIODevice::WriteOnly);
    return read(entryName, content, limit, reason) ? content.data() : QByteArray();
}

bool PackageReader::read(const QString &entryName, QIODevice &destination, qint64 limit, QString *reason)
{
    QString cause;
    const Entry *entry = findReadable(entryName, &cause);
    return (entry && copyEntry(*entry, destination, std::min(limit, maxEntrySize), &cause)) ||
           failBecause(reason, QStringLiteral("cannot read %1: %2").arg(entryName, cause));
}

QStringList PackageReader::extractJsonFiles(const QString &destDir, QString *reason)
{
    QStringList writtenPaths;
    QString firstReason;
    qint64 size = 0;
    for (const QString &entryName : entries()) {
        if (!isDescription(entryName))
            continue;
        QString cause = QStringLiteral("%1 exceeds the limits for descriptions").arg(entryName);
        size += directory().entries.value(entryName).nSize;
        const bool isWithinLimits = size <= maxDescriptionSize && writtenPaths.size() < maxDescriptions;
        writtenPaths.append(isWithinLimits
                                ? extractFile(entryName, QStringLiteral("%1/%2").arg(destDir, entryName), &cause)
                                : QString());
        if (writtenPaths.last().isEmpty() && firstReason.isEmpty())
            firstReason = cause;
    }
    if (writtenPaths.isEmpty())
        firstReason = QStringLiteral("there is no device description, or the archive's directory is damaged");
    if (!firstReason.isEmpty())
        failBecause(reason, firstReason);
    return writtenPaths;
}

} // namespace Internal
} // namespace ProjectFileCfg
