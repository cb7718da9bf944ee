// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <settingcfg/settingcfgmodemanager.h>

namespace SettingCfg {

SettingCfgModeManager *SettingCfgModeManager::instance()
{
    static SettingCfgModeManager manager;
    return &manager;
}

} // namespace SettingCfg
