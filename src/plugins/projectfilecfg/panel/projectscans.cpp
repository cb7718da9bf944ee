// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectscans.h"

#include "projectlist.h"

#include <QFutureWatcher>
#include <QTimer>
#include <QtConcurrentRun>

namespace ProjectFileCfg {
namespace Internal {

ProjectScans::ProjectScans(const std::shared_ptr<ProjectList> &projects, const QString &directory, QObject *panel,
                           const std::function<void()> &finished)
    : m_pProjects(projects)
    , m_strDirectory(directory)
    , m_pPanel(panel)
    , m_finished(finished)
    , m_pTimer(new QTimer(panel))
{
    m_pTimer->setSingleShot(true);
    QObject::connect(m_pTimer, &QTimer::timeout, panel, [this] { start(); });
}

void ProjectScans::start()
{
    if (m_pProjects->isHeldAgainstScan())
        return;
    const auto scan = [projects = m_pProjects, path = m_strDirectory, number = m_pProjects->beginScan()] {
        return projects->scanProjectFiles(path, number);
    };
    auto *watcher = new QFutureWatcher<int>;
    QObject::connect(watcher, &QFutureWatcher<int>::finished, m_pPanel,
                     [this, watcher] { onFinished(watcher->result()); });
    QObject::connect(watcher, &QFutureWatcher<int>::finished, watcher, &QObject::deleteLater);
    watcher->setFuture(QtConcurrent::run(scan));
}

void ProjectScans::onFinished(int nextScan)
{
    m_finished();
    if (nextScan >= 0 && !m_pTimer->isActive())
        m_pTimer->start(nextScan);
}

} // namespace Internal
} // namespace ProjectFileCfg
