// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/icorvelplugin.h>

namespace Core {

ICorvelPlugin::ICorvelPlugin() = default;

ICorvelPlugin::~ICorvelPlugin() = default;

} // namespace Core
