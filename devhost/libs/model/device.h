// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/materail.h>
#include <model/model_global.h>
#include <model/weakrefrence.h>

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QRect>
#include <QString>
#include <QVector>

#include <memory>

namespace Model {

/// Stands for the host's description of one model of device.
struct HOST_MODEL_EXPORT s_DeviceConfig
{
    int modelId = 0;
    QString typeString;
    bool supportProjectFile = false;
    /// The position of the slot in which an output card and an exchange card (types 3 and 5) may replace each other.
    int exchangePos = 8;
};

/// Stands for a card in a device.
struct HOST_MODEL_EXPORT Slot
{
    int type = 0;
    int pos = 0;
    int modelId = 0;
    /// The configuration of the card.
    QJsonObject settings;

    int getType() const { return type; }
    int getPos() const { return pos; }
    int getModelId() const { return modelId; }
};

/// Stands for an output screen of a device, in pixels.
struct HOST_MODEL_EXPORT Screen
{
    int id = 0;
    QString name;
    QRect geometry;
};

/// Stands for a preset of a device.
struct HOST_MODEL_EXPORT Preset
{
    quint16 number = 0;
    QString name;
    QByteArray detail;

    quint16 getNumber() const { return number; }
};

/// Stands for the host's model of one device: what the application knows, as opposed to the state of the hardware.
///
/// Every operation may be called from any thread; lists are copies.
class HOST_MODEL_EXPORT Device : public QObject
{
    Q_OBJECT

public:
    /// Keys of the maps passed to change a device.
    enum ParameterType { DeviceName = 0, DeviceReset = 10 };
    /// How much of the hardware a reset wipes; values follow the hardware's protocol.
    enum DevicResetOrder { ResetPresets = 1, ResetMaterials = 2, ResetFactory = 3 };

    explicit Device(quint16 id, QObject *parent = nullptr);
    ~Device() override;

    /// One readable line: type, name and address.
    QString getDeviceInfo() const;
    QString getTypeString() const;
    QString getName() const;
    QString getIPAddress() const;
    QString getNetMask() const;
    QString getGateWay() const;
    QString getMAC() const;
    QString getSN() const;
    quint16 getId() const;
    int getModelID() const;
    double getCommunicationProtocolNumber() const;
    bool getDeviceOnlineFlag() const;
    bool getMVREnabled() const;
    /// The description of this device's model; it lives as long as the program.
    const s_DeviceConfig &deviceConfig() const;

    std::vector<std::shared_ptr<Slot>> getSlots() const;
    std::vector<Talvik::weak_refrence<Materail>> getBKGs() const;
    std::vector<Talvik::weak_refrence<Materail>> getLogos() const;
    std::vector<std::shared_ptr<Preset>> getPresets() const;
    std::vector<std::shared_ptr<Screen>> getScreens() const;

    void setIPAddress(const QString &ip);
    void setNetMask(const QString &netMask);
    void setGateWay(const QString &gateWay);
    void setMAC(const QString &mac);
    void setId(quint16 id);
    void setCommunicationProtocol(double number);

    /// Removes slots and screens; with `true` the settings as well.
    void clearAll(bool withSettings);
    void clearMaterial();
    void clearPreset();

    /// Reads the format of toJson(). Sets everything except the online flag. Missing keys and keys of another type
    /// leave empty values; list entries that are not objects are skipped.
    void fromJson(const QJsonObject &object);
    QJsonObject toJson() const;

private:
    class Private;
    const std::unique_ptr<Private> d;
    friend class DeviceEditor;
};

} // namespace Model
