// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <host/fwd.h>

#include <QCoreApplication>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

/// The host's operations on a device, as the panel uses them. An exception from the host is logged, and the call counts
/// as failed. User-interface thread; a call may block it until the device answers.
class DeviceOperations
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// The host's device with that address. Null if there is none, or if the host throws.
    static std::shared_ptr<Model::Device> find(const QString &address);
    /// The host's active device. Null if there is none, or if the host throws.
    static std::shared_ptr<Model::Device> active();
    /// The same, but false if the host throws; `device` then stays as it is.
    static bool findActive(std::shared_ptr<Model::Device> &device);
    /// Makes the device with that address the active one, unless it already is, and returns it. Null if that fails, if
    /// there is no such device, or if no device is active.
    static std::shared_ptr<Model::Device> activate(const QString &address);
    static bool makeActive(const std::shared_ptr<Model::Device> &device);
    /// Makes the device's first screen the active and the only selected one. If it has none, clears the selection.
    static void activateFirstScreen(const Model::Device &device);

    /// Updates the host's model of the device with that address from the hardware. False if there is no such device, or
    /// if the update fails. Shows the waiting dialog for an online device.
    static bool syncDeviceData(const QString &address);
    /// The same for the active device.
    static bool syncActiveDeviceData();
    /// Resets the active device to its factory settings. False if there is none, if the reset fails, or if it is not
    /// the device with that address: the host may have activated another one, which would lose everything.
    static bool restoreFactory(const QString &address);

    /// The estimated size, in MiB, of a project of the device with that address; 0 if there is none. Does not catch the
    /// host's exceptions.
    static unsigned long long estimateProjectSize(const QString &address);

    /// Reserves the device's channel, so that nothing else can use the device.
    static void reserveChannel(const std::shared_ptr<Model::Device> &device);
    /// Frees the channel. Does nothing for an offline device, or for null.
    static void freeChannel(const std::shared_ptr<Model::Device> &device);

    /// Has the host interrupt a transfer for a save of the device. Does nothing for null.
    static void cancelSave(const std::shared_ptr<Model::Device> &device);
    /// The same for a load.
    static void cancelLoad(const std::shared_ptr<Model::Device> &device);

private:
    static bool sync(const std::shared_ptr<Model::Device> &device);
};

} // namespace Internal
} // namespace ProjectFileCfg
