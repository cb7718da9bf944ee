// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <extensionsystem/pluginmanager.h>

#include <extensionsystem/iplugin.h>

#include <QDir>
#include <QLibrary>
#include <QSet>
#include <QTimer>

#include <algorithm>

namespace HX {
namespace ExtensionSystem {

namespace {

/// Lets the window paint and respond after a plugin that took long.
constexpr int delayBetweenBusyPluginsInMs = 20;

} // namespace

/// State of one depth-first walk through the dependencies.
struct PluginManager::Resolution
{
    QSet<const PluginSpec *> visited;
    std::vector<PluginSpec *> path;
};

PluginManager::PluginManager(QObject *parent)
    : QObject(parent)
    , m_delayTimer(new QTimer(this))
{
    m_delayTimer->setSingleShot(true);
    connect(m_delayTimer, &QTimer::timeout, this, &PluginManager::delayedInitializeNext);
}

PluginManager::~PluginManager()
{
    shutdown();
}

void PluginManager::setPluginDirectory(const QString &directory)
{
    m_loadOrder.clear();
    m_specs.clear();
    const QFileInfoList files = QDir(directory).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &file : files) {
        if (!QLibrary::isLibrary(file.fileName()))
            continue;
        auto spec = std::make_unique<PluginSpec>(file.absoluteFilePath());
        const PluginSpec *namesake = spec->hasError() ? nullptr : find(spec->name());
        if (namesake) {
            spec->m_state = PluginSpec::Invalid;
            spec->fail(QStringLiteral("\"%1\" holds another plugin \"%2\", which \"%3\" holds already")
                           .arg(spec->fileName(), spec->name(), namesake->fileName()));
        }
        m_specs.push_back(std::move(spec));
    }
    resolve();
}

QVector<const PluginSpec *> PluginManager::plugins() const
{
    QVector<const PluginSpec *> result;
    for (const std::unique_ptr<PluginSpec> &spec : m_specs)
        result.append(spec.get());
    return result;
}

const PluginSpec *PluginManager::plugin(const QString &name) const
{
    return find(name);
}

QVector<const PluginSpec *> PluginManager::loadOrder() const
{
    QVector<const PluginSpec *> result;
    for (const PluginSpec *spec : m_loadOrder)
        result.append(spec);
    return result;
}

PluginSpec *PluginManager::find(const QString &name) const
{
    const auto found = std::find_if(m_specs.begin(), m_specs.end(),
                                    [&name](const std::unique_ptr<PluginSpec> &spec) { return spec->name() == name; });
    return found == m_specs.end() ? nullptr : found->get();
}

void PluginManager::resolve()
{
    Resolution resolution;
    for (const std::unique_ptr<PluginSpec> &spec : m_specs)
        resolve(spec.get(), resolution);
}

bool PluginManager::resolve(PluginSpec *spec, Resolution &resolution)
{
    const auto circle = std::find(resolution.path.begin(), resolution.path.end(), spec);
    if (circle != resolution.path.end()) {
        QStringList names;
        for (auto link = circle; link != resolution.path.end(); ++link)
            names.append(QStringLiteral("%1 (%2)").arg((*link)->name(), (*link)->version()));
        names.append(names.first());
        const QString chain = names.join(QLatin1String(" -> "));
        for (auto link = circle; link != resolution.path.end(); ++link)
            (*link)->fail(QStringLiteral("Plugin \"%1\" depends on itself: %2").arg((*link)->name(), chain));
        return false;
    }
    if (resolution.visited.contains(spec))
        return !spec->hasError();

    resolution.path.push_back(spec);
    const QVector<PluginDependency> dependencies = spec->dependencies();
    for (const PluginDependency &dependency : dependencies) {
        if (spec->hasError())
            break;
        PluginSpec *provider = find(dependency.name);
        if (!provider) {
            spec->fail(QStringLiteral("Plugin \"%1\" needs plugin \"%2\" in version %3, which is missing")
                           .arg(spec->name(), dependency.name, dependency.version));
        } else if (provider->state() != PluginSpec::Invalid && !provider->provides(dependency)) {
            spec->fail(
                QStringLiteral("Plugin \"%1\" needs plugin \"%2\" in version %3, but versions %4 to %5 are there")
                    .arg(spec->name(), dependency.name, dependency.version, provider->compatVersion(),
                         provider->version()));
        } else {
            resolve(provider, resolution);
        }
    }
    resolution.path.pop_back();
    resolution.visited.insert(spec);

    if (spec->hasError() || refuseAfterFailedDependency(spec))
        return false;
    spec->m_state = PluginSpec::Resolved;
    m_loadOrder.push_back(spec);
    return true;
}

bool PluginManager::refuseAfterFailedDependency(PluginSpec *spec) const
{
    const QVector<PluginDependency> dependencies = spec->dependencies();
    for (const PluginDependency &dependency : dependencies) {
        const PluginSpec *provider = find(dependency.name);
        if (provider && provider->hasError()) {
            spec->fail(QStringLiteral("Plugin \"%1\" needs plugin \"%2\" in version %3, which cannot be used: %4")
                           .arg(spec->name(), dependency.name, dependency.version, provider->errorString()));
            return true;
        }
    }
    return false;
}

void PluginManager::loadPlugins(const QStringList &arguments)
{
    for (PluginSpec *spec : m_loadOrder) {
        if (!refuseAfterFailedDependency(spec))
            spec->load();
    }
    for (PluginSpec *spec : m_loadOrder) {
        if (spec->state() == PluginSpec::Loaded && !refuseAfterFailedDependency(spec))
            spec->initialize(arguments);
    }
    for (auto spec = m_loadOrder.rbegin(); spec != m_loadOrder.rend(); ++spec) {
        if ((*spec)->state() != PluginSpec::Initialized)
            continue;
        (*spec)->plugin()->extensionsInitialized();
        (*spec)->m_state = PluginSpec::Running;
        m_delayed.push_front(*spec);
    }
    m_delayTimer->start(0);
}

void PluginManager::delayedInitializeNext()
{
    while (!m_delayed.empty()) {
        PluginSpec *spec = m_delayed.front();
        m_delayed.pop_front();
        if (spec->plugin()->delayedInitialize()) {
            m_delayTimer->start(delayBetweenBusyPluginsInMs);
            return;
        }
    }
    emit initializationDone();
}

void PluginManager::shutdown()
{
    m_delayTimer->stop();
    m_delayed.clear();
    for (auto spec = m_loadOrder.rbegin(); spec != m_loadOrder.rend(); ++spec) {
        if ((*spec)->state() == PluginSpec::Running)
            (*spec)->plugin()->aboutToShutdown();
    }
    for (auto spec = m_loadOrder.rbegin(); spec != m_loadOrder.rend(); ++spec) {
        if ((*spec)->plugin())
            (*spec)->stop();
    }
}

QStringList PluginManager::errors() const
{
    QStringList result;
    for (const std::unique_ptr<PluginSpec> &spec : m_specs) {
        if (spec->hasError())
            result.append(spec->errorString());
    }
    return result;
}

bool PluginManager::hasRequiredError() const
{
    return std::any_of(m_specs.begin(), m_specs.end(),
                       [](const std::unique_ptr<PluginSpec> &spec) { return spec->hasError() && spec->isRequired(); });
}

} // namespace ExtensionSystem
} // namespace HX
