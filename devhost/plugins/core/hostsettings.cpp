#include <core/hostsettings.h>

#include <QMutex>

namespace Core {

namespace {

QMutex s_mutex;

HostSettings &guardedSettings()
{
    static HostSettings settings;
    return settings;
}

} // namespace

void applySettings(const HostSettings &settings)
{
    const QMutexLocker locker(&s_mutex);
    guardedSettings() = settings;
}

HostSettings hostSettings()
{
    const QMutexLocker locker(&s_mutex);
    return guardedSettings();
}

} // namespace Core
