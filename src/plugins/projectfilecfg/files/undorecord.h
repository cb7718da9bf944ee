// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QString>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// The old and the new last bytes of a file, to finish or undo a change of them that a kill or a power failure has
/// interrupted. Written and flushed before the file changes.
///
/// Stored in a hidden file `.<id>.undo` beside the file; the id is derived from the file's name, so that it is found
/// without a search. No listing shows it, no package includes it. An incomplete record means that the file is
/// unchanged.
struct UndoRecord
{
    QString strFileName;
    /// The changed bytes are those from this offset to the end of the file.
    qint64 nOffset = 0;
    /// Digest of the bytes before the offset; identifies the file.
    QByteArray mark;
    QByteArray before;
    QByteArray after;
    /// The file's modification time, in nanoseconds since 1970.
    qint64 nModified = 0;

    /// The path of the record for the file at `filePath`, which is not a link.
    static QString pathFor(const QString &filePath);
    static bool isUndoRecord(const QString &fileName);
    /// True if it is a day old, more than clocks differ: no process can still be writing it.
    static bool isStale(const QString &recordPath);

    enum class Reading {
        Whole,
        /// It does not match its own digest: incomplete, or still being written.
        Broken,
        Unreadable
    };
    Reading read(const QString &recordPath);
    /// True if the record is on the disk, with its name.
    bool write(const QString &recordPath) const;

    /// The digest that identifies a file whose bytes from `offset` on change; empty if it cannot be read.
    static QByteArray markOf(QFile &file, qint64 offset);
    /// True if the file, open for reading, is the one that the record was written for, or a copy of it.
    bool fits(QFile &file) const;

    /// True for last bytes that only a crash can have left: each is the old or the new one, or zero, as when a file
    /// grew and its content did not reach the disk. False for the old and the new ones themselves, and for what another
    /// program has written.
    bool isTorn(const QByteArray &tail) const;
};

} // namespace Internal
} // namespace ProjectFileCfg
