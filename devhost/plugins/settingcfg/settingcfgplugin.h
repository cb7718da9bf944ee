#pragma once

#include <core/icorvelplugin.h>

#include <memory>

namespace SettingCfg {

class GeneralMode;
class GeneralWidget;
class SettingsMode;

/// Brings the settings area into the window, with the General sub-mode in it.
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
    /// The host's texts come from one file for all of its parts; see Core::switchLanguage().
    bool installTranslator(const QString &language) override;

private:
    void enterSettings();
    void showOrHideGeneral();

    std::unique_ptr<SettingsMode> m_settingsMode;
    std::unique_ptr<GeneralMode> m_generalMode;
    std::unique_ptr<GeneralWidget> m_generalWidget;
};

} // namespace SettingCfg
