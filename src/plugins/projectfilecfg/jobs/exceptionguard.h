// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <functional>

namespace ProjectFileCfg {
namespace Internal {

/// Runs `work`, which calls the host, and catches every exception. If there is one, logs `failure` and its text as
/// critical and returns false.
bool runGuarded(const char *failure, const std::function<void()> &work);

} // namespace Internal
} // namespace ProjectFileCfg
