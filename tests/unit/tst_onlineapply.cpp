// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "loadtesting.h"

#include <support/journalmatchers.h>

#include <core/icore.h>
#include <model/deviceeditor.h>

#include <QtEndian>

using namespace LoadTesting;
using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using namespace Simulation::Operations;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;
using Simulation::Journal;

namespace {

/// The header claims 0 by 0, with a valid checksum.
QByteArray pngWithoutSize()
{
    const int chunkAt = 12;
    const int chunkLength = 4 + 13;
    QByteArray png = pngOf(noisePicture({4, 4}, 1));
    png.replace(chunkAt + 4, 8, QByteArray(8, '\0'));
    const quint32 crc = qToBigEndian(PackageBuilder::crc32(png.mid(chunkAt, chunkLength)));
    return png.replace(chunkAt + chunkLength, 4, reinterpret_cast<const char *>(&crc), 4);
}

/// A GIF with one frame in one colour.
QByteArray gifOfSize(char width, char height)
{
    const char bytes[] = {'G',   'I', 'F',    '8', '9',    'a',    width,  0,      height, 0, '\x80', 0,
                          0,     0,   0,      0,   '\xFF', '\xFF', '\xFF', ',',    0,      0, 0,      0,
                          width, 0,   height, 0,   0,      2,      2,      '\x44', 1,      0, ';'};
    return QByteArray(bytes, int(sizeof bytes));
}

QByteArray cutPng(const QImage &image)
{
    const QByteArray png = pngOf(image);
    return png.left(png.size() / 2);
}

/// A description with two backgrounds, the first one's picture, and those bytes as the second one's.
PackageBuilder packageWithSecondPicture(const QByteArray &bytes)
{
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({16, 9}, 1)});
    source.backgrounds.insert(2, {QStringLiteral("Keynote"), noisePicture({9, 16}, 2)});
    PackageBuilder package = descriptionOnly(descriptionOf(source));
    package.file("BKG/BKG_1.png", pngOf(source.backgrounds.value(1).pixels));
    package.file("BKG/BKG_2.png", bytes, PackageBuilder::Stored);
    return package;
}

} // namespace

/// A load onto an online device, and the check of its pictures before anything is sent.
class TstOnlineApply : public QObject, protected Loading
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // Sending
    void online_apply_calls_the_host_in_order();
    void each_operation_is_called_on_its_controller();
    void online_apply_works_on_its_own_thread();
    void online_apply_makes_the_hardware_what_was_saved();
    void online_apply_keeps_the_identity_of_the_target();
    void progress_names_each_picture_then_the_configuration();
    void a_device_without_switchable_multiviewer_is_not_asked();
    void a_package_without_multiviewer_switches_it_off();
    void each_failing_operation_gives_its_code_data();
    void each_failing_operation_gives_its_code();
    void multiviewer_items_are_sent_after_a_failed_send();
    void failing_multiviewer_items_replace_an_earlier_code();

    // Pictures
    void key_numbers_have_eight_bits_data();
    void key_numbers_have_eight_bits();
    void the_first_of_equal_materials_counts();
    void case_matters_in_folders_but_not_in_endings_data();
    void case_matters_in_folders_but_not_in_endings();
    void pictures_elsewhere_are_extracted_and_left();
    void an_applied_picture_is_removed_from_its_folder();
    void failed_picture_stays_extracted();
    void an_unremovable_picture_is_no_error();
    void one_pixel_is_a_picture_data();
    void one_pixel_is_a_picture();
    void a_bad_picture_is_refused_before_sending_data();
    void a_bad_picture_is_refused_before_sending();
    void the_first_bad_picture_gives_the_code_data();
    void the_first_bad_picture_gives_the_code();
    void too_many_pixels_are_refused_before_reading_data();
    void too_many_pixels_are_refused_before_reading();
    void a_large_picture_is_checked_and_sent_data();
    void a_large_picture_is_checked_and_sent();
    void a_taken_place_is_refused_before_sending();
    void a_picture_no_longer_extractable_is_sent();
    void no_room_for_the_copy_refuses_the_package();
    void an_offline_device_is_not_checked_for_pictures();
    void a_duplicate_picture_is_sent_once();
    void a_damaged_entry_is_refused();
    void a_target_removed_before_the_start_ends_it();
    void a_run_without_checks_fails();
};

// ---------------------------------------------------------------------------------------------------------------------
// Sending

