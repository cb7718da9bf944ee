// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Modes, the settings area with its sub-modes, and the central widgets.
#include <core/modemanager.h>
#include <settingcfg/isettingcfgmode.h>
#include <settingcfg/settingcfgmodemanager.h>
#include <widgets/icenterwidget.h>

namespace ProjectFileCfg {
namespace Internal {
namespace HostNumbers {
// The states of the sub-mode's button, each with an icon.
constexpr int buttonNormal = 0;
constexpr int buttonPressed = 1;
constexpr int buttonHover = 2;
} // namespace HostNumbers
} // namespace Internal
} // namespace ProjectFileCfg
