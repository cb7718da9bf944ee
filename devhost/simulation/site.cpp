// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "site.h"

#include "picturegenerator.h"

#include <QDataStream>
#include <QFile>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QSet>

#include <cmath>
#include <limits>

namespace Simulation {

namespace {

/// Reads the members of one object, each of which must be there unless it has a default, and knows where
/// in the file it is, so that the first thing that is wrong can be named.
class Reader
{
public:
    Reader(const QJsonObject &object, const QString &where, QString &error)
        : m_object(object)
        , m_where(where)
        , m_error(error)
    {}

    bool has(const char *key) const { return m_object.contains(QLatin1String(key)); }

    QString text(const char *key) { return value(key, QJsonValue::String, "a text").toString(); }
    QString text(const char *key, const QString &absent) { return mentions(key) ? text(key) : absent; }
    bool flag(const char *key, bool absent)
    {
        return mentions(key) ? value(key, QJsonValue::Bool, "true or false").toBool() : absent;
    }
    QJsonObject object(const char *key) { return value(key, QJsonValue::Object, "an object").toObject(); }
    QJsonArray array(const char *key)
    {
        return mentions(key) ? value(key, QJsonValue::Array, "a list").toArray() : QJsonArray();
    }
    double positive(const char *key)
    {
        const double number = value(key, QJsonValue::Double, "a number").toDouble();
        if (number < 0)
            fail(key, "must not be negative");
        return number;
    }

    template<typename T>
    T whole(const char *key, T lowest = std::numeric_limits<T>::min(), T highest = std::numeric_limits<T>::max())
    {
        const double number = value(key, QJsonValue::Double, "a number").toDouble();
        if (number != std::floor(number) || number < double(lowest) || number > double(highest)) {
            m_known.insert(QLatin1String(key));
            setError(QStringLiteral("%1 must be a whole number from %2 to %3")
                         .arg(place(key), QString::number(lowest), QString::number(highest)));
            return lowest;
        }
        return static_cast<T>(number);
    }
    template<typename T>
    T wholeOr(const char *key, T absent)
    {
        return mentions(key) ? whole<T>(key) : absent;
    }

    QSize size() { return QSize(whole<int>("width", 1, 16384), whole<int>("height", 1, 16384)); }

    /// Calls `read` with a reader of each object of the list.
    template<typename Read>
    void each(const char *key, Read read)
    {
        const QJsonArray list = array(key);
        for (int i = 0; i < list.size(); ++i) {
            const QString where = QStringLiteral("%1[%2]").arg(place(key), QString::number(i));
            if (!list.at(i).isObject()) {
                setError(QStringLiteral("%1 must be an object").arg(where));
                return;
            }
            Reader reader(list.at(i).toObject(), where, m_error);
            read(reader);
            reader.refuseUnknown();
        }
    }

    /// Members that nobody asked for are spelling mistakes.
    void refuseUnknown()
    {
        for (const QString &key : m_object.keys()) {
            if (!m_known.contains(key))
                setError(
                    QStringLiteral("%1 is not known").arg(m_where.isEmpty() ? key : m_where + QLatin1Char('.') + key));
        }
    }

    void fail(const char *key, const char *reason)
    {
        setError(QStringLiteral("%1 %2").arg(place(key), QLatin1String(reason)));
    }

private:
    bool mentions(const char *key)
    {
        m_known.insert(QLatin1String(key));
        return has(key);
    }

    QJsonValue value(const char *key, QJsonValue::Type type, const char *typeName)
    {
        m_known.insert(QLatin1String(key));
        QJsonValue found = m_object.value(QLatin1String(key));
        if (found.isUndefined())
            fail(key, "is missing");
        else if (found.type() != type)
            setError(QStringLiteral("%1 must be %2").arg(place(key), QLatin1String(typeName)));
        return found;
    }

    QString place(const char *key) const
    {
        return m_where.isEmpty() ? QString::fromLatin1(key) : m_where + QLatin1Char('.') + QLatin1String(key);
    }

    void setError(const QString &error)
    {
        if (m_error.isEmpty())
            m_error = error;
    }

