// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "hardwareaccess.h"

#include <imagestorager/imagestorager.h>
#include <model/deviceconfigmanager.h>
#include <model/devicelist.h>
#include <simulation/network.h>

#include <algorithm>

namespace ModelControl {

namespace {

using Materials = std::vector<std::shared_ptr<Model::Materail>>;

Materials materialsOf(const QMap<quint8, Simulation::PictureState> &pictures, Model::Materail::MaterailType type,
                      const QString &ip, const Materials &previous)
{
    Materials materials;
    for (auto it = pictures.begin(); it != pictures.end(); ++it) {
        const auto same = std::find_if(previous.begin(), previous.end(), [&](const auto &known) {
            return known->getKeyNo() == it.key() && known->getName() == it->name &&
                   known->size() == it->pixels.size() && known->deviceIp() == ip;
        });
        materials.push_back(same != previous.end()
                                ? *same
                                : std::make_shared<Model::Materail>(type, it.key(), it->name, it->pixels.size(), ip));
    }
    return materials;
}

Model::DeviceData toModel(const Simulation::HardwareState &state, const Model::DeviceData &previous)
{
    const Simulation::Identity &identity = state.identity;
    const Model::s_DeviceConfig *config =
        Model::DeviceConfigManager::instance()->findDeviceConfigByID(identity.modelId);
    Model::DeviceData data;
    data.modelId = identity.modelId;
    data.id = identity.id;
    data.typeString = config ? config->typeString : QString();
    data.name = identity.name;
    data.sn = identity.sn;
    data.ip = identity.ip;
    data.netMask = identity.netMask;
    data.gateWay = identity.gateWay;
    data.mac = identity.mac;
    data.protocolNumber = state.protocolNumber;
    data.mvrEnabled = state.mvrEnabled;
    data.mvrItems = state.mvrItems;
    data.settings = state.settings;
    for (const Simulation::CardState &card : state.cards)
        data.cards.push_back(
            std::make_shared<Model::Slot>(Model::Slot{card.type, card.pos, card.modelId, card.settings}));
    for (const Simulation::ScreenState &screen : state.screens)
        data.screens.push_back(std::make_shared<Model::Screen>(Model::Screen{screen.id, screen.name, screen.geometry}));
    data.backgrounds = materialsOf(state.backgrounds, Model::Materail::Background, identity.ip, previous.backgrounds);
    data.logos = materialsOf(state.logos, Model::Materail::Logo, identity.ip, previous.logos);
    for (auto it = state.presets.begin(); it != state.presets.end(); ++it)
        data.presets.push_back(std::make_shared<Model::Preset>(Model::Preset{it.key(), it->name, it->bytes}));
    return data;
}

void writeNames(const Materials &materials, QMap<quint8, Simulation::PictureState> &pictures)
{
    for (const std::shared_ptr<Model::Materail> &materail : materials) {
        const auto picture = pictures.find(materail->getKeyNo());
        if (picture != pictures.end())
            picture->name = materail->getName();
    }
}

} // namespace

namespace HardwareAccess {

std::shared_ptr<Simulation::Hardware> begin(const QString &operation, const QString &ip, QVariantMap arguments,
                                            quint64 bytes, Simulation::Outcome *outcome)
{
    arguments.insert(QStringLiteral("ip"), ip);
    const std::shared_ptr<Simulation::Hardware> hardware = Simulation::Network::instance()->hardware(ip);
    const Simulation::Outcome result = Simulation::beginOperation(operation, arguments, hardware, bytes);
    if (outcome)
        *outcome = result;
    if (result == Simulation::Outcome::Disconnected && Model::DeviceList::instance())
        Model::DeviceList::instance()->setDeviceOnline(ip, false);
    return result == Simulation::Outcome::Done ? hardware : nullptr;
}

void refreshModel(Model::Device &device, const Simulation::HardwareState &state)
{
    Model::DeviceEditor editor(device);
    const Model::DeviceData data = toModel(state, editor.data());
    for (const std::shared_ptr<Model::Materail> &logo : data.logos)
        ImageStorager::instance()->store(logo->imageKey(), state.logos.value(logo->getKeyNo()).pixels);
    editor.replace(data);
}

void writeConfiguration(const Model::DeviceData &data, Simulation::HardwareState &state)
{
    state.settings = data.settings;
    state.mvrEnabled = data.mvrEnabled;
    state.screens.clear();
    for (const std::shared_ptr<Model::Screen> &screen : data.screens)
        state.screens.append(Simulation::ScreenState{screen->id, screen->name, screen->geometry});
    state.presets.clear();
    for (const std::shared_ptr<Model::Preset> &preset : data.presets)
        state.presets.insert(preset->number, Simulation::PresetState{preset->name, preset->detail});
    writeNames(data.backgrounds, state.backgrounds);
    writeNames(data.logos, state.logos);
}

void writeCardSettings(const Model::DeviceData &data, Simulation::HardwareState &state)
{
    for (Simulation::CardState &card : state.cards) {
        const auto source = std::find_if(data.cards.begin(), data.cards.end(),
                                         [&card](const auto &slot) { return slot->getPos() == card.pos; });
        if (source != data.cards.end())
            card.settings = (*source)->settings;
    }
}

} // namespace HardwareAccess

} // namespace ModelControl
