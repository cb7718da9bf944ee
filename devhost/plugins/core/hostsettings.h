// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/core_global.h>

#include <QString>

namespace Core {

/// Settings that the development host chooses at startup, and that ICore reports to plugins. Directories have no
/// trailing separator.
struct HOST_CORE_EXPORT HostSettings
{
    QString language = QStringLiteral("en");
    QString trPath;
    QString deviceConfigFilePath;
    QString extractJsonPath;
    /// Height of the text in pixels; 0 for that of the desktop. Between 11 and 20, see applyLook().
    int textPixelSize = 0;
};

/// Replaces the settings reported by ICore. Installs no translations: see switchLanguage(). Any thread.
HOST_CORE_EXPORT void applySettings(const HostSettings &settings);

/// The current settings. Any thread.
HOST_CORE_EXPORT HostSettings hostSettings();

} // namespace Core
