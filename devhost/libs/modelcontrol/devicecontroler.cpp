// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "devicecontroler.h"

#include "hardwareaccess.h"

#include <model/devicelist.h>
#include <simulation/journal.h>
#include <simulation/network.h>
#include <simulation/operations.h>

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace ModelControl {

namespace {

/// The bytes that tell the hardware to abandon sending a picture.
constexpr std::array<unsigned char, 2> abandonPicture{4, 10};

quint64 bytesOf(const std::vector<Talvik::weak_refrence<Model::Materail>> &materials)
{
    quint64 bytes = 0;
    for (const auto &reference : materials) {
        if (const std::shared_ptr<Model::Materail> materail = reference.lock())
            bytes += Simulation::pictureBytes(materail->size());
    }
    return bytes;
}

/// Records whether the controller holds the device of the host's list or another object with the same address.
QVariantMap whose(const std::shared_ptr<Model::Device> &device, QVariantMap arguments)
{
    const Model::DeviceList *list = Model::DeviceList::instance();
    arguments.insert(QStringLiteral("isListed"), list && list->getDeviceByIPAddr(device->getIPAddress()) == device);
    return arguments;
}

/// The key number is the low eight bits of the number at the end of "BKG_7" or "LOGO_7".
bool keyNumber(const QString &name, const QString &prefix, quint8 &keyNo)
{
    if (!name.startsWith(prefix))
        return false;
    bool isNumber = false;
    keyNo = static_cast<quint8>(name.midRef(prefix.size()).toUShort(&isNumber) & 0xff);
    return isNumber;
}

} // namespace

DeviceControler::DeviceControler(const std::shared_ptr<Model::Device> &device)
    : m_device(device)
{}

quint64 DeviceControler::calLogoMaterailCapacity(const Talvik::weak_refrence<Model::Materail> &replaced,
                                                 int materailType, bool wholeGallery) const
{
    if (!m_device)
        return 0;
    const std::shared_ptr<Simulation::Hardware> hardware = HardwareAccess::begin(
        Simulation::Operations::calLogoMaterailCapacity, m_device->getIPAddress(),
        {{QStringLiteral("materailType"), materailType}, {QStringLiteral("wholeGallery"), wholeGallery}});
    quint64 bytes = 0;
    if (materailType != Model::Materail::Logo)
        bytes = bytesOf(m_device->getBKGs());
    else
        bytes = hardware ? hardware->logoBytes() : bytesOf(m_device->getLogos());
    const std::shared_ptr<Model::Materail> without = replaced.lock();
    return bytes - qMin(bytes, without ? Simulation::pictureBytes(without->size()) : 0);
}

quint64 DeviceControler::usedCapacity() const
{
    if (!m_device)
        return 0;
    const std::shared_ptr<Simulation::Hardware> hardware =
        HardwareAccess::begin(Simulation::Operations::usedCapacity, m_device->getIPAddress(), {});
    if (hardware)
        return hardware->otherBytes();
    quint64 bytes = bytesOf(m_device->getBKGs());
    for (const std::shared_ptr<Model::Preset> &preset : m_device->getPresets())
        bytes += static_cast<quint64>(preset->detail.size());
    return bytes;
}

bool DeviceControler::updateDeviceInfo(const std::map<Model::Device::ParameterType, std::any> &parameters)
{
    using Model::Device;

    if (!m_device)
        return false;
    const auto nameEntry = parameters.find(Device::DeviceName);
    const auto resetEntry = parameters.find(Device::DeviceReset);
    const auto *name = nameEntry == parameters.end() ? nullptr : std::any_cast<QString>(&nameEntry->second);
    const auto *reset =
        resetEntry == parameters.end() ? nullptr : std::any_cast<Device::DevicResetOrder>(&resetEntry->second);

    QVariantMap arguments;
    if (name)
        arguments.insert(QStringLiteral("name"), *name);
    if (reset)
        arguments.insert(QStringLiteral("reset"), static_cast<int>(*reset));
    const std::shared_ptr<Simulation::Hardware> hardware =
        HardwareAccess::begin(Simulation::Operations::updateDeviceInfo, m_device->getIPAddress(), arguments);
    const bool allUnderstood = (nameEntry == parameters.end() || name) && (resetEntry == parameters.end() || reset);
    if (!hardware || !allUnderstood)
        return false;

    hardware->change([name, reset](Simulation::HardwareState &state) {
        if (name)
            state.identity.name = *name;
        if (!reset)
            return;
        switch (*reset) {
        case Device::ResetPresets:
            state.presets.clear();
            break;
        case Device::ResetMaterials:
            state.backgrounds.clear();
            state.logos.clear();
            break;
        case Device::ResetFactory:
            state = state.afterFactoryReset();
            break;
        }
    });
    return true;
}

void DeviceControler::setChannelExclusive(bool exclusive)
{
    if (!m_device)
        return;
    const std::shared_ptr<Simulation::Hardware> hardware =
        HardwareAccess::begin(Simulation::Operations::setChannelExclusive, m_device->getIPAddress(),
                              {{QStringLiteral("exclusive"), exclusive}});
    if (hardware)
        hardware->setChannelExclusive(exclusive);
}

void DeviceControler::cancelOperator(const std::vector<unsigned char> &command)
{
    if (!m_device)
        return;
    QVariantList bytes;
    for (const unsigned char byte : command)
        bytes.append(static_cast<int>(byte));
    const std::shared_ptr<Simulation::Hardware> hardware = HardwareAccess::begin(
        Simulation::Operations::cancelOperator, m_device->getIPAddress(), {{QStringLiteral("command"), bytes}});
    if (hardware && std::equal(command.begin(), command.end(), abandonPicture.begin(), abandonPicture.end()))
        Simulation::cancelRunningOperations(hardware->ip());
}

void DeviceControler::cancelCurrentTask()
{
    Simulation::beginOperation(Simulation::Operations::cancelCurrentTask);
    Simulation::cancelRunningOperations();
}

bool DeviceControler::canMVEEnable() const
{
    if (!m_device)
        return false;
    const std::shared_ptr<Simulation::Hardware> hardware =
        HardwareAccess::begin(Simulation::Operations::canMVEEnable, m_device->getIPAddress(), whose(m_device, {}));
    return hardware && hardware->state().mvrCapable;
}

bool DeviceControler::enableMVR(bool enable, QString &errorText)
{
    if (!m_device)
        return false;
    const std::shared_ptr<Simulation::Hardware> hardware =
        HardwareAccess::begin(Simulation::Operations::enableMVR, m_device->getIPAddress(),
                              whose(m_device, {{QStringLiteral("enable"), enable}}));
    if (!hardware) {
        errorText = QCoreApplication::translate("ModelControl::DeviceControler", "The device did not answer.");
        return false;
    }
    hardware->change([enable](Simulation::HardwareState &state) { state.mvrEnabled = enable; });
    return true;
}

bool DeviceControler::copySlotDataToDevice(const std::shared_ptr<Model::Device> &source)
{
    if (!m_device || !source)
        return false;
    const std::shared_ptr<Simulation::Hardware> hardware = HardwareAccess::begin(
        Simulation::Operations::copySlotDataToDevice, m_device->getIPAddress(), whose(m_device, {}));
    if (!hardware)
        return false;
    const Model::DeviceData data = Model::DeviceEditor(*source).data();
    hardware->change([&data](Simulation::HardwareState &state) { HardwareAccess::writeCardSettings(data, state); });
    return true;
}

bool DeviceControler::copyMVRItemDataToDevice()
{
    if (!m_device)
        return false;
    const std::shared_ptr<Simulation::Hardware> hardware = HardwareAccess::begin(
        Simulation::Operations::copyMVRItemDataToDevice, m_device->getIPAddress(), whose(m_device, {}));
    if (!hardware)
        return false;
    const Model::DeviceData data = Model::DeviceEditor(*m_device).data();
    hardware->change([&data](Simulation::HardwareState &state) { state.mvrItems = data.mvrItems; });
    return true;
}

bool DeviceControler::copyModelToDevice()
{
    if (!m_device)
        return false;
    const std::shared_ptr<Simulation::Hardware> hardware =
        HardwareAccess::begin(Simulation::Operations::copyModelToDevice, m_device->getIPAddress(), whose(m_device, {}));
    if (!hardware)
        return false;
    const Model::DeviceData data = Model::DeviceEditor(*m_device).data();
    hardware->change([&data](Simulation::HardwareState &state) { HardwareAccess::writeConfiguration(data, state); });
    Simulation::Journal::instance()->recordSuccess(Simulation::Operations::copyModelToDevice);
    return true;
}

bool DeviceControler::createMaterailFromImage(const QImage &image, int kind, const QString &text, int flags,
                                              const QSize &size, const QString &name)
{
    if (!m_device)
        return false;
    const std::shared_ptr<Simulation::Hardware> hardware =
        HardwareAccess::begin(Simulation::Operations::createMaterailFromImage, m_device->getIPAddress(),
                              whose(m_device, {{QStringLiteral("imageSize"), image.size()},
                                               {QStringLiteral("kind"), kind},
                                               {QStringLiteral("text"), text},
                                               {QStringLiteral("flags"), flags},
                                               {QStringLiteral("size"), size},
                                               {QStringLiteral("name"), name}}),
                              Simulation::pictureBytes(image.size()));
    const bool isLogo = kind == Model::Materail::Logo;
    quint8 keyNo = 0;
    if (!hardware || image.isNull() ||
        !keyNumber(name, isLogo ? QStringLiteral("LOGO_") : QStringLiteral("BKG_"), keyNo))
        return false;

    bool hasRoom = true;
    const quint64 used = hardware->logoBytes() + hardware->otherBytes();
    hardware->change([&](Simulation::HardwareState &state) {
        hasRoom = state.capacity == 0 || used + Simulation::pictureBytes(image.size()) <= state.capacity;
        if (hasRoom)
            (isLogo ? state.logos : state.backgrounds).insert(keyNo, Simulation::PictureState{name, image});
    });
    return hasRoom;
}

} // namespace ModelControl
