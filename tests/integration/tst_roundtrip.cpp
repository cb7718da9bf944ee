// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "engineerdocbackup.h"
#include "engineerdocload.h"

#include <support/customsite.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <modelcontrol/devicecontroler.h>
#include <modelcontrol/operationadapter.h>
#include <simulation/journal.h>

#include <optional>
#include <set>

using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using Simulation::HardwareState;

namespace {

const QString sourceIp = QStringLiteral("10.0.0.11");
const QString targetIp = QStringLiteral("10.0.0.12");

constexpr int deviceCount = 208;

enum Route { SameDevice, SecondDevice, OnlineToOffline, OfflineToOffline, RouteCount };

const char *routeName(int route)
{
    const char *const names[] = {"online to the same device", "online to a second device", "online to offline",
                                 "offline to offline"};
    return names[route];
}

/// Devices of every kind, reproducible from the seed.
class Generator
{
public:
    explicit Generator(quint32 seed)
        : m_random(seed)
    {}

    int number(int lowest, int highest) { return m_random.bounded(lowest, highest + 1); }
    bool chance(int percent) { return number(1, 100) <= percent; }

    QString name()
    {
        static const QStringList words{QStringLiteral("Opening"),
                                       QString::fromUtf8("开场"),
                                       QString::fromUtf8("灯光秀"),
                                       QString::fromUtf8("Ключ"),
                                       QString::fromUtf8("عرض"),
                                       QString::fromUtf8("मंच"),
                                       QString::fromUtf8("🎬🎤"),
                                       QString::fromUtf8("Bühne"),
                                       QString::fromUtf8("e\xcc\x81te\xcc\x81"),
                                       QStringLiteral("\"quoted\" \\ %1"),
                                       QStringLiteral("<b>&amp;</b>"),
                                       QString()};
        QStringList chosen;
        for (int i = number(1, 3); i > 0; --i)
            chosen.append(words.at(number(0, words.size() - 1)));
        return chosen.join(QLatin1Char(' '));
    }

    QJsonObject settings()
    {
        QJsonObject object;
        for (int i = number(0, 6); i > 0; --i) {
            const QString key = QStringLiteral("key%1").arg(i);
            switch (number(0, 4)) {
            case 0:
                object.insert(key, number(-100000, 100000));
                break;
            case 1:
                object.insert(key, name());
                break;
            case 2:
                object.insert(key, chance(50));
                break;
            case 3:
                object.insert(key, number(0, 100000) / 1000.0);
                break;
            default:
                object.insert(key, QJsonArray{number(0, 9), QJsonObject{{QStringLiteral("deep"), name()}}});
            }
        }
        return object;
    }

    QImage picture(QImage::Format format)
    {
        const QSize size =
            chance(10) ? QSize(1, 1) : (chance(10) ? QSize(number(1, 2000), 1) : QSize(number(1, 48), number(1, 48)));
        return noisePicture(size, m_random.generate(), format);
    }

    /// Sequential, so that each gets the same random numbers in every run.
    template<typename Key>
    std::set<Key> keys(int count, int highest)
    {
        std::set<Key> keys;
        if (count > 1 && chance(30))
            keys.insert({Key(0), Key(highest)});
        while (int(keys.size()) < count)
            keys.insert(Key(number(0, highest)));
        return keys;
    }

    QVector<Simulation::CardState> cards()
    {
        QVector<Simulation::CardState> cards;
        for (const int pos : keys<int>(number(0, 12), 15))
            cards.append({number(1, 6), pos, number(200, 210), settings()});
        return cards;
    }

    /// All of that is configuration; the parts unique to a device and its cards stay.
    void configure(HardwareState &state)
    {
        state.settings = settings();
        for (Simulation::CardState &card : state.cards)
            card.settings = settings();
        state.screens.clear();
        for (int i = number(0, 5); i > 0; --i)
            state.screens.append({number(0, 100), name(),
                                  QRect(number(-5000, 5000), number(0, 5000), number(1, 9000), number(1, 9000))});
        state.mvrEnabled = state.mvrCapable && chance(50);
        state.mvrItems = QJsonArray();
        // Items are transferred if the multi-viewer is on, and only then.
        for (int i = state.mvrEnabled ? number(0, 9) : 0; i > 0; --i)
            state.mvrItems.append(settings());
        state.backgrounds.clear();
        for (const quint8 key : keys<quint8>(chance(15) ? 0 : number(0, 8), 255))
            state.backgrounds.insert(key, {name(), picture(QImage::Format_RGB32)});
        state.logos.clear();
        for (const quint8 key : keys<quint8>(chance(15) ? 0 : number(0, 6), 255))
            state.logos.insert(key, {name(), picture(QImage::Format_ARGB32)});
        state.presets.clear();
        for (const quint16 key : keys<quint16>(chance(5) ? 300 : number(0, 12), 65535))
            state.presets.insert(key, {name(), bytes(number(0, 200))});
    }

private:
    QByteArray bytes(int size)
    {
        QByteArray bytes(size, Qt::Uninitialized);
        for (char &byte : bytes)
            byte = char(number(0, 255));
        return bytes;
    }

