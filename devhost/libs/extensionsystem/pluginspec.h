// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <extensionsystem/extensionsystem_global.h>

#include <QJsonObject>
#include <QString>
#include <QVector>

#include <memory>

class QPluginLoader;

namespace HX {
namespace ExtensionSystem {

class IPlugin;

/// A dependency: another plugin's name and the version it must provide.
struct HOST_EXTENSIONSYSTEM_EXPORT PluginDependency
{
    QString name;
    QString version;
};

/// One plugin library: its metadata, its state and its error.
class HOST_EXTENSIONSYSTEM_EXPORT PluginSpec
{
public:
    /// The plugin's state, in order. A failed plugin stays in the last state it reached.
    enum State { Invalid, Read, Resolved, Loaded, Initialized, Running, Stopped };

    /// Reads the library's metadata without loading it; on failure the state is Invalid and the error is set.
    explicit PluginSpec(const QString &fileName);
    ~PluginSpec();

    QString fileName() const;
    /// The name in the metadata; the file's base name until that is read.
    QString name() const;
    /// Numbers separated by dots, like all versions here.
    QString version() const { return m_version; }
    QString compatVersion() const { return m_compatVersion; }
    /// Whether the application requires this plugin.
    bool isRequired() const { return m_required; }
    QVector<PluginDependency> dependencies() const { return m_dependencies; }
    QJsonObject metaData() const { return m_metaData; }

    /// True if this plugin satisfies the dependency: its name, and CompatVersion <= version <= Version.
    bool provides(const PluginDependency &dependency) const;

    State state() const { return m_state; }
    bool hasError() const { return !m_errorString.isEmpty(); }
    /// Readable text: why the plugin cannot be used. Empty if it can.
    QString errorString() const { return m_errorString; }
    /// The plugin object from Loaded to Running, else null.
    IPlugin *plugin() const { return m_plugin; }

private:
    friend class PluginManager;

    bool readMetaData();
    bool readDependencies();
    bool fail(const QString &error);
    bool load();
    bool initialize(const QStringList &arguments);
    void stop();

    std::unique_ptr<QPluginLoader> m_loader;
    QString m_name;
    QString m_version;
    QString m_compatVersion;
    bool m_required = false;
    QVector<PluginDependency> m_dependencies;
    QJsonObject m_metaData;
    State m_state = Invalid;
    QString m_errorString;
    IPlugin *m_plugin = nullptr;
};

} // namespace ExtensionSystem
} // namespace HX