void TstOnlineApply::online_apply_calls_the_host_in_order()
{
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), int(LoadSuccess));
    VERIFY_JOURNAL({canMVEEnable, enableMVR, copySlotDataToDevice, setOperatorType, createMaterailFromImage,
                    setOperatorType, createMaterailFromImage, setOperatorType, createMaterailFromImage,
                    copyModelToDevice, copyMVRItemDataToDevice});

    QVector<QVariantMap> pictures;
    for (const Simulation::JournalEntry &entry : Journal::instance()->entries(createMaterailFromImage))
        pictures.append(entry.arguments);
    const auto arguments = [](const QSize &imageSize, int kind, const QString &name) {
        return QVariantMap{{QStringLiteral("isListed"), true},       {QStringLiteral("ip"), onlineIp},
                           {QStringLiteral("imageSize"), imageSize}, {QStringLiteral("kind"), kind},
                           {QStringLiteral("text"), QString()},      {QStringLiteral("flags"), 0},
                           {QStringLiteral("size"), QSize(0, 0)},    {QStringLiteral("name"), name}};
    };
    QCOMPARE(pictures, (QVector<QVariantMap>{arguments({16, 9}, 0, QStringLiteral("BKG_1")),
                                             arguments({9, 16}, 0, QStringLiteral("BKG_7")),
                                             arguments({8, 8}, 1, QStringLiteral("LOGO_2"))}));
}

void TstOnlineApply::each_operation_is_called_on_its_controller()
{
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), int(LoadSuccess));
    // The others belong to the device that the package describes.
    const QStringList ofTarget{canMVEEnable, enableMVR, copySlotDataToDevice, createMaterailFromImage};
    for (const Simulation::JournalEntry &entry : Journal::instance()->entries()) {
        if (entry.operation != setOperatorType)
            QCOMPARE(entry.arguments.value(QStringLiteral("isListed")).toBool(), ofTarget.contains(entry.operation));
    }
}

void TstOnlineApply::online_apply_works_on_its_own_thread()
{
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), int(LoadSuccess));
    const QVector<Simulation::JournalEntry> entries = Journal::instance()->entries();
    QVERIFY(!entries.isEmpty());
    for (const Simulation::JournalEntry &entry : entries)
        QVERIFY2(!entry.onMainThread, qPrintable(entry.operation));
}

void TstOnlineApply::online_apply_makes_the_hardware_what_was_saved()
{
    HardwareState source = richDevice(sourceIp);
    source.cards[0].settings = QJsonObject{{QStringLiteral("edid"), QStringLiteral("3840x2160@60")}};
    source.screens.removeLast();
    source.settings = QJsonObject{{QStringLiteral("brightness"), 40}};
    QCOMPARE(apply(packageOf(source), onlineIp), int(LoadSuccess));
    const QStringList differences = onlineState().configuration().differencesTo(source.configuration());
    QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));
}

void TstOnlineApply::online_apply_keeps_the_identity_of_the_target()
{
    const HardwareState before = onlineState();
    HardwareState source = richDevice(sourceIp);
    source.protocolNumber = 1.5;
    QCOMPARE(apply(packageOf(source), onlineIp), int(LoadSuccess));
    const QJsonObject is = onlineState().toJson();
    for (const char *key : {"ip", "netMask", "gateWay", "mac", "sn", "name", "id", "modelId", "protocolNumber"})
        QCOMPARE(is.value(QLatin1String(key)), before.toJson().value(QLatin1String(key)));
    for (const Simulation::JournalEntry &entry : Journal::instance()->entries()) {
        if (entry.operation != setOperatorType)
            QCOMPARE(entry.arguments.value(QStringLiteral("ip")).toString(), onlineIp);
    }
}

void TstOnlineApply::progress_names_each_picture_then_the_configuration()
{
    HardwareState source = richDevice(sourceIp);
    source.backgrounds[7].name = QString::fromUtf8("Ключ 主题 🎬");
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(source)), onlineIp);
    SignalRecorder<QString> progress(job.get(), &EngineerDocLoad::signal_operatoerChanged);
    QStringList seenAtCopy;
    Faults::instance()->arm(copyModelToDevice, Fault::run([&] {
                                QMetaObject::invokeMethod(
                                    QCoreApplication::instance(), [&] { seenAtCopy = progress.values().toList(); },
                                    Qt::BlockingQueuedConnection);
                            }));
    QCOMPARE(runJob(*job), int(LoadSuccess));

    QCOMPARE(progress.values(), (QVector<QString>{sendConfig}));
    QCOMPARE(seenAtCopy, QStringList{sendConfig});
    QStringList told;
    for (const Simulation::JournalEntry &entry : Journal::instance()->entries(setOperatorType)) {
        QCOMPARE(entry.arguments.value(QStringLiteral("type")).toString(), QStringLiteral("OperatorLoad"));
        told.append(entry.arguments.value(QStringLiteral("text")).toString());
    }
    QCOMPARE(told, (QStringList{QStringLiteral("BKG:Opening"), QString::fromUtf8("BKG:Ключ 主题 🎬"),
                                QStringLiteral("LOGO:Sponsor")}));
}

