// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "zippackagehandle.h"

#include <QHash>
#include <QList>
#include <QMutex>
#include <QStringList>

#include <atomic>
#include <optional>

namespace ProjectFileCfg {
namespace Internal {

/// The list of packages, shared by the panel and the scans in the thread pool. A scan holds its own reference, so it
/// may outlive the panel that started it. The operations lock the list themselves; any thread.
///
/// An operation that changes the list supersedes the scans that are still running: they may have seen the previous
/// state of the directory, and will no longer replace the list. It returns true if there are such scans; then start a
/// new one.
class ProjectList
{
public:
    /// Guards `listProjects`. Recursive, since the panel uses the list while it holds it.
    QMutex mutex{QMutex::Recursive};
    /// One record per package, newest file first; `strProjectName` is the file's base name.
    QList<EngineerPacketInfo> listProjects;

    /// A copy of the records.
    QList<EngineerPacketInfo> snapshot();
    /// Their paths, in the list's order.
    QStringList paths();
    /// The record of the package at `path`; none if it is not listed.
    std::optional<EngineerPacketInfo> find(const QString &path);

    /// Removes the record of the package at `path`.
    bool remove(const QString &path);
    /// Replaces the record of the package at `path` with `edited`, whose path may differ.
    bool rename(const QString &path, const EngineerPacketInfo &edited);
    /// Removes the files of all packages, ignoring failures, and empties the list.
    bool clear();

    /// Returns the number to pass to scanProjectFiles(). Call it in the order in which the scans start.
    quint64 beginScan();

    /// Replaces `listProjects` with the valid packages in `dirPath`, which is created if it does not exist. Does not
    /// read listed packages again. First removes stale fragments and finishes interrupted edits. Leaves the list
    /// unchanged if the directory cannot be created, or if a scan that started later has already replaced it. If the
    /// list is held, leaves it unchanged without waiting, and counts as missed.
    ///
    /// Returns in how many milliseconds the next scan is due, because some files may become packages when their writers
    /// have finished; -1 if there are none. Logs at debug level why a file is not listed, and again only if the reason
    /// changes.
    int scanProjectFiles(const QString &dirPath, quint64 scanNumber);

    /// When the next scan is due for a file that is not a valid package: one second after its last change, and then
    /// every second, until it has been unchanged for ten. In milliseconds from `now`; both times are in milliseconds
    /// since 1970. -1 for never.
    static int nextLook(qint64 changed, qint64 now);

    /// Holds the list during an operation of unlimited length, such as a dialog: `mutex` is locked meanwhile, but scans
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

    /// Call before starting a scan. If true, the list is held: do not start the scan, which counts as missed.
    bool isHeldAgainstScan();
    /// Call after releasing the list. True, once, if scans were missed meanwhile; then start one.
    bool takeMissedScan();

private:
    /// With the mutex locked.
    QList<EngineerPacketInfo>::iterator entryOf(const QString &path);
    bool supersedeScans();
    void replace(const QList<EngineerPacketInfo> &found, quint64 scanNumber);
    bool lockForScan();
    void logOnce(const QString &path, const QString &reason);

    std::atomic<quint64> m_nLastStarted{0};
    quint64 m_nLastApplied = 0; // guarded by mutex
    /// Guards the next three; never locked for long.
    QMutex m_holdMutex;
    int m_nHolds = 0;
    bool m_bScanMissed = false;
    /// The logged reason for each file that is not listed, by path.
    QHash<QString, QString> m_refused;
};

} // namespace Internal
} // namespace ProjectFileCfg