    const QJsonObject m_object;
    const QString m_where;
    QString &m_error;
    QSet<QString> m_known;
};

QVector<PictureRecipe> readPictures(Reader &device, const char *key, const QStringList &generators, bool withText)
{
    QVector<PictureRecipe> recipes;
    QSet<quint8> numbers;
    device.each(key, [&](Reader &reader) {
        PictureRecipe recipe;
        recipe.keyNo = reader.whole<quint8>("keyNo");
        recipe.name = reader.text("name");
        recipe.generator = reader.text("generator");
        recipe.size = reader.size();
        recipe.seed = reader.wholeOr<quint32>("seed", recipe.keyNo);
        if (withText)
            recipe.text = reader.text("text", QString());
        if (!generators.contains(recipe.generator))
            reader.fail("generator",
                        qPrintable(QStringLiteral("must be one of %1").arg(generators.join(QLatin1String(", ")))));
        if (numbers.contains(recipe.keyNo))
            reader.fail("keyNo", "is used twice");
        numbers.insert(recipe.keyNo);
        recipes.append(recipe);
    });
    return recipes;
}

/// A preset as hardware packs it: a header that can be recognised, then what only the device understands.
QByteArray presetBytes(quint16 number, const QString &name, int size, quint32 seed)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << number << name.toUtf8();
    QRandomGenerator random(seed + number);
    while (bytes.size() < size)
        stream << static_cast<quint8>(random.bounded(256));
    return bytes;
}

/// A series of presets: names are taken in turn, from the second round on with the number of the round.
QMap<quint16, PresetState> readPresets(Reader &reader)
{
    const auto first = reader.wholeOr<quint16>("first", 1);
    const int count = reader.whole<int>("count", 0, 65536 - first);
    const int size = reader.whole<int>("size", 0, 1 << 20);
    const auto seed = reader.wholeOr<quint32>("seed", 0);
    const QJsonArray names = reader.array("names");
    QMap<quint16, PresetState> presets;
    if (names.isEmpty()) {
        reader.fail("names", "must hold at least one name");
        return presets;
    }
    for (int i = 0; i < count; ++i) {
        const int round = i / names.size();
        const QString name = names.at(i % names.size()).toString();
        const auto number = static_cast<quint16>(first + i);
        const QString full = round == 0 ? name : QStringLiteral("%1 %2").arg(name, QString::number(round + 1));
        presets.insert(number, PresetState{full, presetBytes(number, full, size, seed)});
    }
    return presets;
}

SiteDevice readDevice(Reader &reader, QString &error)
{
    SiteDevice device;
    HardwareState &state = device.state;
    state.identity.ip = reader.text("ip");
    state.identity.netMask = reader.text("netMask", QStringLiteral("255.255.255.0"));
    state.identity.gateWay = reader.text("gateWay", QString());
    state.identity.mac = reader.text("mac");
    state.identity.sn = reader.text("sn");
    state.identity.name = reader.text("name");
    state.identity.id = reader.whole<quint16>("id");
    state.identity.modelId = reader.whole<int>("modelId");
    state.protocolNumber = reader.positive("protocolNumber");
    device.online = reader.flag("online", true);
    if (reader.has("mvr")) {
        Reader mvr(reader.object("mvr"), state.identity.ip + QLatin1String(": mvr"), error);
        state.mvrCapable = mvr.flag("capable", true);
        state.mvrEnabled = mvr.flag("enabled", false);
        state.mvrItems = mvr.array("items");
        mvr.refuseUnknown();
    }
    reader.each("cards", [&state](Reader &card) {
        CardState read;
        read.type = card.whole<int>("type");
        read.pos = card.whole<int>("pos");
        read.modelId = card.whole<int>("modelId");
        if (card.has("settings"))
            read.settings = card.object("settings");
        state.cards.append(read);
    });
    reader.each("screens", [&state](Reader &screen) {
        ScreenState read;
        read.id = screen.whole<int>("id");
        read.name = screen.text("name");
        read.geometry = QRect(QPoint(screen.whole<int>("x"), screen.whole<int>("y")), screen.size());
        state.screens.append(read);
    });
    if (reader.has("settings"))
        state.settings = reader.object("settings");
    state.capacity = static_cast<quint64>(reader.wholeOr<int>("capacityMiB", 0)) << 20;
    device.backgrounds = readPictures(reader, "backgrounds", PictureGenerator::backgroundNames(), false);
    device.logos = readPictures(reader, "logos", PictureGenerator::logoNames(), true);
    if (reader.has("presets")) {
        Reader presets(reader.object("presets"), state.identity.ip + QLatin1String(": presets"), error);
        state.presets = readPresets(presets);
        presets.refuseUnknown();
    }
    return device;
}

Pace readPace(Reader &reader, QString &error)
{
    Pace pace;
    if (reader.has("throughput"))
        pace.throughput = reader.positive("throughput");
    if (reader.has("durations")) {
        const QJsonObject durations = reader.object("durations");
        Reader entries(durations, QStringLiteral("durations"), error);
        for (const QString &operation : durations.keys()) {
            const QByteArray key = operation.toLatin1();
            if (!Operations::all().contains(operation))
                entries.fail(key.constData(), "is no host operation");
            pace.durations.insert(operation, entries.whole<int>(key.constData(), 0));
        }
    }
    return pace;
}

bool contains(const QVector<ModelDescription> &models, int modelId)
{
    return std::any_of(models.begin(), models.end(),
                       [modelId](const ModelDescription &model) { return model.modelId == modelId; });
}

} // namespace

