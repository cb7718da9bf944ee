// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "loadtesting.h"
#include "zippackagehandle.h"

#include <support/costs.h>
#include <support/journalmatchers.h>

#include <model/deviceeditor.h>

using namespace LoadTesting;
using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using namespace Simulation::Operations;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;
using Simulation::Journal;

/// A load into the directory of an offline device.
class TstOfflineApply : public QObject, protected Loading
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void offline_apply_calls_the_host_in_order();
    void offline_apply_extracts_everything_but_the_description();
    void applying_replaces_the_model_but_no_identity();
    void offline_apply_writes_the_description_of_the_target();
    void a_failing_serialiser_ends_the_load();
    void a_failing_copy_still_replaces_the_model();
    void thumbnails_keep_to_three_bands_data();
    void thumbnails_keep_to_three_bands();
    void a_thumbnail_without_picture_is_empty();
    void the_description_can_be_copied_alone();
    void copying_a_missing_description_succeeds();
    void copying_a_damaged_description_fails();
    void files_arrive_before_the_model();
    void a_device_never_holds_more_than_a_package();
    void its_names_never_exceed_those_of_packages();
};

void TstOfflineApply::offline_apply_calls_the_host_in_order()
{
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(richDevice(sourceIp))), offlineIp);
    SignalRecorder<QString> progress(job.get(), &EngineerDocLoad::signal_operatoerChanged);
    QCOMPARE(runJob(*job), int(LoadSuccess));
    VERIFY_JOURNAL({serailize});
    QCOMPARE(Journal::instance()->entries().first().arguments.value(QStringLiteral("configPath")).toString(),
             m_site->configPath());
    QVERIFY(!Journal::instance()->entries().first().onMainThread);
    QVERIFY(progress.isEmpty());
}

void TstOfflineApply::offline_apply_extracts_everything_but_the_description()
{
    const HardwareState source = richDevice(sourceIp);
    PackageBuilder package = packageOf(source);
    package.folder("Empty").file("notes/second.JSON", "{\"a\":1}").file("notes/read me.txt", "text");
    QCOMPARE(apply(package, offlineIp), int(LoadSuccess));
    QCOMPARE(
        contents(m_site->devicePath(offlineIp)),
        (QStringList{offlineIp + QStringLiteral(".json"), QStringLiteral("BKG"), QStringLiteral("BKG/BKG_1.png"),
                     QStringLiteral("BKG/BKG_7.png"), QStringLiteral("Empty"), QStringLiteral("LOGO"),
                     QStringLiteral("LOGO/LOGO_2.png"), QStringLiteral("Preset"), QStringLiteral("Preset/1.RPst"),
                     QStringLiteral("Preset/300.RPst"), QStringLiteral("notes"), QStringLiteral("notes/read me.txt")}));
    QCOMPARE(
        QImage(m_site->devicePath(offlineIp) + QStringLiteral("/BKG/BKG_7.png")).convertToFormat(QImage::Format_RGB32),
        source.backgrounds.value(7).pixels);
    QCOMPARE(readFile(m_site->devicePath(offlineIp) + QStringLiteral("/Preset/1.RPst")),
             QByteArray::fromHex("0000000c") + source.presets.value(1).bytes);
}

void TstOfflineApply::applying_replaces_the_model_but_no_identity()
{
    HardwareState source = richDevice(sourceIp);
    source.cards = {{9, 9, 9, {}}};
    source.protocolNumber = 99;
    const HardwareState target = plainDevice(offlineIp);
    QCOMPARE(apply(packageOf(source), offlineIp), int(LoadSuccess));

    const QJsonObject expected = QJsonDocument::fromJson(changedDescription(source, [&](QJsonObject &object) {
                                     object[QLatin1String("ip")] = target.identity.ip;
                                     object[QLatin1String("netMask")] = target.identity.netMask;
                                     object[QLatin1String("gateWay")] = target.identity.gateWay;
                                     object[QLatin1String("mac")] = target.identity.mac;
                                     object[QLatin1String("id")] = target.identity.id;
                                     object[QLatin1String("protocolNumber")] = target.protocolNumber;
                                 })).object();
    QCOMPARE((*m_site)->device(offlineIp)->toJson(), expected);
    QVERIFY(!(*m_site)->device(offlineIp)->getDeviceOnlineFlag());
}

