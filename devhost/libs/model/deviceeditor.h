// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/device.h>

#include <QJsonArray>

namespace Model {

/// The complete contents of a Device as plain values.
struct HOST_MODEL_EXPORT DeviceData
{
    int modelId = 0;
    quint16 id = 0;
    QString typeString;
    QString name;
    QString sn;
    QString ip;
    QString netMask;
    QString gateWay;
    QString mac;
    double protocolNumber = 0;
    bool mvrEnabled = false;
    /// The source of each multi-viewer position.
    QJsonArray mvrItems;
    QJsonObject settings;
    std::vector<std::shared_ptr<Slot>> cards;
    std::vector<std::shared_ptr<Screen>> screens;
    std::vector<std::shared_ptr<Materail>> backgrounds;
    std::vector<std::shared_ptr<Materail>> logos;
    std::vector<std::shared_ptr<Preset>> presets;
};

/// The host's own way to read and write a Device as a whole. Any thread.
class HOST_MODEL_EXPORT DeviceEditor
{
public:
    explicit DeviceEditor(Device &device);

    DeviceData data() const;
    /// The data's objects are shared with the device and must not be changed afterwards.
    void replace(const DeviceData &data);
    void setOnlineFlag(bool online);

private:
    Device &m_device;
};

} // namespace Model
