// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/core_global.h>
#include <extensionsystem/iplugin.h>

namespace Core {

/// Stands for the base class of the plugins of this application.
class HOST_CORE_EXPORT ICorvelPlugin : public HX::ExtensionSystem::IPlugin
{
    Q_OBJECT

public:
    ICorvelPlugin();
    ~ICorvelPlugin() override;

    /// Installs the plugin's translations for that language in place of the previous ones. The host calls it for each
    /// plugin in the object pool when the language changes. Returns false if the plugin has none for that language.
    virtual bool installTranslator(const QString &language) = 0;

protected:
    using IPlugin::installTranslator;
};

} // namespace Core
