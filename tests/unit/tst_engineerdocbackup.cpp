// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "backuptesting.h"
#include "zippackagehandle.h"

#include <model/deviceeditor.h>
#include <simulation/journal.h>
#include <support/journalmatchers.h>
#include <support/packagebuilder.h>

#include <QJsonDocument>
#include <QTextCodec>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using namespace Simulation::Operations;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;
using Simulation::Journal;
using Simulation::JournalEntry;
using Simulation::PictureState;
using Simulation::PresetState;

/// What a save puts into the package, and the progress it reports.
class TstEngineerDocBackup : public QObject, protected BackupTesting
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // Contents
    void the_job_calls_the_host_in_this_order();
    void the_package_holds_exactly_the_devices_files();
    void the_record_carries_name_comment_and_checksum();
    void the_serialiser_gets_the_configuration_path();
    void backgrounds_are_opaque_pictures_pixel_by_pixel();
    void logos_keep_their_alpha_pixel_by_pixel();
    void key_numbers_0_and_255_name_their_pictures();
    void presets_are_streamed_byte_arrays();
    void preset_numbers_0_and_65535_name_their_files();
    void an_empty_preset_is_length_zero();
    void a_device_without_pictures_and_presets_is_saved();
    void other_files_of_the_device_are_carried_unchanged();
    void the_default_place_is_the_users_documents();
    void a_separator_in_the_name_leads_into_folders();
    void a_name_in_a_missing_folder_fails();
    void chinese_and_emoji_survive_any_locale_codec();
    void saving_under_the_same_name_replaces_the_package();
    void a_link_to_the_package_stays_a_link();
    void the_job_knows_the_package_it_saved();
    void fetching_a_picture_overlaps_writing_another();
    void a_second_save_encodes_only_what_changed();

    // Progress
    void progress_names_each_background_and_no_logo();
    void place_markers_in_names_are_shown_verbatim();

    // Offline devices
    void an_offline_device_is_saved_from_its_directory();
    void an_offline_save_rewrites_only_the_presets();
    void an_offline_device_needs_all_its_pictures_data();
    void an_offline_device_needs_all_its_pictures();

    // Stage folders
    void left_over_files_are_neither_saved_nor_kept();
    void links_in_staging_folders_are_not_followed();
    void staged_files_are_removed_after_failed_packing();
};

// ---------------------------------------------------------------------------------------------------------------------
// Contents

