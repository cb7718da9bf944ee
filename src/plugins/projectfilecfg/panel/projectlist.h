#pragma once

#include "zippackagehandle.h"

#include <QList>
#include <QMutex>
#include <QString>

#include <atomic>

namespace ProjectFileCfg {
namespace Internal {

/// The packages that the panel lists, shared by the panel and the scans that run in the thread pool.
///
/// A scan holds its own reference, so that it may outlive the panel that started it.
class ProjectList
{
public:
    /// Guards `projects`. Recursive, since an operation of the panel that holds it rebuilds the table.
    QMutex mutex{QMutex::Recursive};
    /// One record per package, newest file first; `strProjectName` is the file's base name.
    QList<EngineerPacketInfo> projects;

    /// Call in the order in which scans are started; the number goes to scanProjectFiles(). Any thread.
    quint64 beginScan();

    /// Replaces `projects` by the valid packages in `dirPath`, which is created when it does not exist. A
    /// package that is known already is not read again. Ends first what an edit has left that was killed. Leaves the
    /// list alone when the directory cannot be created, or when a scan that was started later has replaced it
    /// already. Where the list is held it is left alone as well, nothing waits, and the scan counts as missed.
    /// Any thread.
    ///
    /// Returns in how many milliseconds another scan is due, since there are files that are no packages yet but may be
    /// when their writer has come to the end; -1 when there are none.
    int scanProjectFiles(const QString &dirPath, quint64 scanNumber);

    /// The same for one file that is no valid package, last changed and looked at at these times, in milliseconds since
    /// 1970: one second after its last change, and then every second, until it has been at rest for ten.
    static int nextLook(qint64 changed, qint64 now);

    /// Holds the list for an operation that takes as long as its user likes: `mutex` is locked meanwhile, and
    /// scans know better than to wait for it.
    class Hold
    {
    public:
        explicit Hold(ProjectList &list);
        ~Hold();

    private:
        Q_DISABLE_COPY(Hold)

        ProjectList &m_list;
    };

    /// Call before a scan is started: while the list is held it is not to be, and counts as missed. Any thread.
    bool isHeldAgainstScan();
    /// Call when the list is held no more: true, once, when scans were missed meanwhile, so that one is due.
    bool takeMissedScan();

    /// Call after `projects` was changed by hand: scans that are still running may have seen the directory as
    /// it was before, and will not replace the list any more. Returns true when there are such scans, so
    /// that a new one is due. Any thread.
    bool supersedeScans();

private:
    bool lockForScan();

    std::atomic<quint64> m_lastStarted{0};
    quint64 m_lastApplied = 0; // guarded by mutex
    /// Guards the next two, and is never held for long.
    QMutex m_holdMutex;
    int m_holds = 0;
    bool m_isScanMissed = false;
};

} // namespace Internal
} // namespace ProjectFileCfg
