// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

#if defined(HOST_NAVIGATIONBAR_LIBRARY)
#define HOST_NAVIGATIONBAR_EXPORT Q_DECL_EXPORT
#else
#define HOST_NAVIGATIONBAR_EXPORT Q_DECL_IMPORT
#endif
