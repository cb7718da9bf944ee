// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

#if defined(PROJECTFILECFG_LIBRARY)
#define PROJECTFILECFG_EXPORT Q_DECL_EXPORT
#else
#define PROJECTFILECFG_EXPORT Q_DECL_IMPORT
#endif
