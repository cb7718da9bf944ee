// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// The base class of plugins, and the ids of modes and widgets.
#include <core/icorvelplugin.h>
#include <utils/id.h>

namespace ProjectFileCfg {
namespace Internal {
namespace HostNumbers {
// The plugin is ready to be deleted when aboutToShutdown returns.
constexpr auto synchronousShutdown = static_cast<HX::ExtensionSystem::IPlugin::ShutdownFlag>(0);
} // namespace HostNumbers
} // namespace Internal
} // namespace ProjectFileCfg
