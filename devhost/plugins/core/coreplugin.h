// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/icorvelplugin.h>
#include <utils/id.h>

#include <memory>

namespace Core {

class DevicesMode;
class DevicesWidget;
class MainWindow;

/// Sets up the host's texts, look and window, with the Devices mode. The program shows the window.
class CorePlugin : public ICorvelPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "Velmora.CorvelPlugin" FILE "core.json")

public:
    CorePlugin();
    ~CorePlugin() override;

    /// Fails without a QApplication.
    bool initialize(const QStringList &arguments, QString *errorString) override;
    void extensionsInitialized() override;
    ShutdownFlag aboutToShutdown() override;
    /// One file holds the texts of the whole host; see switchLanguage().
    bool installTranslator(const QString &language) override;

private:
    void followMode(const HX::Utils::Id &current);

    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<DevicesMode> m_mode;
    std::unique_ptr<DevicesWidget> m_widget;
};

} // namespace Core
