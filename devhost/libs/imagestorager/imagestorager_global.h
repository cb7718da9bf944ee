// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

#if defined(HOST_IMAGESTORAGER_LIBRARY)
#define HOST_IMAGESTORAGER_EXPORT Q_DECL_EXPORT
#else
#define HOST_IMAGESTORAGER_EXPORT Q_DECL_IMPORT
#endif
