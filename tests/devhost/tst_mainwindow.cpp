// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/elidedlabel.h>
#include <core/hostsettings.h>
#include <core/imode.h>
#include <core/language.h>
#include <core/logrelay.h>
#include <core/mainwindow.h>
#include <core/modemanager.h>
#include <simulation/journal.h>
#include <simulation/operations.h>
#include <widgets/framelessmessagebox.h>
#include <widgets/titlebar.h>
#include <widgets/waitingdialog.h>

#include <support/answerbook.h>
#include <support/testmain.h>

#include <QAccessible>
#include <QDir>
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTextDocument>
#include <QThread>
#include <QToolButton>

using Core::ICore;
using Core::MainWindow;
using Core::ModeManager;
using Corvel::Widgets::WaitingDialog;
using HX::Widgets::TitleBar;

namespace {

/// A top-level mode with its own side widget.
class Mode : public Core::IMode
{
public:
    explicit Mode(const char *id)
    {
        setId(id);
        setEnabled(true);
        ModeManager::addMode(this);
    }
    ~Mode() override
    {
        ModeManager::removeMode(this);
        delete side;
    }
    bool hasNavigationBar() const override { return true; }
    void retranslateUi() override {}
    QWidget *toolBar() const override { return side; }

    const QPointer<QWidget> side = new QLabel;
};

} // namespace

class TstMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void window_is_known_during_its_lifetime();
    void texts_follow_the_language();
    void status_bar_names_the_running_operation();
    void progress_is_shown_in_the_waiting_dialog();
    void log_takes_messages_from_any_thread();
    void a_dock_is_named_after_its_widget();
    void only_the_current_modes_side_widget_shows();
    void side_widget_outlives_the_window();
    void title_bar_controls_the_window();
    void elided_label_shows_plain_text_in_its_tooltip();

    void the_window_opens_no_larger_than_its_screen();
    void a_low_window_opens_without_docks();
    void a_closed_dock_is_brought_back_by_keys();
    void focused_widget_is_scrolled_into_view();
    void tab_follows_visual_order_and_never_traps();
    void the_buttons_of_the_window_are_named_data();
    void the_buttons_of_the_window_are_named();
    void close_buttons_name_their_dock();

    void save_with_a_package_is_reported();
    void save_without_a_package_reports_nothing();
    void apply_with_written_configuration_is_reported();
    void apply_without_written_configuration_reports_nothing();
    void operation_message_replaces_the_result();
    void message_is_cleared_by_a_language_change();
    void waiting_hides_the_last_result();
    void the_message_after_waiting_is_the_next_result();

private:
    QToolButton *viewButton() const { return m_window->findChild<QToolButton *>(QStringLiteral("ViewButton")); }
    QDockWidget *logDock() const { return m_window->findChild<QDockWidget *>(QStringLiteral("LogDock")); }
    /// Like the panel: on the user-interface thread.
    static void runOperation(
        ICore::OperatorDeviceType type, const std::function<void()> &work,
        const std::function<void()> &afterwards = [] {});
    static QString projectFiles();
    QString status() const { return m_window->statusBar()->findChild<QLabel *>()->text(); }
    static void fromAnotherThread(const std::function<void()> &work);

    QScopedPointer<MainWindow> m_window;
};

void TstMainWindow::init()
{
    Core::HostSettings settings;
    settings.trPath = QStringLiteral(HOST_TRANSLATION_DIRECTORY);
    Core::applySettings(settings);
    m_window.reset(new MainWindow);
    m_window->show();
}

void TstMainWindow::cleanup()
{
    WaitingDialog::instance()->hideWaitingDialog();
    m_window.reset();
    Core::switchLanguage(QStringLiteral("en"));
}

void TstMainWindow::fromAnotherThread(const std::function<void()> &work)
{
    const std::unique_ptr<QThread> thread(QThread::create(work));
    thread->start();
    thread->wait();
    // Delivers its queued messages to the window.
    QCoreApplication::processEvents();
}

void TstMainWindow::window_is_known_during_its_lifetime()
{
    QCOMPARE(MainWindow::instance(), m_window.data());
    m_window.reset();
    QVERIFY(!MainWindow::instance());
}

