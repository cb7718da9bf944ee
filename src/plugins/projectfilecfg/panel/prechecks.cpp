// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "prechecks.h"

#include "deviceoperations.h"
#include "diskspace.h"
#include "hostcalls.h"
#include "messageboxes.h"
#include "zippackagehandle.h"

#include <host/devices.h>

#include <QDebug>
#include <QFile>

namespace ProjectFileCfg {
namespace Internal {

bool PreChecks::isDeviceSelected(QWidget *panel, const QString &address)
{
    if (!address.isEmpty())
        return true;
    MessageBoxes::warn(panel, [] { return tr("Please select a device."); });
    return false;
}

bool PreChecks::isStillSelected(const QString &address, const QString &selectedAddress)
{
    if (address == selectedAddress)
        return true;
    qWarning().noquote()
        << QStringLiteral("Not begun for %1: it has gone, and %2 is selected now").arg(address, selectedAddress);
    return false;
}

bool PreChecks::isFileThere(QWidget *panel, const QString &path)
{
    if (QFile::exists(path))
        return true;
    MessageBoxes::remind(panel, [] { return tr("The file does not exist."); });
    return false;
}

bool PreChecks::isPackage(QWidget *panel, const QString &path)
{
    EngineerPacketInfo info;
    info.strFilePath = path;
    QString reason;
    if (ZipPackageHandle::getZipFileEngineerInfo(info, &reason))
        return true;
    qDebug().noquote() << "Not applied:" << reason;
    MessageBoxes::remind(panel, [] { return tr("The file does not exist or the file format is incorrect."); });
    return false;
}

bool PreChecks::isRoomForProject(QWidget *panel, const QString &address, const QString &directory)
{
    std::shared_ptr<Model::Device> device;
    const bool isAnswered = DeviceOperations::findActive(device);
    if (isAnswered && (!device || !device->getDeviceOnlineFlag()))
        return true;
    unsigned long long size = 0;
    if (!isAnswered || !DeviceOperations::syncActiveDeviceData() ||
        !callHost("the estimate of the size", [&] { size = DeviceOperations::estimateProjectSize(address); })) {
        MessageBoxes::warn(panel, [] { return tr("Failed to get device information"); });
        return false;
    }
    const unsigned long long available = DiskSpace::availableForProjects(directory);
    if (size < available)
        return true;
    qCritical() << "m_strDefaultPath:" << directory << "  project file size:" << size
                << "  available space size:" << available;
    MessageBoxes::warn(panel, [] { return tr("Insufficient default path space to perform current operation"); });
    return false;
}

bool PreChecks::isRoomForImport(QWidget *panel, const QStringList &files, const QString &directory)
{
    if (DiskSpace::isEnoughFor(files, DiskSpace::availableForProjects(directory)))
        return true;
    MessageBoxes::remind(panel, [] { return tr("Not enough space to import all selected files."); });
    return false;
}

bool PreChecks::isRoomForCopies(QWidget *panel, const QStringList &files, const QString &folder)
{
    if (DiskSpace::isEnoughFor(files, DiskSpace::getDiskAvailableSize(folder)))
        return true;
    MessageBoxes::warn(panel, [] { return tr("Cannot save the file because there is not enough storage available."); });
    return false;
}

} // namespace Internal
} // namespace ProjectFileCfg
