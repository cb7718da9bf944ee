// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

namespace Core {
using ICorvelPlugin = Acme::PluginBase;
} // namespace Core

namespace HX {
namespace ExtensionSystem {
using IPlugin = Acme::PluginBase;
} // namespace ExtensionSystem
namespace Utils {
using Id = Acme::Key;
} // namespace Utils
} // namespace HX

namespace ProjectFileCfg::Internal::HostNumbers {
constexpr auto synchronousShutdown = Acme::PluginBase::AtOnce;
} // namespace ProjectFileCfg::Internal::HostNumbers
