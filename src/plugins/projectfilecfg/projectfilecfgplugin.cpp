// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectfilecfgplugin.h"

#include "engineerdocoperwidget.h"
#include "localecodec.h"
#include "projectfilecfgmode.h"

#include <host/core.h>
#include <host/devices.h>
#include <host/modes.h>

#include <QDebug>
#include <QTimer>

using Core::ICore;
using Core::ModeManager;
using NavigationBar::NavigationBarModeManager;
using SettingCfg::SettingCfgModeManager;

namespace ProjectFileCfg {

namespace {

ProjectFileCfgPlugin *s_instance = nullptr;

constexpr char modeId[] = "ProjectFileCfg";
constexpr char centerWidgetId[] = "ProjectFileCfg.Central";
constexpr char settingsAreaId[] = "SettingCfg";

} // namespace

ProjectFileCfgPlugin::ProjectFileCfgPlugin()
{
    setObjectName(QStringLiteral("ProjectFileCfgPlugin"));
    s_instance = this;
}

ProjectFileCfgPlugin::~ProjectFileCfgPlugin()
{
    s_instance = nullptr;
}

ProjectFileCfgPlugin *ProjectFileCfgPlugin::instance()
{
    return s_instance;
}

bool ProjectFileCfgPlugin::initialize(const QStringList &, QString *)
{
    // Before the first file name is used: names are UTF-8, in packages and on disk, whatever the locale.
    Internal::useUtf8LocaleCodec();

    if (!installTranslator(ICore::overrideLanguage()))
        qWarning().nospace().noquote() << "Load "
                                       << "projectfilecfg"
                                       << " Language failed!";
    addObject(this);
    m_pMode = new Internal::ProjectFileCfgMode(nullptr);
    SettingCfgModeManager::instance()->addMode(m_pMode);
    createConnects();
    return true;
}

void ProjectFileCfgPlugin::extensionsInitialized() {}

bool ProjectFileCfgPlugin::delayedInitialize()
{
    return true;
}

HX::ExtensionSystem::IPlugin::ShutdownFlag ProjectFileCfgPlugin::aboutToShutdown()
{
    destoryModeWidgets();
    if (m_pMode) {
        SettingCfgModeManager::instance()->removeMode(m_pMode);
        delete m_pMode;
        m_pMode = nullptr;
    }
    removeObject(this);
    return Internal::HostNumbers::synchronousShutdown;
}

bool ProjectFileCfgPlugin::installTranslator(const QString &language)
{
    return HX::ExtensionSystem::IPlugin::installTranslator(ICore::trPath(), QStringLiteral("projectfilecfg"), language);
}

void ProjectFileCfgPlugin::createConnects()
{
    connect(SettingCfgModeManager::instance(), &NavigationBarModeManager::currentModeChanged, this,
            &ProjectFileCfgPlugin::currentModeChanged);
    connect(Model::object_brige::instance(), &Model::object_brige::signal_deviceChanged, this,
            &ProjectFileCfgPlugin::slotDeviceChanged);
}

void ProjectFileCfgPlugin::destoryConnects()
{
    disconnect(SettingCfgModeManager::instance(), &NavigationBarModeManager::currentModeChanged, this,
               &ProjectFileCfgPlugin::currentModeChanged);
}

void ProjectFileCfgPlugin::createModeConnects() {}

void ProjectFileCfgPlugin::destoryModeConnects() {}

void ProjectFileCfgPlugin::registerDefaultActions() {}

void ProjectFileCfgPlugin::createModeWidgets()
{
    if (m_pCenterWidget)
        return;
    m_pCenterWidget = new Internal::EngineerDocOperWidget(nullptr);
    addObject(m_pCenterWidget);
    m_pCenterWidget->enterWindow();
}

void ProjectFileCfgPlugin::destoryModeWidgets()
{
    if (!m_pCenterWidget)
        return;
    m_pCenterWidget->leaveWindow();
    removeObject(m_pCenterWidget);
    delete m_pCenterWidget;
    m_pCenterWidget = nullptr;
}

void ProjectFileCfgPlugin::currentModeChanged(const HX::Utils::Id &current, const HX::Utils::Id &)
{
    // Later, since the mode manager is still notifying other receivers.
    QTimer::singleShot(0, this, [this, current] { showOrLeavePanel(current); });
}

void ProjectFileCfgPlugin::showOrLeavePanel(const HX::Utils::Id &current)
{
    if (current == modeId) {
        createModeWidgets();
        if (!ModeManager::existCenterWidget(centerWidgetId))
            ModeManager::addCenterWidget(centerWidgetId);
        // Keep this call although its result is unused: hosts expect it before the activation.
        ModeManager::instance();
        ModeManager::setActivateCenterWidget(centerWidgetId);
        if (m_pCenterWidget) {
            m_pCenterWidget->raiseWindow();
            m_pCenterWidget->enterWindow();
        }
    } else if (ModeManager::existCenterWidget(centerWidgetId)) {
        ModeManager::removeCenterWidget(centerWidgetId);
        if (m_pCenterWidget)
            m_pCenterWidget->leaveWindow();
    }
}

void ProjectFileCfgPlugin::slotDeviceChanged()
{
    const std::shared_ptr<Model::Device> device = Model::object_brige::instance()->activeDevice();
    if (!device)
        return;
    if (!m_pMode)
        m_pMode = new Internal::ProjectFileCfgMode(nullptr);

    SettingCfgModeManager *manager = SettingCfgModeManager::instance();
    const bool registered = manager->containsMode(m_pMode->id());
    if (device->deviceConfig().supportProjectFile && !registered) {
        m_pMode->retranslateUi();
        manager->addMode(m_pMode);
    } else if (!device->deviceConfig().supportProjectFile && registered) {
        withdrawMode();
    }
}

void ProjectFileCfgPlugin::withdrawMode()
{
    SettingCfgModeManager *manager = SettingCfgModeManager::instance();
    const HX::Utils::Id shown = manager->currentModeId();
    if (ModeManager::currentMode() == settingsAreaId && shown == m_pMode->id()) {
        // Read before the removal: if this sub-mode is the first one, it is activated again.
        const QVector<HX::Utils::Id> modes = manager->modes();
        if (!modes.isEmpty())
            manager->activateMode(modes.first());
    }
    manager->removeMode(m_pMode);
}

} // namespace ProjectFileCfg
