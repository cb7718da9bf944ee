// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "hardware.h"

#include <QCryptographicHash>

#include <tuple>

namespace Simulation {

namespace {

bool operator==(const Identity &left, const Identity &right)
{
    const auto tie = [](const Identity &i) {
        return std::tie(i.ip, i.netMask, i.gateWay, i.mac, i.sn, i.name, i.id, i.modelId);
    };
    return tie(left) == tie(right);
}

bool operator==(const CardState &left, const CardState &right)
{
    const auto tie = [](const CardState &c) { return std::tie(c.type, c.pos, c.modelId, c.settings); };
    return tie(left) == tie(right);
}

bool operator==(const ScreenState &left, const ScreenState &right)
{
    const auto tie = [](const ScreenState &s) { return std::tie(s.id, s.name, s.geometry); };
    return tie(left) == tie(right);
}

bool operator==(const PictureState &left, const PictureState &right)
{
    return left.name == right.name && left.pixels == right.pixels;
}

bool operator==(const PresetState &left, const PresetState &right)
{
    return left.name == right.name && left.bytes == right.bytes;
}

template<typename T>
bool equal(const QVector<T> &left, const QVector<T> &right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const T &a, const T &b) { return a == b; });
}

/// Lists the entries that differ between two maps.
template<typename Key, typename T>
void compareMaps(QStringList &differences, const QString &what, const QMap<Key, T> &left, const QMap<Key, T> &right)
{
    for (auto it = left.begin(); it != left.end(); ++it) {
        const auto other = right.find(it.key());
        if (other == right.end())
            differences.append(QStringLiteral("%1 %2 is missing").arg(what).arg(it.key()));
        else if (!(it.value() == other.value()))
            differences.append(QStringLiteral("%1 %2 differs").arg(what).arg(it.key()));
    }
    for (auto it = right.begin(); it != right.end(); ++it) {
        if (!left.contains(it.key()))
            differences.append(QStringLiteral("%1 %2 is new").arg(what).arg(it.key()));
    }
}

QString digest(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}

QString digest(const QImage &image)
{
    QCryptographicHash hash(QCryptographicHash::Md5);
    for (int y = 0; y < image.height(); ++y)
        hash.addData(reinterpret_cast<const char *>(image.constScanLine(y)), image.width() * image.depth() / 8);
    return QString::fromLatin1(hash.result().toHex());
}

QJsonArray picturesToJson(const QMap<quint8, PictureState> &pictures)
{
    QJsonArray array;
    for (auto it = pictures.begin(); it != pictures.end(); ++it)
        array.append(QJsonObject{{QStringLiteral("keyNo"), it.key()},
                                 {QStringLiteral("name"), it->name},
                                 {QStringLiteral("width"), it->pixels.width()},
                                 {QStringLiteral("height"), it->pixels.height()},
                                 {QStringLiteral("digest"), digest(it->pixels)}});
    return array;
}

void normalise(QMap<quint8, PictureState> &pictures, QImage::Format format)
{
    for (auto it = pictures.begin(); it != pictures.end(); ++it) {
        if (it->pixels.format() != format)
            it->pixels = it->pixels.convertToFormat(format);
    }
}

} // namespace

HardwareState HardwareState::configuration() const
{
    HardwareState copy = *this;
    copy.identity = Identity();
    copy.protocolNumber = 0;
    copy.capacity = 0;
    for (CardState &card : copy.cards) {
        card.type = 0;
        card.modelId = 0;
    }
    return copy;
}

HardwareState HardwareState::afterFactoryReset() const
{
    HardwareState reset;
    reset.identity = identity;
    reset.protocolNumber = protocolNumber;
    reset.mvrCapable = mvrCapable;
    reset.capacity = capacity;
    for (const CardState &card : cards)
        reset.cards.append(CardState{card.type, card.pos, card.modelId, QJsonObject()});
    return reset;
}