void TstOnlineApply::a_device_without_switchable_multiviewer_is_not_asked()
{
    (*m_site)->hardware(onlineIp)->change([](HardwareState &state) { state.mvrCapable = false; });
    QCOMPARE(apply(packageOf(plainDevice(sourceIp)), onlineIp), int(LoadSuccess));
    VERIFY_JOURNAL({canMVEEnable, copySlotDataToDevice, copyModelToDevice, copyMVRItemDataToDevice});
}

void TstOnlineApply::a_package_without_multiviewer_switches_it_off()
{
    (*m_site)->hardware(onlineIp)->change([](HardwareState &state) { state.mvrEnabled = true; });
    HardwareState source = plainDevice(sourceIp);
    source.mvrEnabled = false;
    QCOMPARE(apply(packageOf(source), onlineIp), int(LoadSuccess));
    VERIFY_JOURNAL({canMVEEnable, enableMVR, copySlotDataToDevice, copyModelToDevice});
    QCOMPARE(Journal::instance()->entries(enableMVR).first().arguments.value(QStringLiteral("enable")).toBool(), false);
    QVERIFY(!onlineState().mvrEnabled);
}

void TstOnlineApply::each_failing_operation_gives_its_code_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("warning");
    QTest::addColumn<QStringList>("calls");
    QTest::newRow("switching the multi-viewer")
        << enableMVR << 1 << int(LoadImportFailed) << "^enable\\(disable\\) MVR failed:  ?The device did not answer\\.$"
        << QStringList{canMVEEnable, enableMVR};
    QTest::newRow("cards") << copySlotDataToDevice << 1 << int(LoadImportFailed) << "^set slot data failed\\.$"
                           << QStringList{canMVEEnable, enableMVR, copySlotDataToDevice};
    QTest::newRow("first picture") << createMaterailFromImage << 1 << int(LoadApplyGalleryFailed) << QString()
                                   << QStringList{canMVEEnable,
                                                  enableMVR,
                                                  copySlotDataToDevice,
                                                  setOperatorType,
                                                  createMaterailFromImage,
                                                  copyMVRItemDataToDevice};
    QTest::newRow("last picture") << createMaterailFromImage << 3 << int(LoadApplyGalleryFailed) << QString()
                                  << QStringList{canMVEEnable,
                                                 enableMVR,
                                                 copySlotDataToDevice,
                                                 setOperatorType,
                                                 createMaterailFromImage,
                                                 setOperatorType,
                                                 createMaterailFromImage,
                                                 setOperatorType,
                                                 createMaterailFromImage,
                                                 copyMVRItemDataToDevice};
    QTest::newRow("model") << copyModelToDevice << 1 << int(LoadImportFailed) << QString()
                           << QStringList{canMVEEnable,
                                          enableMVR,
                                          copySlotDataToDevice,
                                          setOperatorType,
                                          createMaterailFromImage,
                                          setOperatorType,
                                          createMaterailFromImage,
                                          setOperatorType,
                                          createMaterailFromImage,
                                          copyModelToDevice,
                                          copyMVRItemDataToDevice};
    QTest::newRow("multi-viewer items") << copyMVRItemDataToDevice << 1 << int(LoadImportFailed) << QString()
                                        << QStringList{canMVEEnable,
                                                       enableMVR,
                                                       copySlotDataToDevice,
                                                       setOperatorType,
                                                       createMaterailFromImage,
                                                       setOperatorType,
                                                       createMaterailFromImage,
                                                       setOperatorType,
                                                       createMaterailFromImage,
                                                       copyModelToDevice,
                                                       copyMVRItemDataToDevice};
}

