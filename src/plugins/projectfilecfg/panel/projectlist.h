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
    /// package that is known already is not read again. Leaves the list alone when the directory cannot be
    /// created, or when a scan that was started later has replaced it already. Any thread.
    void scanProjectFiles(const QString &dirPath, quint64 scanNumber);

    /// Call after `projects` was changed by hand: scans that are still running may have seen the directory as
    /// it was before, and will not replace the list any more. Returns true when there are such scans, so
    /// that a new one is due. Any thread.
    bool supersedeScans();

private:
    std::atomic<quint64> m_lastStarted{0};
    quint64 m_lastApplied = 0; // guarded by mutex
};

} // namespace Internal
} // namespace ProjectFileCfg
