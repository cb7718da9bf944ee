// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <extensionsystem/pluginspec.h>

#include <extensionsystem/iplugin.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QPluginLoader>
#include <QRegularExpression>
#include <QVersionNumber>

namespace HX {
namespace ExtensionSystem {

namespace {

const QLatin1String pluginInterfaceId("Velmora.CorvelPlugin");

/// The version in the metadata; empty if it is missing or contains anything but numbers and dots.
QString versionIn(const QJsonObject &object, const QString &key)
{
    static const QRegularExpression numbersAndDots(QStringLiteral("\\A\\d+(\\.\\d+)*\\z"));
    const QString text = object.value(key).toString();
    return numbersAndDots.match(text).hasMatch() ? text : QString();
}

/// Negative if `a` is the earlier version, 0 if they are equal, else positive.
int compareVersions(const QString &a, const QString &b)
{
    return QVersionNumber::compare(QVersionNumber::fromString(a), QVersionNumber::fromString(b));
}

} // namespace

PluginSpec::PluginSpec(const QString &fileName)
    : m_loader(std::make_unique<QPluginLoader>(fileName))
    , m_name(QFileInfo(fileName).baseName())
{
    // Never unloaded: objects of a plugin's types (queued events, registered metatypes) may outlive the plugin object.
    m_loader->setLoadHints(QLibrary::PreventUnloadHint);
    if (readMetaData())
        m_state = Read;
}

PluginSpec::~PluginSpec() = default;

QString PluginSpec::fileName() const
{
    return m_loader->fileName();
}

QString PluginSpec::name() const
{
    return m_name;
}

bool PluginSpec::provides(const PluginDependency &dependency) const
{
    return m_name == dependency.name && compareVersions(m_compatVersion, dependency.version) <= 0 &&
           compareVersions(dependency.version, m_version) <= 0;
}

bool PluginSpec::readMetaData()
{
    const QJsonObject all = m_loader->metaData();
    const QString interfaceId = all.value(QLatin1String("IID")).toString();
    if (interfaceId.isEmpty())
        return fail(QStringLiteral("\"%1\" is not a plugin").arg(fileName()));
    if (interfaceId != pluginInterfaceId)
        return fail(QStringLiteral("\"%1\" is a plugin for another program: its interface is \"%2\" instead of \"%3\"")
                        .arg(fileName(), interfaceId, pluginInterfaceId));

    m_metaData = all.value(QLatin1String("MetaData")).toObject();
    const QString name = m_metaData.value(QLatin1String("Name")).toString();
    if (name.isEmpty())
        return fail(QStringLiteral("The metadata of \"%1\" has no Name").arg(fileName()));
    m_name = name;

    m_version = versionIn(m_metaData, QStringLiteral("Version"));
    if (m_version.isEmpty())
        return fail(QStringLiteral("Plugin \"%1\" has no usable Version in its metadata").arg(m_name));
    const QString compatVersion = QStringLiteral("CompatVersion");
    m_compatVersion = m_metaData.contains(compatVersion) ? versionIn(m_metaData, compatVersion) : m_version;
    if (m_compatVersion.isEmpty() || compareVersions(m_compatVersion, m_version) > 0)
        return fail(QStringLiteral("Plugin \"%1\" has no usable CompatVersion in its metadata").arg(m_name));

    m_required = m_metaData.value(QLatin1String("Required")).toBool();
    return readDependencies();
}

bool PluginSpec::readDependencies()
{
    const QJsonValue dependencies = m_metaData.value(QLatin1String("Dependencies"));
    if (!dependencies.isUndefined() && !dependencies.isArray())
        return fail(QStringLiteral("Plugin \"%1\" has Dependencies in its metadata that are not a list").arg(m_name));
    const QJsonArray entries = dependencies.toArray();
    for (const QJsonValue &entry : entries) {
        const QJsonObject object = entry.toObject();
        const PluginDependency dependency{object.value(QLatin1String("Name")).toString(),
                                          versionIn(object, QStringLiteral("Version"))};
        if (dependency.name.isEmpty() || dependency.version.isEmpty())
            return fail(QStringLiteral("Plugin \"%1\" has a dependency without a usable Name and Version").arg(m_name));
        m_dependencies.append(dependency);
    }
    return true;
}

bool PluginSpec::fail(const QString &error)
{
    m_errorString = error;
    return false;
}

bool PluginSpec::load()
{
    QObject *instance = m_loader->instance();
    if (!instance)
        return fail(QStringLiteral("Plugin \"%1\" cannot be loaded: %2").arg(m_name, m_loader->errorString()));
    m_plugin = qobject_cast<IPlugin *>(instance);
    if (!m_plugin) {
        delete instance;
        return fail(QStringLiteral("Plugin \"%1\" has no plugin object of the expected class").arg(m_name));
    }
    m_state = Loaded;
    return true;
}

bool PluginSpec::initialize(const QStringList &arguments)
{
    QString reason;
    if (!m_plugin->initialize(arguments, &reason))
        return fail(QStringLiteral("Plugin \"%1\" cannot be initialised: %2").arg(m_name, reason));
    m_state = Initialized;
    return true;
}

void PluginSpec::stop()
{
    delete m_plugin;
    m_plugin = nullptr;
    m_state = Stopped;
}

} // namespace ExtensionSystem
} // namespace HX
