// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/mainwindow.h>

#include <core/centerarea.h>
#include <core/devicebar.h>
#include <core/elidedlabel.h>
#include <core/imode.h>
#include <core/logview.h>
#include <core/modebar.h>
#include <core/modemanager.h>
#include <core/operationreport.h>
#include <widgets/titlebar.h>
#include <widgets/waitingdialog.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDockWidget>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QScrollArea>
#include <QStatusBar>
#include <QToolButton>

#include <algorithm>

using Corvel::Widgets::WaitingDialog;

namespace Core {

namespace {

MainWindow *s_window = nullptr;

const QSize comfortableSize(1440, 900);
/// In a lower window the docks would leave too little room for the central area.
constexpr int heightForDocks = 700;

/// Brings the widget into view in each area that it is in. An area does so by itself only if it moves the focus.
void scrollTo(QWidget *widget)
{
    for (QWidget *parent = widget->parentWidget(); parent; parent = parent->parentWidget()) {
        if (auto *area = qobject_cast<QScrollArea *>(parent))
            area->ensureWidgetVisible(widget);
    }
}

} // namespace

MainWindow *MainWindow::instance()
{
    return s_window;
}

MainWindow::MainWindow()
    : QMainWindow(nullptr, Qt::Window | Qt::FramelessWindowHint)
    , m_deviceBar(new DeviceBar)
    , m_centerArea(new CenterArea)
    , m_operationLabel(new ElidedLabel)
    , m_report(new OperationReport(this))
{
    s_window = this;
    setObjectName(QStringLiteral("MainWindow"));
    resize(comfortableSize.boundedTo(QGuiApplication::primaryScreen()->availableGeometry().size()));

    auto *titleBar = new HX::Widgets::TitleBar(this);
    m_titleBar = titleBar;
    m_viewMenu = new QMenu(this);
    m_viewButton = titleBar->addMenuButton(m_viewMenu);
    m_viewButton->setObjectName(QStringLiteral("ViewButton"));
    m_minimizeButton = titleBar->addButton(QStringLiteral("window_minimize"));
    m_maximizeButton = titleBar->addButton(QStringLiteral("window_maximize"));
    const auto toggleMaximized = [this]() { setWindowState(windowState() ^ Qt::WindowMaximized); };
    connect(m_minimizeButton, &QToolButton::clicked, this, &MainWindow::showMinimized);
    connect(m_maximizeButton, &QToolButton::clicked, this, toggleMaximized);
    connect(titleBar, &HX::Widgets::TitleBar::doubleClicked, this, toggleMaximized);
    connect(titleBar, &HX::Widgets::TitleBar::closeRequested, this, &MainWindow::close);
    setMenuWidget(titleBar);

    auto *page = new QVBoxLayout;
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addWidget(m_deviceBar);
    // A plugin's page may be larger than a small screen.
    auto *scrollArea = new QScrollArea;
    scrollArea->setObjectName(QStringLiteral("CenterScrollArea"));
    scrollArea->setFrameShape(QFrame::NoFrame);
    scrollArea->setFocusPolicy(Qt::NoFocus);
    scrollArea->setWidgetResizable(true);
    scrollArea->setWidget(m_centerArea);
    page->addWidget(scrollArea, 1);
    auto *body = new QWidget(this);
    m_bodyLayout = new QHBoxLayout(body);
    m_bodyLayout->setContentsMargins(0, 0, 0, 0);
    m_bodyLayout->setSpacing(0);
    m_modeBar = new ModeBar(body);
    m_bodyLayout->addWidget(m_modeBar);
    m_bodyLayout->addLayout(page, 1);
    setCentralWidget(body);

    m_logDock = makeDock(new LogView(this), QStringLiteral("LogDock"));
    addDockWidget(Qt::BottomDockWidgetArea, m_logDock);
    resizeDocks({m_logDock}, {235}, Qt::Vertical);

    m_operationLabel->setTextFormat(Qt::PlainText);
    statusBar()->addWidget(m_operationLabel, 1);

    connect(ModeManager::instance(), &ModeManager::currentModeChanged, this, &MainWindow::showCurrentMode);
    // Jobs report from their own threads.
    connect(ICore::instance(), &ICore::operatorTypeChanged, this, &MainWindow::showOperation, Qt::QueuedConnection);
    connect(m_report, &OperationReport::changed, this, &MainWindow::showStatus);
    retranslateUi();
    showCurrentMode();
}

MainWindow::~MainWindow()
{
    // The side widget belongs to the mode.
    if (m_navigation)
        m_navigation->setParent(nullptr);
    s_window = nullptr;
}

QDockWidget *MainWindow::makeDock(QWidget *widget, const QString &name)
{
    auto *dock = new QDockWidget(this);
    dock->setObjectName(name);
    dock->setFeatures(QDockWidget::DockWidgetClosable);
    dock->setWidget(widget);
    m_viewMenu->addAction(dock->toggleViewAction());
    connect(dock, &QDockWidget::windowTitleChanged, this, &MainWindow::retranslateTitleBar);
    return dock;
}

void MainWindow::addDock(QWidget *widget, const QString &title)
{
    QDockWidget *dock = makeDock(widget, title + QStringLiteral("Dock"));
    dock->setWindowTitle(title);
    // The dock follows its widget's title, for example after a change of the language.
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
    // The waiting dialog covers the status bar, so its text is the one to be read.
    WaitingDialog *waiting = WaitingDialog::instance();
    if (!text.isEmpty() && waiting->isVisible())
        waiting->showWaitingDialog(text, WaitingDialog::LevelNormal);
    showStatus();
}

void MainWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    else if (event->type() == QEvent::WindowStateChange)
        retranslateTitleBar();
    QMainWindow::changeEvent(event);
}

