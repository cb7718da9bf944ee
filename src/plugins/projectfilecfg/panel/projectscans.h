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
    /// `panel` must outlive this object. Calls `finished` in the event loop after each scan, unless it has gone.
    ProjectScans(const std::shared_ptr<ProjectList> &projects, const QString &directory, QObject *panel,
                 const std::function<void()> &finished);

    /// Starts one more scan, unless the list is held. Another one follows by itself where a file may yet become a
    /// package, since the directory's watcher tells of new files, not of those that grow.
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
