// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <simulation/picturegenerator.h>
#include <simulation/session/session.h>
#include <simulation/site.h>

#include <support/testmain.h>

#include <QBuffer>
#include <QFile>
#include <QJsonDocument>

using namespace Simulation;

namespace {

/// A valid site, from which each test makes an invalid one.
const QByteArray goodSite = R"({
    "name": "Test",
    "activeDevice": "10.0.0.1",
    "throughput": 100,
    "durations": { "Serailizer.serailize": 50 },
    "models": [{ "modelId": 1, "type": "T-1", "exchangePos": 3 }],
    "devices": [{
        "ip": "10.0.0.1", "mac": "02:00:00:00:00:01", "sn": "S", "name": "One", "id": 1, "modelId": 1,
        "protocolNumber": 2.5,
        "backgrounds": [{ "keyNo": 9, "name": "Blue", "generator": "beams", "width": 16, "height": 9 }],
        "presets": { "first": 65534, "count": 2, "size": 40, "names": ["A"] }
    }]
})";

std::optional<Site> builtIn(const QString &name)
{
    QString error;
    const std::optional<Site> site = Site::fromFile(builtInSite(name), error);
    if (!site)
        QTest::qFail(qPrintable(error), __FILE__, __LINE__);
    return site;
}

QVector<SiteDevice> devicesOf(const Site &site, bool online, bool projectFiles)
{
    QVector<SiteDevice> found;
    for (const SiteDevice &device : site.devices) {
        for (const ModelDescription &model : site.models) {
            if (model.modelId == device.state.identity.modelId && model.supportProjectFile == projectFiles &&
                device.online == online)
                found.append(device);
        }
    }
    return found;
}

int pngSize(const QImage &image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data().size();
}

} // namespace

class TstSite : public QObject
{
    Q_OBJECT

private slots:
    void a_site_is_read()
    {
        QString error;
        const std::optional<Site> site = Site::fromJson(goodSite, error);
        QVERIFY2(site, qPrintable(error));
        QCOMPARE(site->activeDevice, QStringLiteral("10.0.0.1"));
        QCOMPARE(site->pace.throughput, 100.0);
        QCOMPARE(site->pace.durations.value(Operations::serailize), 50);
        QCOMPARE(site->models.at(0).exchangePos, 3);
        const SiteDevice &device = site->devices.at(0);
        QVERIFY(device.online);
        QCOMPARE(device.backgrounds.at(0).size, QSize(16, 9));
        QCOMPARE(device.state.presets.keys(), QList<quint16>({65534, 65535}));
        QCOMPARE(device.state.presets[65534].name, QStringLiteral("A"));
        QCOMPARE(device.state.presets[65535].name, QStringLiteral("A 2"));
        QCOMPARE(device.state.presets[65535].bytes.size(), 40);
        QVERIFY(device.state.presets[65534].bytes != device.state.presets[65535].bytes);
    }

