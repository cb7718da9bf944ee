// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/core_global.h>
#include <core/icore.h>

#include <QMainWindow>

class QHBoxLayout;
class QLabel;
class QMenu;
class QToolButton;

namespace Core {

class CenterArea;
class DeviceBar;
class ModeBar;
class OperationReport;

/// The host's window: title bar, top-level modes at the left, next to them the current mode's own navigation, the
/// device bar, the central-widget area, and docks below.
///
/// It never opens larger than its screen: the central area scrolls, and docks can be closed and reopened with the title
/// bar's View button; in a low window they start closed. Tab visits the areas in visual order. The status bar shows the
/// running operation and its result. User-interface thread only.
class HOST_CORE_EXPORT MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    /// The window; null before the core plugin is initialised and after it is shut down.
    static MainWindow *instance();

    /// Puts `widget` into a dock below the central area, left of the log. The window takes ownership.
    void addDock(QWidget *widget, const QString &title);

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void showCurrentMode();
    void showOperation(ICore::OperatorDeviceType type, const QString &text);
    void retranslateUi();
    QDockWidget *makeDock(QWidget *widget, const QString &name);

    void retranslateTitleBar();
    void showStatus();
    QList<QWidget *> tabOrder() const;

    QWidget *m_titleBar;
    QToolButton *m_viewButton;
    QToolButton *m_minimizeButton;
    QToolButton *m_maximizeButton;
    QMenu *m_viewMenu;
    bool m_wasShown = false;
    QHBoxLayout *m_bodyLayout;
    ModeBar *m_modeBar;
    DeviceBar *m_deviceBar;
    CenterArea *m_centerArea;
    QWidget *m_navigation = nullptr;
    QDockWidget *m_logDock;
    QLabel *m_operationLabel;
    OperationReport *m_report;
    ICore::OperatorDeviceType m_operation = ICore::OperatorNone;
    QString m_operationText;
};

} // namespace Core
