// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

#if defined(HOST_CORE_LIBRARY)
#define HOST_CORE_EXPORT Q_DECL_EXPORT
#else
#define HOST_CORE_EXPORT Q_DECL_IMPORT
#endif
