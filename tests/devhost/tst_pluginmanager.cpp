// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <extensionsystem/pluginmanager.h>

#include <support/testmain.h>

#include <QCoreApplication>

using HX::ExtensionSystem::PluginManager;
using HX::ExtensionSystem::PluginSpec;

class TstPluginManager : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void metadata_is_read_without_making_a_plugin();
    void plugins_initialize_after_and_shut_down_before_dependencies();
    void delayed_initialization_comes_from_the_event_loop();
    void busy_plugin_delays_the_next_initialization();
    void shutting_down_early_leaves_no_delayed_initialization();
    void a_missing_dependency_is_named_with_its_version();
    void plugin_provides_versions_from_compatible_to_current_data();
    void plugin_provides_versions_from_compatible_to_current();
    void circular_dependency_is_refused_and_shown();
    void a_plugin_that_needs_itself_is_refused();
    void broken_metadata_is_refused_data();
    void broken_metadata_is_refused();
    void non_plugin_file_is_refused();
    void a_plugin_of_another_program_is_refused();
    void the_second_plugin_of_a_name_is_refused();
    void failed_initialization_stops_only_dependents();

private:
    /// Fills the plugin directory with these fixtures only.
    void have(const QStringList &fixtures);
    QStringList calls() const { return QCoreApplication::instance()->property("calls").toStringList(); }
    QStringList calls(const QString &operation) const { return calls().filter(QLatin1Char('.') + operation); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstPluginManager::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QCoreApplication::instance()->setProperty("calls", QStringList());
}

void TstPluginManager::have(const QStringList &fixtures)
{
    for (const QString &fixture : fixtures) {
        const QString library = QStringLiteral("lib%1.so").arg(fixture);
        QVERIFY2(QFile::link(QStringLiteral(FIXTURE_DIRECTORY "/") + library, m_directory->filePath(library)),
                 qPrintable(library));
    }
}

void TstPluginManager::metadata_is_read_without_making_a_plugin()
{
    have({QStringLiteral("zeta")});
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());

    const PluginSpec *zeta = manager.plugin(QStringLiteral("zeta"));
    QVERIFY(zeta);
    QCOMPARE(zeta->version(), QStringLiteral("1.4.0"));
    QCOMPARE(zeta->compatVersion(), QStringLiteral("1.2.0"));
    QVERIFY(!zeta->isRequired());
    QCOMPARE(zeta->state(), PluginSpec::Resolved);
    QVERIFY(!zeta->plugin());
    QCOMPARE(calls(), QStringList());
}

void TstPluginManager::plugins_initialize_after_and_shut_down_before_dependencies()
{
    have({QStringLiteral("alpha"), QStringLiteral("middle"), QStringLiteral("zeta")});
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());
    manager.loadPlugins();
    manager.shutdown();

    QCOMPARE(manager.errors(), QStringList());
    QCOMPARE(calls(),
             QStringList({QStringLiteral("zeta.constructed"), QStringLiteral("middle.constructed"),
                          QStringLiteral("alpha.constructed"), QStringLiteral("zeta.initialize"),
                          QStringLiteral("middle.initialize"), QStringLiteral("alpha.initialize"),
                          QStringLiteral("alpha.extensionsInitialized"), QStringLiteral("middle.extensionsInitialized"),
                          QStringLiteral("zeta.extensionsInitialized"), QStringLiteral("alpha.aboutToShutdown"),
                          QStringLiteral("middle.aboutToShutdown"), QStringLiteral("zeta.aboutToShutdown"),
                          QStringLiteral("alpha.destroyed"), QStringLiteral("middle.destroyed"),
                          QStringLiteral("zeta.destroyed")}));
}

void TstPluginManager::delayed_initialization_comes_from_the_event_loop()
{
    have({QStringLiteral("alpha"), QStringLiteral("middle"), QStringLiteral("zeta")});
    PluginManager manager;
    QSignalSpy done(&manager, &PluginManager::initializationDone);
    manager.setPluginDirectory(m_directory->path());
    manager.loadPlugins();
    QCOMPARE(calls(QStringLiteral("delayedInitialize")), QStringList());

    QTRY_COMPARE(done.count(), 1);
    QCOMPARE(calls(QStringLiteral("delayedInitialize")),
             QStringList({QStringLiteral("zeta.delayedInitialize"), QStringLiteral("middle.delayedInitialize"),
                          QStringLiteral("alpha.delayedInitialize")}));
}