void MainWindow::showEvent(QShowEvent *event)
{
    if (!m_wasShown && height() < heightForDocks) {
        const QList<QDockWidget *> docks = findChildren<QDockWidget *>();
        for (QDockWidget *dock : docks)
            dock->hide();
    }
    m_wasShown = true;
    QMainWindow::showEvent(event);
}

/// The areas in visual order; within each, the order of its widgets.
QList<QWidget *> MainWindow::tabOrder() const
{
    QList<QWidget *> areas{m_titleBar, m_modeBar};
    if (m_navigation)
        areas.append(m_navigation);
    areas += {m_deviceBar, m_centerArea};
    const QList<QDockWidget *> docks = findChildren<QDockWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QDockWidget *dock : docks)
        areas.append(dock);
    const auto areaOf = [&areas](const QWidget *widget) {
        const auto area = std::find_if(areas.cbegin(), areas.cend(), [widget](const QWidget *one) {
            return one == widget || one->isAncestorOf(widget);
        });
        return area - areas.cbegin();
    };

    QList<QWidget *> order;
    for (QWidget *widget = nextInFocusChain(); widget != this; widget = widget->nextInFocusChain()) {
        if ((widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy() && widget->isEnabled() &&
            widget->isVisibleTo(this) && widget->window() == this)
            order.append(widget);
    }
    std::stable_sort(order.begin(), order.end(),
                     [&areaOf](const QWidget *a, const QWidget *b) { return areaOf(a) < areaOf(b); });
    return order;
}

bool MainWindow::focusNextPrevChild(bool next)
{
    const QList<QWidget *> order = tabOrder();
    if (order.isEmpty())
        return false;
    QWidget *current = focusWidget();
    // A widget with a focus proxy has the focus through it, like a spin box through its line edit.
    while (current && current != this && !order.contains(current))
        current = current->parentWidget();
    const int position = order.indexOf(current);
    const int count = order.size();
    const int target = position < 0 ? (next ? 0 : count - 1) : (position + (next ? 1 : count - 1)) % count;
    order.at(target)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    scrollTo(order.at(target));
    return true;
}

void MainWindow::retranslateUi()
{
    setWindowTitle(tr("Tarvo – development host"));
    m_logDock->setWindowTitle(tr("Log"));
    m_logDock->widget()->setAccessibleName(tr("Log"));
    retranslateTitleBar();
    m_report->forgetMessage();
    showStatus();
}

void MainWindow::retranslateTitleBar()
{
    m_viewButton->setText(tr("&View"));
    m_viewButton->setAccessibleName(tr("View"));
    const auto name = [](QToolButton *button, const QString &text) {
        button->setToolTip(text);
        button->setAccessibleName(text);
    };
    name(m_minimizeButton, tr("Minimize"));
    name(m_maximizeButton, isMaximized() ? tr("Restore") : tr("Maximize"));
    const QList<QDockWidget *> docks = findChildren<QDockWidget *>();
    for (const QDockWidget *dock : docks) {
        auto *close = dock->findChild<QAbstractButton *>(QStringLiteral("qt_dockwidget_closebutton"));
        if (!close)
            continue;
        const QString text = tr("Close %1").arg(dock->windowTitle());
        close->setToolTip(text);
        close->setAccessibleName(text);
        // Qt describes it in the language of the time when it was made.
        close->setAccessibleDescription(QString());
    }
}

void MainWindow::showStatus()
{
    QString operation;
    switch (m_operation) {
    case ICore::OperatorLoad:
        operation = tr("Writing to the device");
        break;
    case ICore::OperatorBackup:
        operation = tr("Reading from the device");
        break;
    case ICore::OperatorNone:
        operation = m_report->text().isEmpty() ? tr("Ready") : m_report->text();
        break;
    }
    m_operationLabel->setText(m_operationText.isEmpty() ? operation : tr("%1: %2").arg(operation, m_operationText));
    // The next call may block the event loop.
    m_operationLabel->repaint();
}

} // namespace Core
