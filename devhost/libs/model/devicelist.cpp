// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "devicelist.h"

#include "deviceeditor.h"

#include <simulation/operation.h>

#include <algorithm>
#include <atomic>

namespace Model {

namespace {

std::atomic<DeviceList *> s_instance{nullptr};

} // namespace

DeviceList::DeviceList()
{
    s_instance = this;
}

DeviceList::~DeviceList()
{
    s_instance = nullptr;
}

DeviceList *DeviceList::instance()
{
    return s_instance;
}

std::vector<std::shared_ptr<Device>> DeviceList::getDevices() const
{
    Simulation::meetFaults(Simulation::Operations::getDevices);
    return devices();
}

std::vector<std::shared_ptr<Device>> DeviceList::devices() const
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    return m_devices;
}

std::shared_ptr<Device> DeviceList::getDeviceByIPAddr(const QString &ip) const
{
    Simulation::meetFaults(Simulation::Operations::getDeviceByIPAddr);
    const std::vector<std::shared_ptr<Device>> known = devices();
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&ip](const auto &device) { return device && device->getIPAddress() == ip; });
    return found == known.end() ? nullptr : *found;
}

void DeviceList::addDevice(const std::shared_ptr<Device> &device)
{
    {
        const std::lock_guard<std::mutex> locker(m_mutex);
        m_devices.push_back(device);
    }
    emit devicesChanged();
}

void DeviceList::removeDevice(const QString &ip)
{
    {
        const std::lock_guard<std::mutex> locker(m_mutex);
        m_devices.erase(std::remove_if(m_devices.begin(), m_devices.end(),
                                       [&ip](const auto &device) { return device && device->getIPAddress() == ip; }),
                        m_devices.end());
    }
    emit devicesChanged();
}

void DeviceList::setDeviceOnline(const QString &ip, bool online)
{
    const std::shared_ptr<Device> device = getDeviceByIPAddr(ip);
    if (!device || device->getDeviceOnlineFlag() == online)
        return;
    DeviceEditor(*device).setOnlineFlag(online);
    emit devicesChanged();
}

} // namespace Model