void TstOnlineApply::each_failing_operation_gives_its_code()
{
    QFETCH(QString, operation);
    QFETCH(int, call);
    QFETCH(int, code);
    QFETCH(QString, warning);
    QFETCH(QStringList, calls);
    std::optional<ExpectMessage> expected;
    if (!warning.isEmpty())
        expected.emplace(QtWarningMsg, QRegularExpression(warning), 1);
    Faults::instance()->arm(operation, Fault::fail(call));
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), code);
    VERIFY_JOURNAL(calls);
}

void TstOnlineApply::multiviewer_items_are_sent_after_a_failed_send()
{
    Faults::instance()->arm(createMaterailFromImage, Fault::fail());
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), int(LoadApplyGalleryFailed));
    QCOMPARE(onlineState().mvrItems, richDevice(sourceIp).mvrItems);
}

void TstOnlineApply::failing_multiviewer_items_replace_an_earlier_code()
{
    Faults::instance()->arm(createMaterailFromImage, Fault::fail());
    Faults::instance()->arm(copyMVRItemDataToDevice, Fault::fail());
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), int(LoadImportFailed));
}

// ---------------------------------------------------------------------------------------------------------------------
// Pictures

void TstOnlineApply::key_numbers_have_eight_bits_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<int>("keyNo");
    QTest::addColumn<QString>("sentName");
    QTest::newRow("0") << QByteArray("BKG/BKG_0.png") << 0 << "BKG_0";
    QTest::newRow("255") << QByteArray("BKG/BKG_255.png") << 255 << "BKG_255";
    QTest::newRow("256 is 0") << QByteArray("BKG/BKG_256.png") << 0 << "BKG_256";
    QTest::newRow("511 is 255") << QByteArray("BKG/BKG_511.png") << 255 << "BKG_511";
    QTest::newRow("65535 is 255") << QByteArray("BKG/BKG_65535.png") << 255 << "BKG_65535";
    QTest::newRow("65536 is no 16-bit number, so 0") << QByteArray("BKG/BKG_65536.png") << 0 << "BKG_0";
    QTest::newRow("padded") << QByteArray("BKG/BKG_007.png") << 7 << "BKG_7";
    QTest::newRow("no number is 0") << QByteArray("BKG/BKG_x.png") << 0 << "BKG_0";
    QTest::newRow("logo 0") << QByteArray("LOGO/LOGO_0.png") << 0 << "LOGO_0";
    QTest::newRow("logo 300 is 44") << QByteArray("LOGO/LOGO_300.png") << 44 << "LOGO_300";
}

void TstOnlineApply::key_numbers_have_eight_bits()
{
    QFETCH(QByteArray, entry);
    QFETCH(int, keyNo);
    QFETCH(QString, sentName);
    const bool isLogo = entry.startsWith("LOGO/");
    HardwareState source = plainDevice(sourceIp);
    const QImage picture = noisePicture({5, 3}, 5);
    // Other numbers and the other kind are decoys of another size.
    const QImage decoy = noisePicture({6, 3}, 6);
    for (int number : {0, 7, 44, 255}) {
        source.backgrounds.insert(quint8(number), {QStringLiteral("b"), !isLogo && number == keyNo ? picture : decoy});
        source.logos.insert(quint8(number), {QStringLiteral("l"), isLogo && number == keyNo ? picture : decoy});
    }
    QCOMPARE(apply(descriptionOnly(descriptionOf(source)).file(entry, pngOf(picture)), onlineIp), int(LoadSuccess));
    const QVector<Simulation::JournalEntry> sent = Journal::instance()->entries(createMaterailFromImage);
    QCOMPARE(sent.size(), 1);
    QCOMPARE(sent.first().arguments.value(QStringLiteral("name")).toString(), sentName);
    QCOMPARE(sent.first().arguments.value(QStringLiteral("kind")).toInt(), isLogo ? 1 : 0);
    const HardwareState state = onlineState();
    QCOMPARE((isLogo ? state.logos : state.backgrounds).keys(), QList<quint8>{quint8(keyNo)});
}

void TstOnlineApply::the_first_of_equal_materials_counts()
{
    HardwareState source = plainDevice(sourceIp);
    const QImage picture = noisePicture({16, 9}, 1);
    source.backgrounds.insert(1, {QStringLiteral("First"), picture});
    QJsonObject description = QJsonDocument::fromJson(descriptionOf(source)).object();
    QJsonArray materials = description.value(QStringLiteral("materials")).toArray();
    QJsonObject second = materials.first().toObject();
    second.insert(QStringLiteral("name"), QStringLiteral("Second"));
    second.insert(QStringLiteral("width"), 17);
    materials.append(second);
    description.insert(QStringLiteral("materials"), materials);
    PackageBuilder package = descriptionOnly(QJsonDocument(description).toJson());
    QCOMPARE(apply(package.file("BKG/BKG_1.png", pngOf(picture)), onlineIp), int(LoadSuccess));
}

