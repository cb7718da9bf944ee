// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operatorhand.h"

#include <simulation/hardware.h>

#include <functional>

class QTableWidget;

namespace Corvel {
namespace Widgets {
class ICenterWidget;
}
} // namespace Corvel

namespace Simulation {
class Session;
}

/// The demonstration: drives the real panel through its features, checks each outcome against the simulated hardware
/// and saves a screenshot of each step. User-interface thread.
class Tour
{
public:
    /// Screenshots go into `directory`, which is created.
    Tour(Simulation::Session &session, QWidget *window, const QString &directory);

    /// Runs and logs every step. Returns 0, or 1 at the first step that fails.
    int run();

private:
    void openProjectFiles();
    void showEmptyTable();
    void saveFirstDevice();
    void cancelSave();
    void editProject();
    void saveProjectAs();
    void importProjects();
    void applyToSecondDevice();
    void refuseOtherModel();
    void cancelApply();
    void deleteProject();
    void showChinese();
    void deleteAllProjects();
    void workByKeyboard();

    void step(const QString &title, const std::function<QString()> &work);
    void keyboardStep(const QString &title, const std::function<QString()> &work);
    void selectDevice(const QString &ip);
    void pressInRow(const QString &project, const QString &button);
    int rowOf(const QString &project) const;
    QStringList projects() const;
    QTableWidget *table() const;
    QString projectPath(const QString &name) const;
    void expectProjects(const QStringList &names);
    void startSave(const QString &name, const QString &comment, const QString &picture = QString());
    void waitForProgress(int pictures);
    static void require(bool condition, const QString &failure);

    Simulation::Session &m_session;
    QWidget *const m_window;
    const QString m_directory;
    OperatorHand m_hand;
    Corvel::Widgets::ICenterWidget *m_panel = nullptr;
    Simulation::HardwareState m_saved;
};
