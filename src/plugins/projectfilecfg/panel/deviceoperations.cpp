// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "deviceoperations.h"

#include "devicelookup.h"
#include "hostcalls.h"
#include "waiting.h"

#include <host/devicecontrol.h>
#include <host/devices.h>

#include <QDebug>

#include <algorithm>

using Model::object_brige;
using ModelControl::DeviceControler;

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// Null if it has none.
std::shared_ptr<Model::Screen> firstScreen(const Model::Device &device)
{
    const std::vector<std::shared_ptr<Model::Screen>> screens = device.getScreens();
    const auto first = std::find_if(screens.begin(), screens.end(), [](const auto &screen) { return bool(screen); });
    return first == screens.end() ? nullptr : *first;
}

void setChannelExclusive(const std::shared_ptr<Model::Device> &device, bool exclusive)
{
    callHost("setChannelExclusive", [&] { DeviceControler(device).setChannelExclusive(exclusive); });
}

} // namespace

std::shared_ptr<Model::Device> DeviceOperations::find(const QString &address)
{
    std::shared_ptr<Model::Device> device;
    callHost("getDeviceByIPAddr", [&] { device = findDeviceByAddress(address); });
    return device;
}

std::shared_ptr<Model::Device> DeviceOperations::active()
{
    std::shared_ptr<Model::Device> device;
    findActive(device);
    return device;
}

bool DeviceOperations::findActive(std::shared_ptr<Model::Device> &device)
{
    return callHost("activeDevice", [&device] { device = object_brige::instance()->activeDevice(); });
}

std::shared_ptr<Model::Device> DeviceOperations::activate(const QString &address)
{
    std::shared_ptr<Model::Device> device = active();
    if (!device || device->getIPAddress() == address)
        return device;
    device = find(address);
    return device && makeActive(device) ? device : nullptr;
}

bool DeviceOperations::makeActive(const std::shared_ptr<Model::Device> &device)
{
    return callHost("setActiveDevice", [&device] { object_brige::instance()->setActiveDevice(device); });
}

void DeviceOperations::activateFirstScreen(const Model::Device &device)
{
    object_brige *bridge = object_brige::instance();
    const std::shared_ptr<Model::Screen> screen = firstScreen(device);
    callHost("clearScreenList", [&] { bridge->clearScreenList(!screen); });
    if (screen) {
        callHost("setActivedScreen", [&] { bridge->setActivedScreen(screen); });
        callHost("appendSelectedScreen", [&] { bridge->appendSelectedScreen(screen); });
    }
}

bool DeviceOperations::syncDeviceData(const QString &address)
{
    return sync(find(address));
}

bool DeviceOperations::syncActiveDeviceData()
{
    return sync(active());
}

bool DeviceOperations::sync(const std::shared_ptr<Model::Device> &device)
{
    if (!device)
        return false;
    const bool online = device->getDeviceOnlineFlag();
    if (online)
        Waiting::show([] { return tr("Sync device data , please wait."); });
    bool synchronised = false;
    callHost("updateOnlineDevice", [&] {
        synchronised =
            OperationAdapter::instance()->updateOnlineDevice(device->getIPAddress(), device->getSN(),
                                                             ControlStruct::defaultCallBack) == HostNumbers::noError;
    });
    if (online)
        Waiting::hide();
    return synchronised;
}

bool DeviceOperations::restoreFactory(const QString &address)
{
    const std::shared_ptr<Model::Device> device = active();
    if (!device)
        return false;
    if (device->getIPAddress() != address) {
        qWarning().noquote() << QStringLiteral("Not reset: %1 is to be, but %2 is the active device")
                                    .arg(address, device->getIPAddress());
        return false;
    }
    const std::map<Model::Device::ParameterType, std::any> parameters{
        {HostNumbers::deviceReset, HostNumbers::resetFactory}};
    if (device->getDeviceOnlineFlag())
        Waiting::show([] { return tr("Restore factory,please wait..."); });
    bool restored = false;
    callHost("updateDeviceInfo", [&] { restored = DeviceControler(device).updateDeviceInfo(parameters); });
    Waiting::hide();
    return restored;
}

unsigned long long DeviceOperations::estimateProjectSize(const QString &address)
{
    const std::shared_ptr<Model::Device> device = address.isEmpty() ? nullptr : findDeviceByAddress(address);
    if (!device)
        return 0;
    const DeviceControler controler(device);
    const unsigned long long logos = controler.calLogoMaterailCapacity({}, HostNumbers::logo, true);
    // Rounds down on purpose: the margin of 10 MiB covers the last, partial MiB.
    return ((logos + controler.usedCapacity()) >> 20) + 10;
}

void DeviceOperations::reserveChannel(const std::shared_ptr<Model::Device> &device)
{
    setChannelExclusive(device, true);
}

void DeviceOperations::freeChannel(const std::shared_ptr<Model::Device> &device)
{
    if (device && device->getDeviceOnlineFlag())
        setChannelExclusive(device, false);
}

void DeviceOperations::cancelSave(const std::shared_ptr<Model::Device> &device)
{
    // {4, 10} is the command of the transfer that the device is to abort.
    if (device)
        callHost("cancelOperator", [&device] { DeviceControler(device).cancelOperator({4, 10}); });
}

void DeviceOperations::cancelLoad(const std::shared_ptr<Model::Device> &device)
{
    if (device)
        callHost("cancelCurrentTask", [] { DeviceControler::cancelCurrentTask(); });
}

} // namespace Internal
} // namespace ProjectFileCfg
