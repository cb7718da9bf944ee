#pragma once

#include <utils/utils_global.h>

namespace Corvel {
namespace Utils {

/// A length that was chosen for the look's normal text of 13 pixels, grown in proportion where the application's text
/// is larger; never smaller than given. User-interface thread only.
HOST_UTILS_EXPORT int inTextSize(int pixels);

} // namespace Utils
} // namespace Corvel
