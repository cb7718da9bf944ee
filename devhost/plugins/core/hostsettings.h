#pragma once

#include <core/core_global.h>

#include <QString>

namespace Core {

/// What the development host decides at its start and ICore tells the plugins. Directories are without
/// a trailing separator.
struct HOST_CORE_EXPORT HostSettings
{
    QString language = QStringLiteral("en");
    QString trPath;
    QString deviceConfigFilePath;
    QString extractJsonPath;
    /// Height of the text in pixels; 0 for the desktop's. Between 11 and 20, see applyLook().
    int textPixelSize = 0;
};

/// Replaces the settings that ICore tells. Installs no texts: switchLanguage() does. Any thread.
HOST_CORE_EXPORT void applySettings(const HostSettings &settings);

/// The settings in force. Any thread.
HOST_CORE_EXPORT HostSettings hostSettings();

} // namespace Core