void TstOfflineApply::offline_apply_writes_the_description_of_the_target()
{
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), offlineIp), int(LoadSuccess));
    const QByteArray written = readFile(m_site->devicePath(offlineIp) + QStringLiteral("/%1.json").arg(offlineIp));
    QCOMPARE(QJsonDocument::fromJson(written).object(), (*m_site)->device(offlineIp)->toJson());
}

void TstOfflineApply::a_failing_serialiser_ends_the_load()
{
    Faults::instance()->arm(serailize, Fault::fail());
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), offlineIp), int(LoadSerializeFailed));
    QCOMPARE(WarningGuard::count(QtDebugMsg, QStringLiteral("Fail to serailize model data.")), 1);
    const std::vector<Talvik::weak_refrence<Model::Materail>> logos = (*m_site)->device(offlineIp)->getLogos();
    QCOMPARE(int(logos.size()), 1);
    QVERIFY2(logos.front().lock()->thumb().isNull(), "the job went on after the failure");
}

void TstOfflineApply::a_failing_copy_still_replaces_the_model()
{
    HardwareState source = richDevice(sourceIp);
    PackageBuilder package = packageOf(source);
    package.file("broken.txt", "some text").claimCrc(1).file("never.txt", "not reached");
    QCOMPARE(apply(package, offlineIp), int(LoadDecompressFailed));
    VERIFY_JOURNAL({serailize});
    const std::shared_ptr<Model::Device> device = (*m_site)->device(offlineIp);
    QCOMPARE(device->getName(), source.identity.name);
    QCOMPARE(int(device->getPresets().size()), 2);
    QVERIFY(!device->getLogos().front().lock()->thumb().isNull());
    const QByteArray written = readFile(m_site->devicePath(offlineIp) + QStringLiteral("/%1.json").arg(offlineIp));
    QCOMPARE(QJsonDocument::fromJson(written).object(), device->toJson());
    QVERIFY(!QFile::exists(m_site->devicePath(offlineIp) + QStringLiteral("/never.txt")));
    const QStringList logged = WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Extract json file failed:"));
    QCOMPARE(logged.size(), 1);
    QVERIFY(logged.first().contains(m_packages.filePath(QStringLiteral("show.corvelpro"))));
}

void TstOfflineApply::thumbnails_keep_to_three_bands_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("thumb");
    QTest::newRow("1 by 1: itself") << QSize(1, 1) << QSize(1, 1);
    QTest::newRow("65,535: itself") << QSize(255, 257) << QSize(255, 257);
    QTest::newRow("65,536: itself") << QSize(256, 256) << QSize(256, 256);
    // A prime: only 65,537 by 1 has this area, and a tenth of 1 is 0.
    QTest::newRow("65,537: a tenth") << QSize(65537, 1) << QSize(0, 0);
    QTest::newRow("65,538: a tenth") << QSize(331, 198) << QSize(33, 19);
    QTest::newRow("262,143: a tenth") << QSize(511, 513) << QSize(51, 51);
    QTest::newRow("262,144: itself") << QSize(512, 512) << QSize(512, 512);
    QTest::newRow("262,144, narrow: itself") << QSize(64, 4096) << QSize(64, 4096);
    QTest::newRow("262,145: the area") << QSize(5, 52429) << QSize(4, 52428);
    QTest::newRow("360,000: the area") << QSize(600, 600) << QSize(512, 512);
    QTest::newRow("HD: the area") << QSize(1920, 1080) << QSize(682, 384);
    QTest::newRow("upright HD: the area") << QSize(1080, 1920) << QSize(384, 682);
}

void TstOfflineApply::thumbnails_keep_to_three_bands()
{
    QFETCH(QSize, size);
    QFETCH(QSize, thumb);
    const QImage picture = noisePicture(size, 3, QImage::Format_ARGB32);
    const QImage logo = noisePicture(size, 4, QImage::Format_ARGB32);
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), picture});
    source.logos.insert(2, {QStringLiteral("Sponsor"), logo});
    QCOMPARE(apply(packageOf(source), offlineIp), int(LoadSuccess));

    const auto expected = [&](const QImage &whole) {
        return thumb == size ? whole : whole.scaled(thumb, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    };
    const std::shared_ptr<Model::Device> device = (*m_site)->device(offlineIp);
    const QImage background = device->getBKGs().front().lock()->thumb();
    QCOMPARE(background.size(), thumb);
    QCOMPARE(background, expected(picture));
    QCOMPARE(device->getLogos().front().lock()->thumb(), expected(logo));
}

