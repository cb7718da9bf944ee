// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "device.h"

#include "device_p.h"
#include "deviceconfigmanager.h"

#include <simulation/operation.h>

#include <limits>

namespace Model {

namespace {

std::vector<Talvik::weak_refrence<Materail>> references(const std::vector<std::shared_ptr<Materail>> &materials)
{
    return std::vector<Talvik::weak_refrence<Materail>>(materials.begin(), materials.end());
}

/// A whole number within the range of T; 0 for anything else.
template<typename T>
T number(const QJsonValue &value)
{
    const double wanted = value.toDouble();
    if (!(wanted >= std::numeric_limits<T>::min() && wanted <= std::numeric_limits<T>::max()))
        return 0;
    return static_cast<T>(wanted);
}

/// A coordinate or an extent; 0 if the far corner of a rectangle could overflow int.
int coordinate(const QJsonValue &value)
{
    constexpr int limit = std::numeric_limits<int>::max() / 4;
    const int wanted = number<int>(value);
    return wanted >= -limit && wanted <= limit ? wanted : 0;
}

QString text(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1String(key)).toString();
}

QJsonObject toJson(const Slot &slot)
{
    return {{QStringLiteral("type"), slot.type},
            {QStringLiteral("pos"), slot.pos},
            {QStringLiteral("modelId"), slot.modelId},
            {QStringLiteral("settings"), slot.settings}};
}

QJsonObject toJson(const Screen &screen)
{
    return {{QStringLiteral("id"), screen.id},
            {QStringLiteral("name"), screen.name},
            {QStringLiteral("x"), screen.geometry.x()},
            {QStringLiteral("y"), screen.geometry.y()},
            {QStringLiteral("width"), screen.geometry.width()},
            {QStringLiteral("height"), screen.geometry.height()}};
}

QJsonObject toJson(const Materail &materail)
{
    return {{QStringLiteral("type"), materail.getType()},
            {QStringLiteral("keyNo"), materail.getKeyNo()},
            {QStringLiteral("name"), materail.getName()},
            {QStringLiteral("width"), materail.size().width()},
            {QStringLiteral("height"), materail.size().height()}};
}

QJsonObject toJson(const Preset &preset)
{
    return {{QStringLiteral("number"), preset.number},
            {QStringLiteral("name"), preset.name},
            {QStringLiteral("detail"), QString::fromLatin1(preset.detail.toBase64())}};
}

std::shared_ptr<Slot> slotFromJson(const QJsonObject &object)
{
    auto slot = std::make_shared<Slot>();
    slot->type = number<int>(object.value(QLatin1String("type")));
    slot->pos = number<int>(object.value(QLatin1String("pos")));
    slot->modelId = number<int>(object.value(QLatin1String("modelId")));
    slot->settings = object.value(QLatin1String("settings")).toObject();
    return slot;
}

std::shared_ptr<Screen> screenFromJson(const QJsonObject &object)
{
    auto screen = std::make_shared<Screen>();
    screen->id = number<int>(object.value(QLatin1String("id")));
    screen->name = text(object, "name");
    screen->geometry =
        QRect(coordinate(object.value(QLatin1String("x"))), coordinate(object.value(QLatin1String("y"))),
              coordinate(object.value(QLatin1String("width"))), coordinate(object.value(QLatin1String("height"))));
    return screen;
}

std::shared_ptr<Materail> materailFromJson(const QJsonObject &object, const QString &deviceIp)
{
    const auto type =
        number<int>(object.value(QLatin1String("type"))) == Materail::Logo ? Materail::Logo : Materail::Background;
    return std::make_shared<Materail>(
        type, number<quint8>(object.value(QLatin1String("keyNo"))), text(object, "name"),
        QSize(number<int>(object.value(QLatin1String("width"))), number<int>(object.value(QLatin1String("height")))),
        deviceIp);
}

std::shared_ptr<Preset> presetFromJson(const QJsonObject &object)
{
    auto preset = std::make_shared<Preset>();
    preset->number = number<quint16>(object.value(QLatin1String("number")));
    preset->name = text(object, "name");
    preset->detail = QByteArray::fromBase64(text(object, "detail").toLatin1());
    return preset;
}

template<typename T>
void append(QJsonArray &array, const std::vector<std::shared_ptr<T>> &objects)
{
    for (const std::shared_ptr<T> &object : objects) {
        if (object)
            array.append(toJson(*object));
    }
}

/// The objects in an array; other entries are skipped.
QVector<QJsonObject> objects(const QJsonObject &parent, const char *key)
{
    QVector<QJsonObject> found;
    const QJsonArray values = parent.value(QLatin1String(key)).toArray();
    for (const QJsonValue &value : values) {
        if (value.isObject())
            found.append(value.toObject());
    }
    return found;
}

std::vector<std::shared_ptr<Materail>> atAddress(const std::vector<std::shared_ptr<Materail>> &materials,
                                                 const QString &ip)
{
    std::vector<std::shared_ptr<Materail>> moved;
    for (const std::shared_ptr<Materail> &materail : materials) {
        if (!materail) {
            moved.push_back(nullptr);
            continue;
        }
        moved.push_back(std::make_shared<Materail>(static_cast<Materail::MaterailType>(materail->getType()),
                                                   materail->getKeyNo(), materail->getName(), materail->size(), ip));
        moved.back()->setThumb(materail->thumb());
    }
    return moved;
}

} // namespace

Device::Device(quint16 id, QObject *parent)
    : QObject(parent)
    , d(new Private)
{
    d->data.id = id;
}

Device::~Device() = default;

