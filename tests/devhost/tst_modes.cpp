// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/imode.h>
#include <core/modemanager.h>
#include <navigationbar/inavigationbarmode.h>
#include <navigationbar/navigationbarmodemanager.h>

#include <support/testmain.h>

#include <QSignalSpy>

using Core::ModeManager;
using HX::Utils::Id;
using NavigationBar::NavigationBarModeManager;

namespace {

class Mode : public NavigationBar::INavigationBarMode
{
public:
    Mode(const char *id, int priority)
    {
        setId(id);
        setPriority(priority);
        setEnabled(true);
        setVisible(false);
    }
    void retranslateUi() override {}
    QWidget *toolBar() const override { return nullptr; }
};

QVector<Id> topLevelIds()
{
    QVector<Id> ids;
    const QVector<Core::IMode *> modes = ModeManager::modes();
    for (const Core::IMode *mode : modes)
        ids.append(mode->id());
    return ids;
}

} // namespace

class TstModes : public QObject
{
    Q_OBJECT

private slots:
    void sub_modes_are_sorted_and_unique();
    void the_manager_keeps_which_sub_mode_is_visible();
    void unknown_or_disabled_sub_mode_is_not_shown();
    void removing_the_current_sub_mode_shows_the_first();
    void removing_another_sub_mode_changes_nothing_shown();
    void the_first_top_level_mode_becomes_current();
    void top_level_mode_restores_its_last_central_widget();
    void only_registered_central_widgets_can_be_activated();
    void removing_the_active_central_widget_leaves_none_active();
};

void TstModes::sub_modes_are_sorted_and_unique()
{
    NavigationBarModeManager manager;
    Mode late("Late", 9), early("Early", 1), alsoLate("AlsoLate", 9);
    manager.addMode(&late);
    manager.addMode(&early);
    manager.addMode(&alsoLate);
    manager.addMode(&early);
    QCOMPARE(manager.modes(), QVector<Id>({"Early", "Late", "AlsoLate"}));
    QVERIFY(manager.containsMode("Late"));
    QVERIFY(!manager.containsMode("Never"));
    QVERIFY(!manager.currentModeId().isValid());
}

void TstModes::the_manager_keeps_which_sub_mode_is_visible()
{
    NavigationBarModeManager manager;
    Mode first("First", 1), second("Second", 2);
    manager.addMode(&first);
    manager.addMode(&second);
    QSignalSpy changed(&manager, &NavigationBarModeManager::currentModeChanged);
    manager.activateMode("First");
    manager.activateMode("Second");
    manager.activateMode("Second");
    QCOMPARE(manager.currentModeId(), Id("Second"));
    QVERIFY(!first.isVisible());
    QVERIFY(second.isVisible());
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed.last().at(0).value<Id>(), Id("Second"));
    QCOMPARE(changed.last().at(1).value<Id>(), Id("First"));
}

void TstModes::unknown_or_disabled_sub_mode_is_not_shown()
{
    NavigationBarModeManager manager;
    Mode first("First", 1), disabled("Disabled", 2);
    disabled.setEnabled(false);
    manager.addMode(&first);
    manager.addMode(&disabled);
    manager.activateMode("First");
    manager.activateMode("Disabled");
    manager.activateMode("Never");
    QCOMPARE(manager.currentModeId(), Id("First"));
}

void TstModes::removing_the_current_sub_mode_shows_the_first()
{
    NavigationBarModeManager manager;
    Mode first("First", 1), second("Second", 2);
    manager.addMode(&first);
    manager.addMode(&second);
    manager.activateMode("Second");
    QSignalSpy changed(&manager, &NavigationBarModeManager::currentModeChanged);
    manager.removeMode(&second);
    QCOMPARE(manager.currentModeId(), Id("First"));
    QVERIFY(first.isVisible());
    QVERIFY(!second.isVisible());
    QCOMPARE(changed.count(), 1);
    manager.removeMode(&first);
    QVERIFY(!manager.currentModeId().isValid());
    QCOMPARE(changed.count(), 2);
}

void TstModes::removing_another_sub_mode_changes_nothing_shown()
{
    NavigationBarModeManager manager;
    Mode first("First", 1), second("Second", 2);
    manager.addMode(&first);
    manager.addMode(&second);
    manager.activateMode("First");
    QSignalSpy changed(&manager, &NavigationBarModeManager::currentModeChanged);
    manager.removeMode(&second);
    manager.removeMode(&second);
    QCOMPARE(manager.currentModeId(), Id("First"));
    QCOMPARE(changed.count(), 0);
}

void TstModes::the_first_top_level_mode_becomes_current()
{
    Mode settings("Settings", 9), home("Home", 1);
    ModeManager::addMode(&settings);
    ModeManager::addMode(&home);
    QCOMPARE(topLevelIds(), QVector<Id>({"Home", "Settings"}));
    QCOMPARE(ModeManager::currentMode(), Id("Settings"));
    QVERIFY(settings.isVisible());

    ModeManager::activateMode("Never");
    QCOMPARE(ModeManager::currentMode(), Id("Settings"));
    ModeManager::removeMode(&settings);
    QCOMPARE(ModeManager::currentMode(), Id("Home"));
    QVERIFY(home.isVisible());
    ModeManager::removeMode(&home);
    QVERIFY(!ModeManager::currentMode().isValid());
}

void TstModes::top_level_mode_restores_its_last_central_widget()
{
    Mode home("Home", 1), settings("Settings", 9);
    ModeManager::addMode(&home);
    ModeManager::addMode(&settings);
    ModeManager::activateMode("Settings");
    ModeManager::addCenterWidget("Page");
    ModeManager::setActivateCenterWidget("Page");
    ModeManager::activateMode("Home");
    QVERIFY(!ModeManager::activeCenterWidget().isValid());
    ModeManager::activateMode("Settings");
    QCOMPARE(ModeManager::activeCenterWidget(), Id("Page"));

    ModeManager::activateMode("Home");
    ModeManager::removeCenterWidget("Page");
    ModeManager::activateMode("Settings");
    QVERIFY(!ModeManager::activeCenterWidget().isValid());
    ModeManager::removeMode(&settings);
    ModeManager::removeMode(&home);
}

void TstModes::only_registered_central_widgets_can_be_activated()
{
    TestSupport::ExpectMessage warning(QtWarningMsg, QRegularExpression(QStringLiteral("no central widget")), 1);
    QVERIFY(!ModeManager::existCenterWidget("Page"));
    ModeManager::setActivateCenterWidget("Page");
    QVERIFY(!ModeManager::activeCenterWidget().isValid());
}

void TstModes::removing_the_active_central_widget_leaves_none_active()
{
    QSignalSpy added(ModeManager::instance(), &ModeManager::centerWidgetAdded);
    ModeManager::addCenterWidget("Page");
    ModeManager::addCenterWidget("Page");
    QCOMPARE(added.count(), 1);
    ModeManager::setActivateCenterWidget("Page");
    QCOMPARE(ModeManager::activeCenterWidget(), Id("Page"));
    ModeManager::removeCenterWidget("Page");
    QVERIFY(!ModeManager::existCenterWidget("Page"));
    QVERIFY(!ModeManager::activeCenterWidget().isValid());
}

TEST_MAIN_CORE(TstModes)
#include "tst_modes.moc"
