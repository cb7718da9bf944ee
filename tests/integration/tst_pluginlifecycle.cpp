// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/modemanager.h>
#include <extensionsystem/iplugin.h>
#include <extensionsystem/objectpool.h>
#include <extensionsystem/pluginmanager.h>
#include <model/objectbrige.h>
#include <navigationbar/inavigationbarmode.h>
#include <settingcfg/settingcfgmodemanager.h>
#include <simulation/faults.h>
#include <simulation/journal.h>
#include <support/answerbook.h>
#include <support/gate.h>
#include <support/journalmatchers.h>
#include <support/testmain.h>
#include <support/testsite.h>
#include <widgets/icenterwidget.h>
#include <widgets/waitingdialog.h>

#include <QLibrary>
#include <QLineEdit>
#include <QPointer>
#include <QTextCodec>
#include <QThreadPool>
#include <QtConcurrentRun>

using namespace TestSupport;
using namespace Simulation::Operations;
using Core::ModeManager;
using Corvel::Widgets::ICenterWidget;
using Corvel::Widgets::WaitingDialog;
using HX::ExtensionSystem::IPlugin;
using HX::ExtensionSystem::ObjectPool;
using HX::ExtensionSystem::PluginManager;
using HX::ExtensionSystem::PluginSpec;
using HX::Utils::Id;
using Model::object_brige;
using SettingCfg::SettingCfgModeManager;
using Simulation::Faults;
using Simulation::Journal;
using Simulation::JournalEntry;

namespace {

constexpr char subMode[] = "ProjectFileCfg";
constexpr char panelId[] = "ProjectFileCfg.Central";

} // namespace

/// The plugin as shipped: found by its metadata, loaded and driven by the host's plugin manager.
class TstPluginLifecycle : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void the_metadata_orders_it_after_its_dependencies();
    void without_its_dependencies_it_is_refused();
    void a_dependency_of_another_version_is_named();
    void the_entry_point_gives_the_one_object();
    void the_entry_point_replaces_a_deleted_plugin();
    void instance_returns_the_existing_object();
    void the_sub_mode_is_registered_for_every_device();
    void only_the_plugin_is_in_the_pool_yet();
    void startup_runs_in_this_order();
    void delayed_initialization_reports_completion();
    void file_names_are_utf8_from_the_start();
    void a_missing_translation_is_one_warning();
    void texts_come_from_the_translation_directory();

    void unshown_sub_mode_touches_no_center_widget();
    void the_panel_is_created_after_the_mode_change();
    void the_first_activation_enters_the_panel_twice();
    void the_panel_is_pooled_before_it_is_entered();
    void later_activations_enter_the_same_panel_once();
    void showing_it_again_registers_nothing_twice();
    void another_mode_removes_the_panel();

    void no_active_device_changes_nothing();
    void a_supporting_device_registers_nothing_twice();
    void losing_support_withdraws_the_shown_sub_mode();
    void without_support_other_top_level_modes_stay();
    void without_support_another_sub_mode_stays();
    void the_first_sub_mode_is_activated_again();
    void regaining_support_brings_back_fresh_texts();
    void another_device_without_support_removes_nothing_twice();

    void shutting_down_before_the_panel_exists();
    void shutdown_removes_everything();
    void shutdown_runs_in_this_order();
    void a_device_change_after_shutdown_makes_a_mode();
    void shutting_down_while_the_panel_is_shown();
    void shutting_down_during_a_backup();
    void shutting_down_during_a_scan();
    void plugin_can_be_loaded_again();

private:
    void start();
    IPlugin *plugin() const;
    static ICenterWidget *panel();
    static SettingCfgModeManager *subModes() { return SettingCfgModeManager::instance(); }
    void makeActive(const QString &ip) { object_brige::instance()->setActiveDevice((*m_site)->device(ip)); }
    /// What the plugin manager reports of the plugin in a directory with nothing but it and these fixtures.
    static QStringList errorsBeside(const QStringList &fixtures);
    /// Opens the sub-mode in the settings area and lets the plugin react.
    static void showSubMode(const char *id);
    /// The journal's calls on the panel or the sub-mode.
    static QStringList calls(const char *id);

    QScopedPointer<TestSite> m_site;
    QScopedPointer<PluginManager> m_manager;
};

