// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

using ImageStorager = Acme::Pictures;
