// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

namespace Corvel {
namespace Utils {
using Icon = Acme::Theme;
} // namespace Utils
} // namespace Corvel