void TstOfflineApply::a_thumbnail_without_picture_is_empty()
{
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({4, 4}, 1)});
    QCOMPARE(apply(descriptionOnly(descriptionOf(source)), offlineIp), int(LoadSuccess));
    QVERIFY((*m_site)->device(offlineIp)->getBKGs().front().lock()->thumb().isNull());
}

void TstOfflineApply::the_description_can_be_copied_alone()
{
    const QString target = m_site->devicePath(offlineIp) + QStringLiteral("/%1.json").arg(offlineIp);
    QVERIFY(writeFile(target, "the one before"));
    const QStringList before = contents(m_site->configPath());
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(offlineIp);
    job.setPackagePath(write(PackageBuilder().file("x.txt", "x").file("deep/First.JSON", "first").file("b.json", "2")));
    QVERIFY(job.copyConfigFileToDevice());
    QCOMPARE(readFile(target), QByteArray("first"));
    QCOMPARE(contents(m_site->configPath()), before);
}

void TstOfflineApply::copying_a_missing_description_succeeds()
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(offlineIp);
    job.setPackagePath(write(PackageBuilder().file("x.txt", "x")));
    QVERIFY(job.copyConfigFileToDevice());
    QCOMPARE(job.resultCode(), int(LoadSuccess));
}

void TstOfflineApply::copying_a_damaged_description_fails()
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(offlineIp);
    job.setPackagePath(write(PackageBuilder().file("x.json", "{\"a\":1}").claimCrc(1)));
    const QString target = m_site->devicePath(offlineIp) + QStringLiteral("/%1.json").arg(offlineIp);
    QVERIFY(QFile::exists(target));
    QVERIFY(!job.copyConfigFileToDevice());
    QVERIFY2(!QFile::exists(target), "the description of another state is left");
    QCOMPARE(job.resultCode(), int(LoadDecompressFailed));
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Extract json file failed:")).size(), 1);
}

void TstOfflineApply::files_arrive_before_the_model()
{
    const HardwareState source = richDevice(sourceIp);
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(source)), offlineIp);
    const std::shared_ptr<Model::Device> device = (*m_site)->device(offlineIp);
    bool hasFiles = false;
    QString name;
    int presets = 0;
    bool hasThumbnail = true;
    bool wasOldModel = false;
    Faults::instance()->arm(deviceFromJson, Fault::run([&] {
                                hasFiles = QFile::exists(m_site->devicePath(offlineIp) + "/Preset/300.RPst");
                                wasOldModel = device->getName() == plainDevice(offlineIp).identity.name &&
                                              device->getScreens().empty();
                            }));
    Faults::instance()->arm(serailize, Fault::run([&] {
                                name = device->getName();
                                presets = int(device->getPresets().size());
                                hasThumbnail = !device->getLogos().front().lock()->thumb().isNull();
                            }));
    QCOMPARE(runJob(*job), int(LoadSuccess));
    QVERIFY(hasFiles);
    QVERIFY2(wasOldModel, "the model was not cleared, or was replaced already");
    QCOMPARE(name, source.identity.name);
    QCOMPARE(presets, 2);
    QVERIFY2(!hasThumbnail, "thumbnails are made last");
    QVERIFY(!device->getLogos().front().lock()->thumb().isNull());
}