void TstMainWindow::texts_follow_the_language()
{
    const auto *log = m_window->findChild<QDockWidget *>(QStringLiteral("LogDock"));
    QCOMPARE(m_window->windowTitle(), QString::fromUtf8("Tarvo – development host"));
    QCOMPARE(log->windowTitle(), QStringLiteral("Log"));
    QCOMPARE(status(), QStringLiteral("Ready"));
    Core::switchLanguage(QStringLiteral("zh_CN"));
    QCoreApplication::processEvents();
    QCOMPARE(m_window->windowTitle(), QString::fromUtf8("Tarvo – 开发宿主"));
    QCOMPARE(log->windowTitle(), QString::fromUtf8("日志"));
    QCOMPARE(status(), QString::fromUtf8("就绪"));
    ICore::setOperatorType(ICore::OperatorLoad, QStringLiteral("BKG:Opening"));
    QCoreApplication::processEvents();
    QCOMPARE(status(), QString::fromUtf8("正在写入设备：BKG:Opening"));
    Core::switchLanguage(QStringLiteral("en"));
    QCoreApplication::processEvents();
    QCOMPARE(status(), QStringLiteral("Writing to the device: BKG:Opening"));
}

void TstMainWindow::status_bar_names_the_running_operation()
{
    fromAnotherThread([] { ICore::setOperatorType(ICore::OperatorBackup, QString()); });
    QCOMPARE(status(), QStringLiteral("Reading from the device"));
    fromAnotherThread([] { ICore::setOperatorType(ICore::OperatorLoad, QStringLiteral("<b>LOGO:%1</b>")); });
    QCOMPARE(status(), QStringLiteral("Writing to the device: <b>LOGO:%1</b>"));
    QCOMPARE(m_window->statusBar()->findChild<QLabel *>()->textFormat(), Qt::PlainText);
    fromAnotherThread([] { ICore::setOperatorType(ICore::OperatorNone, QString()); });
    QCOMPARE(status(), QStringLiteral("Ready"));
}

void TstMainWindow::progress_is_shown_in_the_waiting_dialog()
{
    WaitingDialog *waiting = WaitingDialog::instance();
    fromAnotherThread([] { ICore::setOperatorType(ICore::OperatorLoad, QStringLiteral("BKG:Opening")); });
    QVERIFY(!waiting->isVisible());
    waiting->showWaitingDialog(QStringLiteral("Please wait"), WaitingDialog::LevelNormal);
    fromAnotherThread([] { ICore::setOperatorType(ICore::OperatorLoad, QStringLiteral("BKG:Keynote")); });
    QCOMPARE(waiting->text(), QStringLiteral("BKG:Keynote"));
    fromAnotherThread([] { ICore::setOperatorType(ICore::OperatorLoad, QString()); });
    QCOMPARE(waiting->text(), QStringLiteral("BKG:Keynote"));
}

void TstMainWindow::log_takes_messages_from_any_thread()
{
    const auto *log = m_window->findChild<QPlainTextEdit *>(QStringLiteral("LogView"));
    QVERIFY(log);
    fromAnotherThread([] {
        emit Core::LogRelay::instance()->message(QtWarningMsg, QStringLiteral("<i>File rename failed.</i>"));
        ICore::setOperatorType(ICore::OperatorBackup, QStringLiteral("half"));
    });
    const QStringList lines = log->toPlainText().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines.at(0).endsWith(QLatin1String("<i>File rename failed.</i>")), qPrintable(lines.at(0)));
    QVERIFY2(lines.at(1).endsWith(QLatin1String("backup: half")), qPrintable(lines.at(1)));
}

void TstMainWindow::a_dock_is_named_after_its_widget()
{
    auto *widget = new QLabel;
    const QPointer<QWidget> guard = widget;
    widget->setWindowTitle(QStringLiteral("Site"));
    m_window->hide();
    m_window->addDock(widget, widget->windowTitle());
    m_window->show();
    QVERIFY(widget->isVisible());
    const auto *dock = qobject_cast<QDockWidget *>(widget->parentWidget());
    QVERIFY(dock);
    QCOMPARE(dock->windowTitle(), QStringLiteral("Site"));
    widget->setWindowTitle(QStringLiteral("Other"));
    QCOMPARE(dock->windowTitle(), QStringLiteral("Other"));
    m_window.reset();
    QVERIFY(!guard);
}