void TstEngineerDocBackup::the_job_calls_the_host_in_this_order()
{
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    VERIFY_JOURNAL(QStringList{serailize} + times(7, {queryMaterailData, loadImage}) + times(4, {loadImage}) +
                   times(6, {presetFullDetail2Binary}));

    QStringList arguments;
    quintptr thread = 0;
    for (const JournalEntry &entry : Journal::instance()->entries()) {
        QVERIFY(!entry.onMainThread);
        if (thread == 0)
            thread = entry.threadId;
        QCOMPARE(entry.threadId, thread);
        if (entry.operation == queryMaterailData)
            QCOMPARE(entry.arguments["entries"].toInt(), 1);
        if (entry.operation == queryMaterailData)
            arguments.append(QStringLiteral("%1 %2 %3")
                                 .arg(entry.arguments["ip"].toString(), entry.arguments["keyNo"].toString(),
                                      entry.arguments["picture"].toString()));
        else if (entry.operation == loadImage)
            arguments.append(entry.arguments["imageKey"].toString() + ' ' + entry.arguments["format"].toString());
        else if (entry.operation == presetFullDetail2Binary)
            arguments.append(entry.arguments["number"].toString());
    }
    const QString asOpaque = ' ' + QString::number(QImage::Format_RGB32);
    const QString withAlpha = ' ' + QString::number(QImage::Format_ARGB32);
    QStringList expected;
    for (const int keyNo : {0, 1, 2, 3, 4, 7, 12})
        expected << QStringLiteral("192.168.1.11 %1 true").arg(keyNo)
                 << QStringLiteral("192.168.1.11/background/%1").arg(keyNo) + asOpaque;
    for (const int keyNo : {0, 1, 2, 5})
        expected << QStringLiteral("192.168.1.11/logo/%1").arg(keyNo) + withAlpha;
    for (int number = 1; number <= 6; ++number)
        expected << QString::number(number);
    const QString difference = sequenceDifference(arguments, expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void TstEngineerDocBackup::the_package_holds_exactly_the_devices_files()
{
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QStringList expected{"192.168.1.11.json", "BKG/", "LOGO/", "Preset/"};
    for (const int keyNo : {0, 1, 2, 3, 4, 7, 12})
        expected.append(QStringLiteral("BKG/BKG_%1.png").arg(keyNo));
    for (const int keyNo : {0, 1, 2, 5})
        expected.append(QStringLiteral("LOGO/LOGO_%1.png").arg(keyNo));
    for (int number = 1; number <= 6; ++number)
        expected.append(QStringLiteral("Preset/%1.RPst").arg(number));
    expected.sort();
    QCOMPARE(unpack(packagePath()), expected);

    const QJsonDocument description = QJsonDocument::fromJson(readFile(unpacked("192.168.1.11.json")));
    QCOMPARE(description.object(), (*m_site)->device(m_site->mainHall)->toJson());
}

void TstEngineerDocBackup::the_record_carries_name_comment_and_checksum()
{
    QCOMPARE(save(m_site->mainHall, "Gala 2026", "after the rehearsal\nsecond line"), int(BackupSuccess));
    const QByteArray bytes = readFile(packagePath("Gala 2026"));
    const int commentAt = bytes.lastIndexOf(QByteArray("PK\5\6", 4)) + 22;
    const QJsonObject record = QJsonDocument::fromJson(bytes.mid(commentAt)).object();
    QCOMPARE(record.value("projectName").toString(), QString("Gala 2026"));
    QCOMPARE(record.value("comment").toString(), QString("after the rehearsal\nsecond line"));
    QCOMPARE(record.value("Checksum").toString().toLatin1(), PackageBuilder::checksum(bytes, bytes.size() - commentAt));
}

void TstEngineerDocBackup::the_serialiser_gets_the_configuration_path()
{
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(Journal::instance()->entries(serailize).first().arguments["configPath"].toString(),
             m_site->path("devices"));
}

void TstEngineerDocBackup::backgrounds_are_opaque_pictures_pixel_by_pixel()
{
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    unpack(packagePath());
    const HardwareState hardware = m_site->hardware(m_site->mainHall);
    QCOMPARE(hardware.backgrounds.size(), 7);
    for (auto it = hardware.backgrounds.begin(); it != hardware.backgrounds.end(); ++it) {
        const QImage picture(unpacked(QStringLiteral("BKG/BKG_%1.png").arg(it.key())), "PNG");
        QVERIFY(!picture.hasAlphaChannel());
        QCOMPARE(picture.convertToFormat(QImage::Format_RGB32), it->pixels);
    }
}

void TstEngineerDocBackup::logos_keep_their_alpha_pixel_by_pixel()
{
    QImage everyAlpha(256, 3, QImage::Format_ARGB32);
    for (int alpha = 0; alpha < 256; ++alpha) {
        everyAlpha.setPixel(alpha, 0, qRgba(255, 128, 1, alpha));
        everyAlpha.setPixel(alpha, 1, qRgba(0, 0, 0, alpha));
        everyAlpha.setPixel(alpha, 2, qRgba(alpha, 255 - alpha, 77, 255));
    }
    m_site->changeHardware(m_site->mainHall, [&everyAlpha](HardwareState &state) {
        state.logos.insert(9, PictureState{"alpha", everyAlpha});
    });
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    unpack(packagePath());
    const HardwareState hardware = m_site->hardware(m_site->mainHall);
    QCOMPARE(hardware.logos.size(), 5);
    for (auto it = hardware.logos.begin(); it != hardware.logos.end(); ++it) {
        const QImage picture(unpacked(QStringLiteral("LOGO/LOGO_%1.png").arg(it.key())), "PNG");
        QVERIFY(picture.hasAlphaChannel());
        QCOMPARE(picture.convertToFormat(QImage::Format_ARGB32), it->pixels);
    }
}

void TstEngineerDocBackup::key_numbers_0_and_255_name_their_pictures()
{
    m_site->changeHardware(m_site->mainHall, [](HardwareState &state) {
        const PictureState background = state.backgrounds.first();
        const PictureState logo = state.logos.first();
        state.backgrounds = {{0, background}, {255, background}};
        state.logos = {{0, logo}, {255, logo}};
    });
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    const QStringList pictures = unpack(packagePath()).filter(".png");
    QCOMPARE(pictures, QStringList({"BKG/BKG_0.png", "BKG/BKG_255.png", "LOGO/LOGO_0.png", "LOGO/LOGO_255.png"}));
}

void TstEngineerDocBackup::presets_are_streamed_byte_arrays()
{
    const QByteArray everyByte = [] {
        QByteArray bytes;
        for (int byte = 0; byte < 256; ++byte)
            bytes.append(char(byte));
        return bytes;
    }();
    m_site->changeHardware(m_site->mainHall, [&](HardwareState &state) {
        state.presets.insert(300, PresetState{"all", everyByte});
    });
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    unpack(packagePath());
    QCOMPARE(readFile(unpacked("Preset/300.RPst")), QByteArray::fromHex("00000100") + everyByte);
    const HardwareState hardware = m_site->hardware(m_site->mainHall);
    for (auto it = hardware.presets.begin(); it != hardware.presets.end(); ++it) {
        const QByteArray bytes = readFile(unpacked(QStringLiteral("Preset/%1.RPst").arg(it.key())));
        QCOMPARE(bytes.mid(4), it->bytes);
    }
}

void TstEngineerDocBackup::preset_numbers_0_and_65535_name_their_files()
{
    m_site->changeHardware(m_site->mainHall, [](HardwareState &state) {
        state.presets = {{0, PresetState{"first", "a"}}, {65535, PresetState{"last", "b"}}};
    });
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    const QStringList presets = unpack(packagePath()).filter(".RPst");
    QCOMPARE(presets, QStringList({"Preset/0.RPst", "Preset/65535.RPst"}));
    QCOMPARE(readFile(unpacked("Preset/65535.RPst")), QByteArray::fromHex("0000000162"));
}

void TstEngineerDocBackup::an_empty_preset_is_length_zero()
{
    m_site->changeHardware(m_site->mainHall, [](HardwareState &state) {
        state.presets = {{1, PresetState{"null", QByteArray()}}, {2, PresetState{"empty", QByteArray("")}}};
    });
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    unpack(packagePath());
    QCOMPARE(readFile(unpacked("Preset/1.RPst")).toHex(), QByteArray("00000000"));
    QCOMPARE(readFile(unpacked("Preset/2.RPst")).toHex(), QByteArray("00000000"));
}

void TstEngineerDocBackup::a_device_without_pictures_and_presets_is_saved()
{
    m_site->changeHardware(m_site->mainHall, [](HardwareState &state) {
        state.backgrounds.clear();
        state.logos.clear();
        state.presets.clear();
    });
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(unpack(packagePath()), QStringList({"192.168.1.11.json", "BKG/", "LOGO/", "Preset/"}));
    VERIFY_JOURNAL({serailize});
    QVERIFY(m_progress.isEmpty());
}

void TstEngineerDocBackup::other_files_of_the_device_are_carried_unchanged()
{
    const QByteArray content = noise(10000);
    QVERIFY(writeFile(stage("host/licence.bin"), content));
    QVERIFY(writeFile(stage("BKG.txt"), "not staged"));
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    const QStringList names = unpack(packagePath());
    QVERIFY(names.contains("host/licence.bin"));
    QCOMPARE(readFile(unpacked("host/licence.bin")), content);
    QCOMPARE(readFile(unpacked("BKG.txt")), QByteArray("not staged"));
    QCOMPARE(readFile(stage("host/licence.bin")), content);
}

void TstEngineerDocBackup::the_default_place_is_the_users_documents()
{
    const QString expected =
        QDir::homePath() + QStringLiteral("/Documents/Velmora/Tarvo/ProjectFiles/Default.corvelpro");
    QFile::remove(expected);
    EngineerDocBackup job(nullptr, m_site->touringRack);
    job.setProjectInfo("Default", QString());
    job.start();
    QVERIFY(job.wait(60000));
    QCOMPARE(job.resultCode(), int(BackupSuccess));
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(expected));
}

void TstEngineerDocBackup::a_separator_in_the_name_leads_into_folders()
{
    QVERIFY(QDir().mkpath(m_projects + "tour/day 1"));
    QCOMPARE(save(m_site->mainHall, "tour/day 1/Show"), int(BackupSuccess));
    EngineerPacketInfo info;
    info.strFilePath = m_projects + "tour/day 1/Show.corvelpro";
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QString("tour/day 1/Show"));
}

