#pragma once

#include <core/core_global.h>

namespace Core {

/// Gives the application its dark look: style, palette, font and style sheet. The text is as large as the settings or
/// the desktop say, but at most 20 pixels high, since plugins give their buttons and fields fixed heights for that;
/// beyond that a display's scale factor helps. User-interface thread only.
HOST_CORE_EXPORT void applyLook();

} // namespace Core
