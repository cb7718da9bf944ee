#pragma once

#include "zippackagehandle.h"

#include <QList>
#include <QMutex>
#include <QString>

#include <atomic>

namespace ProjectFileCfg {
namespace Internal {

/// The list of packages, shared by the panel and the scans in the thread pool. A scan holds its own reference, so it
/// may outlive the panel that started it.
class ProjectList
{
public:
    /// Guards `projects`. Recursive, since an operation of the panel that has locked it rebuilds the table.
    QMutex mutex{QMutex::Recursive};
    /// One record per package, newest file first; `strProjectName` is the file's base name.
    QList<EngineerPacketInfo> projects;

    /// Returns the number to pass to scanProjectFiles(). Call it in the order in which scans start. Any thread.
    quint64 beginScan();

    /// Replaces `projects` by the valid packages in `dirPath`, which is created if it does not exist. Does not read
    /// known packages again. First removes stale fragments and finishes interrupted edits. Leaves the list unchanged if
    /// the directory cannot be created, or if a scan that started later has replaced it already. If the list is held,
    /// also leaves it unchanged, without waiting, and counts as missed. Any thread.
    ///
    /// Returns in how many milliseconds another scan is due, because some files are not packages yet but may become so
    /// when their writers have finished; -1 if there are none.
    int scanProjectFiles(const QString &dirPath, quint64 scanNumber);

    /// The same for one file that is not a valid package, changed and checked at these times, in milliseconds since
    /// 1970: one second after its last change, and then every second, until it has been unchanged for ten.
    static int nextLook(qint64 changed, qint64 now);

    /// Holds the list during an operation of unlimited length, such as a dialog: `mutex` is locked meanwhile, and scans
    /// do not wait for it.
    class Hold
    {
    public:
        explicit Hold(ProjectList &list);
        ~Hold();

    private:
        Q_DISABLE_COPY(Hold)

        ProjectList &m_list;
    };

    /// Call before starting a scan. True while the list is held: do not start it; it counts as missed. Any thread.
    bool isHeldAgainstScan();
    /// Call after releasing the list. True, once, if scans were missed meanwhile: start one.
    bool takeMissedScan();

    /// Call after the panel has changed `projects`: scans that are still running may have seen the previous state of
    /// the directory, and will not replace the list any more. True if there are such scans: start a new one. Any
    /// thread.
    bool supersedeScans();

private:
    bool lockForScan();

    std::atomic<quint64> m_lastStarted{0};
    quint64 m_lastApplied = 0; // guarded by mutex
    /// Guards the next two; never locked for long.
    QMutex m_holdMutex;
    int m_holds = 0;
    bool m_isScanMissed = false;
};

} // namespace Internal
} // namespace ProjectFileCfg
