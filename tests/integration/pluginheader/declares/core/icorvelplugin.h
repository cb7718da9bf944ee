#pragma once

#include <extensionsystem/iplugin.h>

namespace Core {

/// A host's base that declares the installation of a language.
class ICorvelPlugin : public HX::ExtensionSystem::IPlugin
{
public:
    virtual bool installTranslator(const QString &language) = 0;
    using IPlugin::installTranslator;
};

} // namespace Core
