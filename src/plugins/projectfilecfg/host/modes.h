// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Modes, the settings area with its sub-modes, and the central widgets.
#include <core/modemanager.h>
#include <settingcfg/isettingcfgmode.h>
#include <settingcfg/settingcfgmodemanager.h>
#include <widgets/icenterwidget.h>
