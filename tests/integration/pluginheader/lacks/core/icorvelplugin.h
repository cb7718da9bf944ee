// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <extensionsystem/iplugin.h>

namespace Core {

/// A host base class that leaves installing a language to its plugins.
class ICorvelPlugin : public HX::ExtensionSystem::IPlugin
{};

} // namespace Core
