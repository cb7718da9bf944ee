// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/hostsettings.h>
#include <extensionsystem/pluginmanager.h>
#include <simulation/session/session.h>

#include <QCoreApplication>
#include <QSize>
#include <QStringList>

#include <memory>

/// The development host as a whole: the site, the plugins and the window. User-interface thread only.
class Program
{
    Q_DECLARE_TR_FUNCTIONS(Program)

public:
    struct Options
    {
        QString siteFile;
        QString language;
        QString pluginDirectory;
        QString translationDirectory;
        /// Contains the devices' configuration directories and the extraction folder.
        QString workDirectory;
        /// The initial sub-mode of the settings area; ignored if it does not exist.
        QString firstSubMode;
        /// Multiplies the durations in the site's file by this factor.
        double durationFactor = 1;
        /// The window's size; if empty, a comfortable one that fits the screen.
        QSize windowSize;
        /// In pixels; 0 for that of the desktop.
        int textSize = 0;
        /// Project files to open; absolute paths.
        QStringList files;
    };

    /// The defaults for a start without arguments; directories are relative to the program's location.
    static Options defaultOptions();

    explicit Program(const Options &options);
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    /// Starts the site, loads the plugins and shows the window. Returns false if the program cannot be used; error()
    /// has the reason.
    bool start();
    QString error() const { return m_error; }

    /// Both are valid after start() succeeded.
    Simulation::Session &session() { return *m_session; }
    HX::ExtensionSystem::PluginManager &plugins() { return *m_plugins; }

private:
    bool hasProjectFiles();
    bool makeDirectories();
    bool startSession();
    bool startPlugins();

    const Options m_options;
    QString m_error;
    /// Outlives the plugins, which use its devices until they are shut down.
    std::unique_ptr<Simulation::Session> m_session;
    std::unique_ptr<HX::ExtensionSystem::PluginManager> m_plugins;
};
