// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "packedfile.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class QIODevice;

namespace Corvelpro {

/// One side of a comparison: a package, or a device's directory as packing it would make it. A `reason` is set on
/// failure; it names the entry, and that of open() the path.
class EntrySource
{
public:
    struct Record
    {
        QString name;
        QString comment;
    };

    /// Null if there is no package or directory at `path`, or if it cannot be listed.
    static std::unique_ptr<EntrySource> open(const QString &path, QString *reason);

    virtual ~EntrySource();

    /// The names of its files, normalised ("BKG/./x" is "BKG/x"), sorted. The first counts of those that become one.
    const QStringList &files() const { return m_files; }
    /// Its folders, each ending in "/", also those that only the name of a file shows: other zip programs leave out the
    /// entries of folders.
    const QSet<QString> &folders() const { return m_folders; }

    /// Bytes of a file, by a name of files(), as its side states them.
    virtual qint64 size(const QString &file) const = 0;
    /// Writes its content to `destination`, which is open for writing. False if it is damaged or cannot be read, or has
    /// more bytes than size(); part of it may be written then.
    virtual bool read(const QString &file, QIODevice &destination, QString *reason) = 0;
    /// Where its content is packed. None in a directory, or if read() would fail before the content.
    virtual std::optional<PackedFile> packed(const QString &file) = 0;
    /// None if it is a directory, or a package without one.
    virtual std::optional<Record> record() const = 0;

protected:
    EntrySource() = default;
    /// Adds an entry by the name that it has there.
    void add(const QString &entryName);
    /// To be called after the last add().
    void sort() { m_files.sort(); }
    QString nameThere(const QString &file) const { return m_namesThere.value(file); }

private:
    Q_DISABLE_COPY(EntrySource)

    QStringList m_files;
    QSet<QString> m_folders;
    QHash<QString, QString> m_namesThere;
};

} // namespace Corvelpro
