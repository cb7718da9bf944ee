// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "loadpreparation.h"

#include "deviceoperations.h"
#include "engineerdocload.h"
#include "messageboxes.h"

#include <host/devices.h>

#include <QDebug>

namespace ProjectFileCfg {
namespace Internal {

bool LoadPreparation::sync(const EngineerDocLoad &load)
{
    if (DeviceOperations::syncDeviceData(load.deviceIp()))
        return true;
    qWarning() << "Import project file failed, as sync device from hardware failed.";
    return false;
}

bool LoadPreparation::reset(QWidget *panel, EngineerDocLoad &load, const std::shared_ptr<Model::Device> &device)
{
    const bool restored = DeviceOperations::restoreFactory(load.deviceIp());
    if (restored && sync(load)) {
        DeviceOperations::reserveChannel(device);
        return true;
    }
    load.releasePackage();
    if (!restored)
        MessageBoxes::warn(panel, [] { return tr(" Restore factory failed "); });
    return false;
}

bool LoadPreparation::prepare(QWidget *panel, EngineerDocLoad &load, const std::shared_ptr<Model::Device> &device)
{
    const bool online = device->getDeviceOnlineFlag();
    if (online && !sync(load))
        return false;
    if (!load.checkPackageFile() || !load.checkDevice() || !load.confirmOnline(online)) {
        MessageBoxes::showLoadResult(panel, load.resultCode());
        return false;
    }
    return !online || reset(panel, load, device);
}

} // namespace Internal
} // namespace ProjectFileCfg