void TstEngineerDocBackup::a_name_in_a_missing_folder_fails()
{
    QCOMPARE(save(m_site->mainHall, "tour/Show"), int(BackupEncryptFailed));
    QCOMPARE(contents(m_projects), QStringList());
}

void TstEngineerDocBackup::chinese_and_emoji_survive_any_locale_codec()
{
    const QString name = QString::fromUtf8("年会 🎬 主会场");
    const QString comment = QString::fromUtf8("彩排之后 👩‍🎤 – Größe");
    const QString carried = QString::fromUtf8("说明/读我🎉.txt");
    QVERIFY(writeFile(stage(carried), "read me"));
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO 8859-1"));
    const int code = save(m_site->mainHall, name, comment);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));

    QCOMPARE(code, int(BackupSuccess));
    EngineerPacketInfo info;
    info.strFilePath = packagePath(name);
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, name);
    QCOMPARE(info.strComment, comment);
    QVERIFY(unpack(packagePath(name)).contains(carried));
    QCOMPARE(readFile(unpacked(carried)), QByteArray("read me"));
}

void TstEngineerDocBackup::saving_under_the_same_name_replaces_the_package()
{
    QCOMPARE(save(m_site->mainHall, "Show", "first"), int(BackupSuccess));
    QCOMPARE(save(m_site->foyer, "Show", "second"), int(BackupSuccess));
    EngineerPacketInfo info;
    info.strFilePath = packagePath();
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strComment, QString("second"));
    QVERIFY(unpack(packagePath()).contains("192.168.1.20.json"));
    QCOMPARE(contents(m_projects), QStringList{"Show.corvelpro"});
}

