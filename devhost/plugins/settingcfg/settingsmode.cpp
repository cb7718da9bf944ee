// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <settingcfg/settingsmode.h>

#include <navigationbar/navigationbarwidget.h>
#include <settingcfg/settingcfgmodemanager.h>
#include <utils/icon.h>

namespace SettingCfg {

SettingsMode::SettingsMode(QObject *parent)
    : Core::IMode(parent)
    , m_navigation(new NavigationBar::NavigationBarWidget(SettingCfgModeManager::instance()))
{
    using Corvel::Utils::Icon;
    setObjectName(QStringLiteral("SettingsMode"));
    setPriority(900);
    setId("SettingCfg");
    setEnabled(true);
    setVisible(false);
    setIcon(Icon::fromStates(Icon::fromTheme(QStringLiteral("setting_normal"), QString()),
                             Icon::fromTheme(QStringLiteral("setting_hover"), QString()),
                             Icon::fromTheme(QStringLiteral("setting_pressed"), QString())));
    SettingsMode::retranslateUi();
}

SettingsMode::~SettingsMode()
{
    delete m_navigation;
}

void SettingsMode::retranslateUi()
{
    setDisplayName(tr("Settings"));
    m_navigation->setTitle(tr("Settings"));
}

QWidget *SettingsMode::toolBar() const
{
    return m_navigation;
}

} // namespace SettingCfg
