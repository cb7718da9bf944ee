// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Devices as the host knows them, their list, what is known of each model, and writing them to disk.
#include <model/device.h>
#include <model/deviceconfigmanager.h>
#include <model/devicelist.h>
#include <model/objectbrige.h>
#include <model/serailizer.h>
