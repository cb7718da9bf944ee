// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QFileInfo>
#include <QStringList>
#include <QVector>

class QFile;
class QIODevice;
class QuaZip;

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;
class PictureScan;

/// Packs a directory tree into a zip archive, in bounded memory.
///
/// Names are relative to the directory, with "/" between levels. For each folder: its own entry ("BKG/"), then its
/// sub-folders, then its files, each sorted by name without regard to case. Hidden files are included. Pictures are
/// stored, since they are compressed already; the rest is deflated.
///
/// A `reason` is set on failure (see reason.h).
class PackageWriter
{
public:
    /// A future entry: its name, the file or folder from which it is packed, and its size in bytes.
    struct Entry
    {
        QString strName;
        QString strSourcePath;
        qint64 nSize;

        bool isFolder() const { return strName.endsWith(QLatin1Char('/')); }
    };

    /// `packetPath` is skipped if it is inside the directory.
    PackageWriter(const QString &dirPath, const QString &packetPath);

    /// Lists the tree. False if it cannot be packed completely: a folder or file that cannot be read or whose name is
    /// not UTF-8, a special file, a link that is broken, leads outside or back to an enclosing folder; or if the
    /// package could not be applied: a name that PackageReader refuses, or more or larger files than PackageLimits
    /// allows. Other links are packed as their targets.
    bool scan(QString *reason = nullptr);

    /// The entries found by scan(), in the archive's order.
    const QVector<Entry> &entries() const { return m_listEntries; }

    /// Replaces the content of `archive` (open for reading and writing) with the archive, without a comment. False if a
    /// source cannot be read, a write fails, or a description or picture exceeds PackageLimits; the file is unusable
    /// then.
    bool write(QFile &archive, QString *reason = nullptr);

    /// True if the package has exactly the entries that were written: same names, order and sizes.
    bool isListedIn(const PackageReader &package, QString *reason = nullptr) const;

private:
    bool scanFolder(const QString &path, const QString &prefix, QStringList enclosingFolders, QString *reason);
    bool isWithinLimits(QString *reason);
    bool staysInside(const QFileInfo &source) const;
    bool writeEntries(QFile &archive, int paddingSize, QString *reason);
    bool writeEntry(QuaZip &zip, Entry &entry, int paddingSize, QString *reason);
    bool copyContent(Entry &entry, QIODevice &destination, QString *reason);
    bool isFit(const PictureScan &picture, const QString &name);

    QString m_strDirPath;
    QString m_strPacketPath;
    QString m_strCanonicalDirPath;
    QVector<Entry> m_listEntries;
    /// The description that an apply reads; empty if there is none.
    QString m_strFirstDescription;
    /// Pixels of the backgrounds and logos written so far.
    qint64 m_nPixels = 0;
};

} // namespace Internal
} // namespace ProjectFileCfg
