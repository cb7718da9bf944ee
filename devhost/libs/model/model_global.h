// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

#if defined(HOST_MODEL_LIBRARY)
#define HOST_MODEL_EXPORT Q_DECL_EXPORT
#else
#define HOST_MODEL_EXPORT Q_DECL_IMPORT
#endif