void TstMainWindow::only_the_current_modes_side_widget_shows()
{
    Mode first("First"), second("Second");
    QCOMPARE(ModeManager::currentMode(), HX::Utils::Id("First"));
    QVERIFY(first.side->isVisible());
    QCOMPARE(first.side->window(), m_window.data());
    ModeManager::activateMode("Second");
    QVERIFY(!first.side->isVisible());
    QVERIFY(second.side->isVisible());
    ModeManager::activateMode("First");
    QVERIFY(first.side->isVisible());
    QVERIFY(!second.side->isVisible());
}

void TstMainWindow::side_widget_outlives_the_window()
{
    const Mode mode("First");
    QVERIFY(mode.side->isVisible());
    m_window.reset();
    QVERIFY(mode.side);
}

void TstMainWindow::title_bar_controls_the_window()
{
    auto *bar = m_window->findChild<TitleBar *>();
    QTest::mouseDClick(bar, Qt::LeftButton);
    QVERIFY(m_window->isMaximized());
    QTest::mouseDClick(bar, Qt::LeftButton);
    QVERIFY(!m_window->isMaximized());
    TestSupport::click(bar->closeButton());
    QVERIFY(!m_window->isVisible());
}

void TstMainWindow::elided_label_shows_plain_text_in_its_tooltip()
{
    Core::ElidedLabel label;
    label.setTextFormat(Qt::PlainText);
    label.resize(40, 20);
    for (const QString &text :
         {QStringLiteral("<img src=\"/nowhere.png\"> and more"), QStringLiteral("Main hall & foyer")}) {
        label.setText(text);
        label.grab();
        QTextDocument shown;
        shown.setHtml(label.toolTip());
        QCOMPARE(shown.toPlainText(), text);
    }
    label.resize(2000, 20);
    label.grab();
    QCOMPARE(label.toolTip(), QString());
}

void TstMainWindow::the_window_opens_no_larger_than_its_screen()
{
    const QSize screen = QGuiApplication::primaryScreen()->availableGeometry().size();
    QVERIFY2(m_window->width() <= screen.width() && m_window->height() <= screen.height(),
             qPrintable(QStringLiteral("%1 x %2").arg(m_window->width()).arg(m_window->height())));
    // Even with a plugin that needs more room.
    m_window->resize(1024, 600);
    QCOMPARE(m_window->size(), QSize(1024, 600));
    QVERIFY(m_window->minimumSizeHint().width() <= 512);
    QVERIFY(m_window->minimumSizeHint().height() <= 300);
}

void TstMainWindow::a_low_window_opens_without_docks()
{
    for (const int height : {600, 900}) {
        MainWindow window;
        window.addDock(new QLabel, QStringLiteral("Site"));
        window.resize(1024, height);
        window.show();
        const QList<QDockWidget *> docks = window.findChildren<QDockWidget *>();
        QCOMPARE(docks.size(), 2);
        for (const QDockWidget *dock : docks)
            QCOMPARE(dock->isVisible(), height == 900);
    }
}

void TstMainWindow::a_closed_dock_is_brought_back_by_keys()
{
    m_window->resize(1440, 900);
    logDock()->show();
    TestSupport::click(logDock()->findChild<QAbstractButton *>(QStringLiteral("qt_dockwidget_closebutton")));
    QVERIFY(!logDock()->isVisible());
    QVERIFY(viewButton()->isVisible());
    QMenu *menu = viewButton()->menu();
    connect(menu, &QMenu::aboutToShow, menu, [menu] {
        QTimer::singleShot(0, menu, [menu] {
            QTest::keyClick(menu, Qt::Key_Down);
            QTest::keyClick(menu, Qt::Key_Return);
        });
    });
    QVERIFY(QTest::qWaitForWindowActive(m_window.data(), TestSupport::patience));
    QTest::keyClick(m_window.data(), Qt::Key_V, Qt::AltModifier);
    QTRY_VERIFY(logDock()->isVisible());
}

