// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "network.h"

namespace Simulation {

Network *Network::instance()
{
    static Network network;
    return &network;
}

void Network::attach(const std::shared_ptr<Hardware> &hardware)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_devices.insert(hardware->ip(), hardware);
}

void Network::detach(const QString &ip)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_devices.remove(ip);
}

std::shared_ptr<Hardware> Network::hardware(const QString &ip) const
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    return m_devices.value(ip);
}

} // namespace Simulation