void TstPluginLifecycle::init()
{
    m_site.reset(new TestSite);
    Core::HostSettings settings = Core::hostSettings();
    settings.language = QStringLiteral("en");
    settings.trPath = QStringLiteral(HOST_TRANSLATION_DIRECTORY);
    Core::applySettings(settings);
    WarningGuard::clear();
}

void TstPluginLifecycle::cleanup()
{
    m_manager.reset();
    QThreadPool::globalInstance()->waitForDone();
    QThreadPool::globalInstance()->setMaxThreadCount(QThread::idealThreadCount());
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_site.reset();
}

void TstPluginLifecycle::start()
{
    m_manager.reset(new PluginManager);
    m_manager->setPluginDirectory(QStringLiteral(HOST_PLUGIN_DIRECTORY));
    m_manager->loadPlugins();
    QCOMPARE(m_manager->errors(), QStringList());
    QVERIFY(plugin());
}

IPlugin *TstPluginLifecycle::plugin() const
{
    const PluginSpec *spec = m_manager->plugin(QStringLiteral("projectfilecfg"));
    return spec ? spec->plugin() : nullptr;
}

ICenterWidget *TstPluginLifecycle::panel()
{
    for (ICenterWidget *widget : ObjectPool::instance()->objectsOfType<ICenterWidget>()) {
        if (widget->id() == panelId)
            return widget;
    }
    return nullptr;
}

QStringList TstPluginLifecycle::errorsBeside(const QStringList &fixtures)
{
    const QTemporaryDir directory;
    const QString library = QStringLiteral("/libprojectfilecfg.so");
    QStringList missing;
    if (!QFile::link(QStringLiteral(HOST_PLUGIN_DIRECTORY) + library, directory.path() + library))
        missing << library;
    for (const QString &fixture : fixtures) {
        const QString name = QStringLiteral("/lib%1.so").arg(fixture);
        if (!QFile::link(QStringLiteral(FIXTURE_DIRECTORY) + name, directory.path() + name))
            missing << name;
    }
    PluginManager manager;
    manager.setPluginDirectory(directory.path());
    manager.loadPlugins();
    return missing + manager.errors();
}

void TstPluginLifecycle::showSubMode(const char *id)
{
    ModeManager::activateMode("SettingCfg");
    subModes()->activateMode(id);
    QCoreApplication::processEvents();
}

QStringList TstPluginLifecycle::calls(const char *id)
{
    QStringList calls;
    for (const JournalEntry &entry : Journal::instance()->entries()) {
        if (entry.arguments.value("id").toString() == QLatin1String(id))
            calls.append(entry.operation);
    }
    return calls;
}

// ---------------------------------------------------------------------------------------------------------------------
// Start-up

void TstPluginLifecycle::the_metadata_orders_it_after_its_dependencies()
{
    start();
    const PluginSpec *spec = m_manager->plugin("projectfilecfg");
    QCOMPARE(spec->state(), PluginSpec::Running);
    QCOMPARE(spec->version(), QString(PLUGIN_VERSION));
    QVERIFY(spec->isRequired());
    QStringList order;
    for (const PluginSpec *one : m_manager->loadOrder())
        order.append(one->name());
    QCOMPARE(order, QStringList({"core", "navigationbar", "settingcfg", "projectfilecfg"}));
    QCOMPARE(plugin()->objectName(), QString("ProjectFileCfgPlugin"));
    QCOMPARE(plugin()->metaObject()->className(), "ProjectFileCfg::ProjectFileCfgPlugin");
}

