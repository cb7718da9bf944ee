// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <functional>

namespace ProjectFileCfg {
namespace Internal {

/// Runs `work`, which calls the host, and catches every exception. False if there was one: `failure` and its text are
/// logged as critical.
bool runGuarded(const char *failure, const std::function<void()> &work);

} // namespace Internal
} // namespace ProjectFileCfg
