// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/hostsettings.h>
#include <core/icore.h>
#include <core/icorvelplugin.h>
#include <core/language.h>
#include <navigationbar/inavigationbarmode.h>
#include <navigationbar/navigationbarmodemanager.h>
#include <widgets/icenterwidget.h>

#include <support/testmain.h>

#include <widgets/framelessmessagebox.h>
#include <widgets/waitingdialog.h>

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

namespace {

/// A plugin with translations for zh_CN only.
class Plugin : public Core::ICorvelPlugin
{
public:
    bool initialize(const QStringList &, QString *) override { return true; }
    void extensionsInitialized() override {}
    bool installTranslator(const QString &language) override
    {
        asked.append(language);
        return language == QLatin1String("zh_CN");
    }

    QStringList asked;
};

class Mode : public NavigationBar::INavigationBarMode
{
public:
    explicit Mode(const Plugin &plugin)
        : m_plugin(plugin)
    {
        setId("Mode");
    }
    void retranslateUi() override { pluginsReady.append(!m_plugin.asked.isEmpty()); }
    QWidget *toolBar() const override { return nullptr; }

    QVector<bool> pluginsReady;

private:
    const Plugin &m_plugin;
};

class Page : public Corvel::Widgets::ICenterWidget
{
public:
    Page()
        : ICenterWidget("Page")
    {}
    void retranslateUi() override { title = QCoreApplication::translate("Core::DeviceCard", "Offline"); }

    QString title;
};

} // namespace

class TstLanguage : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void the_host_changes_its_language_while_it_runs();
    void plugins_are_asked_before_the_modes_are();
    void selecting_the_current_language_changes_nothing();
    void plugin_without_texts_is_reported_by_name();
    void settings_can_be_read_from_any_thread();
    void an_open_file_dialog_changes_its_language();
    void an_open_box_changes_its_language();
    void an_open_waiting_dialog_changes_its_language();
};

void TstLanguage::init()
{
    Core::HostSettings settings;
    settings.trPath = QStringLiteral(HOST_TRANSLATION_DIRECTORY);
    Core::applySettings(settings);
}

void TstLanguage::cleanup()
{
    Core::switchLanguage(QStringLiteral("en"));
}

void TstLanguage::the_host_changes_its_language_while_it_runs()
{
    Page page;
    QSignalSpy changed(Core::ICore::instance(), &Core::ICore::languageChanged);
    Core::switchLanguage(QStringLiteral("zh_CN"));
    QCOMPARE(Core::ICore::overrideLanguage(), QStringLiteral("zh_CN"));
    QTRY_COMPARE(page.title, QStringLiteral("离线"));
    Core::switchLanguage(QStringLiteral("en"));
    QTRY_COMPARE(page.title, QStringLiteral("Offline"));
    QCOMPARE(changed.count(), 2);
}

void TstLanguage::plugins_are_asked_before_the_modes_are()
{
    Plugin plugin;
    plugin.addObject(&plugin);
    NavigationBar::NavigationBarModeManager manager;
    Mode mode(plugin);
    manager.addMode(&mode);
    QSignalSpy modesChanged(&manager, &NavigationBar::NavigationBarModeManager::modesChanged);

    Core::switchLanguage(QStringLiteral("zh_CN"));
    plugin.removeObject(&plugin);
    QCOMPARE(plugin.asked, QStringList({QStringLiteral("zh_CN")}));
    QCOMPARE(mode.pluginsReady, QVector<bool>({true}));
    QCOMPARE(modesChanged.count(), 1);
}

void TstLanguage::selecting_the_current_language_changes_nothing()
{
    Plugin plugin;
    plugin.addObject(&plugin);
    Core::switchLanguage(QStringLiteral("en"));
    plugin.removeObject(&plugin);
    QCOMPARE(plugin.asked, QStringList());
}

