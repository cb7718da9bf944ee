// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "sitedock.h"

#include <core/imode.h>
#include <core/language.h>
#include <core/look.h>
#include <core/mainwindow.h>
#include <core/modemanager.h>
#include <extensionsystem/pluginmanager.h>
#include <settingcfg/settingcfgmodemanager.h>
#include <simulation/operations.h>
#include <support/packagebuilder.h>
#include <support/pseudolanguage.h>
#include <support/screencheck.h>
#include <support/testmain.h>
#include <support/testsite.h>

#include <QAction>
#include <QDir>
#include <QDockWidget>
#include <QPlainTextEdit>
#include <QStandardPaths>
#include <QThreadPool>

#include <optional>

using namespace TestSupport;
using Core::MainWindow;
using Core::ModeManager;
using HX::ExtensionSystem::PluginManager;
using SettingCfg::SettingCfgModeManager;

namespace {

const QString project = QString::fromUtf8("Evening show 晚会");
const QString comment = QStringLiteral("Opening with the new beams, checked by both operators before doors");

/// Saves a picture of the window to the folder named by the environment.
void keepPicture(QWidget *window, const QString &name)
{
    const QString folder = qEnvironmentVariable("PROJECTFILECFG_SCREENSHOTS");
    if (folder.isEmpty())
        return;
    const QString path = QStringLiteral("%1/window_%2_%3_x%4.png")
                             .arg(folder, name, QString::fromLatin1(QTest::currentDataTag()))
                             .arg(window->devicePixelRatioF());
    QVERIFY2(QDir().mkpath(folder) && window->grab().save(path), qPrintable(path));
}

void settle()
{
    do {
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
    } while (QThreadPool::globalInstance()->activeThreadCount() > 0);
    QCoreApplication::processEvents();
}

} // namespace

/// Each page of the whole window, with the plugin as it ships. QT_SCALE_FACTOR runs it at other scales.
class TstScreens : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void every_page_shows_its_texts_whole_data();
    void every_page_shows_its_texts_whole();

private:
    void start(const QSize &size);

    std::optional<TestSite> m_site;
    std::unique_ptr<PluginManager> m_plugins;
};

void TstScreens::initTestCase()
{
    Core::applyLook();
    const QString folder = QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation).value(0) +
                           QStringLiteral("/Velmora/Tarvo/ProjectFiles/");
    QVERIFY(QDir().mkpath(folder));
    PackageBuilder package;
    QVERIFY(package.file("device.json", "{}").record(project, comment).write(folder + project + ".corvelpro"));
}

void TstScreens::start(const QSize &size)
{
    m_site.emplace();
    Core::HostSettings settings = Core::hostSettings();
    settings.language = QStringLiteral("en");
    settings.trPath = QStringLiteral(HOST_TRANSLATION_DIRECTORY);
    Core::applySettings(settings);
    m_plugins = std::make_unique<PluginManager>();
    m_plugins->setPluginDirectory(QStringLiteral(HOST_PLUGIN_DIRECTORY));
    m_plugins->loadPlugins();
    QCOMPARE(m_plugins->errors(), QStringList());
    auto *dock = new SiteDock(*m_site->operator->());
    MainWindow::instance()->addDock(dock, dock->windowTitle());
    MainWindow::instance()->resize(size);
    MainWindow::instance()->show();
}

void TstScreens::cleanup()
{
    Core::switchLanguage(QStringLiteral("en"));
    settle();
    m_plugins.reset();
    settle();
    m_site.reset();
}

void TstScreens::every_page_shows_its_texts_whole_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QSize>("size");
    for (const QSize &size : {QSize(1024, 600), QSize(1440, 900), QSize(1920, 1080)}) {
        for (const char *language : {"en", "zh_CN", "pseudo"})
            QTest::addRow("%s_%dx%d", language, size.width(), size.height()) << QString::fromLatin1(language) << size;
    }
}

void TstScreens::every_page_shows_its_texts_whole()
{
    QFETCH(QString, language);
    QFETCH(QSize, size);
    start(size);
    MainWindow *window = MainWindow::instance();
    std::optional<PseudoLanguage> pseudo;
    if (language == QStringLiteral("pseudo"))
        pseudo.emplace();
    else
        Core::switchLanguage(language);
    for (Core::IMode *mode : ModeManager::modes())
        mode->retranslateUi();
    emit ModeManager::instance()->modesChanged();
    emit Core::ICore::instance()->languageChanged(language);
    // What the site says, the names of the host's operations, and the languages in themselves.
    QStringList ofTheUser{project,
                          comment,
                          QString::fromUtf8("简体中文"),
                          QStringLiteral("English"),
                          m_site->configPath(),
                          m_site->extractPath()};
    for (const std::shared_ptr<Model::Device> &device : Model::DeviceList::instance()->getDevices()) {
        ofTheUser += {device->getName(), device->getTypeString(), device->getSN()};
        const Simulation::HardwareState state = (*m_site)->hardware(device->getIPAddress())->state();
        for (const auto &pictures : {state.backgrounds, state.logos}) {
            for (const Simulation::PictureState &picture : pictures)
                ofTheUser.append(picture.name);
        }
    }
    for (const QString &operation : Simulation::Operations::all())
        ofTheUser.append(operation);

    const auto check = [&](const QString &name) {
        settle();
        keepPicture(window, name);
        QStringList wrong = ScreenCheck::clipped(window);
        if (pseudo)
            wrong += ScreenCheck::untranslated(window, ofTheUser);
        QVERIFY2(wrong.isEmpty(), qPrintable(name + QLatin1Char('\n') + wrong.join(QLatin1Char('\n'))));
    };
    for (const char *page : {"ProjectFileCfg", "General"}) {
        ModeManager::activateMode("SettingCfg");
        SettingCfgModeManager::instance()->activateMode(page);
        check(QString::fromLatin1(page));
        for (const QDockWidget *dock : window->findChildren<QDockWidget *>())
            dock->toggleViewAction()->trigger();
        check(QString::fromLatin1(page) + QStringLiteral("_docks"));
        for (const QDockWidget *dock : window->findChildren<QDockWidget *>())
            dock->toggleViewAction()->trigger();
    }
    for (const Core::IMode *mode : ModeManager::modes()) {
        ModeManager::activateMode(mode->id());
        check(mode->id().toString());
    }
}

TEST_MAIN(TstScreens)
#include "tst_screens.moc"
