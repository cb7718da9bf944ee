// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// The store of pictures that were fetched from devices.
#include <imagestorager/imagestorager.h>
