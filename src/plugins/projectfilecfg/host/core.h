// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Language, paths, and the operation that runs on a device.
#include <core/icore.h>