void TstLanguage::plugin_without_texts_is_reported_by_name()
{
    TestSupport::ExpectMessage host(
        QtWarningMsg, QRegularExpression(QStringLiteral("no texts of the host in \"fr\".*devhost_fr.qm")), 1);
    TestSupport::ExpectMessage warning(QtWarningMsg,
                                       QRegularExpression(QStringLiteral("\"Mute\" has no texts in \"fr\"")), 1);
    Plugin plugin;
    plugin.setObjectName(QStringLiteral("Mute"));
    plugin.addObject(&plugin);
    Core::switchLanguage(QStringLiteral("fr"));
    // The source texts are English: a plugin needs no file for it.
    Core::switchLanguage(QStringLiteral("en"));
    plugin.removeObject(&plugin);
    QCOMPARE(plugin.asked, QStringList({QStringLiteral("fr"), QStringLiteral("en")}));
}

void TstLanguage::settings_can_be_read_from_any_thread()
{
    Core::HostSettings settings;
    settings.deviceConfigFilePath = QStringLiteral("/devices");
    settings.extractJsonPath = QStringLiteral("/extracted");
    Core::applySettings(settings);
    QStringList read;
    std::unique_ptr<QThread> thread(QThread::create([&read]() {
        read = QStringList({Core::ICore::deviceConfigFilePath(), Core::ICore::ExtractJsonPath()});
    }));
    thread->start();
    thread->wait();
    QCOMPARE(read, QStringList({QStringLiteral("/devices"), QStringLiteral("/extracted")}));
}

void TstLanguage::an_open_file_dialog_changes_its_language()
{
    QFileDialog dialog(nullptr, QStringLiteral("t"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.show();
    const auto *cancel = dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Cancel);
    const auto *folder = dialog.findChild<QLabel *>(QStringLiteral("lookInLabel"));
    QCOMPARE(cancel->text().remove(QLatin1Char('&')), QStringLiteral("Cancel"));
    QCOMPARE(folder->text(), QStringLiteral("Look in:"));
    Core::switchLanguage(QStringLiteral("zh_CN"));
    QTRY_COMPARE(cancel->text(), QStringLiteral("取消"));
    QCOMPARE(folder->text(), QStringLiteral("查找范围："));
    Core::switchLanguage(QStringLiteral("en"));
    QTRY_COMPARE(folder->text(), QStringLiteral("Look in:"));
}

void TstLanguage::an_open_box_changes_its_language()
{
    using HX::Widgets::FramelessMessageBox;
    QStringList texts;
    QTimer::singleShot(0, [&texts]() {
        auto *box = qobject_cast<FramelessMessageBox *>(QApplication::activeModalWidget());
        texts.append(box->button(QMessageBox::Yes)->text());
        Core::switchLanguage(QStringLiteral("zh_CN"));
        QCoreApplication::processEvents();
        texts.append(box->button(QMessageBox::Yes)->text());
        box->close();
    });
    FramelessMessageBox::question(nullptr, QStringLiteral("t"), QStringLiteral("x"));
    QCOMPARE(texts, QStringList({QStringLiteral("Yes"), QStringLiteral("是")}));
}

void TstLanguage::an_open_waiting_dialog_changes_its_language()
{
    auto *dialog = Corvel::Widgets::WaitingDialog::instance();
    const auto *cancel = dialog->findChild<QPushButton *>(QStringLiteral("WaitingDialogCancel"));
    QSignalSpy cancelled(dialog, &Corvel::Widgets::WaitingDialog::signal_canelLoad);
    dialog->setCanelVisible(true);
    dialog->showWaitingDialog(QStringLiteral("x"), 0);
    QCOMPARE(cancel->text(), QStringLiteral("Cancel"));
    QTest::keyClick(dialog, Qt::Key_Escape);
    QCOMPARE(dialog->text(), QStringLiteral("Stopping, please wait..."));
    Core::switchLanguage(QStringLiteral("zh_CN"));
    QTRY_COMPARE(cancel->text(), QStringLiteral("取消"));
    QCOMPARE(dialog->text(), QStringLiteral("正在停止，请稍候……"));
    dialog->hideWaitingDialog();
}

TEST_MAIN(TstLanguage)
#include "tst_language.moc"
