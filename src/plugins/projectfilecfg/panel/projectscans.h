// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

#include <functional>
#include <memory>

class QObject;
class QTimer;

namespace ProjectFileCfg {
namespace Internal {

class ProjectList;

/// The scans of the project-files directory, in the global thread pool. User-interface thread.
class ProjectScans
{
public:
    /// `panel` must outlive this object. Calls `finished` from the event loop after each scan, unless `panel` was
    /// deleted.
    ProjectScans(const std::shared_ptr<ProjectList> &projects, const QString &directory, QObject *panel,
                 const std::function<void()> &finished);

    /// Starts a scan, unless the list is held. Starts another one later if a file may still become a package, since the
    /// directory's watcher reports new files, but not growing ones.
    void start();

private:
    void onFinished(int nextScan);

    const std::shared_ptr<ProjectList> m_pProjects;
    const QString m_strDirectory;
    QObject *const m_pPanel;
    const std::function<void()> m_finished;
    QTimer *const m_pTimer;
};

} // namespace Internal
} // namespace ProjectFileCfg
