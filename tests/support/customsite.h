// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "packagebuilder.h"
#include "testsite.h"

#include <modelcontrol/hardwareaccess.h>

#include <QBuffer>
#include <QDataStream>
#include <QJsonDocument>
#include <QRandomGenerator>

namespace TestSupport {

constexpr int mainModel = 1600;
constexpr int otherModel = 400;

/// A device of a custom site.
struct CustomDevice
{
    Simulation::HardwareState state;
    bool online = true;
};

/// A site of devices defined by the test, where the built-in ones of TestSite do not fit. The first one is active.
class CustomSite : public SimulatedSite
{
public:
    explicit CustomSite(const QVector<CustomDevice> &devices)
        : SimulatedSite(siteOf(devices))
    {}

private:
    static Simulation::Site siteOf(const QVector<CustomDevice> &devices)
    {
        Simulation::Site site;
        site.models = {{mainModel, QStringLiteral("ST-1600"), true, 8},
                       {otherModel, QStringLiteral("ST-400"), true, 1}};
        for (const CustomDevice &device : devices) {
            Simulation::SiteDevice entry;
            entry.state = device.state;
            entry.online = device.online;
            site.devices.append(entry);
        }
        if (!devices.isEmpty())
            site.activeDevice = devices.first().state.identity.ip;
        return site;
    }
};

/// Noise, so that no two pictures are alike; with all alpha values where the format has alpha.
inline QImage noisePicture(const QSize &size, quint32 seed, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(size, QImage::Format_ARGB32);
    QRandomGenerator random(seed);
    for (int y = 0; y < image.height(); ++y)
        random.fillRange(reinterpret_cast<quint32 *>(image.scanLine(y)), image.width());
    return format == QImage::Format_ARGB32 ? image : image.convertToFormat(format);
}

inline QByteArray pngOf(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

/// A device without pictures and presets: three cards, two screens, some settings, multi-viewer on.
inline Simulation::HardwareState plainDevice(const QString &ip, int modelId = mainModel)
{
    const quint16 lastByte = ip.section(QLatin1Char('.'), 3).toUShort();
    Simulation::HardwareState state;
    state.identity.ip = ip;
    state.identity.netMask = QStringLiteral("255.255.%1.0").arg(lastByte);
    state.identity.gateWay = QStringLiteral("10.0.%1.1").arg(lastByte);
    state.identity.mac = QStringLiteral("02:54:56:00:00:%1").arg(lastByte, 2, 16, QLatin1Char('0'));
    state.identity.sn = QStringLiteral("SN-%1").arg(lastByte);
    state.identity.name = QStringLiteral("Device %1").arg(lastByte);
    state.identity.id = lastByte;
    state.identity.modelId = modelId;
    state.protocolNumber = 2.4;
    state.mvrEnabled = true;
    state.mvrItems = QJsonArray{QStringLiteral("Program"), QStringLiteral("Preview")};
    state.cards = {{1, 0, 201, QJsonObject{{QStringLiteral("edid"), QStringLiteral("1920x1080@60")}}},
                   {2, 4, 210, QJsonObject{{QStringLiteral("fan"), QStringLiteral("quiet")}}},
                   {3, 8, 301, QJsonObject{{QStringLiteral("mode"), QStringLiteral("4K")}}}};
    state.screens = {{1, QStringLiteral("Wall"), QRect(0, 0, 1920, 1080)},
                     {2, QStringLiteral("Floor"), QRect(1920, 0, 800, 600)}};
    state.settings = QJsonObject{{QStringLiteral("brightness"), 80}};
    return state;
}

/// The same plus two backgrounds, a logo and two presets.
inline Simulation::HardwareState richDevice(const QString &ip, int modelId = mainModel)
{
    Simulation::HardwareState state = plainDevice(ip, modelId);
    const quint32 seed = 1000 * state.identity.id;
    state.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({16, 9}, seed + 1)});
    state.backgrounds.insert(7, {QStringLiteral("Keynote"), noisePicture({9, 16}, seed + 7)});
    state.logos.insert(2, {QStringLiteral("Sponsor"), noisePicture({8, 8}, seed + 2, QImage::Format_ARGB32)});
    state.presets.insert(1, {QStringLiteral("Walk-in"), QByteArray("first\0preset", 12)});
    state.presets.insert(300, {QStringLiteral("Finale"), QByteArray("last preset")});
    return state;
}

/// The description that the host writes for a device in that state.
inline QByteArray descriptionOf(const Simulation::HardwareState &state)
{
    Model::Device device(state.identity.id);
    ModelControl::HardwareAccess::refreshModel(device, state);
    return QJsonDocument(device.toJson()).toJson();
}

/// The entries of that device's package, without an info record: description, presets, pictures. The version needed is
/// one of the few bytes that the checksum of a small package covers.
inline PackageBuilder packageOf(const Simulation::HardwareState &state, quint16 versionNeeded = 20)
{
    PackageBuilder package;
    package.file(state.identity.ip.toUtf8() + ".json", descriptionOf(state)).claimVersionNeeded(versionNeeded);
    for (auto it = state.presets.begin(); it != state.presets.end(); ++it) {
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream << it->bytes;
        package.file("Preset/" + QByteArray::number(it.key()) + ".RPst", bytes);
    }
    for (auto it = state.backgrounds.begin(); it != state.backgrounds.end(); ++it)
        package.file("BKG/BKG_" + QByteArray::number(it.key()) + ".png", pngOf(it->pixels), PackageBuilder::Stored);
    for (auto it = state.logos.begin(); it != state.logos.end(); ++it)
        package.file("LOGO/LOGO_" + QByteArray::number(it.key()) + ".png", pngOf(it->pixels), PackageBuilder::Stored);
    return package;
}

} // namespace TestSupport