void TstOnlineApply::case_matters_in_folders_but_not_in_endings_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<bool>("isApplied");
    QTest::newRow("as written by a save") << QByteArray("LOGO/LOGO_2.png") << true;
    QTest::newRow("ending in capitals") << QByteArray("LOGO/LOGO_2.PNG") << true;
    QTest::newRow("ending in mixed case") << QByteArray("LOGO/LOGO_2.pNg") << true;
    QTest::newRow("file name in small letters") << QByteArray("LOGO/logo_2.png") << true;
    QTest::newRow("folder in small letters") << QByteArray("logo/LOGO_2.png") << false;
    QTest::newRow("folder in mixed case") << QByteArray("Logo/LOGO_2.png") << false;
    QTest::newRow("folder below another") << QByteArray("x/LOGO/LOGO_2.png") << false;
    QTest::newRow("longer folder name") << QByteArray("LOGOS/LOGO_2.png") << false;
    QTest::newRow("other ending") << QByteArray("LOGO/LOGO_2.png.bak") << false;
}

void TstOnlineApply::case_matters_in_folders_but_not_in_endings()
{
    QFETCH(QByteArray, entry);
    QFETCH(bool, isApplied);
    HardwareState source = plainDevice(sourceIp);
    const QImage picture = noisePicture({5, 3}, 5, QImage::Format_ARGB32);
    source.logos.insert(2, {QStringLiteral("Sponsor"), picture});
    QCOMPARE(apply(descriptionOnly(descriptionOf(source)).file(entry, pngOf(picture)), onlineIp), int(LoadSuccess));
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), isApplied ? 1 : 0);
    if (isApplied)
        QCOMPARE(onlineState().logos.value(2).pixels, picture);
}

void TstOnlineApply::pictures_elsewhere_are_extracted_and_left()
{
    const QByteArray png = pngOf(noisePicture({4, 4}, 1));
    const QByteArray cut = cutPng(noisePicture({40, 40}, 1));
    PackageBuilder package = packageOf(richDevice(sourceIp));
    package.file("Extra/cover.png", png).file("top.PNG", cut).file("Extra/notes.txt", "not a picture");
    QCOMPARE(apply(package, onlineIp), int(LoadSuccess));
    QCOMPARE(readFile(m_site->extractPath() + QStringLiteral("/Extra/cover.png")), png);
    QCOMPARE(readFile(m_site->extractPath() + QStringLiteral("/top.PNG")), cut);
    QVERIFY(!QFile::exists(m_site->extractPath() + QStringLiteral("/Extra/notes.txt")));
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), 3);
}

void TstOnlineApply::an_applied_picture_is_removed_from_its_folder()
{
    const QString path = m_site->extractPath() + QStringLiteral("/BKG/BKG_1.png");
    bool wasThere = false;
    Faults::instance()->arm(createMaterailFromImage, Fault::run([&] { wasThere = QFile::exists(path); }));
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), int(LoadSuccess));
    QVERIFY(wasThere);
    QCOMPARE(contents(m_site->extractPath()),
             (QStringList{sourceIp + QStringLiteral(".json"), QStringLiteral("BKG"), QStringLiteral("LOGO")}));
}

void TstOnlineApply::failed_picture_stays_extracted()
{
    Faults::instance()->arm(createMaterailFromImage, Fault::fail(2));
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), int(LoadApplyGalleryFailed));
    QCOMPARE(contents(m_site->extractPath()), (QStringList{sourceIp + QStringLiteral(".json"), QStringLiteral("BKG"),
                                                           QStringLiteral("BKG/BKG_7.png"), QStringLiteral("LOGO")}));
}

void TstOnlineApply::an_unremovable_picture_is_no_error()
{
    const QString path = m_site->extractPath() + QStringLiteral("/BKG/BKG_1.png");
    Faults::instance()->arm(createMaterailFromImage, Fault::run([&] { QFile::remove(path); }));
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), int(LoadSuccess));
    const QStringList logged = WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Remove file failed:"));
    QCOMPARE(logged.size(), 1);
    QVERIFY(logged.first().contains(path));
}

