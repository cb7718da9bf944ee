// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "runningjob.h"

#include "deviceoperations.h"
#include "engineerdocbackup.h"
#include "engineerdocload.h"
#include "hostcalls.h"
#include "zippackagehandle.h"

#include <QCoreApplication>
#include <QDebug>
#include <QSemaphore>
#include <QThread>

#include <memory>

using Core::ICore;

namespace ProjectFileCfg {
namespace Internal {
namespace RunningJob {

namespace {

/// Number of jobs announced so far in this process, to find out whether a job that ends late is still the latest.
int s_announcedJobs = 0;

bool hasSavedPackage(const EngineerDocBackup &backup)
{
    return !backup.savedPackagePath().isEmpty() && ZipPackageHandle::isValidEngineerPacket(backup.savedPackagePath());
}

} // namespace

void announce(ICore::OperatorDeviceType type)
{
    if (type != HostNumbers::operatorNone)
        ++s_announcedJobs;
    callHost("setOperatorType", [type] { ICore::setOperatorType(type, QString()); });
}

bool isApplyDue(const EngineerDocBackup *backup, const QString &next)
{
    if (next.isEmpty() || !backup || backup->resultCode() != BackupSuccess)
        return false;
    if (hasSavedPackage(*backup))
        return true;
    qWarning() << "The backup left no valid package, so this one is not applied:" << next;
    return false;
}

void startThenConnect(QThread &job, const std::function<void()> &connectAll)
{
    const auto connected = std::make_shared<QSemaphore>();
    QObject::connect(
        &job, &QThread::started, &job, [connected] { connected->acquire(); }, Qt::DirectConnection);
    job.start(QThread::InheritPriority);
    connectAll();
    connected->release();
}

void endAfterPanel(const EngineerDocLoad &load)
{
    QObject::connect(&load, &QObject::destroyed, qApp, [address = load.deviceIp(), number = s_announcedJobs] {
        if (number == s_announcedJobs)
            announce(HostNumbers::operatorNone);
        DeviceOperations::freeChannel(DeviceOperations::find(address));
    });
}

void freeChannelOfLoad(const EngineerDocLoad *load, const QString &selectedAddress)
{
    if (load && load->deviceIp() != selectedAddress)
        DeviceOperations::freeChannel(DeviceOperations::find(load->deviceIp()));
}

} // namespace RunningJob
} // namespace Internal
} // namespace ProjectFileCfg
