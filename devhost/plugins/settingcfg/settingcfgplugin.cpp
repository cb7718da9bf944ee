// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <settingcfg/settingcfgplugin.h>

#include <core/modemanager.h>
#include <settingcfg/generalmode.h>
#include <settingcfg/generalwidget.h>
#include <settingcfg/settingcfgmodemanager.h>
#include <settingcfg/settingsmode.h>

namespace SettingCfg {

using Core::ModeManager;

SettingCfgPlugin::SettingCfgPlugin()
{
    setObjectName(QStringLiteral("SettingCfgPlugin"));
}

SettingCfgPlugin::~SettingCfgPlugin() = default;

bool SettingCfgPlugin::initialize(const QStringList &arguments, QString *errorString)
{
    Q_UNUSED(arguments)
    Q_UNUSED(errorString)
    addObject(this);
    m_settingsMode = std::make_unique<SettingsMode>();
    m_generalMode = std::make_unique<GeneralMode>();
    m_generalWidget = std::make_unique<GeneralWidget>();
    addObject(m_generalWidget.get());
    SettingCfgModeManager::instance()->addMode(m_generalMode.get());
    ModeManager::addMode(m_settingsMode.get());
    connect(SettingCfgModeManager::instance(), &NavigationBar::NavigationBarModeManager::currentModeChanged, this,
            &SettingCfgPlugin::showOrHideGeneral);
    connect(ModeManager::instance(), &ModeManager::currentModeChanged, this, &SettingCfgPlugin::enterSettings);
    return true;
}

void SettingCfgPlugin::extensionsInitialized() {}

SettingCfgPlugin::ShutdownFlag SettingCfgPlugin::aboutToShutdown()
{
    disconnect(SettingCfgModeManager::instance(), nullptr, this, nullptr);
    disconnect(ModeManager::instance(), nullptr, this, nullptr);
    ModeManager::removeCenterWidget(m_generalWidget->id());
    ModeManager::removeMode(m_settingsMode.get());
    SettingCfgModeManager::instance()->removeMode(m_generalMode.get());
    removeObject(m_generalWidget.get());
    m_generalWidget.reset();
    m_generalMode.reset();
    m_settingsMode.reset();
    removeObject(this);
    return SynchronousShutdown;
}

bool SettingCfgPlugin::installTranslator(const QString &language)
{
    Q_UNUSED(language)
    return true;
}

void SettingCfgPlugin::enterSettings()
{
    SettingCfgModeManager *manager = SettingCfgModeManager::instance();
    if (ModeManager::currentMode() == m_settingsMode->id() && !manager->currentModeId().isValid())
        manager->activateMode(manager->modes().constFirst());
    showOrHideGeneral();
}

/// Registered only while the settings area is visible, so that changes to the sub-modes behind another top-level mode
/// never bring the page to the front.
void SettingCfgPlugin::showOrHideGeneral()
{
    const HX::Utils::Id page = m_generalWidget->id();
    const bool wanted = ModeManager::currentMode() == m_settingsMode->id() &&
                        SettingCfgModeManager::instance()->currentModeId() == m_generalMode->id();
    const bool shown = ModeManager::existCenterWidget(page);
    if (wanted && !shown) {
        ModeManager::addCenterWidget(page);
        ModeManager::setActivateCenterWidget(page);
        m_generalWidget->raiseWindow();
        m_generalWidget->enterWindow();
    } else if (!wanted && shown) {
        ModeManager::removeCenterWidget(page);
        m_generalWidget->leaveWindow();
    }
}

} // namespace SettingCfg
