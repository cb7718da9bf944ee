// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/icorvelplugin.h>

namespace NavigationBar {

/// Provides the navigation bar classes; shows nothing in the window itself.
class NavigationBarPlugin : public Core::ICorvelPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "Velmora.CorvelPlugin" FILE "navigationbar.json")

public:
    NavigationBarPlugin();

    bool initialize(const QStringList &arguments, QString *errorString) override;
    void extensionsInitialized() override;
    ShutdownFlag aboutToShutdown() override;
    /// One file holds the texts of the whole host; see Core::switchLanguage().
    bool installTranslator(const QString &language) override;
};

} // namespace NavigationBar