QString Device::getDeviceInfo() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return QStringLiteral("%1 %2 (%3)").arg(d->data.typeString, d->data.name, d->data.ip);
}

QString Device::getTypeString() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.typeString;
}

QString Device::getName() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.name;
}

QString Device::getIPAddress() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.ip;
}

QString Device::getNetMask() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.netMask;
}

QString Device::getGateWay() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.gateWay;
}

QString Device::getMAC() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.mac;
}

QString Device::getSN() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.sn;
}

quint16 Device::getId() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.id;
}

int Device::getModelID() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.modelId;
}

double Device::getCommunicationProtocolNumber() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.protocolNumber;
}

bool Device::getDeviceOnlineFlag() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->online;
}

bool Device::getMVREnabled() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.mvrEnabled;
}

const s_DeviceConfig &Device::deviceConfig() const
{
    static const s_DeviceConfig unknownModel;
    const s_DeviceConfig *config = DeviceConfigManager::instance()->findDeviceConfigByID(getModelID());
    return config ? *config : unknownModel;
}

std::vector<std::shared_ptr<Slot>> Device::getSlots() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.cards;
}

std::vector<Talvik::weak_refrence<Materail>> Device::getBKGs() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return references(d->data.backgrounds);
}

std::vector<Talvik::weak_refrence<Materail>> Device::getLogos() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return references(d->data.logos);
}

std::vector<std::shared_ptr<Preset>> Device::getPresets() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.presets;
}

std::vector<std::shared_ptr<Screen>> Device::getScreens() const
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    return d->data.screens;
}

void Device::setIPAddress(const QString &ip)
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    if (d->data.ip == ip)
        return;
    d->data.ip = ip;
    d->data.backgrounds = atAddress(d->data.backgrounds, ip);
    d->data.logos = atAddress(d->data.logos, ip);
}

void Device::setNetMask(const QString &netMask)
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    d->data.netMask = netMask;
}

void Device::setGateWay(const QString &gateWay)
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    d->data.gateWay = gateWay;
}

void Device::setMAC(const QString &mac)
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    d->data.mac = mac;
}

void Device::setId(quint16 id)
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    d->data.id = id;
}

void Device::setCommunicationProtocol(double number)
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    d->data.protocolNumber = number;
}

void Device::clearAll(bool withSettings)
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    d->data.cards.clear();
    d->data.screens.clear();
    if (withSettings) {
        d->data.settings = QJsonObject();
        d->data.mvrEnabled = false;
        d->data.mvrItems = QJsonArray();
    }
}

void Device::clearMaterial()
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    d->data.backgrounds.clear();
    d->data.logos.clear();
}

void Device::clearPreset()
{
    const std::lock_guard<std::mutex> locker(d->mutex);
    d->data.presets.clear();
}

void Device::fromJson(const QJsonObject &object)
{
    Simulation::meetFaults(Simulation::Operations::deviceFromJson);
    DeviceData data;
    data.modelId = number<int>(object.value(QLatin1String("modelId")));
    data.id = number<quint16>(object.value(QLatin1String("id")));
    data.typeString = text(object, "type");
    data.name = text(object, "name");
    data.sn = text(object, "sn");
    data.ip = text(object, "ip");
    data.netMask = text(object, "netMask");
    data.gateWay = text(object, "gateWay");
    data.mac = text(object, "mac");
    data.protocolNumber = object.value(QLatin1String("protocolNumber")).toDouble();
    data.mvrEnabled = object.value(QLatin1String("mvrEnabled")).toBool();
    data.mvrItems = object.value(QLatin1String("mvrItems")).toArray();
    data.settings = object.value(QLatin1String("settings")).toObject();
    for (const QJsonObject &slot : objects(object, "slots"))
        data.cards.push_back(slotFromJson(slot));
    for (const QJsonObject &screen : objects(object, "screens"))
        data.screens.push_back(screenFromJson(screen));
    for (const QJsonObject &entry : objects(object, "materials")) {
        const std::shared_ptr<Materail> materail = materailFromJson(entry, data.ip);
        (materail->getType() == Materail::Logo ? data.logos : data.backgrounds).push_back(materail);
    }
    for (const QJsonObject &preset : objects(object, "presets"))
        data.presets.push_back(presetFromJson(preset));
    const std::lock_guard<std::mutex> locker(d->mutex);
    d->data = data;
}

QJsonObject Device::toJson() const
{
    std::unique_lock<std::mutex> locker(d->mutex);
    const DeviceData data = d->data;
    locker.unlock();
    QJsonArray cards;
    QJsonArray screens;
    QJsonArray materials;
    QJsonArray presets;
    append(cards, data.cards);
    append(screens, data.screens);
    append(materials, data.backgrounds);
    append(materials, data.logos);
    append(presets, data.presets);
    return {{QStringLiteral("modelId"), data.modelId},
            {QStringLiteral("id"), data.id},
            {QStringLiteral("type"), data.typeString},
            {QStringLiteral("name"), data.name},
            {QStringLiteral("sn"), data.sn},
            {QStringLiteral("ip"), data.ip},
            {QStringLiteral("netMask"), data.netMask},
            {QStringLiteral("gateWay"), data.gateWay},
            {QStringLiteral("mac"), data.mac},
            {QStringLiteral("protocolNumber"), data.protocolNumber},
            {QStringLiteral("mvrEnabled"), data.mvrEnabled},
            {QStringLiteral("mvrItems"), data.mvrItems},
            {QStringLiteral("settings"), data.settings},
            {QStringLiteral("slots"), cards},
            {QStringLiteral("screens"), screens},
            {QStringLiteral("materials"), materials},
            {QStringLiteral("presets"), presets}};
}

} // namespace Model
