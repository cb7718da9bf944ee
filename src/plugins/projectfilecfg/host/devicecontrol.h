// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Operations on the hardware of devices.
#include <modelcontrol/devicecontroler.h>
#include <modelcontrol/materialcontrol.h>
#include <modelcontrol/operationadapter.h>
#include <modelcontrol/presetcontrol.h>

namespace ProjectFileCfg {
namespace Internal {
namespace HostNumbers {
// What updateOnlineDevice returns on success.
constexpr auto noError = static_cast<ControlEnum::enum_ErrorCode>(0);
} // namespace HostNumbers
} // namespace Internal
} // namespace ProjectFileCfg
