// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/hardware.h>

#include <mutex>

namespace Simulation {

/// The wired devices by address, reachable or not. Any thread.
class HOST_SIMULATION_EXPORT Network
{
public:
    static Network *instance();

    /// Replaces any device at the same address.
    void attach(const std::shared_ptr<Hardware> &hardware);
    void detach(const QString &ip);
    /// Null if there is no device at that address.
    std::shared_ptr<Hardware> hardware(const QString &ip) const;

private:
    Network() = default;

    mutable std::mutex m_mutex;
    QMap<QString, std::shared_ptr<Hardware>> m_devices;
};

} // namespace Simulation
