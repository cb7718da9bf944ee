#pragma once

#include <QStringList>
#include <QVector>

/// Stands between the program and the C library, at every call that changes a file or a folder, and opens one: lets
/// the n-th such call fail, or kills the process there, and knows what a power failure would take away.
///
/// Linked into the test program, whose symbols come before those of the C library for all libraries: Qt and QuaZip
/// call them too. Counted are only calls below the watched folders, and only while it is armed.
namespace FaultPoints {

/// From Read on, the kinds are for plans that fail once: as steps of a lasting failure or of a kill they do not count.
/// Reading and seeking concern files that were opened below the watched folders, as writing does. Truncate is a Write
/// as well, and the closing of a file that was written a Flush, since both can be where a full disk shows.
enum Kind {
    Open,
    Write,
    Flush,
    Rename,
    MakeFolder,
    Remove,
    Read,
    Seek,
    Truncate,
    Close,
    SetMode,
    SetTimes,
    FlushRange,
    KindCount
};

QString kindName(Kind kind);

/// What happens to the calls. Counting begins at 1.
struct Plan
{
    enum Effect {
        /// The n-th call of that kind fails; the next one works again.
        FailOnce,
        /// From the n-th call on the disk is full: half of a write goes through, then nothing that needs room.
        FullDisk,
        /// The same, but after four calls there is room again: long enough for a file to be given up.
        FullForAWhile,
        /// From the n-th call on nothing can be changed.
        ReadOnly,
        /// From the n-th call on there is nothing at all any more, as when a stick is pulled.
        Gone,
        /// The process is killed before the n-th call that changes something or flushes it. A write counts twice:
        /// half of it is written first, then all but its last byte.
        Kill
    };

    Effect effect = FailOnce;
    /// FailOnce alone counts calls of one kind; the others count every kind.
    Kind kind = Open;
    /// FailOnce alone.
    int error = 0;
    /// 0: nothing happens, the calls are only counted.
    int number = 0;
};

/// Begins to count, from 1. Flushing is not done meanwhile, only noted: what it is good for is judged here.
void arm(const QStringList &watchedFolders, const Plan &plan);

struct Report
{
    /// Whether the n-th call was reached.
    bool struck = false;
    /// Calls per kind.
    QVector<int> calls = QVector<int>(KindCount);
    /// Files that were given the extension of a package before their content was flushed.
    QStringList namedBeforeFlushed;
    /// Packages that were written where they lie, and files and folders that were not flushed by then.
    QStringList changedInPlace;
    int unflushedBefore = 0;
};

/// Ends it.
Report disarm();

/// True when a power failure now could take away the file's content, or its name, as far as they were changed
/// since arm(). Valid until the next arm().
bool isUnflushed(const QString &path);

} // namespace FaultPoints
