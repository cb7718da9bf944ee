#include "packagewriter.h"

#include "contentscan.h"
#include "localecodec.h"
#include "packagechecksum.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "replacingfile.h"
#include "streamcopy.h"
#include "undorecord.h"
#include "writebehinddevice.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <quazip.h>
#include <quazipfile.h>

#include <algorithm>
#include <filesystem>

namespace ProjectFileCfg {
namespace Internal {

using namespace PackageLayout;

namespace {

/// Length of the record that ends an archive, without its comment.
constexpr qint64 endRecordSize = 22;

bool isAscii(const QString &name)
{
    return std::all_of(name.begin(), name.end(), [](QChar c) { return c.unicode() < 0x80; });
}

/// Has the next entry's name marked as UTF-8 where that matters: other programs then show it right. The mark
/// raises the version that the header says is needed, a byte that the checksum covers, so a plain name goes
/// without, as it does in the packages that exist.
void markEncoding(QuaZip &zip, const QString &name)
{
    if (isAscii(name)) {
        zipClearFlags(zip.getZipFile(), ZIP_ENCODING_UTF8);
    } else {
        zipSetFlags(zip.getZipFile(), ZIP_ENCODING_UTF8);
    }
}

/// False when the folder has a file or folder whose name Qt cannot hold, as one that is no UTF-8: Qt's own listing
/// passes over it, or gives it the name of another.
bool hasOnlyListableNames(const QString &folder)
{
#ifndef Q_OS_WIN
    std::error_code error;
    std::filesystem::directory_iterator entry(QFile::encodeName(folder).toStdString(), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const QByteArray name = QByteArray::fromStdString(entry->path().filename().native());
        if (QFile::encodeName(QFile::decodeName(name)) != name) {
            return false;
        }
    }
    return !error;
#else
    Q_UNUSED(folder)
    return true;
#endif
}

/// What is larger, no reader takes, or no load.
qint64 maxSizeToPack(const QString &name)
{
    return isPicture(name) ? PackageLimits::maxPictureFileSize : PackageReader::maxSizeOf(name);
}

/// The archive's time stamps begin in 1980 and end in 2107; others would be stored as garbage.
QDateTime storableTime(const QDateTime &time)
{
    const int year = time.date().year();
    if (year < 1980) {
        return QDateTime(QDate(1980, 1, 1), QTime(0, 0));
    }
    return year > 2107 ? QDateTime(QDate(2107, 12, 31), QTime(23, 59, 58)) : time;
}

/// An extra field that readers pass over: the growth hint of the Open Packaging Conventions.
QByteArray paddingField(int size)
{
    constexpr int headerSize = 8;
    if (size < headerSize) {
        return QByteArray();
    }
    const char header[] = {'\x20', '\xA2', char(size - 4), 0, '\x28', '\xA0', 0, 0};
    return QByteArray(header, headerSize) + QByteArray(size - headerSize, '\0');
}

/// The checksum is taken before the comment is written, and checked afterwards. Only the comment's length, in
/// the archive's last two bytes, differs between the two. Where the last chunk holds the whole end record, the
/// zero bytes in front of the length end the digested bytes before they reach it; where a chunk begins inside
/// the end record, they may not.
bool checksumOutlivesComment(qint64 archiveSize)
{
    const qint64 lastChunk = archiveSize % PackageChecksum::chunkSize;
    return lastChunk == 0 || lastChunk >= endRecordSize;
}

} // namespace

PackageWriter::PackageWriter(const QString &dirPath, const QString &packetPath)
    : m_dirPath(dirPath)
    , m_packetPath(QFileInfo(packetPath).absoluteFilePath())
    , m_canonicalDirPath(QFileInfo(dirPath).canonicalFilePath())
{}

bool PackageWriter::scan()
{
    useUtf8LocaleCodec();
    m_entries.clear();
    m_firstDescription.clear();
    return QDir(m_dirPath).exists() && scanFolder(m_dirPath, QString(), QStringList()) && isWithinLimits();
}

bool PackageWriter::isWithinLimits()
{
    using namespace PackageLimits;
    constexpr qint64 headersSize = 30 + 46;
    // What is stored takes its own size, so some trees are seen to be too large without writing 4 GiB first.
    qint64 leastSize = endRecordSize;
    qint64 namesLength = 0;
    qint64 contentSize = 0;
    qint64 descriptionsSize = 0;
    int descriptions = 0;
    for (const Entry &entry : qAsConst(m_entries)) {
        const qint64 nameLength = entry.name.toUtf8().size();
        leastSize += headersSize + 2 * nameLength + (isPicture(entry.name) ? entry.size : 0);
        namesLength += nameLength;
        contentSize += entry.size;
        if (!isDescription(entry.name))
            continue;
        descriptionsSize += entry.size;
        // The load reads the first one.
        if (++descriptions == 1) {
            m_firstDescription = entry.name;
            if (entry.size > maxParsedDescriptionSize)
                return false;
        }
    }
    return m_entries.size() <= maxPackedEntries && leastSize <= maxArchiveSize && namesLength <= maxNamesLength &&
           contentSize <= maxContentSize && descriptions <= maxDescriptions && descriptionsSize <= maxDescriptionSize;
}

bool PackageWriter::scanFolder(const QString &path, const QString &prefix, QStringList enclosingFolders)
{
    const QFileInfo folder(path);
    const QString canonicalPath = folder.canonicalFilePath();
    if (!folder.isReadable() || !folder.isExecutable() || enclosingFolders.contains(canonicalPath) ||
        !hasOnlyListableNames(path)) {
        return false;
    }
    enclosingFolders.append(canonicalPath);

    // System entries are broken links and special files: listed so that they can be refused.
    const QFileInfoList sources =
        QDir(path).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &source : sources) {
        if (!staysInside(source) || m_entries.size() > PackageLimits::maxPackedEntries) {
            return false;
        }
        if (source.isDir()) {
            const QString name = prefix + source.fileName() + QLatin1Char('/');
            if (!isSafeName(name) || blocksLaterPackages(name)) {
                return false;
            }
            m_entries.append({name, source.absoluteFilePath(), 0});
            if (!scanFolder(source.absoluteFilePath(), name, enclosingFolders)) {
                return false;
            }
        }
    }
    for (const QFileInfo &source : sources) {
        if (source.isDir() || source.absoluteFilePath() == m_packetPath ||
            ReplacingFile::isFragment(source.fileName()) || UndoRecord::isUndoRecord(source.fileName())) {
            continue;
        }
        const QString name = prefix + source.fileName();
        // What no reader takes would be found out when the package is applied.
        if (!source.isFile() || !source.isReadable() || source.size() > maxSizeToPack(name) || !isSafeName(name) ||
            blocksLaterPackages(name)) {
            return false;
        }
        m_entries.append({name, source.absoluteFilePath(), source.size()});
    }
    return m_entries.size() <= PackageLimits::maxPackedEntries;
}

bool PackageWriter::staysInside(const QFileInfo &source) const
{
    if (!source.isSymLink()) {
        return true;
    }
    const QString canonicalPath = source.canonicalFilePath();
    return canonicalPath == m_canonicalDirPath || canonicalPath.startsWith(m_canonicalDirPath + QLatin1Char('/'));
}

bool PackageWriter::write(QFile &archive)
{
    constexpr int paddingSize = 32;
    if (!writeEntries(archive, 0)) {
        return false;
    }
    return checksumOutlivesComment(archive.size()) ||
           (writeEntries(archive, paddingSize) && checksumOutlivesComment(archive.size()));
}

bool PackageWriter::writeEntries(QFile &archive, int paddingSize)
{
    if (!archive.resize(0) || !archive.seek(0)) {
        return false;
    }
    useUtf8LocaleCodec();
    WriteBehindDevice device(archive);
    QuaZip zip(&device);
    zip.setAutoClose(false);
    if (!zip.open(QuaZip::mdCreate)) {
        return false;
    }
    m_nPixels = 0;
    for (Entry &entry : m_entries) {
        if (!writeEntry(zip, entry, paddingSize) || device.pos() > PackageLimits::maxArchiveSize) {
            return false;
        }
        paddingSize = 0;
    }
    zip.close();
    return zip.getZipError() == UNZ_OK && device.flush() && archive.error() == QFileDevice::NoError &&
           archive.size() <= PackageLimits::maxArchiveSize;
}

bool PackageWriter::writeEntry(QuaZip &zip, Entry &entry, int paddingSize)
{
    markEncoding(zip, entry.name);
    // Of a link's attributes those of its target count, else it would come out as a link again.
    const QFileInfo source(entry.sourcePath);
    QuaZipNewInfo header(entry.name, source.isSymLink() ? source.canonicalFilePath() : entry.sourcePath);
    header.dateTime = storableTime(header.dateTime);
    header.extraLocal = paddingField(paddingSize);

    // The level stays the default one also for what is stored: level 0 would lower the version that the header
    // says is needed, which is one of the few bytes that the checksum covers.
    const int method = entry.isFolder() || isPicture(entry.name) ? 0 : Z_DEFLATED;
    QuaZipFile destination(&zip);
    if (!destination.open(QIODevice::WriteOnly, header, nullptr, 0, method, Z_DEFAULT_COMPRESSION)) {
        return false;
    }
    if (!entry.isFolder() && !copyContent(entry, destination)) {
        return false;
    }
    destination.close();
    return destination.getZipError() == UNZ_OK;
}

bool PackageWriter::copyContent(Entry &entry, QIODevice &destination)
{
    QFile source(entry.sourcePath);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return false;
    }
    const qint64 limit = maxSizeToPack(entry.name);
    if (isPicture(entry.name)) {
        PictureScan picture;
        const auto look = [&picture](const char *data, qint64 size) { picture.feed(data, size); };
        return copyStream(source, destination, limit, &entry.size, look) && isFit(picture, entry.name);
    }
    if (entry.name == m_firstDescription) {
        DescriptionScan description;
        const auto look = [&description](const char *data, qint64 size) { description.feed(data, size); };
        return copyStream(source, destination, PackageLimits::maxParsedDescriptionSize, &entry.size, look) &&
               description.parts() <= PackageLimits::maxDescriptionParts;
    }
    return copyStream(source, destination, limit, &entry.size);
}

bool PackageWriter::isFit(const PictureScan &picture, const QString &name)
{
    if (isGalleryPicture(name)) {
        m_nPixels += picture.pixels();
        return !picture.isBeyondLimits() && picture.memory() <= PackageLimits::maxPictureMemory &&
               m_nPixels <= PackageLimits::maxPixels;
    }
    return !picture.isBeyondLimits();
}

bool PackageWriter::isListedIn(const QString &path) const
{
    const PackageReader package(path);
    const QStringList listed = package.fileList();
    return package.isOpen() && std::equal(listed.begin(), listed.end(), m_entries.begin(), m_entries.end(),
                                          [&package](const QString &found, const Entry &written) {
                                              return found == written.name && package.entrySize(found) == written.size;
                                          });
}

} // namespace Internal
} // namespace ProjectFileCfg
