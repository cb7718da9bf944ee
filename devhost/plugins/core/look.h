// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/core_global.h>

namespace Core {

/// Applies the dark look: style, palette, font and style sheet. Settings or desktop decide the text size, up to 20
/// pixels, since plugins give their buttons and fields fixed heights; use the display's scale factor for more.
/// User-interface thread only.
HOST_CORE_EXPORT void applyLook();

} // namespace Core
