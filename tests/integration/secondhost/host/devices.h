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

namespace ProjectFileCfg {
namespace Internal {
namespace HostNumbers {
constexpr auto deviceReset = static_cast<Model::Device::ParameterType>(10);
constexpr auto resetFactory = static_cast<Model::Device::DevicResetOrder>(3);
constexpr int background = 0;
constexpr int logo = 1;
constexpr auto picture = static_cast<Model::Materail::ParameterType>(2);
} // namespace HostNumbers
} // namespace Internal
} // namespace ProjectFileCfg
