// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectfilecfgmode.h"

#include <support/testmain.h>
#include <utils/icon.h>

#include <QTranslator>

using Corvel::Utils::Icon;
using ProjectFileCfg::Internal::ProjectFileCfgMode;

/// Marks each text of the mode's own translation context.
class MarkingTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *text, const char *, int) const override
    {
        const bool own = qstrcmp(context, "ProjectFileCfg::Internal::ProjectFileCfgMode") == 0;
        return own ? QString::fromUtf8("译 ") + QLatin1String(text) : QString();
    }
    bool isEmpty() const override { return false; }
};

namespace {

QImage pixels(const QIcon &icon)
{
    return icon.pixmap(64, 64).toImage();
}

QImage themePixels(const char *name)
{
    return pixels(Icon::fromTheme(QLatin1String(name), QString()));
}

} // namespace

class TstProjectFileCfgMode : public QObject
{
    Q_OBJECT

private slots:
    void identity_and_place_are_fixed();
    void button_is_enabled_but_not_yet_shown();
    void texts_are_set_after_construction();
    void texts_follow_the_language_when_asked();
    void the_icon_is_the_themes();
    void state_icons_are_normal_hover_pressed();
    void is_a_settings_mode_without_tool_bar();
    void has_its_parent_as_owner();
};

void TstProjectFileCfgMode::identity_and_place_are_fixed()
{
    const ProjectFileCfgMode mode(nullptr);
    QCOMPARE(mode.objectName(), QString("ProjectFileCfgMode"));
    QCOMPARE(mode.id(), HX::Utils::Id("ProjectFileCfg"));
    QCOMPARE(mode.priority(), 594);
}

void TstProjectFileCfgMode::button_is_enabled_but_not_yet_shown()
{
    const ProjectFileCfgMode mode(nullptr);
    QVERIFY(mode.enabled());
    QVERIFY(!mode.isVisible());
}

void TstProjectFileCfgMode::texts_are_set_after_construction()
{
    const ProjectFileCfgMode mode(nullptr);
    QCOMPARE(mode.displayName(), QString("Project File"));
    QCOMPARE(mode.toolTip(), QString("Switch to project file module"));
}

void TstProjectFileCfgMode::texts_follow_the_language_when_asked()
{
    ProjectFileCfgMode mode(nullptr);
    MarkingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QCOMPARE(mode.displayName(), QString("Project File"));
    mode.retranslateUi();
    QCOMPARE(mode.displayName(), QString::fromUtf8("译 Project File"));
    QCOMPARE(mode.toolTip(), QString::fromUtf8("译 Switch to project file module"));
    QCoreApplication::removeTranslator(&translator);
    mode.retranslateUi();
    QCOMPARE(mode.displayName(), QString("Project File"));
}

void TstProjectFileCfgMode::the_icon_is_the_themes()
{
    const ProjectFileCfgMode mode(nullptr);
    QVERIFY(!pixels(mode.icon()).isNull());
    QCOMPARE(pixels(mode.icon()), themePixels("project_normal"));
}

void TstProjectFileCfgMode::state_icons_are_normal_hover_pressed()
{
    const ProjectFileCfgMode mode(nullptr);
    const QVector<QPair<int, QIcon>> icons = mode.stateIcons();
    QCOMPARE(icons.size(), 3);
    QCOMPARE(icons.at(0).first, 0);
    QCOMPARE(icons.at(1).first, 2);
    QCOMPARE(icons.at(2).first, 1);
    QCOMPARE(pixels(icons.at(0).second), themePixels("project_normal"));
    QCOMPARE(pixels(icons.at(1).second), themePixels("project_hover_normal"));
    QCOMPARE(pixels(icons.at(2).second), themePixels("projecte_pressed_normal"));
    // Otherwise the comparisons above could not tell them apart.
    QVERIFY(themePixels("project_normal") != themePixels("project_hover_normal"));
    QVERIFY(themePixels("project_normal") != themePixels("projecte_pressed_normal"));
    QVERIFY(themePixels("project_hover_normal") != themePixels("projecte_pressed_normal"));
}

void TstProjectFileCfgMode::is_a_settings_mode_without_tool_bar()
{
    const ProjectFileCfgMode mode(nullptr);
    QVERIFY(!mode.toolBar());
    QVERIFY(mode.isSettingMode());
    // Anything not overridden is the host's.
    QCOMPARE(mode.hasNavigationBar(), mode.Core::IMode::hasNavigationBar());
    QCOMPARE(mode.hasDeviceToolBar(), mode.Core::IMode::hasDeviceToolBar());
}

void TstProjectFileCfgMode::has_its_parent_as_owner()
{
    QObject parent;
    const ProjectFileCfgMode *mode = new ProjectFileCfgMode(&parent);
    QCOMPARE(mode->parent(), &parent);
}

TEST_MAIN(TstProjectFileCfgMode)
#include "tst_projectfilecfgmode.moc"
