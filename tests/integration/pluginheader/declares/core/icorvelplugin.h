// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <extensionsystem/iplugin.h>

namespace Core {

/// A host base class that declares the virtual function for installing a language.
class ICorvelPlugin : public HX::ExtensionSystem::IPlugin
{
public:
    virtual bool installTranslator(const QString &language) = 0;
    using IPlugin::installTranslator;
};

} // namespace Core
