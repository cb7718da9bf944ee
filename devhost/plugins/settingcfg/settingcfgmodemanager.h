// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <navigationbar/navigationbarmodemanager.h>
#include <settingcfg/settingcfg_global.h>

namespace SettingCfg {

/// Stands for the manager of the settings area's sub-modes.
class HOST_SETTINGCFG_EXPORT SettingCfgModeManager : public NavigationBar::NavigationBarModeManager
{
    Q_OBJECT

public:
    static SettingCfgModeManager *instance();

private:
    SettingCfgModeManager() = default;
};

} // namespace SettingCfg