void TstOnlineApply::one_pixel_is_a_picture_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("one pixel wide") << QSize(1, 5);
    QTest::newRow("one pixel high") << QSize(5, 1);
}

void TstOnlineApply::one_pixel_is_a_picture()
{
    QFETCH(QSize, size);
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture(size, 1)});
    QCOMPARE(apply(packageOf(source), onlineIp), int(LoadSuccess));
    QCOMPARE(onlineState().backgrounds.value(1).pixels, source.backgrounds.value(1).pixels);
}

void TstOnlineApply::a_bad_picture_is_refused_before_sending_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("code");
    const QImage right = noisePicture({16, 9}, 1);
    QTest::newRow("no such background") << QByteArray("BKG/BKG_2.png") << pngOf(right) << int(LoadGalleryFileError);
    QTest::newRow("number of a logo only")
        << QByteArray("BKG/BKG_3.png") << pngOf(noisePicture({8, 8}, 1)) << int(LoadGalleryFileError);
    QTest::newRow("no such logo") << QByteArray("LOGO/LOGO_1.png") << pngOf(right) << int(LoadGalleryFileError);
    QTest::newRow("other width") << QByteArray("BKG/BKG_1.png") << pngOf(noisePicture({17, 9}, 1))
                                 << int(LoadGalleryFileError);
    QTest::newRow("other height") << QByteArray("BKG/BKG_1.png") << pngOf(noisePicture({16, 10}, 1))
                                  << int(LoadGalleryFileError);
    QTest::newRow("turned") << QByteArray("BKG/BKG_1.png") << pngOf(noisePicture({9, 16}, 1))
                            << int(LoadGalleryFileError);
    QTest::newRow("cut off") << QByteArray("BKG/BKG_1.png") << cutPng(right) << int(LoadGalleryFileError);
    QTest::newRow("empty") << QByteArray("BKG/BKG_1.png") << QByteArray() << int(LoadImageContentError);
    QTest::newRow("no picture") << QByteArray("BKG/BKG_1.png") << QByteArray("no picture at all")
                                << int(LoadImageContentError);
    QTest::newRow("0 by 0") << QByteArray("BKG/BKG_1.png") << pngWithoutSize() << int(LoadImageContentError);
    // An entry named like a picture may have another format, possibly without width or height.
    QTest::newRow("without width") << QByteArray("BKG/BKG_1.png") << gifOfSize(0, 5) << int(LoadImageContentError);
    QTest::newRow("without height") << QByteArray("BKG/BKG_1.png") << gifOfSize(5, 0) << int(LoadImageContentError);
    QTest::newRow("no picture, in another folder")
        << QByteArray("Extra/cover.png") << QByteArray("none") << int(LoadImageContentError);
}

void TstOnlineApply::a_bad_picture_is_refused_before_sending()
{
    QFETCH(QByteArray, entry);
    QFETCH(QByteArray, bytes);
    QFETCH(int, code);
    const ExpectMessage libraryNoise(QtWarningMsg, QRegularExpression(QStringLiteral("^libpng ")),
                                     ExpectMessage::AnyNumber);
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({16, 9}, 1)});
    source.logos.insert(3, {QStringLiteral("Sponsor"), noisePicture({8, 8}, 1)});
    PackageBuilder package = descriptionOnly(descriptionOf(source));
    package.file(entry, bytes, PackageBuilder::Stored).file("LOGO/LOGO_3.png", pngOf(noisePicture({8, 8}, 1)));
    const HardwareState before = onlineState();
    QCOMPARE(check(package, onlineIp), code);
    VERIFY_JOURNAL({});
    QVERIFY(onlineState() == before);
    QVERIFY2(!QFile::exists(m_site->extractPath() + QLatin1Char('/') + QString::fromUtf8(entry)), "a file is left");
}

