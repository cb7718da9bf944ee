// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/hostsettings.h>

#include <QMutex>

namespace Core {

namespace {

QMutex &settingsMutex()
{
    static QMutex mutex;
    return mutex;
}

HostSettings &guardedSettings()
{
    static HostSettings settings;
    return settings;
}

} // namespace

void applySettings(const HostSettings &settings)
{
    const QMutexLocker locker(&settingsMutex());
    guardedSettings() = settings;
}

HostSettings hostSettings()
{
    const QMutexLocker locker(&settingsMutex());
    return guardedSettings();
}

} // namespace Core
