#pragma once

#include <QByteArray>
#include <QPair>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>

class QFile;
class QIODevice;
class QuaZip;

namespace ProjectFileCfg {
namespace Internal {

class PackageFile;

/// One package, held open while a job takes entries out of it. Not for use by two threads at once.
class PackageReader
{
public:
    explicit PackageReader(const QString &packetPath);
    /// Of a file that is open already, for reading.
    explicit PackageReader(std::unique_ptr<QFile> packet);
    ~PackageReader();

    /// False when the file is missing or no archive; the other operations then return nothing.
    bool isOpen() const;

    /// The names of all entries in the archive's order; PackageLayout::namesOf() says what becomes of one that is no
    /// UTF-8. Names of folders end in "/". Empty as well where the archive's directory is damaged or cannot be true:
    /// packed entries of more bytes than the file has, or more than PackageLimits says of entries, of what they hold
    /// together, or of names.
    QStringList fileList() const;

    /// Those of them that count, for who takes one after the other: of several that lead to one path, as "BKG/x",
    /// "BKG//x" and "BKG/./x" do, the first.
    QStringList entries() const;

    /// How many bytes are taken of an entry of that name.
    static qint64 maxSizeOf(const QString &entryName);

    /// How large the content of `entryName` says that it is; -1 when there is no such entry.
    qint64 entrySize(const QString &entryName) const;

    /// The archive's comment; empty when there is none.
    QString comment() const;

    /// The checksum of the archive without its comment (see PackageChecksum); empty when it is not open.
    QString checksum() const;

    /// Extracts `entryName` to `destPath` (when empty: to its own name) and returns the absolute path written,
    /// or an empty string. A folder's entry makes the folder. A file at the destination is replaced, but only
    /// by a complete new one; what is written is an ordinary file with the user's default permissions.
    ///
    /// Refused, so that a package from elsewhere writes nothing outside the place that the caller names: a
    /// name that is absolute, climbs out (by slashes or backslashes), holds a NUL or a drive letter, or leads
    /// through more than 63 folders; a folder called like the files of a package (".png", ".json", ".RPst") and a
    /// file called like its folders, which would block the packages that come later; an entry
    /// that is a link or a special file; a destination that is a symbolic link or, where `destPath` is a
    /// folder followed by the entry's name, leads through one below that folder; content above 64 MiB (names
    /// ending in ".json"), 1 GiB (others) or the free space, whatever size the archive pretends.
    QString extractFile(const QString &entryName, const QString &destPath);

    /// The content of `entryName`, for what is too small to need a file. Empty when the entry is missing, refused as
    /// by extractFile, damaged, or larger than `limit` bytes.
    QByteArray read(const QString &entryName, qint64 limit);
    /// The same, to a device that is open for writing. When it fails, part of the content may be there.
    bool read(const QString &entryName, QIODevice &destination, qint64 limit);

    /// Extracts every entry that counts and whose name ends in ".json", in any case, to `destDir` + "/" + its name.
    /// Returns what extractFile returned for each, in the archive's order. What is beyond 64 MiB of
    /// them together, or beyond the 1,000th, is not extracted.
    QStringList extractJsonFiles(const QString &destDir);

private:
    explicit PackageReader(std::unique_ptr<PackageFile> file);

    struct Entry;
    struct Directory;

    const Directory &directory() const;
    bool readCurrentHeader() const;
    bool leadsThroughLink(const QString &entryName, const QString &destPath);
    bool goTo(const Entry &entry);
    bool copyEntry(const Entry &entry, QIODevice &destination, qint64 limit);
    bool writeEntry(const Entry &entry, const QString &destPath, qint64 limit);

    std::unique_ptr<PackageFile> m_file;
    std::unique_ptr<QuaZip> m_zip;
    mutable std::unique_ptr<Directory> m_directory;
    /// Those that this object has cleared of stale fragments.
    QSet<QString> m_tidiedFolders;
    /// How much of a path was the caller's own, and the last folder to which no link led from there: the entries of a
    /// folder follow one another.
    QPair<int, QString> m_plainFolder;
};

} // namespace Internal
} // namespace ProjectFileCfg