void TstPluginLifecycle::without_its_dependencies_it_is_refused()
{
    QCOMPARE(errorsBeside({}), QStringList{"Plugin \"projectfilecfg\" needs plugin \"core\" in version 2.0.0, which is "
                                           "missing"});
}

void TstPluginLifecycle::a_dependency_of_another_version_is_named()
{
    QCOMPARE(errorsBeside({"core"}),
             QStringList{"Plugin \"projectfilecfg\" needs plugin \"core\" in version 2.0.0, but "
                         "versions 3.0.0 to 3.0.0 are there"});
}

void TstPluginLifecycle::the_entry_point_gives_the_one_object()
{
    start();
    using EntryPoint = QObject *(*)();
    QLibrary library(m_manager->plugin("projectfilecfg")->fileName());
    const auto instance = reinterpret_cast<EntryPoint>(library.resolve("qt_plugin_instance"));
    QVERIFY(instance);
    QCOMPARE(instance(), static_cast<QObject *>(plugin()));
    QCOMPARE(instance(), static_cast<QObject *>(plugin()));
}

void TstPluginLifecycle::the_entry_point_replaces_a_deleted_plugin()
{
    start();
    using EntryPoint = QObject *(*)();
    QLibrary library(m_manager->plugin("projectfilecfg")->fileName());
    const auto instance = reinterpret_cast<EntryPoint>(library.resolve("qt_plugin_instance"));
    QVERIFY(instance);
    const QPointer<QObject> first = instance();
    m_manager->shutdown();
    QVERIFY(first.isNull());
    const QScopedPointer<QObject> second(instance());
    QVERIFY(second);
    QCOMPARE(instance(), second.data());
    QVERIFY(second->inherits("ProjectFileCfg::ProjectFileCfgPlugin"));
}

void TstPluginLifecycle::instance_returns_the_existing_object()
{
    start();
    using Instance = QObject *(*)();
    QLibrary library(m_manager->plugin("projectfilecfg")->fileName());
    // ProjectFileCfg::ProjectFileCfgPlugin::instance(); the object is its QObject base, at the same address.
    const auto instance =
        reinterpret_cast<Instance>(library.resolve("_ZN14ProjectFileCfg20ProjectFileCfgPlugin8instanceEv"));
    QVERIFY(instance);
    QCOMPARE(instance(), static_cast<QObject *>(plugin()));
    m_manager->shutdown();
    QVERIFY(!instance());
}

void TstPluginLifecycle::the_sub_mode_is_registered_for_every_device()
{
    makeActive(m_site->boothSwitcher);
    start();
    QVERIFY(subModes()->containsMode(subMode));
    QCOMPARE(calls(subMode), QStringList{addNavigationMode});
    QCOMPARE(subModes()->mode(subMode)->displayName(), QString("Project File"));
}

void TstPluginLifecycle::only_the_plugin_is_in_the_pool_yet()
{
    start();
    QVERIFY(ObjectPool::instance()->objects().contains(plugin()));
    QVERIFY(!panel());
}

void TstPluginLifecycle::startup_runs_in_this_order()
{
    Core::HostSettings settings = Core::hostSettings();
    settings.trPath = m_site->path("nowhere");
    Core::applySettings(settings);
    const QString warning = QStringLiteral("Load projectfilecfg Language failed!");
    const ExpectMessage expected(QtWarningMsg, warning, 1);

    QStringList order;
    QObject context;
    connect(ObjectPool::instance(), &ObjectPool::objectAdded, &context, [&](const QObject *object) {
        if (object->inherits("ProjectFileCfg::ProjectFileCfgPlugin"))
            order << QStringLiteral("pool, warnings: %1").arg(WarningGuard::count(QtWarningMsg, warning));
        // The host's own plugins are running now, and with them the sub-modes' manager.
        connect(
            subModes(), &SettingCfgModeManager::modesChanged, &context,
            [&] {
                if (!subModes()->containsMode(subMode) || order.size() > 1)
                    return;
                order << QStringLiteral("mode");
                // Nobody listens yet: the sub-mode is registered before the plugin connects to the manager.
                subModes()->activateMode(subMode);
                subModes()->activateMode("General");
                subModes()->activateMode(subMode);
            },
            Qt::UniqueConnection);
    });
    start();
    QCOMPARE(order, QStringList({"pool, warnings: 1", "mode"}));
    QCoreApplication::processEvents();
    QVERIFY(!panel());
    QCOMPARE(calls(panelId), QStringList());
}