void TstMainWindow::focused_widget_is_scrolled_into_view()
{
    auto *area = m_window->findChild<QScrollArea *>(QStringLiteral("CenterScrollArea"));
    QVERIFY(area);
    auto *stack = qobject_cast<QStackedWidget *>(area->widget());
    QVERIFY(stack);
    auto *page = new QWidget;
    page->setMinimumSize(1200, 900);
    auto *lowest = new QPushButton(QStringLiteral("lowest"), page);
    lowest->move(1000, 860);
    stack->addWidget(page);
    stack->setCurrentWidget(page);
    m_window->resize(1024, 600);
    QCOMPARE(m_window->size(), QSize(1024, 600));
    for (int tabs = 0; tabs < 20 && m_window->focusWidget() != lowest; ++tabs)
        QTest::keyClick(m_window->focusWidget() ? m_window->focusWidget() : m_window.data(), Qt::Key_Tab);
    QCOMPARE(m_window->focusWidget(), lowest);
    const auto isWholeInView = [area](const QWidget *widget) {
        return area->viewport()->rect().contains(QRect(widget->mapTo(area->viewport(), QPoint()), widget->size()));
    };
    QVERIFY(isWholeInView(lowest));

    // Also from outside the page, where the area itself does not follow.
    auto *highest = new QPushButton(QStringLiteral("highest"), page);
    highest->show();
    QVERIFY(!isWholeInView(highest));
    for (int tabs = 0; tabs < 20 && m_window->focusWidget() != highest; ++tabs)
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Tab);
    QCOMPARE(m_window->focusWidget(), highest);
    QVERIFY(isWholeInView(highest));
}

void TstMainWindow::tab_follows_visual_order_and_never_traps()
{
    // Created in an order other than the visual one.
    m_window->resize(1440, 900);
    logDock()->show();
    Mode mode("First");
    auto *stack = m_window->findChild<QStackedWidget *>(QStringLiteral("CenterArea"));
    auto *central = new QPushButton(QStringLiteral("central"));
    stack->addWidget(central);
    stack->setCurrentWidget(central);
    auto *site = new QPushButton(QStringLiteral("site"));
    m_window->addDock(site, QStringLiteral("Site"));
    auto *side = new QPushButton(QStringLiteral("side"), mode.side);
    side->show();
    const auto *modeButton = m_window->findChild<QToolButton *>(QStringLiteral("ModeButton"));
    QTRY_VERIFY(modeButton->isVisible());

    const auto press = [this](Qt::Key key) {
        QTest::keyClick(m_window->focusWidget() ? m_window->focusWidget() : m_window.data(), key,
                        key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
        return m_window->focusWidget();
    };
    viewButton()->setFocus();
    QWidgetList met{viewButton()};
    for (int tabs = 0; tabs < 20 && press(Qt::Key_Tab) != viewButton(); ++tabs)
        met.append(m_window->focusWidget());
    QVERIFY(m_window->focusWidget() == viewButton());
    const QList<const QWidget *> expected{viewButton(), modeButton, side, central};
    QString order;
    QDebug(&order) << met;
    for (int i = 0; i < expected.size(); ++i)
        QVERIFY2(met.value(i) == expected.at(i), qPrintable(order));
    QVERIFY(met.contains(site));
    QVERIFY(met.contains(logDock()->widget()));
    for (int i = met.size() - 1; i > 0; --i)
        QCOMPARE(press(Qt::Key_Backtab), met.at(i));
    delete central;
}

void TstMainWindow::the_buttons_of_the_window_are_named_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("English") << QStringLiteral("en")
                             << QStringList{QStringLiteral("View"), QStringLiteral("Minimize"),
                                            QStringLiteral("Maximize"), QStringLiteral("Close"),
                                            QStringLiteral("Close Log")};
    QTest::newRow("Chinese") << QStringLiteral("zh_CN")
                             << QStringList{QStringLiteral("视图"), QStringLiteral("最小化"), QStringLiteral("最大化"),
                                            QStringLiteral("关闭"), QStringLiteral("关闭日志")};
}

