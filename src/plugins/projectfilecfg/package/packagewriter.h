#pragma once

#include <QFileInfo>
#include <QStringList>
#include <QVector>

class QFile;
class QIODevice;
class QuaZip;

namespace ProjectFileCfg {
namespace Internal {

class PictureScan;

/// Packs a directory tree into a zip archive, in bounded memory.
///
/// Names and order are those that packages always had: relative to the directory, "/" between levels, for each
/// folder its own entry ("BKG/"), then its sub-folders, then its files, each sorted by name without regard to
/// case. Hidden files are included. Pictures are stored, since they are compressed already; the rest is deflated.
class PackageWriter
{
public:
    /// `packetPath` is left out where it lies inside the directory.
    PackageWriter(const QString &dirPath, const QString &packetPath);

    /// Lists what is to be packed. False when the tree cannot be packed whole: a folder or file that cannot be
    /// read, as one whose name is no UTF-8, a special file, a link that is broken, leads outside or back to a folder
    /// that it lies in; or when the package could not be applied: a name that PackageReader refuses, or more, or larger
    /// files, than PackageLimits says. Other links are packed as what they point to.
    bool scan();

    /// Writes the archive, without a comment, over whatever `archive` (open for reading and writing) holds.
    /// False when a source cannot be read, a write fails, or a load would refuse what a description or a picture holds
    /// (see PackageLimits); what the file holds then is of no use.
    bool write(QFile &archive);

    /// True when a reader finds in the archive at `path` the very entries, in name, order and size, that were written.
    bool isListedIn(const QString &path) const;

private:
    struct Entry
    {
        QString name;
        QString sourcePath;
        qint64 size;

        bool isFolder() const { return name.endsWith(QLatin1Char('/')); }
    };

    bool scanFolder(const QString &path, const QString &prefix, QStringList enclosingFolders);
    bool isWithinLimits();
    bool staysInside(const QFileInfo &source) const;
    bool writeEntries(QFile &archive, int paddingSize);
    bool writeEntry(QuaZip &zip, Entry &entry, int paddingSize);
    bool copyContent(Entry &entry, QIODevice &destination);
    bool isFit(const PictureScan &picture, const QString &name);

    QString m_dirPath;
    QString m_packetPath;
    QString m_canonicalDirPath;
    QVector<Entry> m_entries;
    /// The description that a load reads; empty when there is none.
    QString m_firstDescription;
    /// Of the backgrounds and logos that were written.
    qint64 m_nPixels = 0;
};

} // namespace Internal
} // namespace ProjectFileCfg
