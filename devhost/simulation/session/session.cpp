// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "session.h"

#include <imagestorager/imagestorager.h>
#include <model/deviceconfigmanager.h>
#include <model/deviceeditor.h>
#include <model/objectbrige.h>
#include <modelcontrol/hardwareaccess.h>
#include <simulation/faults.h>
#include <simulation/journal.h>
#include <simulation/network.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>

// Outside of any namespace, as the macro demands.
static void initSiteResources()
{
    Q_INIT_RESOURCE(sites);
}

namespace Simulation {

namespace {

/// Saved fast rather than small: nobody keeps these files.
constexpr int pngQuality = 80;

bool writePictures(const QMap<quint8, PictureState> &pictures, const QDir &deviceDirectory, const QString &kind)
{
    if (!deviceDirectory.mkpath(kind))
        return false;
    for (auto it = pictures.begin(); it != pictures.end(); ++it) {
        const QString name = QStringLiteral("%1/%1_%2.png").arg(kind, QString::number(it.key()));
        if (!it->pixels.save(deviceDirectory.filePath(name), "PNG", pngQuality))
            return false;
    }
    return true;
}

void setThumbs(const std::vector<Talvik::weak_refrence<Model::Materail>> &materials,
               const QMap<quint8, PictureState> &pictures)
{
    for (const auto &reference : materials) {
        if (const std::shared_ptr<Model::Materail> materail = reference.lock())
            materail->setThumb(pictures.value(materail->getKeyNo())
                                   .pixels.scaled(QSize(320, 180), Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
}

/// What the host keeps between sessions, and what must not leak from one into the next.
void forgetEverything()
{
    Faults::instance()->clear();
    setPace(Pace());
    Model::object_brige::instance()->clearScreenList(true);
    Model::object_brige::instance()->setActiveDevice({});
    Model::DeviceConfigManager::instance()->clear();
    ImageStorager::instance()->clear();
    Journal::instance()->clear();
}

} // namespace

QString builtInSite(const QString &name)
{
    initSiteResources();
    return QStringLiteral(":/sites/%1.json").arg(name);
}

Session::Session(const Site &site, const QString &deviceConfigPath)
    : m_site(site)
    , m_deviceConfigPath(deviceConfigPath)
{
    forgetEverything();
    for (const ModelDescription &model : m_site.models) {
        Model::s_DeviceConfig config;
        config.modelId = model.modelId;
        config.typeString = model.typeString;
        config.supportProjectFile = model.supportProjectFile;
        config.exchangePos = model.exchangePos;
        Model::DeviceConfigManager::instance()->addDeviceConfig(config);
    }
    const QVector<HardwareState> states = m_site.buildHardware();
    for (int i = 0; i < states.size(); ++i)
        addDevice(states.at(i), m_site.devices.at(i).online);
    if (!m_site.activeDevice.isEmpty())
        Model::object_brige::instance()->setActiveDevice(device(m_site.activeDevice));
    setPace(m_site.pace);
    Journal::instance()->clear();
}

Session::~Session()
{
    forgetEverything();
    for (const QString &ip : addresses())
        Network::instance()->detach(ip);
}

QStringList Session::addresses() const
{
    QStringList addresses;
    for (const SiteDevice &device : m_site.devices)
        addresses.append(device.state.identity.ip);
    return addresses;
}

std::shared_ptr<Hardware> Session::hardware(const QString &ip) const
{
    return Network::instance()->hardware(ip);
}

std::shared_ptr<Model::Device> Session::device(const QString &ip) const
{
    return m_devices.getDeviceByIPAddr(ip);
}

void Session::plug(const QString &ip)
{
    const std::shared_ptr<Hardware> hardware = this->hardware(ip);
    const std::shared_ptr<Model::Device> device = this->device(ip);
    if (!hardware || !device)
        return;
    hardware->setReachable(true);
    ModelControl::HardwareAccess::refreshModel(*device, hardware->state());
    m_devices.setDeviceOnline(ip, true);
}

void Session::unplug(const QString &ip)
{
    if (const std::shared_ptr<Hardware> hardware = this->hardware(ip))
        hardware->setReachable(false);
    m_devices.setDeviceOnline(ip, false);
}

void Session::addDevice(const HardwareState &state, bool online)
{
    const auto hardware = std::make_shared<Hardware>(state);
    hardware->setReachable(online);
    Network::instance()->attach(hardware);

    const auto device = std::make_shared<Model::Device>(state.identity.id);
    ModelControl::HardwareAccess::refreshModel(*device, state);
    setThumbs(device->getBKGs(), state.backgrounds);
    setThumbs(device->getLogos(), state.logos);
    Model::DeviceEditor(*device).setOnlineFlag(online);
    m_devices.addDevice(device);
    if (!online)
        writeOfflineDevice(state);
}

void Session::writeOfflineDevice(const HardwareState &state)
{
    const QString ip = state.identity.ip;
    QDir directory(QStringLiteral("%1/%2").arg(m_deviceConfigPath, ip));
    directory.removeRecursively();
    const QJsonDocument description(device(ip)->toJson());
    QFile file(directory.filePath(ip + QLatin1String(".json")));
    const bool written = directory.mkpath(QStringLiteral(".")) && file.open(QIODevice::WriteOnly) &&
                         file.write(description.toJson()) >= 0 && file.flush() &&
                         writePictures(state.backgrounds, directory, QStringLiteral("BKG")) &&
                         writePictures(state.logos, directory, QStringLiteral("LOGO"));
    if (!written)
        m_error = QStringLiteral("The configuration of %1 could not be written to %2").arg(ip, directory.path());
}

} // namespace Simulation
