#pragma once

#include <core/core_global.h>
#include <core/icore.h>

#include <QMainWindow>

class QHBoxLayout;
class QLabel;

namespace Core {

class CenterArea;
class DeviceBar;

/// The host's window: title bar, top-level modes at the left, beside them the current mode's own
/// navigation, the device bar, the central-widget area, and docks below. User-interface thread only.
class HOST_CORE_EXPORT MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    /// The window; null before the core plugin was initialised and after it was shut down.
    static MainWindow *instance();

    /// Puts `widget`, which becomes the window's, into a dock below the central area, left of the log.
    void addDock(QWidget *widget, const QString &title);

protected:
    void changeEvent(QEvent *event) override;

private:
    void showCurrentMode();
    void showOperation(ICore::OperatorDeviceType type, const QString &text);
    void retranslateUi();
    QDockWidget *makeDock(QWidget *widget, const QString &name);

    QHBoxLayout *m_bodyLayout;
    DeviceBar *m_deviceBar;
    CenterArea *m_centerArea;
    QWidget *m_navigation = nullptr;
    QDockWidget *m_logDock;
    QLabel *m_operationLabel;
    ICore::OperatorDeviceType m_operation = ICore::OperatorNone;
    QString m_operationText;
};

} // namespace Core
