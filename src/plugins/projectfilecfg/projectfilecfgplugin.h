// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "projectfilecfg_global.h"

#include <host/plugin.h>

namespace ProjectFileCfg {

namespace Internal {
class EngineerDocOperWidget;
class ProjectFileCfgMode;
} // namespace Internal

/// The plugin object. It registers the "Project File" sub-mode in the host's settings area, adds or removes it when the
/// active device changes, depending on whether the new one supports project files, and creates the panel when the
/// sub-mode is first shown.
///
/// User-interface thread only.
class PROJECTFILECFG_EXPORT ProjectFileCfgPlugin : public Core::ICorvelPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "Velmora.CorvelPlugin" FILE "projectfilecfg.json")

public:
    ProjectFileCfgPlugin();
    ~ProjectFileCfgPlugin() override;

    /// The plugin object, null if there is none.
    static ProjectFileCfgPlugin *instance();

    /// Always true: a missing translation is logged as a warning, but does not disable the plugin.
    bool initialize(const QStringList &arguments, QString *errorString) override;
    void extensionsInitialized() override;
    bool delayedInitialize() override;
    /// Removes the sub-mode and the panel from the host and deletes them.
    ShutdownFlag aboutToShutdown() override;

    // Not every host's base class declares this function, so it cannot be marked override.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_CLANG("-Winconsistent-missing-override")
    QT_WARNING_DISABLE_CLANG("-Wsuggest-override")
    QT_WARNING_DISABLE_GCC("-Wsuggest-override")
    /// Installs the plugin's texts in `language` from the host's translation directory; false if they are missing.
    virtual bool installTranslator(const QString &language); // NOLINT(modernize-use-override)
    QT_WARNING_POP

protected:
    using HX::ExtensionSystem::IPlugin::installTranslator;

private:
    void createConnects();
    void destoryConnects();
    void createModeConnects();
    void destoryModeConnects();
    void createModeWidgets();
    void destoryModeWidgets();
    void registerDefaultActions();

    void currentModeChanged(const HX::Utils::Id &current, const HX::Utils::Id &previous);
    void showOrLeavePanel(const HX::Utils::Id &current);
    void withdrawMode();

private slots:
    void slotDeviceChanged();

private:
    Internal::ProjectFileCfgMode *m_pMode = nullptr;
    Internal::EngineerDocOperWidget *m_pCenterWidget = nullptr;
};

} // namespace ProjectFileCfg
