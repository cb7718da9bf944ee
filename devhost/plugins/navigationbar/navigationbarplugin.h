#pragma once

#include <core/icorvelplugin.h>

namespace NavigationBar {

/// Makes the classes of navigation bars available; it has nothing of its own in the window.
class NavigationBarPlugin : public Core::ICorvelPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "Velmora.CorvelPlugin" FILE "navigationbar.json")

public:
    NavigationBarPlugin();

    bool initialize(const QStringList &arguments, QString *errorString) override;
    void extensionsInitialized() override;
    ShutdownFlag aboutToShutdown() override;
    /// The host's texts come from one file for all of its parts; see Core::switchLanguage().
    bool installTranslator(const QString &language) override;
};

} // namespace NavigationBar
