// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QString>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// The old and the new last bytes of a file, to finish or undo a change that a kill or a power failure has interrupted.
/// Written and flushed before the file changes.
///
/// Stored in a hidden file `.<id>.undo` beside the file; the id is derived from the file's name, so that no search is
/// needed. No listing shows the record, no package includes it. An incomplete record means that the file is unchanged.
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
    /// True if it is a day old, which is more than clocks differ, so that no process can still be writing it.
    static bool isStale(const QString &recordPath);

    enum class Reading {
        Whole,
        /// It does not match its digest: it is incomplete, or still being written.
        Broken,
        Unreadable
    };
    Reading read(const QString &recordPath);
    /// True if the record and its name are on the disk.
    bool write(const QString &recordPath) const;

    /// The digest that identifies a file whose bytes from `offset` on change; empty if it cannot be read.
    static QByteArray markOf(QFile &file, qint64 offset);
    /// True if the file, open for reading, is the one that the record was written for, or a copy of it.
    bool fits(QFile &file) const;

    /// True if `tail` can only be the result of a crash: each byte is the old one, the new one, or zero (in a file that
    /// grew, but whose content did not reach the disk). False for the old and the new bytes themselves, and for bytes
    /// that another program has written.
    bool isTorn(const QByteArray &tail) const;
};

} // namespace Internal
} // namespace ProjectFileCfg
