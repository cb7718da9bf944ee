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

/// Finds the plugins of a directory, brings them up in the order of their dependencies and down in reverse.
///
/// What goes wrong with a plugin is recorded in its PluginSpec and keeps only that plugin and those that
/// need it from running. User-interface thread only.
class HOST_EXTENSIONSYSTEM_EXPORT PluginManager : public QObject
{
    Q_OBJECT

public:
    explicit PluginManager(QObject *parent = nullptr);
    /// Shuts down first if that has not happened.
    ~PluginManager() override;

    /// Reads the metadata of every library in `directory`, loading none, and resolves the dependencies.
    void setPluginDirectory(const QString &directory);

    /// Every library that was found, sorted by file name.
    QVector<const PluginSpec *> plugins() const;
    /// The plugin of that name, null when there is none.
    const PluginSpec *plugin(const QString &name) const;
    /// The plugins that can be loaded, each after those that it needs.
    QVector<const PluginSpec *> loadOrder() const;

    /// Loads, initialises and tells each plugin that all are there; `delayedInitialize` follows from the event loop.
    void loadPlugins(const QStringList &arguments = QStringList());
    /// Tells the running plugins, the dependent ones first, and deletes their objects. Safe to call twice.
    void shutdown();

    /// One line per plugin that has an error.
    QStringList errors() const;
    /// True when a plugin without which the application cannot be used has an error.
    bool hasRequiredError() const;

signals:
    /// Every plugin had its delayedInitialize.
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
