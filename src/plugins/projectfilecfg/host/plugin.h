// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// The base class of plugins, and the ids of modes and widgets.
#include <core/icorvelplugin.h>
#include <utils/id.h>
