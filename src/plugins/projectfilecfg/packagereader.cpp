#include "packagereader.h"

#include "localecodec.h"
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
    return std::none_of(parts.begin(), parts.end(), [](const QString &part) {
        return part.trimmed() == QLatin1String("..") || hasDriveLetter(part);
    });
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

/// The caller's own folder may be reached through a link; what the archive adds to it may not.
bool leadsThroughLink(const QString &entryName, const QString &destPath)
{
    const QString path = QFileInfo(destPath).absoluteFilePath();
    const QString relativePath = QLatin1Char('/') + entryName;
    if (!path.endsWith(relativePath)) {
        return isSymbolicLink(QDir::cleanPath(path));
    }
    for (int end = path.indexOf(QLatin1Char('/'), path.size() - relativePath.size() + 1); end >= 0;
         end = path.indexOf(QLatin1Char('/'), end + 1)) {
        if (isSymbolicLink(path.left(end))) {
            return true;
        }
    }
    return isSymbolicLink(path);
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
    unz64_file_pos position;
    qint64 size;
    bool isOrdinary;
};

struct PackageReader::Directory
{
    QStringList names;
    /// So that taking an entry does not walk over those before it. Of two of the same name the first counts.
    QHash<QString, Entry> entries;
};

PackageReader::PackageReader(const QString &packetPath)
{
    useUtf8LocaleCodec();
    m_zip.reset(new QuaZip(packetPath));
    m_zip->open(QuaZip::mdUnzip);
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

QString PackageReader::comment() const
{
    return m_zip->isOpen() ? m_zip->getComment() : QString();
}

const PackageReader::Directory &PackageReader::directory() const
{
    if (m_directory) {
        return *m_directory;
    }
    m_directory.reset(new Directory);
    for (bool more = m_zip->isOpen() && m_zip->goToFirstFile(); more; more = m_zip->goToNextFile()) {
        if (!readCurrentHeader()) {
            *m_directory = Directory();
            break;
        }
    }
    if (m_zip->getZipError() != UNZ_OK) {
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
    if (!m_directory->entries.contains(entryName)) {
        m_directory->entries.insert(entryName, entry);
    }
    return true;
}

QString PackageReader::extractFile(const QString &entryName, const QString &destPath)
{
    const QString target = destPath.isEmpty() ? entryName : destPath;
    const auto entry = directory().entries.constFind(entryName);
    if (entry == directory().entries.constEnd() || !entry->isOrdinary || !isSafeName(entryName) ||
        leadsThroughLink(entryName, target)) {
        return QString();
    }
    const bool extracted = isFolder(entryName)
                               ? QDir().mkpath(target)
                               : writeEntry(*entry, target, isJson(entryName) ? maxDescriptionSize : maxEntrySize);
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
    if (entry.size > limit || !goTo(entry) || !source.open(QIODevice::ReadOnly)
        || !copyStream(source, destination, limit, &copied) || copied != entry.size)
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
    ReplacingFile destination(destPath, ReplacingFile::NotFlushed);
    return destination.create()
           && copyEntry(entry, destination.file(), std::min(limit, freeSpace(folderPath))) && destination.commit();
}

QByteArray PackageReader::read(const QString &entryName, qint64 limit)
{
    const auto entry = directory().entries.constFind(entryName);
    QBuffer content;
    content.open(QIODevice::WriteOnly);
    const bool isRead = entry != directory().entries.constEnd() && entry->isOrdinary && isSafeName(entryName) &&
                        copyEntry(*entry, content, std::min(limit, maxEntrySize));
    return isRead ? content.data() : QByteArray();
}

QStringList PackageReader::extractJsonFiles(const QString &destDir)
{
    QStringList writtenPaths;
    for (const QString &entryName : fileList()) {
        if (isJson(entryName)) {
            writtenPaths.append(extractFile(entryName, QStringLiteral("%1/%2").arg(destDir, entryName)));
        }
    }
    return writtenPaths;
}

} // namespace Internal
} // namespace ProjectFileCfg
