// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <settingcfg/isettingcfgmode.h>

namespace SettingCfg {

ISettingCfgMode::ISettingCfgMode(QObject *parent)
    : NavigationBar::INavigationBarMode(parent)
{}

ISettingCfgMode::~ISettingCfgMode() = default;

} // namespace SettingCfg
