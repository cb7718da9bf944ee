// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectfilecfg.h"

projectfilecfg::projectfilecfg() = default;