void TstOfflineApply::a_device_never_holds_more_than_a_package()
{
    SKIP_WHERE_COSTS_DO_NOT_COUNT();
    // So many files are flushed and removed there at once.
    const QByteArray temporary = qgetenv("TMPDIR");
    if (QFileInfo(QStringLiteral("/dev/shm")).isWritable())
        qputenv("TMPDIR", "/dev/shm");
    m_site.reset();
    m_site.emplace(QVector<CustomDevice>{{plainDevice(offlineIp), false}});
    qputenv("TMPDIR", temporary);
    const QString folder = m_site->devicePath(offlineIp);
    const auto packageOfFiles = [](const QByteArray &prefix, int count) {
        PackageBuilder package = descriptionOnly(descriptionOf(plainDevice(sourceIp)));
        if (prefix.endsWith('/'))
            package.folder(prefix);
        for (int number = 0; number < count; ++number)
            package.file(prefix + QByteArray::number(number), "x", PackageBuilder::Stored);
        return package;
    };
    QCOMPARE(apply(packageOfFiles("first", 20), offlineIp), int(LoadSuccess));
    const int most = 65534;
    const int room = 10;
    for (int count = contents(folder).size(); count < most - room; ++count)
        QVERIFY(writeFile(folder + QStringLiteral("/before%1").arg(count), "x"));
    const QStringList before = contents(folder);
    QCOMPARE(before.size(), most - room);
    QCOMPARE(apply(packageOfFiles("second", room + 1), offlineIp), int(LoadDecompressFailed));
    QCOMPARE(contents(folder), before);
    // Replaced files need no additional space.
    QCOMPARE(apply(packageOfFiles("first", 20), offlineIp), int(LoadSuccess));

    // The folder is an entry, too.
    QCOMPARE(apply(packageOfFiles("more/", room), offlineIp), int(LoadDecompressFailed));
    QCOMPARE(contents(folder), before);
    QCOMPARE(apply(packageOfFiles("more/", room - 1), offlineIp), int(LoadSuccess));
    EngineerPacketInfo info;
    info.strFilePath = m_packages.filePath(QStringLiteral("saved.corvelpro"));
    QVERIFY(ZipPackageHandle::compressEngineerPacket(folder, info));
}

void TstOfflineApply::its_names_never_exceed_those_of_packages()
{
    SKIP_WHERE_COSTS_DO_NOT_COUNT();
    const int most = 16 * 1024 * 1024;
    const QByteArray folder = QByteArray(250, 'd') + '/';
    const int deepest = 12;
    const int longest = deepest * folder.size() + 250;
    int files = 0;
    const auto addFile = [&](PackageBuilder &package, int nameLength) {
        const QByteArray number = QByteArray::number(++files);
        const int depth = (nameLength - 10) / folder.size();
        package.file(folder.repeated(depth) + number.rightJustified(nameLength - depth * folder.size(), 'x'), "x",
                     PackageBuilder::Stored);
    };
    const auto addFiles = [&](PackageBuilder &package, int length) {
        for (; length > 2 * longest; length -= longest)
            addFile(package, longest);
        addFile(package, length / 2);
        addFile(package, length - length / 2);
    };

    PackageBuilder first = descriptionOnly(descriptionOf(plainDevice(sourceIp)));
    addFiles(first, most / 2);
    QCOMPARE(apply(first, offlineIp), int(LoadSuccess));

    const QString path = m_site->devicePath(offlineIp);
    const QStringList before = contents(path);
    int length = 0;
    for (const QString &name : before)
        length += name.toUtf8().size() + (QFileInfo(path + QLatin1Char('/') + name).isDir() ? 1 : 0);
    PackageBuilder tooMuch = descriptionOnly(descriptionOf(plainDevice(sourceIp)));
    addFiles(tooMuch, most - length + 1);
    QCOMPARE(apply(tooMuch, offlineIp), int(LoadDecompressFailed));
    QCOMPARE(contents(path), before);

    PackageBuilder asMuchAsFits = descriptionOnly(descriptionOf(plainDevice(sourceIp)));
    addFiles(asMuchAsFits, most - length);
    QCOMPARE(apply(asMuchAsFits, offlineIp), int(LoadSuccess));
    EngineerPacketInfo info;
    info.strFilePath = m_packages.filePath(QStringLiteral("saved.corvelpro"));
    QVERIFY(ZipPackageHandle::compressEngineerPacket(path, info));
    QVERIFY(writeFile(path + QStringLiteral("/y"), "one name too many"));
    QVERIFY(!ZipPackageHandle::compressEngineerPacket(path, info));
}

TEST_MAIN_GUI(TstOfflineApply)
#include "tst_offlineapply.moc"
