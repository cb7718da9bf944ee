// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

namespace Core {
using ModeManager = Acme::Pages;
} // namespace Core

namespace NavigationBar {
using NavigationBarModeManager = Acme::SubModes;
} // namespace NavigationBar

namespace SettingCfg {
using ISettingCfgMode = Acme::Mode;
using SettingCfgModeManager = Acme::SubModes;
} // namespace SettingCfg

namespace Corvel::Widgets {
using ICenterWidget = Acme::Page;
} // namespace Corvel::Widgets

namespace ProjectFileCfg::Internal::HostNumbers {
constexpr int buttonNormal = 0;
constexpr int buttonPressed = 1;
constexpr int buttonHover = 2;
} // namespace ProjectFileCfg::Internal::HostNumbers
