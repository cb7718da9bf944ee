#pragma once

#include <functional>

namespace ProjectFileCfg {
namespace Internal {

/// Runs `work`, which calls the host, and lets no exception out. False if it threw: `failure` and the exception's text
/// are logged as critical.
bool runGuarded(const char *failure, const std::function<void()> &work);

} // namespace Internal
} // namespace ProjectFileCfg
