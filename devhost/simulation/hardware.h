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

/// What tells one device from every other. A reset leaves it, and applying a configuration too.
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

/// A card: where it sits is fact, its settings are configuration.
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
    /// Format_RGB32 in a background, Format_ARGB32 in a logo.
    QImage pixels;
};

struct HOST_SIMULATION_EXPORT PresetState
{
    QString name;
    QByteArray bytes;
};

/// Everything that a device holds. Values compare whole, pixel by pixel and byte by byte.
struct HOST_SIMULATION_EXPORT HardwareState
{
    Identity identity;
    double protocolNumber = 0;
    bool mvrCapable = true;
    bool mvrEnabled = false;
    /// What each place of the multi-viewer shows.
    QJsonArray mvrItems;
    QVector<CardState> cards;
    QVector<ScreenState> screens;
    QJsonObject settings;
    /// By key number.
    QMap<quint8, PictureState> backgrounds;
    QMap<quint8, PictureState> logos;
    /// By preset number.
    QMap<quint16, PresetState> presets;
    /// Bytes for pictures and presets; 0 is without limit.
    quint64 capacity = 0;

    /// The same without what belongs to the single device (identity, protocol number, capacity, which card sits
    /// where): what a configuration that was saved from one device and applied to another makes equal.
    HardwareState configuration() const;
    /// What a factory reset leaves: identity, protocol number, capacity and the cards.
    HardwareState afterFactoryReset() const;
    /// Everything but pixels and preset bytes, of which it gives sizes and digests. For people and messages.
    QJsonObject toJson() const;
    /// One line for each part that differs, empty when nothing does.
    QStringList differencesTo(const HardwareState &other) const;
};

HOST_SIMULATION_EXPORT bool operator==(const HardwareState &left, const HardwareState &right);
inline bool operator!=(const HardwareState &left, const HardwareState &right)
{
    return !(left == right);
}

/// The bytes that a picture takes on a device.
HOST_SIMULATION_EXPORT quint64 pictureBytes(const QSize &size);

/// A device on the network, apart from what the host believes about it. Any thread.
class HOST_SIMULATION_EXPORT Hardware
{
public:
    explicit Hardware(const HardwareState &state);

    QString ip() const { return m_ip; }

    HardwareState state() const;
    void setState(const HardwareState &state);
    /// Changes the state in one step, which no reader sees half done. The pixels of pictures are put into
    /// the formats that PictureState names.
    void change(const std::function<void(HardwareState &)> &change);

    /// False once the device was unplugged or its connection was dropped.
    bool isReachable() const { return m_reachable; }
    void setReachable(bool reachable) { m_reachable = reachable; }

    /// Whether its channel is reserved for one task.
    bool isChannelExclusive() const { return m_channelExclusive; }
    void setChannelExclusive(bool exclusive) { m_channelExclusive = exclusive; }

    /// Bytes that the logos take, and the bytes of everything else.
    quint64 logoBytes() const;
    quint64 otherBytes() const;
    /// Makes the counters above answer these values whatever the device holds.
    void fixCounters(quint64 logoBytes, quint64 otherBytes);
    void releaseCounters();

private:
    const QString m_ip;
    mutable std::mutex m_mutex;
    /// Replaced by every change and never changed itself, since readers go on sharing its data.
    std::shared_ptr<const HardwareState> m_state;
    std::atomic<bool> m_reachable{true};
    std::atomic<bool> m_channelExclusive{false};
    bool m_countersFixed = false;
    quint64 m_fixedLogoBytes = 0;
    quint64 m_fixedOtherBytes = 0;
};

} // namespace Simulation