void TstMainWindow::the_buttons_of_the_window_are_named()
{
    QFETCH(QString, language);
    QFETCH(QStringList, names);
    m_window->resize(1440, 900);
    logDock()->show();
    Core::switchLanguage(language);
    QCoreApplication::processEvents();
    QStringList met;
    const QList<QAbstractButton *> buttons = m_window->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (button->isVisible())
            met.append(QAccessible::queryAccessibleInterface(button)->text(QAccessible::Name));
    }
    for (const QString &name : names)
        QVERIFY2(met.count(name) == 1, qPrintable(name + QStringLiteral(" in ") + met.join(QLatin1Char('|'))));
    QVERIFY(!met.contains(QString()));
    const auto *log = logDock()->widget();
    QVERIFY(!log->accessibleName().isEmpty());
    QCOMPARE(log->accessibleName(), logDock()->windowTitle());
    m_window->showMaximized();
    QTRY_VERIFY(m_window->isMaximized());
    QVERIFY(m_window->findChildren<QToolButton *>().size() > 3);
    const auto named = [this](const QString &name) {
        const QList<QToolButton *> all = m_window->findChildren<QToolButton *>();
        return std::any_of(all.begin(), all.end(),
                           [&](const QToolButton *one) { return one->accessibleName() == name; });
    };
    QVERIFY(named(language == QLatin1String("en") ? QStringLiteral("Restore") : QStringLiteral("还原")));
}

void TstMainWindow::close_buttons_name_their_dock()
{
    auto *widget = new QLabel;
    m_window->addDock(widget, QStringLiteral("Site"));
    widget->setWindowTitle(QStringLiteral("Other"));
    const auto *close =
        widget->parentWidget()->findChild<QAbstractButton *>(QStringLiteral("qt_dockwidget_closebutton"));
    QCOMPARE(close->accessibleName(), QStringLiteral("Close Other"));
}

QString TstMainWindow::projectFiles()
{
    const QString path = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
                         QStringLiteral("/Velmora/Tarvo/ProjectFiles");
    QDir().mkpath(path);
    return path;
}