std::optional<Site> Site::fromFile(const QString &path, QString &error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    std::optional<Site> site = fromJson(file.readAll(), error);
    if (!site)
        error = QStringLiteral("%1: %2").arg(path, error);
    return site;
}

std::optional<Site> Site::fromJson(const QByteArray &json, QString &error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        error = QStringLiteral("%1 at byte %2").arg(parseError.errorString(), QString::number(parseError.offset));
        return std::nullopt;
    }
    error.clear();
    Site site;
    Reader reader(document.object(), QString(), error);
    site.name = reader.text("name");
    site.activeDevice = reader.text("activeDevice", QString());
    site.pace = readPace(reader, error);
    reader.each("models", [&site](Reader &entry) {
        ModelDescription model;
        model.modelId = entry.whole<int>("modelId");
        model.typeString = entry.text("type");
        model.supportProjectFile = entry.flag("supportProjectFile", true);
        model.exchangePos = entry.wholeOr<int>("exchangePos", model.exchangePos);
        if (contains(site.models, model.modelId))
            entry.fail("modelId", "is used twice");
        site.models.append(model);
    });
    QSet<QString> addresses;
    reader.each("devices", [&](Reader &entry) {
        const SiteDevice device = readDevice(entry, error);
        if (!contains(site.models, device.state.identity.modelId))
            entry.fail("modelId", "names no model of this site");
        if (device.state.identity.ip.isEmpty())
            entry.fail("ip", "must not be empty");
        if (addresses.contains(device.state.identity.ip))
            entry.fail("ip", "is used twice");
        addresses.insert(device.state.identity.ip);
        site.devices.append(device);
    });
    if (!site.activeDevice.isEmpty() && !addresses.contains(site.activeDevice))
        reader.fail("activeDevice", "names no device of this site");
    reader.refuseUnknown();
    if (!error.isEmpty())
        return std::nullopt;
    return site;
}

void Site::scaleDurations(double factor)
{
    for (int &duration : pace.durations)
        duration = static_cast<int>(duration * factor);
    pace.throughput = factor > 0 ? pace.throughput / factor : 0;
}

QVector<HardwareState> Site::buildHardware() const
{
    QVector<HardwareState> built;
    for (const SiteDevice &device : devices) {
        HardwareState state = device.state;
        for (const PictureRecipe &recipe : device.backgrounds)
            state.backgrounds.insert(
                recipe.keyNo, {recipe.name, PictureGenerator::background(recipe.generator, recipe.size, recipe.seed)});
        for (const PictureRecipe &recipe : device.logos)
            state.logos.insert(recipe.keyNo, {recipe.name, PictureGenerator::logo(recipe.generator, recipe.size,
                                                                                  recipe.seed, recipe.text)});
        built.append(state);
    }
    return built;
}

} // namespace Simulation
