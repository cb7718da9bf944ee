#pragma once

#include <QByteArray>
#include <QString>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// What it takes to end a change of a file's last bytes that a killed process, or a power failure, has cut: what they
/// were and what they were to be. Written beside the file, and flushed, before they are changed.
///
/// It lies in a hidden file `.<id>.undo` beside the file that it belongs to; the id is formed from that file's name, so
/// that it is found without a search. No listing shows it, no package includes it. One that is not whole says that
/// nothing was changed yet.
struct UndoRecord
{
    QString fileName;
    /// Where the bytes begin that change. All from there to the end of the file belong to them.
    qint64 offset = 0;
    /// Digest of the bytes before the offset, by which the file is known again.
    QByteArray mark;
    QByteArray before;
    QByteArray after;
    /// The file's modification time, in nanoseconds since 1970.
    qint64 modified = 0;

    /// Where the record of the file at `filePath`, which is no link, lies.
    static QString pathFor(const QString &filePath);
    static bool isUndoRecord(const QString &fileName);
    /// True when nobody can be writing it any more: it is a day old, which is more than clocks differ.
    static bool isStale(const QString &recordPath);

    enum Reading {
        Whole,
        /// Its own digest says that it is not what was to be written: cut, or still being written.
        Broken,
        Unreadable
    };
    Reading read(const QString &recordPath);
    /// True when it is on the disk, with its name.
    bool write(const QString &recordPath) const;

    /// The digest by which a file is known whose bytes from `offset` on change; empty when it cannot be read.
    static QByteArray markOf(QFile &file, qint64 offset);
    /// True when the file, open for reading, is the one that the record was written for, or has its content.
    bool fits(QFile &file) const;

    /// True for last bytes that only a cut can have left: each is the old or the new one, or zero, as where a file
    /// was made longer and its content has not reached the disk. False for the old and the new ones themselves, and for
    /// what somebody else has written.
    bool isTorn(const QByteArray &tail) const;
};

} // namespace Internal
} // namespace ProjectFileCfg
