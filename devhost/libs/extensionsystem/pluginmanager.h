// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <extensionsystem/extensionsystem_global.h>
#include <extensionsystem/pluginspec.h>

#include <QObject>
#include <QStringList>

#include <deque>
#include <memory>
#include <vector>

class QTimer;

namespace HX {
namespace ExtensionSystem {

/// Finds the plugins of a directory, starts them in dependency order and shuts them down in reverse.
///
/// A plugin's errors are recorded in its PluginSpec and disable only that plugin and its dependents. User-interface
/// thread only.
class HOST_EXTENSIONSYSTEM_EXPORT PluginManager : public QObject
{
    Q_OBJECT

public:
    explicit PluginManager(QObject *parent = nullptr);
    /// Shuts down, unless that was done.
    ~PluginManager() override;

    /// Reads the metadata of every library in `directory`, loading none, and resolves the dependencies.
    void setPluginDirectory(const QString &directory);

    /// All libraries found, sorted by file name.
    QVector<const PluginSpec *> plugins() const;
    /// The plugin of that name; null if there is none.
    const PluginSpec *plugin(const QString &name) const;
    /// The plugins that can be loaded, each after its dependencies.
    QVector<const PluginSpec *> loadOrder() const;

    /// Loads and initialises the plugins, then calls `extensionsInitialized`; `delayedInitialize` follows from the
    /// event loop.
    void loadPlugins(const QStringList &arguments = QStringList());
    /// Shuts down the running plugins, dependents first, and deletes their objects. Safe to call twice.
    void shutdown();

    /// One line per plugin with an error.
    QStringList errors() const;
    /// True if a required plugin has an error.
    bool hasRequiredError() const;

signals:
    /// Every `delayedInitialize` has run.
    void initializationDone();

private:
    struct Resolution;

    PluginSpec *find(const QString &name) const;
    void resolve();
    bool resolve(PluginSpec *spec, Resolution &resolution);
    bool refuseAfterFailedDependency(PluginSpec *spec) const;
    void delayedInitializeNext();

    std::vector<std::unique_ptr<PluginSpec>> m_specs;
    std::vector<PluginSpec *> m_loadOrder;
    std::deque<PluginSpec *> m_delayed;
    QTimer *m_delayTimer;
};

} // namespace ExtensionSystem
} // namespace HX