    QRandomGenerator m_random;
};

/// The contents of an offline device: its description, with the pictures and presets next to it.
HardwareState stateOnDisk(const QString &directory, const QString &ip)
{
    QFile file(QStringLiteral("%1/%2.json").arg(directory, ip));
    if (!file.open(QIODevice::ReadOnly))
        return HardwareState();
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    // Const, so that no loop detaches the list.
    const auto entries = [&object](const char *key) -> const QJsonArray {
        return object.value(QLatin1String(key)).toArray();
    };
    const auto text = [](const QJsonValue &entry, const char *key) { return entry[QLatin1String(key)].toString(); };
    const auto number = [](const QJsonValue &entry, const char *key) { return entry[QLatin1String(key)].toInt(); };

    HardwareState state;
    state.identity.ip = text(object, "ip");
    state.identity.netMask = text(object, "netMask");
    state.identity.gateWay = text(object, "gateWay");
    state.identity.mac = text(object, "mac");
    state.identity.id = quint16(number(object, "id"));
    state.identity.modelId = number(object, "modelId");
    state.mvrEnabled = object.value(QLatin1String("mvrEnabled")).toBool();
    state.mvrItems = entries("mvrItems");
    state.settings = object.value(QLatin1String("settings")).toObject();
    for (const QJsonValue &card : entries("slots"))
        state.cards.append({number(card, "type"), number(card, "pos"), number(card, "modelId"),
                            card[QLatin1String("settings")].toObject()});
    for (const QJsonValue &screen : entries("screens"))
        state.screens.append(
            {number(screen, "id"), text(screen, "name"),
             QRect(number(screen, "x"), number(screen, "y"), number(screen, "width"), number(screen, "height"))});
    for (const QJsonValue &materail : entries("materials")) {
        const bool isLogo = number(materail, "type") == 1;
        const int key = number(materail, "keyNo");
        const QString folder = isLogo ? QStringLiteral("LOGO") : QStringLiteral("BKG");
        const QImage picture(QStringLiteral("%1/%2/%2_%3.png").arg(directory, folder, QString::number(key)));
        (isLogo ? state.logos : state.backgrounds)
            .insert(quint8(key), {text(materail, "name"),
                                  picture.convertToFormat(isLogo ? QImage::Format_ARGB32 : QImage::Format_RGB32)});
    }
    for (const QJsonValue &preset : entries("presets")) {
        const int key = number(preset, "number");
        QFile presetFile(QStringLiteral("%1/Preset/%2.RPst").arg(directory, QString::number(key)));
        QByteArray bytes("cannot be read");
        if (presetFile.open(QIODevice::ReadOnly)) {
            QDataStream stream(&presetFile);
            stream >> bytes;
        }
        const bool isSame = bytes == QByteArray::fromBase64(text(preset, "detail").toLatin1());
        state.presets.insert(quint16(key),
                             {text(preset, "name"), isSame ? bytes : QByteArray("file and description differ")});
    }
    return state;
}

} // namespace

/// Applying a saved package restores what was saved, for any device.
class TstRoundtrip : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void saving_and_applying_brings_everything_back_data();
    void saving_and_applying_brings_everything_back();

private:
    void save(const QString &path);
    void apply(const QString &path, const QString &ip);
    void runJob(QThread &job);

    quint32 m_seed = 1;
    std::optional<CustomSite> m_site;
};

void TstRoundtrip::initTestCase()
{
    // ROUNDTRIP_SEED=random, or the number printed by a failed run.
    const QByteArray wish = qgetenv("ROUNDTRIP_SEED");
    if (!wish.isEmpty())
        m_seed = wish == "random" ? QRandomGenerator::global()->generate() : wish.toUInt();
    qInfo("ROUNDTRIP_SEED=%u", m_seed);
}

void TstRoundtrip::runJob(QThread &job)
{
    SignalRecorder<> finished(&job, &QThread::finished);
    job.start(QThread::InheritPriority);
    QTRY_COMPARE(finished.count(), 1);
    QVERIFY(job.wait(60000));
}