QJsonObject HardwareState::toJson() const
{
    QJsonArray cardArray;
    for (const CardState &card : cards)
        cardArray.append(QJsonObject{{QStringLiteral("type"), card.type},
                                     {QStringLiteral("pos"), card.pos},
                                     {QStringLiteral("modelId"), card.modelId},
                                     {QStringLiteral("settings"), card.settings}});
    QJsonArray screenArray;
    for (const ScreenState &screen : screens)
        screenArray.append(QJsonObject{{QStringLiteral("id"), screen.id},
                                       {QStringLiteral("name"), screen.name},
                                       {QStringLiteral("x"), screen.geometry.x()},
                                       {QStringLiteral("y"), screen.geometry.y()},
                                       {QStringLiteral("width"), screen.geometry.width()},
                                       {QStringLiteral("height"), screen.geometry.height()}});
    QJsonArray presetArray;
    for (auto it = presets.begin(); it != presets.end(); ++it)
        presetArray.append(QJsonObject{{QStringLiteral("number"), it.key()},
                                       {QStringLiteral("name"), it->name},
                                       {QStringLiteral("size"), it->bytes.size()},
                                       {QStringLiteral("digest"), digest(it->bytes)}});
    return QJsonObject{{QStringLiteral("ip"), identity.ip},
                       {QStringLiteral("netMask"), identity.netMask},
                       {QStringLiteral("gateWay"), identity.gateWay},
                       {QStringLiteral("mac"), identity.mac},
                       {QStringLiteral("sn"), identity.sn},
                       {QStringLiteral("name"), identity.name},
                       {QStringLiteral("id"), identity.id},
                       {QStringLiteral("modelId"), identity.modelId},
                       {QStringLiteral("protocolNumber"), protocolNumber},
                       {QStringLiteral("mvrCapable"), mvrCapable},
                       {QStringLiteral("mvrEnabled"), mvrEnabled},
                       {QStringLiteral("mvrItems"), mvrItems},
                       {QStringLiteral("cards"), cardArray},
                       {QStringLiteral("screens"), screenArray},
                       {QStringLiteral("settings"), settings},
                       {QStringLiteral("backgrounds"), picturesToJson(backgrounds)},
                       {QStringLiteral("logos"), picturesToJson(logos)},
                       {QStringLiteral("presets"), presetArray},
                       {QStringLiteral("capacity"), static_cast<double>(capacity)}};
}

QStringList HardwareState::differencesTo(const HardwareState &other) const
{
    QStringList differences;
    const auto note = [&differences](bool same, const char *what) {
        if (!same)
            differences.append(QStringLiteral("%1 differs").arg(QLatin1String(what)));
    };
    note(identity == other.identity, "identity");
    note(qFuzzyCompare(1.0 + protocolNumber, 1.0 + other.protocolNumber), "protocol number");
    note(mvrCapable == other.mvrCapable, "multi-viewer capability");
    note(mvrEnabled == other.mvrEnabled, "multi-viewer");
    note(mvrItems == other.mvrItems, "multi-viewer items");
    note(equal(cards, other.cards), "cards");
    note(equal(screens, other.screens), "screens");
    note(settings == other.settings, "settings");
    note(capacity == other.capacity, "capacity");
    compareMaps(differences, QStringLiteral("background"), backgrounds, other.backgrounds);
    compareMaps(differences, QStringLiteral("logo"), logos, other.logos);
    compareMaps(differences, QStringLiteral("preset"), presets, other.presets);
    return differences;
}

bool operator==(const HardwareState &left, const HardwareState &right)
{
    return left.differencesTo(right).isEmpty();
}

quint64 pictureBytes(const QSize &size)
{
    return size.isEmpty() ? 0 : 4 * static_cast<quint64>(size.width()) * static_cast<quint64>(size.height());
}

Hardware::Hardware(const HardwareState &state)
    : m_ip(state.identity.ip)
    , m_state(std::make_shared<const HardwareState>())
{
    setState(state);
}

HardwareState Hardware::state() const
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    return *m_state;
}

void Hardware::setState(const HardwareState &state)
{
    change([&state](HardwareState &own) { own = state; });
}

void Hardware::change(const std::function<void(HardwareState &)> &change)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    const auto changed = std::make_shared<HardwareState>(*m_state);
    change(*changed);
    normalise(changed->backgrounds, QImage::Format_RGB32);
    normalise(changed->logos, QImage::Format_ARGB32);
    m_state = changed;
}

quint64 Hardware::logoBytes() const
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    if (m_countersFixed)
        return m_fixedLogoBytes;
    quint64 bytes = 0;
    for (const PictureState &logo : m_state->logos)
        bytes += pictureBytes(logo.pixels.size());
    return bytes;
}

quint64 Hardware::otherBytes() const
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    if (m_countersFixed)
        return m_fixedOtherBytes;
    quint64 bytes = 0;
    for (const PictureState &background : m_state->backgrounds)
        bytes += pictureBytes(background.pixels.size());
    for (const PresetState &preset : m_state->presets)
        bytes += static_cast<quint64>(preset.bytes.size());
    return bytes;
}

void Hardware::fixCounters(quint64 logoBytes, quint64 otherBytes)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_countersFixed = true;
    m_fixedLogoBytes = logoBytes;
    m_fixedOtherBytes = otherBytes;
}

void Hardware::releaseCounters()
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_countersFixed = false;
}

} // namespace Simulation
