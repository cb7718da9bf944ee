// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/simulation_global.h>

#include <QByteArray>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QVector>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace Simulation {

/// Identifies one device. Neither a reset nor applying a configuration changes it.
struct HOST_SIMULATION_EXPORT Identity
{
    QString ip;
    QString netMask;
    QString gateWay;
    QString mac;
    QString sn;
    QString name;
    quint16 id = 0;
    int modelId = 0;
};

/// A card: its position is fixed, its settings are configuration.
struct HOST_SIMULATION_EXPORT CardState
{
    int type = 0;
    int pos = 0;
    int modelId = 0;
    QJsonObject settings;
};

struct HOST_SIMULATION_EXPORT ScreenState
{
    int id = 0;
    QString name;
    QRect geometry;
};

struct HOST_SIMULATION_EXPORT PictureState
{
    QString name;
    /// Format_RGB32 for a background, Format_ARGB32 for a logo.
    QImage pixels;
};

struct HOST_SIMULATION_EXPORT PresetState
{
    QString name;
    QByteArray bytes;
};

/// The complete state of a device. Comparison covers every pixel and byte.
struct HOST_SIMULATION_EXPORT HardwareState
{
    Identity identity;
    double protocolNumber = 0;
    bool mvrCapable = true;
    bool mvrEnabled = false;
    /// The source of each multi-viewer position.
    QJsonArray mvrItems;
    QVector<CardState> cards;
    QVector<ScreenState> screens;
    QJsonObject settings;
    /// By key number.
    QMap<quint8, PictureState> backgrounds;
    QMap<quint8, PictureState> logos;
    /// By preset number.
    QMap<quint16, PresetState> presets;
    /// Bytes for pictures and presets; 0 is unlimited.
    quint64 capacity = 0;

    /// A copy without the parts unique to a device (identity, protocol number, capacity, positions of cards). It is
    /// equal for two devices if the saved configuration of one was applied to the other.
    HardwareState configuration() const;
    /// The state after a factory reset: identity, protocol number, capacity and cards only.
    HardwareState afterFactoryReset() const;
    /// Everything, with sizes and digests in place of pixels and preset bytes. For messages.
    QJsonObject toJson() const;
    /// One line for each differing part; empty if there is none.
    QStringList differencesTo(const HardwareState &other) const;
};

HOST_SIMULATION_EXPORT bool operator==(const HardwareState &left, const HardwareState &right);
inline bool operator!=(const HardwareState &left, const HardwareState &right)
{
    return !(left == right);
}

/// The bytes a picture occupies on a device.
HOST_SIMULATION_EXPORT quint64 pictureBytes(const QSize &size);

/// A device on the network, independent of the host's view of it. Any thread.
class HOST_SIMULATION_EXPORT Hardware
{
public:
    explicit Hardware(const HardwareState &state);

    QString ip() const { return m_ip; }

    HardwareState state() const;
    void setState(const HardwareState &state);
    /// Changes the state atomically for readers. Pictures are converted to the formats that PictureState names.
    void change(const std::function<void(HardwareState &)> &change);

    /// False after the device was unplugged or its connection was dropped.
    bool isReachable() const { return m_reachable; }
    void setReachable(bool reachable) { m_reachable = reachable; }

    /// Whether its channel is reserved for one task.
    bool isChannelExclusive() const { return m_channelExclusive; }
    void setChannelExclusive(bool exclusive) { m_channelExclusive = exclusive; }

    /// Bytes occupied by logos, and by everything else.
    quint64 logoBytes() const;
    quint64 otherBytes() const;
    /// Makes these counters report fixed values, whatever is on the device.
    void fixCounters(quint64 logoBytes, quint64 otherBytes);
    void releaseCounters();

private:
    const QString m_ip;
    mutable std::mutex m_mutex;
    /// Copy on write: replaced by every change and never modified, since readers share its data.
    std::shared_ptr<const HardwareState> m_state;
    std::atomic<bool> m_reachable{true};
    std::atomic<bool> m_channelExclusive{false};
    bool m_countersFixed = false;
    quint64 m_fixedLogoBytes = 0;
    quint64 m_fixedOtherBytes = 0;
};

} // namespace Simulation
