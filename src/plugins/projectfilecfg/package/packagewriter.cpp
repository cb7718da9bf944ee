// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagewriter.h"

#include "contentscan.h"
#include "localecodec.h"
#include "packagechecksum.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "packagesize.h"
#include "reason.h"
#include "replacingfile.h"
#include "streamcopy.h"
#include "undorecord.h"
#include "utf8zip.h"
#include "writebehinddevice.h"
#include "zipformat.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <quazipfile.h>

#include <algorithm>
#include <filesystem>

namespace ProjectFileCfg {
namespace Internal {

using namespace PackageLayout;

namespace {

bool isAscii(const QString &name)
{
    return std::all_of(name.begin(), name.end(), [](QChar c) { return c.unicode() < 0x80; });
}

/// Flags the next entry's name as UTF-8, so that other programs show it correctly. Not for an ASCII name: the flag
/// raises the header's "version needed to extract", which the checksum covers, and existing packages do not have it.
void markEncoding(QuaZip &zip, const QString &name)
{
    if (isAscii(name))
        zipClearFlags(zip.getZipFile(), ZIP_ENCODING_UTF8);
    else
        zipSetFlags(zip.getZipFile(), ZIP_ENCODING_UTF8);
}

/// False if a name in the folder is not UTF-8, or the folder cannot be listed. QDir would omit such a name, or turn it
/// into that of another file.
bool hasOnlyListableNames(const QString &folder)
{
#ifndef Q_OS_WIN
    std::error_code error;
    std::filesystem::directory_iterator entry(QFile::encodeName(folder).toStdString(), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const QByteArray name = QByteArray::fromStdString(entry->path().filename().native());
        if (QFile::encodeName(QFile::decodeName(name)) != name)
            return false;
    }
    return !error;
#else
    Q_UNUSED(folder)
    return true;
#endif
}

/// In bytes. A reader or an apply refuses anything larger.
qint64 maxSizeToPack(const QString &name)
{
    return isPicture(name) ? PackageLimits::maxPictureFileSize : PackageReader::maxSizeOf(name);
}

/// Time stamps in a zip archive range from 1980 to 2107; any other one would be stored as garbage.
QDateTime storableTime(const QDateTime &time)
{
    const int year = time.date().year();
    if (year < 1980)
        return QDateTime(QDate(1980, 1, 1), QTime(0, 0));
    return year > 2107 ? QDateTime(QDate(2107, 12, 31), QTime(23, 59, 58)) : time;
}

/// An extra field that readers skip: the growth hint of the Open Packaging Conventions.
QByteArray paddingField(int size)
{
    constexpr int headerSize = 8;
    if (size < headerSize)
        return QByteArray();
    const char header[] = {'\x20', '\xA2', char(size - 4), 0, '\x28', '\xA0', 0, 0};
    return QByteArray(header, headerSize) + QByteArray(size - headerSize, '\0');
}

/// True if the checksum does not depend on the comment. It is computed before the comment is written, and checked
/// afterwards; of the bytes that it covers, only the comment's length differs then, which is in the last two bytes of
/// the end record. If a chunk contains the whole end record, its digest ends at a zero byte before the length; if a
/// chunk begins inside the end record, it may not.
bool checksumOutlivesComment(qint64 archiveSize)
{
    const qint64 lastChunk = archiveSize % PackageChecksum::chunkSize;
    return lastChunk == 0 || lastChunk >= ZipFormat::endRecordSize;
}

bool isWithinArchive(qint64 size, QString *reason)
{
    return size <= PackageLimits::maxArchiveSize ||
           failBecause(reason, QStringLiteral("the archive has more than %1 bytes, the limit of its format")
                                   .arg(PackageLimits::maxArchiveSize));
}

} // namespace

PackageWriter::PackageWriter(const QString &dirPath, const QString &packetPath)
    : m_strDirPath(dirPath)
    , m_strPacketPath(QFileInfo(packetPath).absoluteFilePath())
    , m_strCanonicalDirPath(QFileInfo(dirPath).canonicalFilePath())
{}

bool PackageWriter::scan(QString *reason)
{
    // QFile::encodeName() uses the locale codec.
    useUtf8LocaleCodec();
    m_listEntries.clear();
    m_strFirstDescription.clear();
    if (!QDir(m_strDirPath).exists())
        return failBecause(reason, QStringLiteral("there is no folder %1").arg(m_strDirPath));
    return scanFolder(m_strDirPath, QString(), QStringList(), reason) && isWithinLimits(reason);
}

bool PackageWriter::isWithinLimits(QString *reason)
{
    using namespace PackageLimits;
    const auto isBeyond = [&](const QString &what, qint64 found, qint64 limit) {
        return found > limit &&
               !failBecause(reason, QStringLiteral("%2 has %3 %1, the limit is %4")
                                        .arg(what, m_strDirPath, QString::number(found), QString::number(limit)));
    };
    qint64 leastSize = ZipFormat::endRecordSize;
    qint64 namesLength = 0;
    qint64 contentSize = 0;
    qint64 descriptionsSize = 0;
    int descriptions = 0;
    for (const Entry &entry : qAsConst(m_listEntries)) {
        leastSize += leastPackedSize(entry.strName, entry.nSize);
        namesLength += entry.strName.toUtf8().size();
        contentSize += entry.nSize;
        if (!isDescription(entry.strName))
            continue;
        descriptionsSize += entry.nSize;
        // An apply parses only the first one.
        if (++descriptions == 1) {
            m_strFirstDescription = entry.strName;
            if (isBeyond(QStringLiteral("bytes in the description ") + entry.strName, entry.nSize,
                         maxParsedDescriptionSize))
                return false;
        }
    }
    return !isBeyond(QStringLiteral("entries"), m_listEntries.size(), maxPackedEntries) &&
           !isBeyond(QStringLiteral("bytes when packed"), leastSize, maxArchiveSize) &&
           !isBeyond(QStringLiteral("bytes of names"), namesLength, maxNamesLength) &&
           !isBeyond(QStringLiteral("bytes"), contentSize, maxContentSize) &&
           !isBeyond(QStringLiteral("descriptions"), descriptions, maxDescriptions) &&
           !isBeyond(QStringLiteral("bytes of descriptions"), descriptionsSize, maxDescriptionSize);
}

bool PackageWriter::scanFolder(const QString &path, const QString &prefix, QStringList enclosingFolders,
                               QString *reason)
{
    const auto cannotPack = [reason](const QString &source, const char *cause) {
        return failBecause(reason, QStringLiteral("cannot pack %1: %2").arg(source, QLatin1String(cause)));
    };
    const QFileInfo folder(path);
    const QString canonicalPath = folder.canonicalFilePath();
    if (!folder.isReadable() || !folder.isExecutable())
        return cannotPack(path, "the folder cannot be read");
    if (enclosingFolders.contains(canonicalPath))
        return cannotPack(path, "the link leads back to an enclosing folder");
    if (!hasOnlyListableNames(path))
        return cannotPack(path, "the folder cannot be listed, or a name in it is not UTF-8");
    enclosingFolders.append(canonicalPath);

    // QDir::System lists broken links and special files, so that they can be refused.
    const QFileInfoList sources =
        QDir(path).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &source : sources) {
        if (!staysInside(source))
            return cannotPack(source.filePath(), "the link is broken or leads out of the device's folder");
        if (m_listEntries.size() > PackageLimits::maxPackedEntries)
            return cannotPack(source.filePath(), "a package cannot hold that many entries");
        if (source.isDir()) {
            const QString name = prefix + source.fileName() + QLatin1Char('/');
            if (!isSafeName(name) || blocksLaterPackages(name))
                return cannotPack(source.filePath(), "no reader accepts a folder of this name");
            m_listEntries.append({name, source.absoluteFilePath(), 0});
            if (!scanFolder(source.absoluteFilePath(), name, enclosingFolders, reason))
                return false;
        }
    }
    for (const QFileInfo &source : sources) {
        if (source.isDir() || source.absoluteFilePath() == m_strPacketPath ||
            ReplacingFile::isFragment(source.fileName()) || UndoRecord::isUndoRecord(source.fileName()))
            continue;
        const QString name = prefix + source.fileName();
        // Refuse it now, not when the package is applied.
        if (!source.isFile() || !source.isReadable())
            return cannotPack(source.filePath(), "it is not a plain file, or cannot be read");
        if (source.size() > maxSizeToPack(name))
            return cannotPack(source.filePath(), "no reader accepts a file of this size");
        if (!isSafeName(name) || blocksLaterPackages(name))
            return cannotPack(source.filePath(), "no reader accepts a file of this name");
        m_listEntries.append({name, source.absoluteFilePath(), source.size()});
    }
    return m_listEntries.size() <= PackageLimits::maxPackedEntries ||
           cannotPack(path, "a package cannot hold that many entries");
}

bool PackageWriter::staysInside(const QFileInfo &source) const
{
    if (!source.isSymLink())
        return true;
    const QString canonicalPath = source.canonicalFilePath();
    return canonicalPath == m_strCanonicalDirPath || canonicalPath.startsWith(m_strCanonicalDirPath + QLatin1Char('/'));
}

bool PackageWriter::write(QFile &archive, QString *reason)
{
    // In bytes, more than the size of an end record: moves it past the chunk boundary that would split it.
    constexpr int paddingSize = 32;
    if (!writeEntries(archive, 0, reason))
        return false;
    if (checksumOutlivesComment(archive.size()))
        return true;
    return writeEntries(archive, paddingSize, reason) &&
           (checksumOutlivesComment(archive.size()) ||
            failBecause(reason, QStringLiteral("%1 grew while it was being packed").arg(m_strDirPath)));
}

bool PackageWriter::writeEntries(QFile &archive, int paddingSize, QString *reason)
{
    const auto cannotWrite = [&] {
        return failBecause(reason, QStringLiteral("cannot write %1: %2").arg(m_strPacketPath, writeError(archive)));
    };
    if (!archive.resize(0) || !archive.seek(0))
        return cannotWrite();
    WriteBehindDevice device(archive);
    Utf8Zip zip(device);
    if (!zip.open(QuaZip::mdCreate))
        return cannotWrite();
    m_nPixels = 0;
    bool isWritten = true;
    for (auto entry = m_listEntries.begin(); isWritten && entry != m_listEntries.end(); ++entry) {
        isWritten = writeEntry(zip, *entry, paddingSize, reason) && isWithinArchive(device.pos(), reason);
        paddingSize = 0;
    }
    if (isWritten)
        zip.close();
    // Checked first: the zip library does not say why a write failed.
    if (!device.flush() || archive.error() != QFileDevice::NoError)
        return cannotWrite();
    if (isWritten && zip.getZipError() != UNZ_OK)
        return cannotWrite();
    return isWritten && isWithinArchive(archive.size(), reason);
}

bool PackageWriter::writeEntry(QuaZip &zip, Entry &entry, int paddingSize, QString *reason)
{
    const auto cannotPack = [&entry, reason](const QString &cause) {
        return failBecause(reason, QStringLiteral("cannot pack %1: %2").arg(entry.strSourcePath, cause));
    };
    markEncoding(zip, entry.strName);
    // The attributes of a link's target: with those of the link, the entry would be extracted as a link.
    const QFileInfo source(entry.strSourcePath);
    QuaZipNewInfo header(entry.strName, source.isSymLink() ? source.canonicalFilePath() : entry.strSourcePath);
    header.dateTime = storableTime(header.dateTime);
    header.extraLocal = paddingField(paddingSize);

    // The default level, also for stored entries: level 0 would lower the header's "version needed to extract", one of
    // the few bytes that the checksum covers.
    const int method = entry.isFolder() || isPicture(entry.strName) ? 0 : Z_DEFLATED;
    QuaZipFile destination(&zip);
    QString cause;
    if (!destination.open(QIODevice::WriteOnly, header, nullptr, 0, method, Z_DEFAULT_COMPRESSION))
        return cannotPack(destination.errorString());
    if (!entry.isFolder() && !copyContent(entry, destination, &cause))
        return cannotPack(cause);
    destination.close();
    return destination.getZipError() == UNZ_OK || cannotPack(destination.errorString());
}

bool PackageWriter::copyContent(Entry &entry, QIODevice &destination, QString *reason)
{
    QFile source(entry.strSourcePath);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return failBecause(reason, source.errorString());
    const qint64 limit = maxSizeToPack(entry.strName);
    if (isPicture(entry.strName)) {
        PictureScan picture;
        const auto look = [&picture](const char *data, qint64 size) { picture.feed(data, size); };
        return copyFile(source, destination, limit, &entry.nSize, look, reason) &&
               (isFit(picture, entry.strName) ||
                failBecause(reason, QStringLiteral("no reader accepts a picture of this size or with such texts")));
    }
    if (entry.strName == m_strFirstDescription) {
        DescriptionScan description;
        const auto look = [&description](const char *data, qint64 size) { description.feed(data, size); };
        return copyFile(source, destination, PackageLimits::maxParsedDescriptionSize, &entry.nSize, look, reason) &&
               (description.parts() <= PackageLimits::maxDescriptionParts ||
                failBecause(reason, QStringLiteral("no reader accepts a description with so many parts")));
    }
    return copyFile(source, destination, limit, &entry.nSize, nullptr, reason);
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

bool PackageWriter::isListedIn(const PackageReader &package, QString *reason) const
{
    const QStringList listed = package.fileList();
    const bool isListed = std::equal(listed.begin(), listed.end(), m_listEntries.begin(), m_listEntries.end(),
                                     [&package](const QString &found, const Entry &written) {
                                         return found == written.strName && package.entrySize(found) == written.nSize;
                                     });
    if (!package.isOpen(reason))
        return false;
    return isListed || failBecause(reason, QStringLiteral("its entries differ"));
}

} // namespace Internal
} // namespace ProjectFileCfg
