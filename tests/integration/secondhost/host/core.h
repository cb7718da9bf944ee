// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

namespace Core {
using ICore = Acme::Application;
} // namespace Core

namespace ProjectFileCfg {
namespace Internal {
namespace HostNumbers {
constexpr auto operatorLoad = static_cast<Core::ICore::OperatorDeviceType>(0);
constexpr auto operatorBackup = static_cast<Core::ICore::OperatorDeviceType>(1);
constexpr auto operatorNone = static_cast<Core::ICore::OperatorDeviceType>(2);
} // namespace HostNumbers
} // namespace Internal
} // namespace ProjectFileCfg