void TstPluginLifecycle::delayed_initialization_reports_completion()
{
    start();
    Journal::instance()->clear();
    QVERIFY(plugin()->delayedInitialize());
    QCOMPARE(Journal::instance()->operations(), QStringList());
    plugin()->extensionsInitialized();
    QCOMPARE(Journal::instance()->operations(), QStringList());
}

void TstPluginLifecycle::file_names_are_utf8_from_the_start()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    start();
    QCOMPARE(QTextCodec::codecForLocale()->name(), QByteArray("UTF-8"));
}

void TstPluginLifecycle::a_missing_translation_is_one_warning()
{
    Core::HostSettings settings = Core::hostSettings();
    settings.trPath = m_site->path("nowhere");
    Core::applySettings(settings);
    const ExpectMessage warning(QtWarningMsg, "Load projectfilecfg Language failed!", 1);
    start();
    QVERIFY(subModes()->containsMode(subMode));
    QCOMPARE(m_manager->plugin("projectfilecfg")->state(), PluginSpec::Running);
}

void TstPluginLifecycle::texts_come_from_the_translation_directory()
{
    Core::HostSettings settings = Core::hostSettings();
    settings.language = QStringLiteral("zh_CN");
    Core::applySettings(settings);
    // The host's own texts are not under test.
    const ExpectMessage hostTexts(QtWarningMsg, QRegularExpression("no texts of the host"), ExpectMessage::AnyNumber);
    start();
    const QString name = subModes()->mode(subMode)->displayName();
    QVERIFY(!name.isEmpty());
    QVERIFY2(name != QLatin1String("Project File"), qPrintable(name));
}

// ---------------------------------------------------------------------------------------------------------------------
// Following the mode

void TstPluginLifecycle::unshown_sub_mode_touches_no_center_widget()
{
    start();
    showSubMode("General");
    subModes()->activateMode(Id());
    QCoreApplication::processEvents();
    QStringList distinct = calls(panelId);
    distinct.removeDuplicates();
    QCOMPARE(distinct, QStringList{existCenterWidget});
    QVERIFY(!panel());
}

void TstPluginLifecycle::the_panel_is_created_after_the_mode_change()
{
    start();
    showSubMode("General");
    Journal::instance()->clear();
    subModes()->activateMode(subMode);
    QVERIFY(!panel());
    QCOMPARE(calls(panelId), QStringList());
    QTRY_VERIFY(panel());
}

void TstPluginLifecycle::the_first_activation_enters_the_panel_twice()
{
    start();
    showSubMode("General");
    Journal::instance()->clear();
    showSubMode(subMode);
    QCOMPARE(calls(panelId), QStringList({enterWindow, existCenterWidget, addCenterWidget, setActivateCenterWidget,
                                          raiseWindow, enterWindow}));
    QCOMPARE(ModeManager::activeCenterWidget(), Id(panelId));
    QVERIFY(panel());
}

void TstPluginLifecycle::the_panel_is_pooled_before_it_is_entered()
{
    start();
    showSubMode("General");
    Journal::instance()->clear();
    QObject context;
    QStringList before{QStringLiteral("never added")};
    connect(ObjectPool::instance(), &ObjectPool::objectAdded, &context, [&before] { before = calls(panelId); });
    showSubMode(subMode);
    QCOMPARE(before, QStringList());
    QVERIFY(panel());
}

