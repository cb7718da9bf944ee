// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "projectfilecfg_global.h"

/// Exported by the library since its first release; hosts in the field may use the symbol.
class PROJECTFILECFG_EXPORT projectfilecfg // NOLINT(readability-identifier-naming)
{
public:
    projectfilecfg();
};