void TstPluginManager::busy_plugin_delays_the_next_initialization()
{
    have({QStringLiteral("busy"), QStringLiteral("zeta")});
    PluginManager manager;
    QSignalSpy done(&manager, &PluginManager::initializationDone);
    manager.setPluginDirectory(m_directory->path());
    manager.loadPlugins();

    QTRY_COMPARE(calls(QStringLiteral("delayedInitialize")), QStringList({QStringLiteral("busy.delayedInitialize")}));
    QCOMPARE(done.count(), 0);
    QTRY_COMPARE(done.count(), 1);
    QCOMPARE(calls(QStringLiteral("delayedInitialize")).last(), QStringLiteral("zeta.delayedInitialize"));
}

void TstPluginManager::shutting_down_early_leaves_no_delayed_initialization()
{
    have({QStringLiteral("zeta")});
    PluginManager manager;
    QSignalSpy done(&manager, &PluginManager::initializationDone);
    manager.setPluginDirectory(m_directory->path());
    manager.loadPlugins();
    manager.shutdown();
    manager.shutdown();
    QCoreApplication::processEvents();

    QCOMPARE(calls(QStringLiteral("delayedInitialize")), QStringList());
    QCOMPARE(calls(QStringLiteral("aboutToShutdown")).size(), 1);
    QCOMPARE(done.count(), 0);
}

void TstPluginManager::a_missing_dependency_is_named_with_its_version()
{
    have({QStringLiteral("orphan"), QStringLiteral("zeta")});
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());
    manager.loadPlugins();

    QCOMPARE(
        manager.errors(),
        QStringList({QStringLiteral("Plugin \"orphan\" needs plugin \"nowhere\" in version 3.1.0, which is missing")}));
    QCOMPARE(manager.plugin(QStringLiteral("orphan"))->state(), PluginSpec::Read);
    QCOMPARE(manager.plugin(QStringLiteral("zeta"))->state(), PluginSpec::Running);
    QVERIFY(calls().filter(QStringLiteral("orphan")).isEmpty());
}

void TstPluginManager::plugin_provides_versions_from_compatible_to_current_data()
{
    QTest::addColumn<QString>("needed");
    QTest::addColumn<bool>("provided");
    QTest::newRow("before the first compatible one") << "1.1.9" << false;
    QTest::newRow("the first compatible one") << "1.2.0" << true;
    QTest::newRow("the current one") << "1.4.0" << true;
    QTest::newRow("after the current one") << "1.4.1" << false;
    QTest::newRow("numbers, not letters, are compared") << "1.10.0" << false;
}

void TstPluginManager::plugin_provides_versions_from_compatible_to_current()
{
    QFETCH(QString, needed);
    QFETCH(bool, provided);
    const QString name = QStringLiteral("needs_zeta_") + QString(needed).replace(QLatin1Char('.'), QLatin1Char('_'));
    have({name, QStringLiteral("zeta")});
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());
    manager.loadPlugins();

    const PluginSpec *spec = manager.plugin(name);
    QCOMPARE(spec->state(), provided ? PluginSpec::Running : PluginSpec::Read);
    const QString error =
        QStringLiteral("Plugin \"%1\" needs plugin \"zeta\" in version %2, but versions 1.2.0 to 1.4.0 are there");
    QCOMPARE(spec->errorString(), provided ? QString() : error.arg(name, needed));
}

void TstPluginManager::circular_dependency_is_refused_and_shown()
{
    have({QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("outside"), QStringLiteral("zeta")});
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());
    manager.loadPlugins();

    const QString circle = QStringLiteral("first (1.0.0) -> second (1.0.0) -> first (1.0.0)");
    QCOMPARE(manager.plugin(QStringLiteral("first"))->errorString(),
             QStringLiteral("Plugin \"first\" depends on itself: ") + circle);
    QCOMPARE(manager.plugin(QStringLiteral("second"))->errorString(),
             QStringLiteral("Plugin \"second\" depends on itself: ") + circle);
    QVERIFY(manager.plugin(QStringLiteral("outside"))
                ->errorString()
                .startsWith(QStringLiteral(
                    "Plugin \"outside\" needs plugin \"first\" in version 1.0.0, which cannot be used: ")));
    QCOMPARE(calls(QStringLiteral("initialize")), QStringList({QStringLiteral("zeta.initialize")}));
}

