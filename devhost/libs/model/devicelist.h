// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/device.h>

#include <QObject>

#include <mutex>

namespace Model {

/// Stands for the host's list of known devices. Any thread, except for construction and destruction.
class HOST_MODEL_EXPORT DeviceList : public QObject
{
    Q_OBJECT

public:
    DeviceList();
    ~DeviceList() override;

    /// The host's list; null before its construction and after its destruction.
    static DeviceList *instance();

    std::vector<std::shared_ptr<Device>> getDevices() const;
    /// The device with that address (case-sensitive); null if there is none.
    std::shared_ptr<Device> getDeviceByIPAddr(const QString &ip) const;

    void addDevice(const std::shared_ptr<Device> &device);
    void removeDevice(const QString &ip);
    /// Sets that device's online flag.
    void setDeviceOnline(const QString &ip, bool online);

signals:
    /// The list or the online flag of one of its devices changed. Emitted from the thread that changed it.
    void devicesChanged();

private:
    std::vector<std::shared_ptr<Device>> devices() const;

    mutable std::mutex m_mutex;
    std::vector<std::shared_ptr<Device>> m_devices;
};

} // namespace Model
