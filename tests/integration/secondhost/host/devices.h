// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

namespace Talvik {
template<typename T>
using weak_refrence = Acme::Handle<T>;
} // namespace Talvik

namespace Model {
using s_DeviceConfig = Acme::UnitConfig;
using Slot = Acme::Card;
using Screen = Acme::Output;
using Preset = Acme::Scene;
using Materail = Acme::Still;
using Device = Acme::Unit;
using DeviceList = Acme::Units;
using DeviceConfigManager = Acme::Units;
using object_brige = Acme::Units;
using Serailizer = Acme::Disk;
} // namespace Model

namespace ProjectFileCfg::Internal::HostNumbers {
constexpr auto deviceReset = Acme::Unit::Reset;
constexpr auto resetFactory = Acme::Unit::AllOfIt;
constexpr int background = 0;
constexpr int logo = 1;
constexpr auto picture = Acme::Still::Pixels;
} // namespace ProjectFileCfg::Internal::HostNumbers
