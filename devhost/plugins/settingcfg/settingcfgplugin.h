// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/icorvelplugin.h>

#include <memory>

namespace SettingCfg {

class GeneralMode;
class GeneralWidget;
class SettingsMode;

/// Adds the settings area with the General sub-mode to the window.
class SettingCfgPlugin : public Core::ICorvelPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "Velmora.CorvelPlugin" FILE "settingcfg.json")

public:
    SettingCfgPlugin();
    ~SettingCfgPlugin() override;

    bool initialize(const QStringList &arguments, QString *errorString) override;
    void extensionsInitialized() override;
    ShutdownFlag aboutToShutdown() override;
    /// One file holds the texts of the whole host; see Core::switchLanguage().
    bool installTranslator(const QString &language) override;

private:
    void enterSettings();
    void showOrHideGeneral();

    std::unique_ptr<SettingsMode> m_settingsMode;
    std::unique_ptr<GeneralMode> m_generalMode;
    std::unique_ptr<GeneralWidget> m_generalWidget;
};

} // namespace SettingCfg
