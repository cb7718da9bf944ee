// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <functional>

namespace ProjectFileCfg {
namespace Internal {

/// Calls the host from a slot. No exception may leave a slot, since Qt's event loop would end the process. False if the
/// host threw one; the name of its operation and the exception's text are logged as critical.
bool callHost(const char *operation, const std::function<void()> &call);

} // namespace Internal
} // namespace ProjectFileCfg
