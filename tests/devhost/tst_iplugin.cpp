// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <extensionsystem/iplugin.h>
#include <extensionsystem/objectpool.h>

#include <support/testmain.h>

#include <QSignalSpy>

using HX::ExtensionSystem::IPlugin;
using HX::ExtensionSystem::ObjectPool;

namespace {

class Plugin : public IPlugin
{
public:
    bool initialize(const QStringList &, QString *) override { return true; }
    void extensionsInitialized() override {}
    using IPlugin::installTranslator;
};

QString word()
{
    return QCoreApplication::translate("Fixture", "word");
}

} // namespace

class TstIPlugin : public QObject
{
    Q_OBJECT

private slots:
    void pool_keeps_order_and_announces_changes();
    void pool_accepts_an_object_once();
    void a_deleted_object_leaves_the_pool();
    void objects_are_found_by_type();
    void a_translation_replaces_the_earlier_one();
    void a_missing_translation_withdraws_the_earlier_one();
    void a_shorter_language_code_is_not_taken_instead();
    void unloading_a_plugin_removes_its_translation();

private:
    const QString m_texts = QStringLiteral(TRANSLATION_DIRECTORY);
    const QString m_base = QStringLiteral("fixturetexts");
};

void TstIPlugin::pool_keeps_order_and_announces_changes()
{
    Plugin plugin;
    QObject first, second;
    QSignalSpy added(ObjectPool::instance(), &ObjectPool::objectAdded);
    QList<QObject *> poolAtRemoval;
    const auto connection = connect(ObjectPool::instance(), &ObjectPool::aboutToRemoveObject,
                                    [&poolAtRemoval]() { poolAtRemoval = ObjectPool::instance()->objects(); });
    plugin.addObject(&first);
    plugin.addObject(&second);
    QCOMPARE(ObjectPool::instance()->objects(), QList<QObject *>({&first, &second}));
    QCOMPARE(added.count(), 2);

    plugin.removeObject(&first);
    QCOMPARE(poolAtRemoval, QList<QObject *>({&first, &second}));
    QCOMPARE(ObjectPool::instance()->objects(), QList<QObject *>({&second}));
    plugin.removeObject(&second);
    plugin.removeObject(&second);
    QVERIFY(ObjectPool::instance()->objects().isEmpty());
    disconnect(connection);
}

void TstIPlugin::pool_accepts_an_object_once()
{
    Plugin plugin;
    plugin.addObject(this);
    {
        TestSupport::ExpectMessage twice(QtWarningMsg, QRegularExpression(QStringLiteral("already$")), 1);
        plugin.addObject(this);
    }
    {
        TestSupport::ExpectMessage null(QtWarningMsg, QStringLiteral("The object pool was given a null object"), 1);
        plugin.addObject(nullptr);
    }
    QCOMPARE(ObjectPool::instance()->objects(), QList<QObject *>({this}));
    plugin.removeObject(this);
}

void TstIPlugin::a_deleted_object_leaves_the_pool()
{
    TestSupport::ExpectMessage warning(
        QtWarningMsg, QRegularExpression(QStringLiteral("deleted without leaving the object pool")), 1);
    Plugin plugin;
    plugin.addObject(this);
    auto *object = new QObject;
    plugin.addObject(object);
    delete object;
    QCOMPARE(ObjectPool::instance()->objects(), QList<QObject *>({this}));
    plugin.removeObject(this);
}

void TstIPlugin::objects_are_found_by_type()
{
    Plugin plugin;
    plugin.addObject(this);
    plugin.addObject(&plugin);
    QCOMPARE(ObjectPool::instance()->objectsOfType<IPlugin>(), QList<IPlugin *>({&plugin}));
    plugin.removeObject(&plugin);
    plugin.removeObject(this);
}

void TstIPlugin::a_translation_replaces_the_earlier_one()
{
    Plugin plugin;
    QCOMPARE(word(), QStringLiteral("word"));
    QVERIFY(plugin.installTranslator(m_texts, m_base, QStringLiteral("aa")));
    QCOMPARE(word(), QStringLiteral("word in aa"));
    QVERIFY(plugin.installTranslator(m_texts, m_base, QStringLiteral("bb")));
    QCOMPARE(word(), QStringLiteral("word in bb"));
}

void TstIPlugin::a_missing_translation_withdraws_the_earlier_one()
{
    Plugin plugin;
    QVERIFY(plugin.installTranslator(m_texts, m_base, QStringLiteral("aa")));
    QVERIFY(!plugin.installTranslator(m_texts, m_base, QStringLiteral("zz")));
    QCOMPARE(word(), QStringLiteral("word"));
}

void TstIPlugin::a_shorter_language_code_is_not_taken_instead()
{
    Plugin plugin;
    QVERIFY(!plugin.installTranslator(m_texts, m_base, QStringLiteral("aa_XX")));
    QCOMPARE(word(), QStringLiteral("word"));
}

void TstIPlugin::unloading_a_plugin_removes_its_translation()
{
    {
        Plugin plugin;
        QVERIFY(plugin.installTranslator(m_texts, m_base, QStringLiteral("aa")));
    }
    QCOMPARE(word(), QStringLiteral("word"));
}

TEST_MAIN_CORE(TstIPlugin)
#include "tst_iplugin.moc"
