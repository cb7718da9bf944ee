// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "flushbehind.h"

#include <QByteArray>
#include <QPair>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class QFile;
class QIODevice;
class QuaZip;

namespace ProjectFileCfg {
namespace Internal {

class DropBehind;
class ReadCacheDevice;

/// An open package, to read and extract its entries. Not thread-safe.
///
/// A `reason` is set on failure (see reason.h). It names the entry; only that of isOpen() names the package.
class PackageReader
{
public:
    explicit PackageReader(const QString &packetPath);
    /// Takes a file that is already open for reading.
    explicit PackageReader(std::unique_ptr<QFile> packet);
    ~PackageReader();

    /// False if the file is missing or not an archive; the other operations then return nothing.
    bool isOpen(QString *reason = nullptr) const;

    /// The names of all entries in the archive's order, decoded by PackageLayout::namesOf(). Names of folders end in
    /// "/". Also empty if the archive's directory is damaged or impossible: more packed bytes than the file has, or
    /// entries, content or names beyond PackageLimits.
    QStringList fileList() const;

    /// False if there is no archive, or if its directory is damaged or impossible: then fileList() is empty, whatever
    /// the archive contains.
    bool isListable(QString *reason = nullptr) const;

    /// The entries to extract one after the other: of several that lead to one path, such as "BKG/x", "BKG//x" and
    /// "BKG/./x", only the first.
    QStringList entries() const;

    /// The largest content in bytes that extractFile() accepts for an entry of that name.
    static qint64 maxSizeOf(const QString &entryName);

    /// The size of `entryName` as stated in the archive; -1 if there is no such entry.
    qint64 entrySize(const QString &entryName) const;

    /// The file itself, to read other parts of it; not open if the package could not be opened. Leave its position
    /// anywhere.
    QFile &file() const;

    /// Where an entry's packed content lies in file(), and what the archive's directory says about it.
    struct PackedContent
    {
        qint64 nOffset;
        quint16 nMethod;
        quint32 nCrc;
        qint64 nPackedSize;
        qint64 nSize;
    };
    /// None if read() fails before the first byte of the content, but for its limit.
    std::optional<PackedContent> packedContent(const QString &entryName);

    /// The archive's comment; empty if there is none.
    QString archiveComment() const;

    /// The checksum of the archive without its comment (see PackageChecksum); empty if it is not open.
    QString checksum() const;

    /// Extracts `entryName` to `destPath` (if empty: to its own name) and returns the absolute path written, or an
    /// empty string. A folder's entry creates the folder. Only a complete new file replaces a file at the destination;
    /// it has the user's default permissions.
    ///
    /// Refuses, so that no package writes outside the caller's destination: names for which PackageLayout::isSafeName()
    /// is false or PackageLayout::blocksLaterPackages() is true; links, special files and encrypted entries; a
    /// destination that is a symbolic link or, if `destPath` is a folder followed by the entry's name, leads through
    /// one below that folder; content larger than maxSizeOf() or the free space, whatever size the archive states.
    QString extractFile(const QString &entryName, const QString &destPath, QString *reason = nullptr);

    /// The content of a small entry. Empty if the entry is missing, damaged, larger than `limit` bytes, has an unsafe
    /// name, or is a link, a special file or encrypted.
    QByteArray read(const QString &entryName, qint64 limit, QString *reason = nullptr);
    /// The same, to a device that is open for writing. False on failure; part of the content may be written then.
    bool read(const QString &entryName, QIODevice &destination, qint64 limit, QString *reason = nullptr);

    /// Extracts each of entries() that ends in ".json", in any case, to `destDir` + "/" + its name. Returns the results
    /// of extractFile() in the archive's order; an empty string for those beyond 64 MiB together, or beyond the
    /// 1,000th. `reason` is that of the first failure; also set if there is no such entry.
    QStringList extractJsonFiles(const QString &destDir, QString *reason = nullptr);

private:
    explicit PackageReader(std::unique_ptr<ReadCacheDevice> file);

    struct Entry;
    struct Directory;

    const Directory &directory() const;
    bool readCurrentHeader() const;
    bool leadsThroughLink(const QString &entryName, const QString &destPath);
    bool goTo(const Entry &entry);
    const Entry *findReadable(const QString &entryName, QString *reason) const;
    bool extract(const QString &entryName, const QString &destPath, QString *reason);
    bool copyEntry(const Entry &entry, QIODevice &destination, qint64 limit, QString *reason);
    bool writeEntry(const Entry &entry, const QString &destPath, qint64 limit, QString *reason);

    std::unique_ptr<ReadCacheDevice> m_pFile;
    std::unique_ptr<QuaZip> m_pZip;
    /// Null until the first large entry is read.
    std::unique_ptr<DropBehind> m_pDropBehind;
    FlushBehind m_flushBehind{FlushBehind::Begin::BeyondDistance};
    /// Why it is not open.
    QString m_strOpenError;
    mutable std::unique_ptr<Directory> m_pDirectory;
    /// Folders from which this object has removed stale fragments.
    QSet<QString> m_tidiedFolders;
    /// The length of the caller's part of a path, and the last folder below it that was checked for links. Usually the
    /// entries of a folder are consecutive.
    QPair<int, QString> m_plainFolder;
};

} // namespace Internal
} // namespace ProjectFileCfg