void TstOnlineApply::the_first_bad_picture_gives_the_code_data()
{
    QTest::addColumn<QStringList>("kinds");
    QTest::addColumn<int>("code");
    const auto row = [](const QStringList &kinds, int code) {
        QTest::newRow(qPrintable(kinds.join(QStringLiteral(", ")))) << kinds << code;
    };
    const QString good = QStringLiteral("good");
    const QString cut = QStringLiteral("cut off");
    const QString size = QStringLiteral("other size");
    const QString none = QStringLiteral("no picture");
    const QString damaged = QStringLiteral("damaged");
    row({good, good, good, good, good, good, good, good}, 0);
    row({good, cut}, 15);
    row({good, size}, 15);
    row({good, none}, 11);
    row({good, damaged}, 6);
    // Bad pixels are found later than a bad header.
    row({cut, none}, 15);
    row({cut, damaged}, 15);
    row({good, cut, good, damaged}, 15);
    row({none, cut}, 11);
    row({damaged, cut, none}, 6);
    row({damaged, none, cut}, 6);
    row({none, damaged}, 11);
    row({size, none}, 15);
    row({good, good, good, good, good, good, good, good, good, cut, none, damaged}, 15);
    row({good, good, good, good, good, good, good, good, good, none, cut}, 11);
}

void TstOnlineApply::the_first_bad_picture_gives_the_code()
{
    QFETCH(QStringList, kinds);
    QFETCH(int, code);
    const ExpectMessage libraryNoise(QtWarningMsg, QRegularExpression(QStringLiteral("^libpng ")),
                                     ExpectMessage::AnyNumber);
    HardwareState source = plainDevice(sourceIp);
    for (int number = 0; number < kinds.size(); ++number)
        source.backgrounds.insert(quint8(number), {QStringLiteral("b"), noisePicture({60, 40}, quint32(number))});
    PackageBuilder package = descriptionOnly(descriptionOf(source));
    for (int number = 0; number < kinds.size(); ++number) {
        const QString &kind = kinds.at(number);
        const QImage picture = source.backgrounds.value(quint8(number)).pixels;
        QByteArray bytes = pngOf(kind == QStringLiteral("other size") ? picture.copy(0, 0, 60, 39) : picture);
        if (kind == QStringLiteral("cut off"))
            bytes = cutPng(picture);
        else if (kind == QStringLiteral("no picture"))
            bytes = "no picture at all";
        package.file("BKG/BKG_" + QByteArray::number(number) + ".png", bytes, PackageBuilder::Stored);
        if (kind == QStringLiteral("damaged"))
            package.claimCrc(1);
    }
    QCOMPARE(check(package, onlineIp), code);
    VERIFY_JOURNAL({});
    // Independent of the number of cores.
    QCOMPARE(check(package, onlineIp), code);
}

void TstOnlineApply::too_many_pixels_are_refused_before_reading_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("code");
    QTest::newRow("4,294,967,296 pixels, the first one is no picture") << 128 << int(LoadImageContentError);
    QTest::newRow("above") << 129 << int(LoadGalleryFileError);
    QTest::newRow("far above") << 512 << int(LoadGalleryFileError);
}

void TstOnlineApply::too_many_pixels_are_refused_before_reading()
{
    QFETCH(int, count);
    QFETCH(int, code);
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({4, 4}, 1)});
    const QByteArray description = changedDescription(source, [](QJsonObject &object) {
        QJsonArray materials = object.value(QStringLiteral("materials")).toArray();
        QJsonObject picture = materials.first().toObject();
        picture.insert(QStringLiteral("width"), 8192);
        picture.insert(QStringLiteral("height"), 4096);
        materials[0] = picture;
        object.insert(QStringLiteral("materials"), materials);
    });
    PackageBuilder package = descriptionOnly(description);
    // Key numbers have eight bits.
    for (int number = 0; number < count; ++number)
        package.file("BKG/BKG_" + QByteArray::number(1 + 256 * (number % 256)) + QByteArray(number / 256, '.') + ".png",
                     "no picture");
    QCOMPARE(check(package, onlineIp), code);
    // An offline device accepts entries that are no pictures, but makes thumbnails of the others.
    QCOMPARE(check(package, offlineIp), code == LoadGalleryFileError ? code : 0);
}

void TstOnlineApply::a_large_picture_is_checked_and_sent_data()
{
    QTest::addColumn<bool>("isDiskFull");
    QTest::newRow("with room") << false;
    QTest::newRow("on a disk that is full after the check") << true;
}

