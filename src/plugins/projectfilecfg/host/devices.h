// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Devices as the host knows them, their list, what is known of each model, and writing them to disk.
#include <model/device.h>
#include <model/deviceconfigmanager.h>
#include <model/devicelist.h>
#include <model/objectbrige.h>
#include <model/serailizer.h>

namespace ProjectFileCfg {
namespace Internal {
namespace HostNumbers {
// What updateDeviceInfo is to do: a reset, of everything.
constexpr auto deviceReset = static_cast<Model::Device::ParameterType>(10);
constexpr auto resetFactory = static_cast<Model::Device::DevicResetOrder>(3);
// Kinds of pictures, as getType() returns them and createMaterailFromImage takes them.
constexpr int background = 0;
constexpr int logo = 1;
// What queryMaterailData is to fetch: the picture, where a QImage is given for it.
constexpr auto picture = static_cast<Model::Materail::ParameterType>(2);
} // namespace HostNumbers
} // namespace Internal
} // namespace ProjectFileCfg
