// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <utils/utils_global.h>

namespace Corvel {
namespace Utils {

/// Scales a length chosen for the normal 13-pixel text to the application's text size; never shrinks it. User-interface
/// thread only.
HOST_UTILS_EXPORT int inTextSize(int pixels);

} // namespace Utils
} // namespace Corvel