/// Like the panel.
void TstRoundtrip::save(const QString &path)
{
    const std::shared_ptr<Model::Device> device = (*m_site)->device(sourceIp);
    if (device->getDeviceOnlineFlag())
        QCOMPARE(
            OperationAdapter::instance()->updateOnlineDevice(sourceIp, device->getSN(), ControlStruct::defaultCallBack),
            ControlEnum::ErrorNone);
    EngineerDocBackup job(nullptr, sourceIp);
    job.setProjectPath(QFileInfo(path).path() + QLatin1Char('/'));
    job.setProjectInfo(QFileInfo(path).completeBaseName(), QStringLiteral("round trip"));
    runJob(job);
    QCOMPARE(job.resultCode(), int(BackupSuccess));
    QVERIFY(QFile::exists(path));
}

/// Like the panel.
void TstRoundtrip::apply(const QString &path, const QString &ip)
{
    const std::shared_ptr<Model::Device> device = (*m_site)->device(ip);
    const auto sync = [&] {
        QCOMPARE(OperationAdapter::instance()->updateOnlineDevice(ip, device->getSN(), ControlStruct::defaultCallBack),
                 ControlEnum::ErrorNone);
    };
    const bool online = device->getDeviceOnlineFlag();
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(ip);
    job.setPackagePath(path);
    if (online)
        sync();
    QVERIFY(job.checkPackageFile());
    QVERIFY2(job.checkDevice(), qPrintable(QString::number(job.resultCode())));
    if (online) {
        QVERIFY(ModelControl::DeviceControler(device).updateDeviceInfo(
            {{Model::Device::DeviceReset, Model::Device::ResetFactory}}));
        sync();
    }
    runJob(job);
    QCOMPARE(job.resultCode(), int(LoadSuccess));
}

void TstRoundtrip::saving_and_applying_brings_everything_back_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("route");
    // ROUNDTRIP_DEVICES=n takes only the first n.
    const int wish = qEnvironmentVariableIntValue("ROUNDTRIP_DEVICES");
    for (int number = 0; number < (wish > 0 ? wish : deviceCount); ++number) {
        const int route = number % RouteCount;
        QTest::addRow("device %d, %s", number, routeName(route)) << number << route;
    }
}

void TstRoundtrip::saving_and_applying_brings_everything_back()
{
    QFETCH(int, number);
    QFETCH(int, route);
    Generator generator(m_seed + 1000003u * quint32(number));

    HardwareState source = plainDevice(sourceIp);
    source.identity.name = generator.name();
    source.cards = generator.cards();
    source.mvrCapable = generator.chance(80);
    source.protocolNumber = generator.number(0, 30) / 10.0;
    generator.configure(source);
    // Not in every device: large pictures dominate the time.
    if (number % 26 < RouteCount) {
        const QImage large = noisePicture(QSize(384, 216), m_seed).scaled(3840, 2160);
        source.backgrounds.insert(128, {generator.name(), large});
    }

    HardwareState target = source;
    target.identity = plainDevice(targetIp).identity;
    generator.configure(target);

    m_site.reset();
    m_site.emplace(QVector<CustomDevice>{{source, route != OfflineToOffline},
                                         {target, route == SameDevice || route == SecondDevice}});
    const QString path = m_site->path() + QString::fromUtf8("/show 第%1.corvelpro").arg(number);
    save(path);
    if (QTest::currentTestFailed())
        return;
    QVERIFY2((*m_site)->hardware(sourceIp)->state() == source, "saving changed the device");

    const QString appliedIp = route == SameDevice ? sourceIp : targetIp;
    const HardwareState before = route == OnlineToOffline || route == OfflineToOffline
                                     ? stateOnDisk(m_site->devicePath(targetIp), targetIp)
                                     : (*m_site)->hardware(appliedIp)->state();
    if (route == SameDevice)
        (*m_site)->hardware(sourceIp)->change([&](HardwareState &state) { generator.configure(state); });
    apply(path, appliedIp);
    if (QTest::currentTestFailed())
        return;

    HardwareState after = route == OnlineToOffline || route == OfflineToOffline
                              ? stateOnDisk(m_site->devicePath(targetIp), targetIp)
                              : (*m_site)->hardware(appliedIp)->state();
    after.mvrCapable = source.mvrCapable;
    QStringList differences = after.configuration().differencesTo(source.configuration());
    QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QStringLiteral("\n"))));

    // The target keeps its identity.
    HardwareState identity;
    identity.identity = after.identity;
    HardwareState previousIdentity;
    previousIdentity.identity = before.identity;
    differences = identity.differencesTo(previousIdentity);
    QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QStringLiteral("\n"))));
    if (route != SameDevice)
        QVERIFY2((*m_site)->hardware(sourceIp)->state() == source, "applying changed the device that was saved");
}

TEST_MAIN_GUI(TstRoundtrip)
#include "tst_roundtrip.moc"
