#pragma once

#include <simulation/hardware.h>

#include <mutex>

namespace Simulation {

/// The devices that are wired up, by address, whether or not they can be reached just now. Any thread.
class HOST_SIMULATION_EXPORT Network
{
public:
    static Network *instance();

    /// Replaces the device at the same address, if there is one.
    void attach(const std::shared_ptr<Hardware> &hardware);
    void detach(const QString &ip);
    /// Null when there is no device at that address.
    std::shared_ptr<Hardware> hardware(const QString &ip) const;

private:
    Network() = default;

    mutable std::mutex m_mutex;
    QMap<QString, std::shared_ptr<Hardware>> m_devices;
};

} // namespace Simulation
