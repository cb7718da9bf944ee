// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>

#include <memory>

namespace Model {
class Device;
}

namespace ProjectFileCfg {
namespace Internal {

/// The host's operations on a device, as the panel uses them. An exception from the host is logged, and the call counts
/// as failed. User-interface thread, which a call may block until the device answers.
class DeviceOperations
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// Makes the device with that address the active one, unless it is already. Null if that failed, if there is no
    /// such device, or if no device was active.
    static std::shared_ptr<Model::Device> activate(const QString &address);
    static bool makeActive(const std::shared_ptr<Model::Device> &device);
    /// Makes the device's first screen the active and the only selected one, or none if it has no screen.
    static void activateFirstScreen(const Model::Device &device);

    /// Refreshes the host's model of the device at that address from the hardware. False if there is none. Shows the
    /// waiting dialog for an online device.
    static bool syncDeviceData(const QString &address);
    /// The same for the active device.
    static bool syncActiveDeviceData();
    /// Resets the active device to its factory settings. False if there is none.
    static bool restoreFactory();

    /// MiB that a project of the device at that address needs, by estimate; 0 if there is none. Lets the
    /// host's exceptions through.
    static unsigned long long estimateProjectSize(const QString &address);

    /// Keeps others from using the device.
    static void reserveChannel(const std::shared_ptr<Model::Device> &device);
    /// Does nothing for an offline device, or for null.
    static void freeChannel(const std::shared_ptr<Model::Device> &device);

    /// Interrupts what the host does for a save of the device. Does nothing for null.
    static void cancelSave(const std::shared_ptr<Model::Device> &device);
    /// The same for a load.
    static void cancelLoad(const std::shared_ptr<Model::Device> &device);

private:
    static bool sync(const std::shared_ptr<Model::Device> &device);
};

} // namespace Internal
} // namespace ProjectFileCfg
