#include <core/elidedlabel.h>
#include <core/hostsettings.h>
#include <core/imode.h>
#include <core/language.h>
#include <core/logrelay.h>
#include <core/mainwindow.h>
#include <core/modemanager.h>
#include <widgets/titlebar.h>
#include <widgets/waitingdialog.h>

#include <support/answerbook.h>
#include <support/testmain.h>

#include <QDockWidget>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
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

/// A top-level mode with something of its own at the window's side.
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
        delete m_side;
    }
    bool hasNavigationBar() const override { return true; }
    void retranslateUi() override {}
    QWidget *toolBar() const override { return m_side; }

    const QPointer<QWidget> m_side = new QLabel;
};

} // namespace

class TstMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void the_window_is_known_while_it_lives();
    void texts_follow_the_language();
    void the_status_bar_tells_what_runs_on_a_device();
    void progress_is_shown_where_the_operator_looks();
    void the_log_takes_messages_and_operations_of_any_thread();
    void a_dock_is_named_after_its_widget();
    void only_the_current_mode_has_the_side();
    void what_a_mode_shows_outlives_the_window();
    void the_title_bar_works_the_window();
    void a_cut_label_tells_its_text_as_it_is();

private:
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
    // What it said is on its way to the window now.
    QCoreApplication::processEvents();
}

void TstMainWindow::the_window_is_known_while_it_lives()
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

void TstMainWindow::the_status_bar_tells_what_runs_on_a_device()
{
    fromAnotherThread([] { ICore::setOperatorType(ICore::OperatorBackup, QString()); });
    QCOMPARE(status(), QStringLiteral("Reading from the device"));
    fromAnotherThread([] { ICore::setOperatorType(ICore::OperatorLoad, QStringLiteral("<b>LOGO:%1</b>")); });
    QCOMPARE(status(), QStringLiteral("Writing to the device: <b>LOGO:%1</b>"));
    QCOMPARE(m_window->statusBar()->findChild<QLabel *>()->textFormat(), Qt::PlainText);
    fromAnotherThread([] { ICore::setOperatorType(ICore::OperatorNone, QString()); });
    QCOMPARE(status(), QStringLiteral("Ready"));
}

void TstMainWindow::progress_is_shown_where_the_operator_looks()
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

void TstMainWindow::the_log_takes_messages_and_operations_of_any_thread()
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

void TstMainWindow::only_the_current_mode_has_the_side()
{
    Mode first("First"), second("Second");
    QCOMPARE(ModeManager::currentMode(), HX::Utils::Id("First"));
    QVERIFY(first.m_side->isVisible());
    QCOMPARE(first.m_side->window(), m_window.data());
    ModeManager::activateMode("Second");
    QVERIFY(!first.m_side->isVisible());
    QVERIFY(second.m_side->isVisible());
    ModeManager::activateMode("First");
    QVERIFY(first.m_side->isVisible());
    QVERIFY(!second.m_side->isVisible());
}

void TstMainWindow::what_a_mode_shows_outlives_the_window()
{
    const Mode mode("First");
    QVERIFY(mode.m_side->isVisible());
    m_window.reset();
    QVERIFY(mode.m_side);
}

void TstMainWindow::the_title_bar_works_the_window()
{
    auto *bar = m_window->findChild<TitleBar *>();
    QTest::mouseDClick(bar, Qt::LeftButton);
    QVERIFY(m_window->isMaximized());
    QTest::mouseDClick(bar, Qt::LeftButton);
    QVERIFY(!m_window->isMaximized());
    TestSupport::click(bar->closeButton());
    QVERIFY(!m_window->isVisible());
}

void TstMainWindow::a_cut_label_tells_its_text_as_it_is()
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

TEST_MAIN(TstMainWindow)
#include "tst_mainwindow.moc"