void TstPluginLifecycle::later_activations_enter_the_same_panel_once()
{
    start();
    showSubMode(subMode);
    const QPointer<ICenterWidget> first = panel();
    showSubMode("General");
    Journal::instance()->clear();
    showSubMode(subMode);
    QCOMPARE(calls(panelId),
             QStringList({existCenterWidget, addCenterWidget, setActivateCenterWidget, raiseWindow, enterWindow}));
    QVERIFY(first);
    QCOMPARE(panel(), first.data());
}

void TstPluginLifecycle::showing_it_again_registers_nothing_twice()
{
    start();
    showSubMode(subMode);
    Journal::instance()->clear();
    emit subModes()->currentModeChanged(subMode, subMode);
    QCoreApplication::processEvents();
    QCOMPARE(calls(panelId), QStringList({existCenterWidget, setActivateCenterWidget, raiseWindow, enterWindow}));
}

void TstPluginLifecycle::another_mode_removes_the_panel()
{
    start();
    showSubMode(subMode);
    Journal::instance()->clear();
    showSubMode("General");
    QCOMPARE(calls(panelId), QStringList({existCenterWidget, removeCenterWidget, leaveWindow}));
    QVERIFY(panel());
    QVERIFY(!ModeManager::existCenterWidget(panelId));
}

// ---------------------------------------------------------------------------------------------------------------------
// Following the device

void TstPluginLifecycle::no_active_device_changes_nothing()
{
    start();
    Journal::instance()->clear();
    object_brige::instance()->setActiveDevice({});
    QVERIFY(subModes()->containsMode(subMode));
    makeActive(m_site->boothSwitcher);
    QVERIFY(!subModes()->containsMode(subMode));
    Journal::instance()->clear();
    object_brige::instance()->setActiveDevice({});
    QVERIFY(!subModes()->containsMode(subMode));
    QCOMPARE(calls(subMode), QStringList());
}

void TstPluginLifecycle::a_supporting_device_registers_nothing_twice()
{
    start();
    subModes()->mode(subMode)->setDisplayName("not translated again");
    Journal::instance()->clear();
    makeActive(m_site->foyer);
    QCOMPARE(calls(subMode), QStringList());
    QCOMPARE(subModes()->mode(subMode)->displayName(), QString("not translated again"));
}

void TstPluginLifecycle::losing_support_withdraws_the_shown_sub_mode()
{
    start();
    showSubMode(subMode);
    QCOMPARE(subModes()->modes().first(), Id("General"));
    Journal::instance()->clear();
    makeActive(m_site->boothSwitcher);
    VERIFY_JOURNAL_ORDER({activateNavigationMode, removeNavigationMode});
    QCOMPARE(calls("General").first(), QString(activateNavigationMode));
    QCOMPARE(calls(subMode), QStringList{removeNavigationMode});
    QCOMPARE(subModes()->currentModeId(), Id("General"));
    QVERIFY(!subModes()->containsMode(subMode));
    QCoreApplication::processEvents();
    QVERIFY(!ModeManager::existCenterWidget(panelId));
    QVERIFY(panel());
}

void TstPluginLifecycle::without_support_other_top_level_modes_stay()
{
    start();
    showSubMode(subMode);
    ModeManager::activateMode("Devices");
    QCoreApplication::processEvents();
    QCOMPARE(ModeManager::currentMode(), Id("Devices"));
    QCOMPARE(subModes()->currentModeId(), Id(subMode));
    Journal::instance()->clear();
    makeActive(m_site->boothSwitcher);
    QCOMPARE(Journal::instance()->count(activateNavigationMode), 0);
    QCOMPARE(calls(subMode), QStringList{removeNavigationMode});
    QVERIFY(!subModes()->containsMode(subMode));
}

