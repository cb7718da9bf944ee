// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/device.h>
#include <model/devicelist.h>
#include <simulation/site.h>

namespace Simulation {

/// The path of a site that comes with the program: "default" (a demonstration, with durations) or "small"
/// (the same devices with tiny pictures, without durations).
QString builtInSite(const QString &name);

/// A running site: its devices are on the network and in the host's list, the journal is empty and no fault is armed.
/// The models of online devices are as after a first synchronisation. Offline devices are known from their
/// configuration directory, which is rewritten with all their pictures; their hardware exists, but is unreachable until
/// it is plugged in.
///
/// There is one session at a time. Its destructor undoes everything. User-interface thread.
class Session
{
public:
    /// `deviceConfigPath` is the directory below which each device has its configuration directory. Draws
    /// the site's pictures, which takes about a second for large ones. See error().
    Session(const Site &site, const QString &deviceConfigPath);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /// Why the configuration of an offline device could not be written; empty if there was no error.
    QString error() const { return m_error; }

    const Site &site() const { return m_site; }
    /// The addresses of all devices in the site's order.
    QStringList addresses() const;
    /// Null if the site has no such device.
    std::shared_ptr<Hardware> hardware(const QString &ip) const;
    std::shared_ptr<Model::Device> device(const QString &ip) const;

    /// Connects the device: it becomes online, and its model is updated from the hardware.
    void plug(const QString &ip);
    /// Disconnects the device; its model does not change.
    void unplug(const QString &ip);

private:
    void addDevice(const HardwareState &state, bool online);
    void writeOfflineDevice(const HardwareState &state);

    const Site m_site;
    const QString m_deviceConfigPath;
    QString m_error;
    Model::DeviceList m_devices;
};

} // namespace Simulation
