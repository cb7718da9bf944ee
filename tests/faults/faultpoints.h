// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QStringList>
#include <QVector>

/// Hooks the C library functions that open or change files and folders: lets the n-th call fail, or kills the process
/// there, and tracks what a power failure would lose.
///
/// Linked into the test program, whose symbols take precedence over the C library's in all libraries, so it also sees
/// the calls of Qt and QuaZip. Counts only calls below the watched folders while armed.
namespace FaultPoints {

/// From Read on, kinds are for plans that fail a single call: they are not counted as steps of a lasting failure or a
/// kill. Reading and seeking count for files opened below the watched folders, like writing. Truncate counts as a
/// Write, and closing a written file as a Flush, since a full disk can surface in either.
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

/// What happens to the calls. They are counted from 1.
struct Plan
{
    enum Effect {
        /// The n-th call of that kind fails; later ones succeed.
        FailOnce,
        /// From the n-th call on the disk is full: half of a write succeeds, then every call that needs space fails.
        FullDisk,
        /// The same, but space returns after four failed calls, which is enough to give up one file.
        FullForAWhile,
        /// From the n-th call on the medium is read-only.
        ReadOnly,
        /// From the n-th call on every call fails, as after pulling a stick.
        Gone,
        /// Kills the process before the n-th call that changes or flushes something. A write counts twice: half of it
        /// is written first, then all but its last byte.
        Kill,
        /// Ctrl-C before the n-th call; the call itself succeeds.
        Interrupt
    };

    Effect effect = FailOnce;
    /// FailOnce counts calls of one kind, the others count all kinds.
    Kind kind = Open;
    /// FailOnce only.
    int error = 0;
    /// 0 only counts calls.
    int number = 0;
};

/// Starts counting from 1. Flushes are recorded, not executed: the test judges what they protect.
void arm(const QStringList &watchedFolders, const Plan &plan);

struct Report
{
    /// Whether the n-th call was reached.
    bool struck = false;
    /// Calls per kind.
    QVector<int> calls = QVector<int>(KindCount);
    /// Files renamed to a package's extension before their content was flushed.
    QStringList namedBeforeFlushed;
    /// Packages written in place, and files and folders not flushed by then.
    QStringList changedInPlace;
    int unflushedBefore = 0;
};

/// Stops counting.
Report disarm();

/// True if a power failure now could lose the file's content or name as changed since arm(). Valid until the next
/// arm().
bool isUnflushed(const QString &path);

} // namespace FaultPoints
