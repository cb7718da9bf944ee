#include <core/mainwindow.h>

#include <core/centerarea.h>
#include <core/devicebar.h>
#include <core/imode.h>
#include <core/logview.h>
#include <core/modebar.h>
#include <core/modemanager.h>
#include <widgets/titlebar.h>
#include <widgets/waitingdialog.h>

#include <QDockWidget>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QStatusBar>
#include <QToolButton>

using Corvel::Widgets::WaitingDialog;

namespace Core {

namespace {

MainWindow *theWindow = nullptr;

} // namespace

MainWindow *MainWindow::instance()
{
    return theWindow;
}

MainWindow::MainWindow()
    : QMainWindow(nullptr, Qt::Window | Qt::FramelessWindowHint)
    , m_deviceBar(new DeviceBar)
    , m_centerArea(new CenterArea)
    , m_operationLabel(new QLabel)
{
    theWindow = this;
    setObjectName(QStringLiteral("MainWindow"));
    resize(1440, 900);

    auto *titleBar = new HX::Widgets::TitleBar(this);
    const QToolButton *minimize = titleBar->addButton(QStringLiteral("window_minimize"));
    const QToolButton *maximize = titleBar->addButton(QStringLiteral("window_maximize"));
    const auto toggleMaximized = [this]() { setWindowState(windowState() ^ Qt::WindowMaximized); };
    connect(minimize, &QToolButton::clicked, this, &MainWindow::showMinimized);
    connect(maximize, &QToolButton::clicked, this, toggleMaximized);
    connect(titleBar, &HX::Widgets::TitleBar::doubleClicked, this, toggleMaximized);
    connect(titleBar, &HX::Widgets::TitleBar::closeRequested, this, &MainWindow::close);
    setMenuWidget(titleBar);

    auto *page = new QVBoxLayout;
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addWidget(m_deviceBar);
    page->addWidget(m_centerArea, 1);
    auto *body = new QWidget(this);
    m_bodyLayout = new QHBoxLayout(body);
    m_bodyLayout->setContentsMargins(0, 0, 0, 0);
    m_bodyLayout->setSpacing(0);
    m_bodyLayout->addWidget(new ModeBar(body));
    m_bodyLayout->addLayout(page, 1);
    setCentralWidget(body);

    m_logDock = makeDock(new LogView(this), QStringLiteral("LogDock"));
    addDockWidget(Qt::BottomDockWidgetArea, m_logDock);
    resizeDocks({m_logDock}, {190}, Qt::Vertical);

    m_operationLabel->setTextFormat(Qt::PlainText);
    statusBar()->addWidget(m_operationLabel, 1);

    connect(ModeManager::instance(), &ModeManager::currentModeChanged, this, &MainWindow::showCurrentMode);
    // Jobs report from their threads.
    connect(ICore::instance(), &ICore::operatorTypeChanged, this, &MainWindow::showOperation, Qt::QueuedConnection);
    retranslateUi();
    showCurrentMode();
}

MainWindow::~MainWindow()
{
    // What a mode shows at the side is the mode's.
    if (m_navigation)
        m_navigation->setParent(nullptr);
    theWindow = nullptr;
}

QDockWidget *MainWindow::makeDock(QWidget *widget, const QString &name)
{
    auto *dock = new QDockWidget(this);
    dock->setObjectName(name);
    dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    dock->setWidget(widget);
    return dock;
}

void MainWindow::addDock(QWidget *widget, const QString &title)
{
    QDockWidget *dock = makeDock(widget, title + QStringLiteral("Dock"));
    dock->setWindowTitle(title);
    // A widget that renames itself, as after a change of the language, renames its dock.
    connect(widget, &QWidget::windowTitleChanged, dock, &QDockWidget::setWindowTitle);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    splitDockWidget(dock, m_logDock, Qt::Horizontal);
    resizeDocks({dock, m_logDock}, {width() * 2 / 3, width() / 3}, Qt::Horizontal);
}

void MainWindow::showCurrentMode()
{
    if (m_navigation) {
        m_bodyLayout->removeWidget(m_navigation);
        m_navigation->hide();
        m_navigation = nullptr;
    }
    m_deviceBar->hide();
    const QVector<IMode *> modes = ModeManager::modes();
    for (const IMode *mode : modes) {
        if (mode->id() != ModeManager::currentMode())
            continue;
        m_deviceBar->setVisible(mode->hasDeviceToolBar());
        m_navigation = mode->hasNavigationBar() ? mode->toolBar() : nullptr;
        if (m_navigation) {
            const int besideTheModes = 1;
            m_bodyLayout->insertWidget(besideTheModes, m_navigation);
            m_navigation->show();
        }
    }
}

void MainWindow::showOperation(ICore::OperatorDeviceType type, const QString &text)
{
    m_operation = type;
    m_operationText = text;
    // The waiting dialog stands before the status bar, so what it says is what is read.
    WaitingDialog *waiting = WaitingDialog::instance();
    if (!text.isEmpty() && waiting->isVisible())
        waiting->showWaitingDialog(text, WaitingDialog::LevelNormal);
    retranslateUi();
}

void MainWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    QMainWindow::changeEvent(event);
}

void MainWindow::retranslateUi()
{
    setWindowTitle(tr("Tarvo – development host"));
    m_logDock->setWindowTitle(tr("Log"));
    QString operation;
    switch (m_operation) {
    case ICore::OperatorLoad:
        operation = tr("Writing to the device");
        break;
    case ICore::OperatorBackup:
        operation = tr("Reading from the device");
        break;
    case ICore::OperatorNone:
        operation = tr("Ready");
        break;
    }
    m_operationLabel->setText(m_operationText.isEmpty() ? operation : tr("%1: %2").arg(operation, m_operationText));
}

} // namespace Core
