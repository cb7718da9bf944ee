// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

namespace Core {
using ICore = Acme::Application;
} // namespace Core

namespace ProjectFileCfg::Internal::HostNumbers {
constexpr auto operatorLoad = Acme::Application::Loading;
constexpr auto operatorBackup = Acme::Application::Saving;
constexpr auto operatorNone = Acme::Application::Idle;
} // namespace ProjectFileCfg::Internal::HostNumbers
