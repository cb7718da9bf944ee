// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Language, paths, and the running operation on a device.
#include <core/icore.h>

namespace ProjectFileCfg {
namespace Internal {
namespace HostNumbers {
// The running operation on a device: a load, a save, or none.
constexpr auto operatorLoad = static_cast<Core::ICore::OperatorDeviceType>(0);
constexpr auto operatorBackup = static_cast<Core::ICore::OperatorDeviceType>(1);
constexpr auto operatorNone = static_cast<Core::ICore::OperatorDeviceType>(2);
} // namespace HostNumbers
} // namespace Internal
} // namespace ProjectFileCfg
