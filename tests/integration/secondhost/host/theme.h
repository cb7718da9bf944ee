// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

namespace Corvel::Utils {
using Icon = Acme::Theme;
} // namespace Corvel::Utils
