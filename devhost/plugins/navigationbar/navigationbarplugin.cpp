// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <navigationbar/navigationbarplugin.h>

namespace NavigationBar {

NavigationBarPlugin::NavigationBarPlugin()
{
    setObjectName(QStringLiteral("NavigationBarPlugin"));
}

bool NavigationBarPlugin::initialize(const QStringList &arguments, QString *errorString)
{
    Q_UNUSED(arguments)
    Q_UNUSED(errorString)
    addObject(this);
    return true;
}

void NavigationBarPlugin::extensionsInitialized() {}

NavigationBarPlugin::ShutdownFlag NavigationBarPlugin::aboutToShutdown()
{
    removeObject(this);
    return SynchronousShutdown;
}

bool NavigationBarPlugin::installTranslator(const QString &language)
{
    Q_UNUSED(language)
    return true;
}

} // namespace NavigationBar