void TstMainWindow::runOperation(ICore::OperatorDeviceType type, const std::function<void()> &work,
                                 const std::function<void()> &afterwards)
{
    ICore::setOperatorType(type, QString());
    work();
    ICore::setOperatorType(ICore::OperatorNone, QString());
    afterwards();
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

void TstMainWindow::save_with_a_package_is_reported()
{
    const auto write = [](const QString &name, const char *content) {
        QFile file(QStringLiteral("%1/%2.corvelpro").arg(projectFiles(), name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    write(QStringLiteral("Old"), "old");
    runOperation(ICore::OperatorBackup, [&] { write(QStringLiteral("Evening v1.2 <b>"), "new"); });
    QCOMPARE(status(), QStringLiteral("Saved \"Evening v1.2 <b>\""));
    runOperation(ICore::OperatorBackup, [&] { write(QStringLiteral("Old"), "another content"); });
    QCOMPARE(status(), QStringLiteral("Saved \"Old\""));
    Core::switchLanguage(QStringLiteral("zh_CN"));
    QCoreApplication::processEvents();
    QCOMPARE(status(), QStringLiteral("已保存“Old”"));
    // Another program wrote one of them.
    Core::switchLanguage(QStringLiteral("en"));
    runOperation(ICore::OperatorBackup, [&] {
        write(QStringLiteral("A"), "a");
        write(QStringLiteral("B"), "b");
    });
    QCOMPARE(status(), QStringLiteral("Project files written: A, B"));
}

void TstMainWindow::save_without_a_package_reports_nothing()
{
    projectFiles();
    runOperation(ICore::OperatorBackup, [] {});
    QCOMPARE(status(), QStringLiteral("Ended without a new project file of \"\""));
    ICore::setOperatorType(ICore::OperatorBackup, QString());
    QCoreApplication::processEvents();
    QCOMPARE(status(), QStringLiteral("Reading from the device"));
}

void TstMainWindow::apply_with_written_configuration_is_reported()
{
    runOperation(ICore::OperatorLoad,
                 [] { Simulation::Journal::instance()->recordSuccess(Simulation::Operations::serailize); });
    QCOMPARE(status(), QStringLiteral("Applied to \"\""));
}

void TstMainWindow::apply_without_written_configuration_reports_nothing()
{
    runOperation(ICore::OperatorLoad,
                 [] { Simulation::Journal::instance()->recordSuccess(Simulation::Operations::enableMVR); });
    QCOMPARE(status(), QStringLiteral("Ended without writing the configuration of \"\""));
}

void TstMainWindow::waiting_hides_the_last_result()
{
    runOperation(ICore::OperatorLoad,
                 [] { Simulation::Journal::instance()->recordSuccess(Simulation::Operations::serailize); });
    const QString result = QStringLiteral("Applied to \"\"");
    QCOMPARE(status(), result);
    // An import, of which the host is told nothing else. Nothing runs the event loop before a blocking call.
    WaitingDialog::instance()->showWaitingDialog(QStringLiteral("Importing"), 0);
    QCOMPARE(status(), QStringLiteral("Importing"));
    WaitingDialog::instance()->showWaitingDialog(QStringLiteral("Still importing"), 0);
    QCOMPARE(status(), QStringLiteral("Still importing"));
    WaitingDialog::instance()->hideWaitingDialog();
    QCoreApplication::processEvents();
    QCOMPARE(status(), result);
}

void TstMainWindow::the_message_after_waiting_is_the_next_result()
{
    runOperation(ICore::OperatorLoad,
                 [] { Simulation::Journal::instance()->recordSuccess(Simulation::Operations::serailize); });
    TestSupport::AnswerBook book;
    const QString text = QStringLiteral("Import as success");
    book.expectInformation(QStringLiteral("Remind"), text);
    WaitingDialog::instance()->showWaitingDialog(QStringLiteral("Importing"), 0);
    WaitingDialog::instance()->hideWaitingDialog();
    HX::Widgets::FramelessMessageBox::information(m_window.data(), QStringLiteral("Remind"), text);
    QCoreApplication::processEvents();
    QCOMPARE(status(), QStringLiteral("Ended with the message: ") + text);
    WaitingDialog::instance()->hideWaitingDialog();
    QCoreApplication::processEvents();
    QCOMPARE(status(), QStringLiteral("Ended with the message: ") + text);
}

void TstMainWindow::operation_message_replaces_the_result()
{
    TestSupport::AnswerBook book;
    const QString text = QStringLiteral("User cancels current operation");
    book.expectInformation(QStringLiteral("Remind"), text);
    const auto box = [&] {
        HX::Widgets::FramelessMessageBox::information(m_window.data(), QStringLiteral("Remind"), text);
    };
    runOperation(
        ICore::OperatorLoad, [] { Simulation::Journal::instance()->recordSuccess(Simulation::Operations::serailize); },
        box);
    QCOMPARE(status(), QStringLiteral("Ended with the message: ") + text);
    // A question, and a box that opens later, do not belong to the operation.
    book.expectQuestion(QStringLiteral("Remind"), text, QMessageBox::No);
    runOperation(
        ICore::OperatorLoad, [] { Simulation::Journal::instance()->recordSuccess(Simulation::Operations::serailize); },
        [&] { HX::Widgets::FramelessMessageBox::question(m_window.data(), QStringLiteral("Remind"), text); });
    QCOMPARE(status(), QStringLiteral("Applied to \"\""));
    book.expectInformation(QStringLiteral("Remind"), text);
    runOperation(ICore::OperatorLoad,
                 [] { Simulation::Journal::instance()->recordSuccess(Simulation::Operations::serailize); });
    box();
    QCOMPARE(status(), QStringLiteral("Applied to \"\""));
}

void TstMainWindow::message_is_cleared_by_a_language_change()
{
    TestSupport::AnswerBook book;
    const QString text = QStringLiteral("User cancels current operation");
    book.expectInformation(QStringLiteral("Remind"), text);
    runOperation(
        ICore::OperatorBackup, [] {},
        [&] { HX::Widgets::FramelessMessageBox::information(m_window.data(), QStringLiteral("Remind"), text); });
    QCOMPARE(status(), QStringLiteral("Ended with the message: ") + text);
    Core::switchLanguage(QStringLiteral("zh_CN"));
    QCoreApplication::processEvents();
    QCOMPARE(status(), QString::fromUtf8("就绪"));
}

TEST_MAIN(TstMainWindow)
#include "tst_mainwindow.moc"
