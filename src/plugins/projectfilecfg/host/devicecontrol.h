// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Operations on the hardware of devices.
#include <modelcontrol/devicecontroler.h>
#include <modelcontrol/materialcontrol.h>
#include <modelcontrol/operationadapter.h>
#include <modelcontrol/presetcontrol.h>
