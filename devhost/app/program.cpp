// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "program.h"

#include "fileopening.h"
#include "sitedock.h"

#include <core/mainwindow.h>
#include <core/modemanager.h>
#include <settingcfg/settingcfgmodemanager.h>

#include <QDebug>
#include <QDir>
#include <QLocale>
#include <QStandardPaths>

namespace {

/// Where `built` is in the build folder, or else where `installed` is; both relative to the program's folder.
QString besideTheProgram(const char *built, const char *installed)
{
    const QDir folder(QCoreApplication::applicationDirPath());
    const QString path = QString::fromUtf8(folder.exists(QString::fromUtf8(built)) ? built : installed);
    return QDir::cleanPath(folder.filePath(path));
}

} // namespace

Program::Options Program::defaultOptions()
{
    Options options;
    options.siteFile = Simulation::builtInSite(QStringLiteral("default"));
    options.language =
        QLocale::system().language() == QLocale::Chinese ? QStringLiteral("zh_CN") : QStringLiteral("en");
    options.pluginDirectory = besideTheProgram("../plugins", INSTALLED_PLUGINS);
    options.translationDirectory = besideTheProgram("../translations", INSTALLED_TRANSLATIONS);
    options.workDirectory = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    options.firstSubMode = QStringLiteral("ProjectFileCfg");
    return options;
}

Program::Program(const Options &options)
    : m_options(options)
{}

Program::~Program() = default;

bool Program::start()
{
    return hasProjectFiles() && makeDirectories() && startSession() && startPlugins();
}

bool Program::hasProjectFiles()
{
    const QString other = FileOpening::otherThanProjectFile(m_options.files);
    if (!other.isEmpty())
        m_error = tr("%1 is not a project file.").arg(QDir::toNativeSeparators(other));
    return other.isEmpty();
}

bool Program::makeDirectories()
{
    const QString work = QDir::cleanPath(QDir(m_options.workDirectory).absolutePath());
    Core::HostSettings settings;
    settings.language = m_options.language;
    settings.trPath = m_options.translationDirectory;
    settings.deviceConfigFilePath = work + QStringLiteral("/devices");
    settings.extractJsonPath = work + QStringLiteral("/extracted");
    settings.textPixelSize = m_options.textSize;
    for (const QString &directory : {settings.deviceConfigFilePath, settings.extractJsonPath}) {
        if (!QDir().mkpath(directory)) {
            m_error = tr("The folder %1 cannot be created.").arg(QDir::toNativeSeparators(directory));
            return false;
        }
    }
    Core::applySettings(settings);
    return true;
}

bool Program::startSession()
{
    std::optional<Simulation::Site> site = Simulation::Site::fromFile(m_options.siteFile, m_error);
    if (!site)
        return false;
    site->scaleDurations(m_options.durationFactor);
    m_session = std::make_unique<Simulation::Session>(*site, Core::hostSettings().deviceConfigFilePath);
    m_error = m_session->error();
    return m_error.isEmpty();
}

bool Program::startPlugins()
{
    m_plugins = std::make_unique<HX::ExtensionSystem::PluginManager>();
    m_plugins->setPluginDirectory(m_options.pluginDirectory);
    m_plugins->loadPlugins();
    const QStringList errors = m_plugins->errors();
    for (const QString &error : errors)
        qWarning().noquote() << error;
    Core::MainWindow *window = Core::MainWindow::instance();
    if (m_plugins->hasRequiredError() || !window) {
        m_error = errors.isEmpty() ? tr("There are no plugins in %1.").arg(m_options.pluginDirectory)
                                   : errors.join(QLatin1Char('\n'));
        return false;
    }

    auto *siteDock = new SiteDock(*m_session);
    window->addDock(siteDock, siteDock->windowTitle());
    FileOpening::open(m_options.files);
    Core::ModeManager::activateMode("SettingCfg");
    SettingCfg::SettingCfgModeManager::instance()->activateMode(HX::Utils::Id(m_options.firstSubMode));
    if (!m_options.windowSize.isEmpty())
        window->resize(m_options.windowSize);
    window->show();
    return true;
}