void TstOnlineApply::a_large_picture_is_checked_and_sent()
{
    QFETCH(bool, isDiskFull);
    // Beyond the memory limit; noise does not compress.
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({3600, 3600}, 1)});
    source.backgrounds.insert(2, {QStringLiteral("Keynote"), noisePicture({16, 9}, 2)});
    QVERIFY(pngOf(source.backgrounds.value(1).pixels).size() > 32 * MiB);
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(source)), onlineIp);
    std::optional<FullDisk> full;
    if (isDiskFull)
        full.emplace(30 * MiB);
    QCOMPARE(runJob(*job), int(LoadSuccess));
    full.reset();
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Extract file failed:")).size(), int(isDiskFull));
    QVERIFY(onlineState().backgrounds.value(1).pixels == source.backgrounds.value(1).pixels);
    QCOMPARE(contents(m_site->extractPath()), (QStringList{sourceIp + QStringLiteral(".json"), QStringLiteral("BKG")}));
}

void TstOnlineApply::a_taken_place_is_refused_before_sending()
{
    QVERIFY(writeFile(m_site->extractPath() + QStringLiteral("/LOGO/LOGO_2.png/file"), "in the way"));
    QCOMPARE(check(packageOf(richDevice(sourceIp)), onlineIp), int(LoadDecompressFailed));
    VERIFY_JOURNAL({});
}

void TstOnlineApply::a_picture_no_longer_extractable_is_sent()
{
    const HardwareState source = richDevice(sourceIp);
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(source)), onlineIp);
    const QString path = m_site->extractPath() + QStringLiteral("/BKG/BKG_1.png");
    QVERIFY(writeFile(path + QStringLiteral("/file"), "in the way"));
    QCOMPARE(runJob(*job), int(LoadSuccess));
    const QStringList differences = onlineState().configuration().differencesTo(source.configuration());
    QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));
    const QStringList logged = WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Extract file failed:"));
    QCOMPARE(logged.size(), 1);
    QVERIFY(logged.first().contains(path));
    QCOMPARE(readFile(path + QStringLiteral("/file")), QByteArray("in the way"));
}

void TstOnlineApply::no_room_for_the_copy_refuses_the_package()
{
    const QString path = write(packageOf(plainDevice(sourceIp)).file("x.bin", noise(MiB)));
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(path);
    {
        const FullDisk full(MiB / 2);
        QVERIFY(!job.checkPackageFile());
    }
    QCOMPARE(job.resultCode(), int(LoadDecompressFailed));
    VERIFY_JOURNAL({});
    QCOMPARE(contents(m_site->extractPath()), QStringList());
}

void TstOnlineApply::an_offline_device_is_not_checked_for_pictures()
{
    QCOMPARE(apply(packageWithSecondPicture("no picture at all"), offlineIp), int(LoadSuccess));
    QCOMPARE(readFile(m_site->devicePath(offlineIp) + QStringLiteral("/BKG/BKG_2.png")),
             QByteArray("no picture at all"));
}

void TstOnlineApply::a_duplicate_picture_is_sent_once()
{
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({16, 9}, 1)});
    PackageBuilder package = packageOf(source);
    package.file("BKG/BKG_1.png", pngOf(noisePicture({16, 9}, 2)));
    QCOMPARE(apply(package, onlineIp), int(LoadSuccess));
    VERIFY_JOURNAL({canMVEEnable, enableMVR, copySlotDataToDevice, setOperatorType, createMaterailFromImage,
                    copyModelToDevice, copyMVRItemDataToDevice});
    QCOMPARE(onlineState().backgrounds.value(1).pixels, source.backgrounds.value(1).pixels);
}

void TstOnlineApply::a_damaged_entry_is_refused()
{
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({16, 9}, 1)});
    PackageBuilder package = packageOf(source);
    package.claimCrc(1);
    QCOMPARE(apply(package, onlineIp), int(LoadDecompressFailed));
    VERIFY_JOURNAL({});
    const QStringList logged = WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Extract file failed:"));
    QCOMPARE(logged.size(), 1);
    QVERIFY(logged.first().contains(m_site->extractPath() + QStringLiteral("/BKG/BKG_1.png")));
}

void TstOnlineApply::a_target_removed_before_the_start_ends_it()
{
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(plainDevice(sourceIp))), onlineIp);
    Model::DeviceList::instance()->removeDevice(onlineIp);
    QCOMPARE(runJob(*job), int(LoadGetDeviceFailed));
    VERIFY_JOURNAL({});
}

void TstOnlineApply::a_run_without_checks_fails()
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(write(packageOf(plainDevice(sourceIp))));
    QCOMPARE(runJob(job), int(LoadGetDeviceFailed));
    VERIFY_JOURNAL({});
}

TEST_MAIN_GUI(TstOnlineApply)
#include "tst_onlineapply.moc"