void TstPluginLifecycle::without_support_another_sub_mode_stays()
{
    start();
    showSubMode("General");
    Journal::instance()->clear();
    makeActive(m_site->boothSwitcher);
    QCOMPARE(Journal::instance()->count(activateNavigationMode), 0);
    QCOMPARE(calls(subMode), QStringList{removeNavigationMode});
    QCOMPARE(subModes()->currentModeId(), Id("General"));
}

void TstPluginLifecycle::the_first_sub_mode_is_activated_again()
{
    start();
    showSubMode(subMode);
    NavigationBar::INavigationBarMode *general = subModes()->mode("General");
    subModes()->removeMode(general);
    QCOMPARE(subModes()->modes(), QVector<Id>{Id(subMode)});
    Journal::instance()->clear();
    makeActive(m_site->boothSwitcher);
    QCOMPARE(calls(subMode), QStringList({activateNavigationMode, removeNavigationMode}));
    QVERIFY(!subModes()->containsMode(subMode));
    subModes()->addMode(general);
}

void TstPluginLifecycle::regaining_support_brings_back_fresh_texts()
{
    start();
    NavigationBar::INavigationBarMode *mode = subModes()->mode(subMode);
    makeActive(m_site->boothSwitcher);
    QVERIFY(!subModes()->containsMode(subMode));
    mode->setDisplayName("old text");
    Journal::instance()->clear();
    makeActive(m_site->foyer);
    QCOMPARE(calls(subMode), QStringList{addNavigationMode});
    QCOMPARE(subModes()->mode(subMode), mode);
    QCOMPARE(mode->displayName(), QString("Project File"));
}

void TstPluginLifecycle::another_device_without_support_removes_nothing_twice()
{
    start();
    makeActive(m_site->boothSwitcher);
    object_brige::instance()->setActiveDevice({});
    Journal::instance()->clear();
    makeActive(m_site->boothSwitcher);
    QCOMPARE(calls(subMode), QStringList());
}

// ---------------------------------------------------------------------------------------------------------------------
// Shutdown

void TstPluginLifecycle::shutting_down_before_the_panel_exists()
{
    start();
    const QPointer<QObject> mode = subModes()->mode(subMode);
    Journal::instance()->clear();
    QCOMPARE(int(plugin()->aboutToShutdown()), 0);
    QCOMPARE(calls(panelId), QStringList());
    QCOMPARE(calls(subMode), QStringList{removeNavigationMode});
    QVERIFY(mode.isNull());
    QVERIFY(!subModes()->containsMode(subMode));
    QVERIFY(!ObjectPool::instance()->objects().contains(plugin()));
}

void TstPluginLifecycle::shutdown_removes_everything()
{
    start();
    showSubMode(subMode);
    showSubMode("General");
    const QPointer<QObject> mode = subModes()->mode(subMode);
    const QPointer<QObject> center = panel();
    const QPointer<QObject> object = plugin();
    Journal::instance()->clear();
    m_manager->shutdown();
    QVERIFY(mode.isNull());
    QVERIFY(center.isNull());
    QVERIFY(object.isNull());
    QCOMPARE(calls(panelId), QStringList{leaveWindow});
    QVERIFY(!subModes()->containsMode(subMode));
    QCOMPARE(ObjectPool::instance()->objects(), QList<QObject *>());
}

void TstPluginLifecycle::shutdown_runs_in_this_order()
{
    start();
    showSubMode(subMode);
    showSubMode("General");
    QObject context;
    QStringList order;
    const QPointer<ICenterWidget> center = panel();
    const auto state = [&] {
        return QStringLiteral("%1, panel %2, mode %3")
            .arg(calls(panelId).isEmpty() ? "entered" : "left", center ? "there" : "gone",
                 subModes()->containsMode(subMode) ? "there" : "gone");
    };
    connect(ObjectPool::instance(), &ObjectPool::aboutToRemoveObject, &context, [&](const QObject *object) {
        if (object == center || object == plugin())
            order << (object == center ? QStringLiteral("panel out: ") : QStringLiteral("plugin out: ")) + state();
    });
    connect(subModes(), &SettingCfgModeManager::modesChanged, &context,
            [&] { order << QStringLiteral("modes: ") + state(); });
    Journal::instance()->clear();
    plugin()->aboutToShutdown();
    QCOMPARE(order, QStringList({"panel out: left, panel there, mode there", "modes: left, panel gone, mode gone",
                                 "plugin out: left, panel gone, mode gone"}));
}

