// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// The store of pictures fetched from devices.
#include <imagestorager/imagestorager.h>
