#pragma once

#include <core/core_global.h>

namespace Core {

/// Gives the application its dark look: style, palette, font and style sheet. User-interface thread only.
HOST_CORE_EXPORT void applyLook();

} // namespace Core