void TstPluginLifecycle::a_device_change_after_shutdown_makes_a_mode()
{
    // The plugin keeps its connections until it is deleted.
    start();
    plugin()->aboutToShutdown();
    QVERIFY(!subModes()->containsMode(subMode));
    makeActive(m_site->foyer);
    QVERIFY(subModes()->containsMode(subMode));
    const QPointer<QObject> mode = subModes()->mode(subMode);
    m_manager->shutdown();
    QVERIFY(mode.isNull());
}

void TstPluginLifecycle::shutting_down_while_the_panel_is_shown()
{
    start();
    showSubMode(subMode);
    const QPointer<QObject> center = panel();
    QVERIFY(center);
    m_manager->shutdown();
    QVERIFY(center.isNull());
    QCoreApplication::processEvents();
    QVERIFY(!panel());
}

void TstPluginLifecycle::shutting_down_during_a_backup()
{
    start();
    showSubMode(subMode);
    // The plugins do not show the window, but the panel must be visible to be clicked.
    panel()->window()->show();
    QVERIFY(QThreadPool::globalInstance()->waitForDone());

    Gate gate;
    Faults::instance()->arm(queryMaterailData, gate.fault());
    AnswerBook book;
    book.expectDialog("EngineerPropertySettingWidget", [](QDialog *dialog) {
        dialog->findChild<QLineEdit *>()->setText("Show");
        click(dialog, QStringLiteral("OK"));
    });
    QVERIFY(click(panel(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    const QPointer<QThread> job = gate.waitForThread();
    QVERIFY(job);
    QVERIFY(WaitingDialog::instance()->isVisible());

    m_manager->shutdown();
    QVERIFY(!WaitingDialog::instance()->isVisible());
    QCOMPARE(Journal::instance()->entries(setOperatorType).last().arguments["type"].toString(),
             QString("OperatorNone"));
    QVERIFY(job);
    gate.open();
    QTRY_VERIFY(job.isNull());
    QCOMPARE(Journal::instance()->count(queryMaterailData), 1);
    QVERIFY(!QFile::exists(QDir::homePath() + "/Documents/Velmora/Tarvo/ProjectFiles/Show.corvelpro"));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstPluginLifecycle::shutting_down_during_a_scan()
{
    QThreadPool *pool = QThreadPool::globalInstance();
    start();
    QVERIFY(pool->waitForDone());
    pool->setMaxThreadCount(1);
    Gate gate;
    QtConcurrent::run(gate.action());
    QVERIFY(gate.waitForThread());
    const QString projects = QDir::homePath() + QStringLiteral("/Documents/Velmora/Tarvo/ProjectFiles");
    QVERIFY(QDir(projects).removeRecursively());
    showSubMode(subMode);
    QVERIFY(panel());
    m_manager->shutdown();
    QVERIFY(!QDir(projects).exists());
    gate.open();
    QVERIFY(pool->waitForDone());
    // The scan still ran to its end.
    QVERIFY(QDir(projects).exists());
    QCoreApplication::processEvents();
}

void TstPluginLifecycle::plugin_can_be_loaded_again()
{
    start();
    showSubMode(subMode);
    m_manager.reset();
    start();
    QVERIFY(subModes()->containsMode(subMode));
    Journal::instance()->clear();
    showSubMode(subMode);
    QVERIFY(panel());
    QCOMPARE(calls(panelId).count(enterWindow), 2);
}

TEST_MAIN(TstPluginLifecycle)
#include "tst_pluginlifecycle.moc"