void TstEngineerDocBackup::a_link_to_the_package_stays_a_link()
{
    const QString elsewhere = m_site->path("elsewhere.corvelpro");
    QVERIFY(writeFile(elsewhere, "old"));
    QVERIFY(QDir().mkpath(m_projects));
    QVERIFY(QFile::link(elsewhere, packagePath()));
    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    QVERIFY(QFileInfo(packagePath()).isSymLink());
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(elsewhere));
    QCOMPARE(m_savedPath, packagePath());
}

void TstEngineerDocBackup::the_job_knows_the_package_it_saved()
{
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(m_savedPath, packagePath());
    QCOMPARE(save(m_site->touringRack, "Tour"), int(BackupSuccess));
    QCOMPARE(m_savedPath, packagePath("Tour"));
}

void TstEngineerDocBackup::fetching_a_picture_overlaps_writing_another()
{
    // Writing to the pipe blocks until the fetch of the next picture reads from it.
    const QString pipe = stage("BKG/BKG_0.png");
    bool made = false;
    QByteArray written;
    Faults::instance()->arm(queryMaterailData,
                            Fault::run([&] { made = ::mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0; }));
    Faults::instance()->arm(queryMaterailData, Fault::run(
                                                   [&] {
                                                       QFile file(pipe);
                                                       if (file.open(QIODevice::ReadOnly))
                                                           written = file.readAll();
                                                       QFile::remove(pipe);
                                                       writeFile(pipe, written);
                                                   },
                                                   2));
    // A stuck job would wait forever.
    int rescue = -1;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this,
            [&] { rescue = ::open(QFile::encodeName(pipe).constData(), O_RDONLY | O_NONBLOCK); });
    timer.start(40000);
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QVERIFY(made);
    QCOMPARE(rescue, -1);
    QCOMPARE(QImage::fromData(written, "PNG").convertToFormat(QImage::Format_RGB32),
             m_site->hardware(m_site->mainHall).backgrounds.value(0).pixels);
}

