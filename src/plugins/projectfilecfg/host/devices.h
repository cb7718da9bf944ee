// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// The host's models of devices, their list, the descriptions of device types, and writing devices to disk.
#include <model/device.h>
#include <model/deviceconfigmanager.h>
#include <model/devicelist.h>
#include <model/objectbrige.h>
#include <model/serailizer.h>

namespace ProjectFileCfg {
namespace Internal {
namespace HostNumbers {
// Key and value with which updateDeviceInfo resets everything.
constexpr auto deviceReset = static_cast<Model::Device::ParameterType>(10);
constexpr auto resetFactory = static_cast<Model::Device::DevicResetOrder>(3);
// Kinds of pictures, as getType() returns them and createMaterailFromImage takes them.
constexpr int background = 0;
constexpr int logo = 1;
// Key with which queryMaterailData fetches the picture; the value is a QImage.
constexpr auto picture = static_cast<Model::Materail::ParameterType>(2);
} // namespace HostNumbers
} // namespace Internal
} // namespace ProjectFileCfg
