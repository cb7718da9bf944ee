#include <settingcfg/settingcfgmodemanager.h>

namespace SettingCfg {

SettingCfgModeManager *SettingCfgModeManager::instance()
{
    static SettingCfgModeManager manager;
    return &manager;
}

} // namespace SettingCfg