void TstEngineerDocBackup::a_second_save_encodes_only_what_changed()
{
    QCOMPARE(save(m_site->mainHall, "First"), int(BackupSuccess));
    QCOMPARE(m_encoded->encodedCount(), 11);
    unpack(packagePath("First"));
    const QByteArray before = readFile(unpacked("BKG/BKG_2.png"));
    const QByteArray unchanged = readFile(unpacked("LOGO/LOGO_5.png"));

    m_site->changeHardware(m_site->mainHall, [](HardwareState &state) {
        QImage &pixels = state.backgrounds[2].pixels;
        pixels.setPixel(0, 0, pixels.pixel(0, 0) ^ 1);
    });
    QCOMPARE(save(m_site->mainHall, "Second"), int(BackupSuccess));
    QCOMPARE(m_encoded->encodedCount(), 12);
    unpack(packagePath("Second"));
    QVERIFY(readFile(unpacked("BKG/BKG_2.png")) != before);
    QCOMPARE(QImage(unpacked("BKG/BKG_2.png")).convertToFormat(QImage::Format_RGB32),
             m_site->hardware(m_site->mainHall).backgrounds.value(2).pixels);
    QCOMPARE(readFile(unpacked("LOGO/LOGO_5.png")), unchanged);
}

// ---------------------------------------------------------------------------------------------------------------------
// Progress

void TstEngineerDocBackup::progress_names_each_background_and_no_logo()
{
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(m_progress, QVector<QString>(
                             {"Saving the gallery [BKG:Opening beams]...", "Saving the gallery [BKG:Keynote aurora]...",
                              "Saving the gallery [BKG:Walk-in bokeh]...", "Saving the gallery [BKG:Stage blue]...",
                              "Saving the gallery [BKG:Panel aurora]...", "Saving the gallery [BKG:Award gold]...",
                              "Saving the gallery [BKG:Finale beams]..."}));
}

void TstEngineerDocBackup::place_markers_in_names_are_shown_verbatim()
{
    m_site->changeHardware(m_site->mainHall, [](HardwareState &state) {
        const QImage pixels = state.backgrounds.first().pixels;
        state.backgrounds = {{1, PictureState{"50%1off %2 %%", pixels}}};
    });
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(m_progress, QVector<QString>{"Saving the gallery [BKG:50%1off %2 %%]..."});
}

// ---------------------------------------------------------------------------------------------------------------------
// Offline devices

void TstEngineerDocBackup::an_offline_device_is_saved_from_its_directory()
{
    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    VERIFY_JOURNAL(QStringList{serailize} + times(3, {presetFullDetail2Binary}));
    QVERIFY(m_progress.isEmpty());
    QCOMPARE(unpack(packagePath()),
             QStringList({"192.168.1.30.json", "BKG/", "BKG/BKG_0.png", "BKG/BKG_1.png", "LOGO/", "LOGO/LOGO_0.png",
                          "LOGO/LOGO_1.png", "Preset/", "Preset/1.RPst", "Preset/2.RPst", "Preset/3.RPst"}));
    for (const char *picture : {"BKG/BKG_0.png", "BKG/BKG_1.png", "LOGO/LOGO_0.png", "LOGO/LOGO_1.png"})
        QCOMPARE(readFile(unpacked(picture)), readFile(m_site->devicePath(m_site->touringRack, picture)));
}

void TstEngineerDocBackup::an_offline_save_rewrites_only_the_presets()
{
    const QString device = m_site->devicePath(m_site->touringRack);
    QVERIFY(writeFile(device + "/BKG/spare.png", "spare"));
    QVERIFY(writeFile(device + "/LOGO/.hidden/deep/note", "note"));
    QVERIFY(writeFile(device + "/Preset/99.RPst", "old"));
    QVERIFY(writeFile(device + "/Preset/.old/nested/1.RPst", "old"));
    const QByteArray background = readFile(device + "/BKG/BKG_0.png");
    QVERIFY(!background.isEmpty());

    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    QCOMPARE(readFile(device + "/BKG/BKG_0.png"), background);
    QCOMPARE(readFile(device + "/BKG/spare.png"), QByteArray("spare"));
    QCOMPARE(readFile(device + "/LOGO/.hidden/deep/note"), QByteArray("note"));
    QCOMPARE(contents(device + "/Preset"), QStringList({"1.RPst", "2.RPst", "3.RPst"}));
    const QStringList names = unpack(packagePath());
    QVERIFY(names.contains("BKG/spare.png"));
    QVERIFY(names.contains("LOGO/.hidden/deep/note"));
    QCOMPARE(names.filter(QRegularExpression("^Preset/.")).size(), 3);
}

