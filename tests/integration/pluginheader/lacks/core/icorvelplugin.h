#pragma once

#include <extensionsystem/iplugin.h>

namespace Core {

/// A host's base that leaves the installation of a language to its plugins.
class ICorvelPlugin : public HX::ExtensionSystem::IPlugin
{};

} // namespace Core
