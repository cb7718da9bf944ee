// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/core_global.h>

namespace Core {

/// Applies the dark look: style, palette, font and style sheet. The text size is that of the settings or of the
/// desktop, up to 20 pixels, since plugins give their buttons and fields fixed heights; for larger text use the
/// display's scale factor. User-interface thread only.
HOST_CORE_EXPORT void applyLook();

} // namespace Core