void TstEngineerDocBackup::an_offline_device_needs_all_its_pictures_data()
{
    QTest::addColumn<QString>("missing");
    QTest::newRow("first background") << "BKG/BKG_0.png";
    QTest::newRow("last background") << "BKG/BKG_1.png";
    QTest::newRow("logo with key number 3") << "LOGO/LOGO_3.png";
}

void TstEngineerDocBackup::an_offline_device_needs_all_its_pictures()
{
    QFETCH(QString, missing);
    Model::DeviceEditor editor(*(*m_site)->device(m_site->touringRack));
    Model::DeviceData data = editor.data();
    data.logos.push_back(std::make_shared<Model::Materail>(Model::Materail::Logo, 3, "third", QSize(8, 8), data.ip));
    editor.replace(data);
    const QString logo3 = m_site->devicePath(m_site->touringRack, "LOGO/LOGO_3.png");
    QVERIFY(QFile::copy(m_site->devicePath(m_site->touringRack, "LOGO/LOGO_0.png"), logo3));
    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    QVERIFY(QFile::remove(packagePath()));
    QVERIFY(QFile::remove(m_site->devicePath(m_site->touringRack, missing)));
    Journal::instance()->clear();

    QCOMPARE(save(m_site->touringRack), int(BackupOfflineResourceIncomplete));
    VERIFY_JOURNAL({serailize});
    QVERIFY(!QFile::exists(packagePath()));
}

// ---------------------------------------------------------------------------------------------------------------------
// Stage folders

void TstEngineerDocBackup::left_over_files_are_neither_saved_nor_kept()
{
    for (const char *folder : {"BKG", "LOGO", "Preset"}) {
        QVERIFY(writeFile(stage(folder) + "/old.png", "old"));
        QVERIFY(writeFile(stage(folder) + "/.hidden", "old"));
        QVERIFY(writeFile(stage(folder) + "/nested/.deep/.old", "old"));
        QVERIFY(QDir().mkpath(stage(folder) + "/empty"));
    }
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    const QStringList names = unpack(packagePath());
    QCOMPARE(names.filter("old") + names.filter("hidden") + names.filter("empty"), QStringList());
    QCOMPARE(names.size(), 4 + 7 + 4 + 6);
    QCOMPARE(contents(m_site->devicePath(m_site->mainHall)),
             QStringList({"192.168.1.11.json", "BKG", "LOGO", "Preset"}));
}

void TstEngineerDocBackup::links_in_staging_folders_are_not_followed()
{
    const QString outside = m_site->path("outside");
    QVERIFY(writeFile(outside + "/precious.png", "precious"));
    for (const char *folder : {"BKG", "LOGO"}) {
        QVERIFY(QDir().mkpath(stage(folder) + "/nested"));
        QVERIFY(QFile::link(outside, stage(folder) + "/folder"));
        QVERIFY(QFile::link(outside + "/precious.png", stage(folder) + "/file.png"));
        QVERIFY(QFile::link(outside, stage(folder) + "/nested/folder"));
        QVERIFY(QFile::link(m_site->path("nowhere"), stage(folder) + "/broken"));
    }
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(readFile(outside + "/precious.png"), QByteArray("precious"));
    QCOMPARE(unpack(packagePath()).size(), 4 + 7 + 4 + 6);
    QCOMPARE(contents(m_site->devicePath(m_site->mainHall)),
             QStringList({"192.168.1.11.json", "BKG", "LOGO", "Preset"}));
}

void TstEngineerDocBackup::staged_files_are_removed_after_failed_packing()
{
    QVERIFY(writeFile(m_site->path("projects"), "in the way"));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QCOMPARE(contents(m_site->devicePath(m_site->mainHall)),
             QStringList({"192.168.1.11.json", "BKG", "LOGO", "Preset"}));
}

TEST_MAIN_GUI(TstEngineerDocBackup)
#include "tst_engineerdocbackup.moc"
