// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <navigationbar/inavigationbarmode.h>
#include <settingcfg/settingcfg_global.h>

namespace SettingCfg {

/// Stands for a sub-mode of the host's settings area.
class HOST_SETTINGCFG_EXPORT ISettingCfgMode : public NavigationBar::INavigationBarMode
{
    Q_OBJECT

public:
    explicit ISettingCfgMode(QObject *parent = nullptr);
    ~ISettingCfgMode() override;

    /// True for a mode that belongs to the settings area.
    virtual bool isSettingMode() const = 0;
};

} // namespace SettingCfg
