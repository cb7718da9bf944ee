// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/coreplugin.h>

#include <core/devicesmode.h>
#include <core/deviceswidget.h>
#include <core/language.h>
#include <core/look.h>
#include <core/mainwindow.h>
#include <core/modemanager.h>

#include <QApplication>

namespace Core {

CorePlugin::CorePlugin()
{
    setObjectName(QStringLiteral("CorePlugin"));
}

CorePlugin::~CorePlugin() = default;

bool CorePlugin::initialize(const QStringList &arguments, QString *errorString)
{
    Q_UNUSED(arguments)
    if (!qobject_cast<QApplication *>(QCoreApplication::instance())) {
        if (errorString)
            *errorString = QStringLiteral("the window needs a QApplication");
        return false;
    }
    installHostTexts();
    applyLook();
    addObject(this);
    m_window = std::make_unique<MainWindow>();
    m_mode = std::make_unique<DevicesMode>();
    m_widget = std::make_unique<DevicesWidget>();
    addObject(m_widget.get());
    connect(ModeManager::instance(), &ModeManager::currentModeChanged, this, &CorePlugin::followMode);
    ModeManager::addMode(m_mode.get());
    return true;
}

void CorePlugin::extensionsInitialized() {}

CorePlugin::ShutdownFlag CorePlugin::aboutToShutdown()
{
    disconnect(ModeManager::instance(), nullptr, this, nullptr);
    ModeManager::removeCenterWidget(m_widget->id());
    ModeManager::removeMode(m_mode.get());
    removeObject(m_widget.get());
    m_widget.reset();
    m_mode.reset();
    m_window.reset();
    removeObject(this);
    return SynchronousShutdown;
}

bool CorePlugin::installTranslator(const QString &language)
{
    Q_UNUSED(language)
    return true;
}

void CorePlugin::followMode(const HX::Utils::Id &current)
{
    if (current != m_mode->id())
        return;
    ModeManager::addCenterWidget(m_widget->id());
    ModeManager::setActivateCenterWidget(m_widget->id());
    m_widget->raiseWindow();
    m_widget->enterWindow();
}

} // namespace Core