void TstPluginManager::a_plugin_that_needs_itself_is_refused()
{
    have({QStringLiteral("selfish")});
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());

    QCOMPARE(manager.errors(),
             QStringList({QStringLiteral("Plugin \"selfish\" depends on itself: selfish (1.0.0) -> selfish (1.0.0)")}));
    QVERIFY(manager.loadOrder().isEmpty());
}

void TstPluginManager::broken_metadata_is_refused_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<QString>("error");
    QTest::newRow("no name") << "nameless"
                             << "has no Name";
    QTest::newRow("no version") << "versionless"
                                << "has no usable Version";
    QTest::newRow("letters in the version") << "odd_version"
                                            << "has no usable Version";
    QTest::newRow("compatible with a later version") << "odd_compat"
                                                     << "has no usable CompatVersion";
    QTest::newRow("dependencies are no list") << "odd_list"
                                              << "that are not a list";
    QTest::newRow("dependency without version") << "odd_dependency"
                                                << "without a usable Name and Version";
}

void TstPluginManager::broken_metadata_is_refused()
{
    QFETCH(QString, fixture);
    QFETCH(QString, error);
    have({fixture, QStringLiteral("zeta")});
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());
    manager.loadPlugins();

    QCOMPARE(manager.errors().size(), 1);
    QVERIFY2(manager.errors().first().contains(error), qPrintable(manager.errors().first()));
    QVERIFY2(manager.errors().first().contains(fixture), qPrintable(manager.errors().first()));
    QCOMPARE(calls(QStringLiteral("constructed")), QStringList({QStringLiteral("zeta.constructed")}));
}

void TstPluginManager::non_plugin_file_is_refused()
{
    QFile file(m_directory->filePath(QStringLiteral("libtext.so")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("no library at all");
    file.close();
    QFile readme(m_directory->filePath(QStringLiteral("readme.txt")));
    QVERIFY(readme.open(QIODevice::WriteOnly));
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());

    QCOMPARE(manager.plugins().size(), 1);
    QCOMPARE(manager.plugins().first()->state(), PluginSpec::Invalid);
    QCOMPARE(manager.errors(), QStringList({QStringLiteral("\"%1\" is not a plugin").arg(file.fileName())}));
}

void TstPluginManager::a_plugin_of_another_program_is_refused()
{
    have({QStringLiteral("foreign")});
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());

    QCOMPARE(manager.errors().size(), 1);
    QVERIFY(manager.errors().first().contains(QStringLiteral("its interface is \"Elsewhere.Plugin\"")));
    QVERIFY(manager.loadOrder().isEmpty());
}

void TstPluginManager::the_second_plugin_of_a_name_is_refused()
{
    have({QStringLiteral("namesake"), QStringLiteral("zeta")});
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());
    manager.loadPlugins();

    QCOMPARE(manager.errors().size(), 1);
    QVERIFY(manager.errors().first().contains(QStringLiteral("holds another plugin \"zeta\"")));
    QCOMPARE(calls(QStringLiteral("initialize")), QStringList({QStringLiteral("namesake.initialize")}));
}

void TstPluginManager::failed_initialization_stops_only_dependents()
{
    have({QStringLiteral("needs_refusing"), QStringLiteral("refusing"), QStringLiteral("zeta")});
    PluginManager manager;
    manager.setPluginDirectory(m_directory->path());
    manager.loadPlugins();

    const QString reason = QStringLiteral("Plugin \"refusing\" cannot be initialised: it does not want to");
    QCOMPARE(manager.plugin(QStringLiteral("refusing"))->errorString(), reason);
    QCOMPARE(manager.plugin(QStringLiteral("needs_refusing"))->errorString(),
             QStringLiteral("Plugin \"needs_refusing\" needs plugin \"refusing\" in version 1.0.0, "
                            "which cannot be used: ") +
                 reason);
    QCOMPARE(manager.plugin(QStringLiteral("zeta"))->state(), PluginSpec::Running);
    QVERIFY(!manager.hasRequiredError());

    manager.shutdown();
    QCOMPARE(calls(QStringLiteral("aboutToShutdown")), QStringList({QStringLiteral("zeta.aboutToShutdown")}));
    QCOMPARE(calls(QStringLiteral("destroyed")).size(), 3);
}

TEST_MAIN_CORE(TstPluginManager)
#include "tst_pluginmanager.moc"