    void a_wrong_site_is_refused_with_its_place_data()
    {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *name, const char *from, const char *to, const char *message) {
            QTest::newRow(name) << QByteArray(from) << QByteArray(to) << QString::fromLatin1(message);
        };
        row("no JSON", "\"Test\",", "\"Test\"", "unterminated object at byte");
        row("missing", "\"sn\": \"S\",", "", "devices[0].sn is missing");
        row("wrong type", "\"name\": \"One\"", "\"name\": 1", "devices[0].name must be a text");
        row("unknown member", "\"sn\":", "\"colour\": 1, \"sn\":", "devices[0].colour is not known");
        row("out of range", "\"keyNo\": 9", "\"keyNo\": 256",
            "devices[0].backgrounds[0].keyNo must be a whole number from 0 to 255");
        row("not whole", "\"width\": 16", "\"width\": 1.5",
            "devices[0].backgrounds[0].width must be a whole number from 1 to 16384");
        row("unknown generator", "\"beams\"", "\"rays\"",
            "devices[0].backgrounds[0].generator must be one of aurora, beams, bokeh, stage");
        row("unknown model", "\"modelId\": 1,\n", "\"modelId\": 2,\n",
            "devices[0].modelId names no model of this site");
        row("unknown active device", "\"activeDevice\": \"10.0.0.1\"", "\"activeDevice\": \"10.0.0.2\"",
            "activeDevice names no device of this site");
        row("unknown operation", "Serailizer.serailize", "Serializer.serialize",
            "durations.Serializer.serialize is no host operation");
        row("entry that is no object", "[{ \"modelId\"", "[7, { \"modelId\"", "models[0] must be an object");
        row("presets without names", "[\"A\"]", "[]", "10.0.0.1: presets.names must hold at least one name");
    }

    void a_wrong_site_is_refused_with_its_place()
    {
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QString, message);
        QByteArray json = goodSite;
        QVERIFY(json.contains(from));
        json.replace(from, to);
        QString error;
        QVERIFY(!Site::fromJson(json, error));
        QVERIFY2(error.startsWith(message), qPrintable(error));
    }

    void a_doubled_address_or_key_number_is_refused()
    {
        QJsonObject site = QJsonDocument::fromJson(goodSite).object();
        QJsonArray devices = site.value(QStringLiteral("devices")).toArray();
        devices.append(devices.at(0));
        site.insert(QStringLiteral("devices"), devices);
        QString error;
        QVERIFY(!Site::fromJson(QJsonDocument(site).toJson(), error));
        QCOMPARE(error, QStringLiteral("devices[1].ip is used twice"));

        QJsonObject device = devices.at(0).toObject();
        QJsonArray pictures = device.value(QStringLiteral("backgrounds")).toArray();
        pictures.append(pictures.at(0));
        device.insert(QStringLiteral("backgrounds"), pictures);
        site.insert(QStringLiteral("devices"), QJsonArray{device});
        QVERIFY(!Site::fromJson(QJsonDocument(site).toJson(), error));
        QCOMPARE(error, QStringLiteral("devices[0].backgrounds[1].keyNo is used twice"));
    }

    void a_missing_file_is_named()
    {
        QString error;
        QVERIFY(!Site::fromFile(QStringLiteral("/nowhere/site.json"), error));
        QVERIFY2(error.startsWith(QStringLiteral("/nowhere/site.json: ")), qPrintable(error));
    }

    void durations_can_be_scaled()
    {
        QString error;
        Site site = *Site::fromJson(goodSite, error);
        site.scaleDurations(0.1);
        QCOMPARE(site.pace.durations.value(Operations::serailize), 5);
        QCOMPARE(site.pace.throughput, 1000.0);
        site.scaleDurations(0);
        QCOMPARE(site.pace.durations.value(Operations::serailize), 0);
        QCOMPARE(site.pace.throughput, 0.0);
    }

    void the_built_in_sites_have_the_devices_that_the_work_needs_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("default") << QStringLiteral("default");
        QTest::newRow("small") << QStringLiteral("small");
    }

    void the_built_in_sites_have_the_devices_that_the_work_needs()
    {
        QFETCH(QString, name);
        const std::optional<Site> site = builtIn(name);
        QVERIFY(site);
        const QVector<SiteDevice> online = devicesOf(*site, true, true);
        QCOMPARE(online.size(), 3);
        QCOMPARE(online.at(0).state.identity.modelId, online.at(1).state.identity.modelId);
        QVERIFY(online.at(0).state.identity.modelId != online.at(2).state.identity.modelId);
        QVERIFY(online.at(0).state.configuration() != online.at(1).state.configuration());
        QVERIFY(online.at(0).backgrounds.size() >= 4 && online.at(0).logos.size() >= 2);
        QCOMPARE(devicesOf(*site, false, true).size(), 1);
        QCOMPARE(devicesOf(*site, true, false).size(), 1);
        QCOMPARE(site->activeDevice, online.at(0).state.identity.ip);
    }

    void the_demonstration_has_real_sizes_and_durations()
    {
        const std::optional<Site> site = builtIn(QStringLiteral("default"));
        QVERIFY(site);
        const SiteDevice &first = site->devices.at(0);
        QMap<int, int> widths;
        for (const PictureRecipe &recipe : first.backgrounds)
            ++widths[recipe.size.width()];
        QCOMPARE(widths.value(3840), 2);
        QVERIFY(widths.value(1920) >= 4);
        QCOMPARE(first.state.presets.size(), 60);
        QVERIFY(site->pace.throughput > 0 && !site->pace.durations.isEmpty());
    }

    void the_small_site_never_waits()
    {
        const std::optional<Site> site = builtIn(QStringLiteral("small"));
        QVERIFY(site);
        QVERIFY(site->pace.durations.isEmpty());
        QCOMPARE(site->pace.throughput, 0.0);
    }

    void hardware_is_built_with_all_pictures()
    {
        const std::optional<Site> site = builtIn(QStringLiteral("small"));
        QVERIFY(site);
        const QVector<HardwareState> states = site->buildHardware();
        QCOMPARE(states.size(), site->devices.size());
        for (int i = 0; i < states.size(); ++i) {
            QCOMPARE(states.at(i).backgrounds.size(), site->devices.at(i).backgrounds.size());
            QCOMPARE(states.at(i).logos.size(), site->devices.at(i).logos.size());
            for (const PictureRecipe &recipe : site->devices.at(i).backgrounds)
                QCOMPARE(states.at(i).backgrounds.value(recipe.keyNo).pixels.size(), recipe.size);
        }
        QVERIFY(site->buildHardware() == states);
    }

    void backgrounds_are_opaque_and_as_large_as_real_ones_data()
    {
        QTest::addColumn<QString>("generator");
        for (const QString &name : PictureGenerator::backgroundNames())
            QTest::newRow(qPrintable(name)) << name;
    }

    void backgrounds_are_opaque_and_as_large_as_real_ones()
    {
        QFETCH(QString, generator);
        const QImage image = PictureGenerator::background(generator, QSize(1920, 1080), 5);
        QCOMPARE(image.size(), QSize(1920, 1080));
        QCOMPARE(image.format(), QImage::Format_RGB32);
        const int bytes = pngSize(image);
        QVERIFY2(bytes > 1000 * 1000 && bytes < 8 * 1000 * 1000, qPrintable(QString::number(bytes)));
        QVERIFY(image == PictureGenerator::background(generator, QSize(1920, 1080), 5));
        QVERIFY(image != PictureGenerator::background(generator, QSize(1920, 1080), 6));
    }

    void logos_have_soft_transparent_edges()
    {
        for (const QString &generator : PictureGenerator::logoNames()) {
            const QImage image = PictureGenerator::logo(generator, QSize(320, 128), 3, QStringLiteral("HALL"));
            QCOMPARE(image.format(), QImage::Format_ARGB32);
            QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
            QCOMPARE(qAlpha(image.pixel(160, 90)), 255);
            QSet<int> alphas;
            for (int x = 0; x < image.width(); ++x)
                alphas.insert(qAlpha(image.pixel(x, 64)));
            QVERIFY2(alphas.size() > 4, qPrintable(generator));
            QVERIFY(image != PictureGenerator::logo(generator, QSize(320, 128), 3, QStringLiteral("STAGE")));
        }
    }

    void an_unknown_generator_or_an_empty_size_gives_no_picture()
    {
        QVERIFY(PictureGenerator::background(QStringLiteral("rays"), QSize(16, 9), 1).isNull());
        QVERIFY(PictureGenerator::background(QStringLiteral("beams"), QSize(0, 9), 1).isNull());
        QVERIFY(PictureGenerator::logo(QStringLiteral("beams"), QSize(16, 9), 1, QString()).isNull());
        QVERIFY(!PictureGenerator::background(QStringLiteral("beams"), QSize(1, 1), 1).isNull());
    }
};

TEST_MAIN_GUI(TstSite)
#include "tst_site.moc"
