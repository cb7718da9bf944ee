#include <core/hostsettings.h>

#include <QMutex>

namespace Core {

namespace {

QMutex mutex;

HostSettings &guardedSettings()
{
    static HostSettings settings;
    return settings;
}

} // namespace

void applySettings(const HostSettings &settings)
{
    const QMutexLocker locker(&mutex);
    guardedSettings() = settings;
}

HostSettings hostSettings()
{
    const QMutexLocker locker(&mutex);
    return guardedSettings();
}

} // namespace Core
