// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "backuptesting.h"
#include "zippackagehandle.h"

#include <model/deviceeditor.h>
#include <simulation/journal.h>
#include <support/journalmatchers.h>

#include <QSemaphore>
#include <QThreadStorage>

#include <atomic>
#include <cerrno>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using namespace Simulation::Operations;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;
using Simulation::Journal;
using Simulation::PresetState;

/// What makes a save end without a package: failures, other programs, a cancel.
class TstBackupFailures : public QObject, protected BackupTesting
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // Failures
    void a_failing_serialiser_ends_the_save();
    void an_unwritable_configuration_path_ends_the_save();
    void serializer_failure_outranks_an_unknown_device();
    void an_unknown_device_ends_the_save();
    void a_device_removed_midway_ends_the_save_data();
    void a_device_removed_midway_ends_the_save();
    void an_unfetchable_background_ends_the_save();
    void losing_the_connection_ends_the_save();
    void a_cancel_outranks_a_failed_background();
    void an_unwritable_picture_is_left_out_data();
    void an_unwritable_picture_is_left_out();
    void an_unopenable_preset_ends_silently_without_a_package();
    void an_unserialisable_preset_ends_the_save();
    void a_file_named_like_the_preset_folder_fails_data();
    void a_file_named_like_the_preset_folder_fails();
    void removing_the_preset_folder_ends_the_save();
    void a_recreated_preset_folder_is_tolerated();
    void a_host_exception_ends_the_save_data();
    void a_host_exception_ends_the_save();
    void an_encoder_exception_ends_the_save();
    void an_exception_without_text_ends_the_save();
    void null_list_entries_are_skipped();
    void a_picture_on_a_full_disk_fails();
    void a_preset_on_a_full_disk_fails_data();
    void a_preset_on_a_full_disk_fails();
    void a_full_disk_keeps_the_old_package();
    void a_file_named_like_the_project_directory_fails();

    // Other programs
    void staged_files_changed_by_others_end_the_save_data();
    void staged_files_changed_by_others_end_the_save();
    void a_package_created_meanwhile_is_kept_data();
    void a_package_created_meanwhile_is_kept();
    void a_package_removed_meanwhile_is_saved_again();
    void a_package_damaged_at_once_is_not_announced();

    // Cancelling
    void canceled_save_stops_at_the_next_point_data();
    void canceled_save_stops_at_the_next_point();
    void a_cancel_during_encoding_counts_data();
    void a_cancel_during_encoding_counts();
    void a_cancel_between_pictures_and_presets_ends_silently();
    void a_cancel_without_pictures_ends_silently();
    void a_cancel_before_the_start_is_lost();
    void a_cancel_during_packing_comes_too_late();
};

// ---------------------------------------------------------------------------------------------------------------------
// Failures

void TstBackupFailures::a_failing_serialiser_ends_the_save()
{
    Faults::instance()->arm(serailize, Fault::fail());
    QCOMPARE(save(m_site->mainHall), int(BackupSaveJsonFailed));
    QCOMPARE(WarningGuard::count(QtDebugMsg, "Fail to serailize model data."), 1);
    VERIFY_JOURNAL({serailize});
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::an_unwritable_configuration_path_ends_the_save()
{
    QVERIFY(QDir(m_site->path("devices")).removeRecursively());
    QVERIFY(writeFile(m_site->path("devices"), "in the way"));
    QCOMPARE(save(m_site->mainHall), int(BackupSaveJsonFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::serializer_failure_outranks_an_unknown_device()
{
    Faults::instance()->arm(serailize, Fault::fail());
    QCOMPARE(save("10.0.0.1"), int(BackupSaveJsonFailed));
}

void TstBackupFailures::an_unknown_device_ends_the_save()
{
    QCOMPARE(save("10.0.0.1"), int(BackupGetDeviceFailed));
    VERIFY_JOURNAL({serailize});
    QVERIFY(!QFile::exists(packagePath()));
    QVERIFY(!QFile::exists(m_site->devicePath("10.0.0.1")));
}

void TstBackupFailures::a_device_removed_midway_ends_the_save_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    QTest::addColumn<QStringList>("calls");
    const QStringList backgrounds = QStringList{serailize} + times(7, {queryMaterailData, loadImage});
    QTest::newRow("before it is looked up") << serailize << 1 << QStringList{serailize};
    QTest::newRow("before the backgrounds") << QString() << 0 << QStringList{serailize};
    QTest::newRow("before the logos") << loadImage << 7 << backgrounds;
    QTest::newRow("before the presets") << loadImage << 11 << backgrounds + times(4, {loadImage});
}

void TstBackupFailures::a_device_removed_midway_ends_the_save()
{
    QFETCH(QString, operation);
    QFETCH(int, call);
    QFETCH(QStringList, calls);
    const auto vanish = [ip = m_site->mainHall] { TestSite::removeFromDeviceList(ip); };
    if (operation.isEmpty())
        systemCalls().beforeMkdir = [vanish](const QByteArray &path) {
            if (path.endsWith("/BKG"))
                vanish();
        };
    else
        Faults::instance()->arm(operation, Fault::run(vanish, call));
    QCOMPARE(save(m_site->mainHall), int(BackupGetDeviceFailed));
    VERIFY_JOURNAL(calls);
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::an_unfetchable_background_ends_the_save()
{
    Faults::instance()->arm(queryMaterailData, Fault::fail(3));
    QCOMPARE(save(m_site->mainHall), int(BackupExportBkgFailed));
    VERIFY_JOURNAL(QStringList{serailize} + times(2, {queryMaterailData, loadImage}) + QStringList{queryMaterailData});
    QCOMPARE(m_progress.size(), 3);
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::losing_the_connection_ends_the_save()
{
    Faults::instance()->arm(queryMaterailData, Fault::disconnect(7));
    QCOMPARE(save(m_site->mainHall), int(BackupExportBkgFailed));
    QVERIFY(!(*m_site)->device(m_site->mainHall)->getDeviceOnlineFlag());
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::a_cancel_outranks_a_failed_background()
{
    Faults::instance()->arm(queryMaterailData, cancelJob(2));
    Faults::instance()->arm(queryMaterailData, Fault::fail(2));
    QCOMPARE(save(m_site->mainHall), int(BackupUserCanceled));
    VERIFY_JOURNAL({serailize, queryMaterailData, loadImage, queryMaterailData});
}

void TstBackupFailures::an_unwritable_picture_is_left_out_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<QString>("missing");
    QTest::newRow("background") << 2 << "BKG/BKG_1.png";
    QTest::newRow("logo") << 8 << "LOGO/LOGO_0.png";
}

void TstBackupFailures::an_unwritable_picture_is_left_out()
{
    QFETCH(int, call);
    QFETCH(QString, missing);
    Faults::instance()->arm(loadImage, Fault::fail(call));
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    const QStringList pictures = unpack(packagePath()).filter(".png");
    QCOMPARE(pictures.size(), 10);
    QVERIFY(!pictures.contains(missing));
    const QStringList said = WarningGuard::texts(QtDebugMsg).filter("Save picture failed:");
    QCOMPARE(said.size(), 1);
    QVERIFY2(said.first().contains(missing), qPrintable(said.first()));
}

void TstBackupFailures::an_unopenable_preset_ends_silently_without_a_package()
{
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run([this] { QDir().mkpath(stage("Preset/2.RPst")); }, 2));
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(m_savedPath, QString());
    QVERIFY(!QFile::exists(packagePath()));
    QCOMPARE(Journal::instance()->count(presetFullDetail2Binary), 2);
    QCOMPARE(WarningGuard::count(QtDebugMsg, "Device [Main hall] serailize error,reason: Is a directory"), 1);
}

void TstBackupFailures::an_unserialisable_preset_ends_the_save()
{
    Faults::instance()->arm(presetFullDetail2Binary, Fault::fail(2));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
    QCOMPARE(Journal::instance()->count(presetFullDetail2Binary), 2);
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter("could not be serialised").size(), 1);
}

void TstBackupFailures::a_file_named_like_the_preset_folder_fails_data()
{
    QTest::addColumn<bool>("hasPresets");
    QTest::newRow("with presets") << true;
    QTest::newRow("without presets") << false;
}

void TstBackupFailures::a_file_named_like_the_preset_folder_fails()
{
    QFETCH(bool, hasPresets);
    if (!hasPresets)
        m_site->changeHardware(m_site->mainHall, [](HardwareState &state) { state.presets.clear(); });
    QVERIFY(writeFile(stage("Preset"), "in the way"));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QCOMPARE(m_savedPath, QString());
    QCOMPARE(readFile(stage("Preset")), QByteArray("in the way"));
    QVERIFY(!QFile::exists(packagePath()));
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter("/Preset/ cannot be created").size(), 1);
}

void TstBackupFailures::removing_the_preset_folder_ends_the_save()
{
    Faults::instance()->arm(presetFullDetail2Binary,
                            Fault::run([this] { QDir(stage("Preset")).removeRecursively(); }, 2));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::a_recreated_preset_folder_is_tolerated()
{
    // As if another program saved this device: the folder is missing at first, then it is back.
    int asked = 0;
    systemCalls().onOpen = [&asked](const QByteArray &path, int) {
        return path.endsWith("/2.RPst") && ++asked == 1 ? ENOENT : 0;
    };
    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    QVERIFY(asked > 1);
    QCOMPARE(m_savedPath, packagePath());
    QCOMPARE(unpack(packagePath()).filter(".RPst").size(), 3);
}

void TstBackupFailures::a_host_exception_ends_the_save_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    QTest::newRow("serialiser") << serailize << 1;
    for (const int call : {1, 4, 7})
        QTest::addRow("query %d", call) << queryMaterailData << call;
    for (const int call : {1, 7, 8, 11})
        QTest::addRow("load %d", call) << loadImage << call;
    for (const int call : {1, 6})
        QTest::addRow("preset %d", call) << presetFullDetail2Binary << call;
}

void TstBackupFailures::a_host_exception_ends_the_save()
{
    QFETCH(QString, operation);
    QFETCH(int, call);
    QCOMPARE(save(m_site->mainHall, "Show", "the old one"), int(BackupSuccess));
    const QByteArray before = readFile(packagePath());
    const ExpectMessage told(QtCriticalMsg, QRegularExpression("^The save ended with an exception: " + operation), 1);
    Faults::instance()->arm(operation, Fault::throwing(call));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QCOMPARE(m_savedPath, QString());
    QCOMPARE(contents(m_projects), QStringList{"Show.corvelpro"});
    QVERIFY(readFile(packagePath()) == before);
}

void TstBackupFailures::an_encoder_exception_ends_the_save()
{
    m_encoded = std::make_shared<EncodedPictures>(EncodedPictures::defaultCapacity,
                                                  [](const QImage &) -> QByteArray { throw std::bad_alloc(); });
    const ExpectMessage told(QtCriticalMsg, QRegularExpression("^The save ended with an exception"), 1);
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::an_exception_without_text_ends_the_save()
{
    Faults::instance()->arm(loadImage, Fault::run([] { throw 5; }));
    const ExpectMessage told(QtCriticalMsg, QStringLiteral("The save ended with an exception: not a std::exception"),
                             1);
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::null_list_entries_are_skipped()
{
    const auto change = [this](const std::function<void(Model::DeviceData &)> &edit) {
        Model::DeviceEditor editor(*(*m_site)->device(m_site->mainHall));
        Model::DeviceData data = editor.data();
        edit(data);
        editor.replace(data);
    };
    systemCalls().beforeMkdir = [change](const QByteArray &path) {
        if (path.endsWith("/BKG"))
            change([](Model::DeviceData &data) {
                data.backgrounds = {nullptr, data.backgrounds.front(), nullptr};
                data.logos = {nullptr, data.logos.front(), nullptr};
                data.presets = {nullptr, data.presets.front(), nullptr};
            });
    };
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(unpack(packagePath()), QStringList({"192.168.1.11.json", "BKG/", "BKG/BKG_0.png", "LOGO/",
                                                 "LOGO/LOGO_0.png", "Preset/", "Preset/1.RPst"}));
    VERIFY_JOURNAL(QStringList({serailize, queryMaterailData, loadImage, loadImage, presetFullDetail2Binary}));
}

void TstBackupFailures::a_picture_on_a_full_disk_fails()
{
    QScopedPointer<FullDisk> fullDisk;
    Faults::instance()->arm(loadImage, Fault::run([&fullDisk] { fullDisk.reset(new FullDisk(50)); }));
    // There would be room for the package again.
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run([&fullDisk] { fullDisk.reset(); }));
    const int code = save(m_site->mainHall);
    QVERIFY(fullDisk);
    fullDisk.reset();
    QCOMPARE(code, int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::a_preset_on_a_full_disk_fails_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("room");
    QTest::newRow("noticed while it is written") << int(3 * MiB) << int(MiB);
    QTest::newRow("noticed when it is flushed") << 100 << 50;
}

void TstBackupFailures::a_preset_on_a_full_disk_fails()
{
    QFETCH(int, size);
    QFETCH(int, room);
    m_site->changeHardware(m_site->mainHall, [size](HardwareState &state) {
        state.presets = {{1, PresetState{"large", noise(size)}}, {2, PresetState{"small", "small"}}};
    });
    QScopedPointer<FullDisk> fullDisk;
    Faults::instance()->arm(presetFullDetail2Binary,
                            Fault::run([&fullDisk, room] { fullDisk.reset(new FullDisk(room)); }));
    // There would be room for the package again.
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run([&fullDisk] { fullDisk.reset(); }, 2));
    const int code = save(m_site->mainHall);
    QVERIFY(fullDisk);
    fullDisk.reset();
    QCOMPARE(code, int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::a_full_disk_keeps_the_old_package()
{
    QCOMPARE(save(m_site->mainHall, "Show", "the old one"), int(BackupSuccess));
    const QByteArray before = readFile(packagePath());
    QVERIFY(writeFile(stage("large.bin"), noise(3 * MiB)));
    int code = -1;
    {
        const FullDisk fullDisk(MiB);
        code = save(m_site->mainHall, "Show", "the new one");
    }
    QCOMPARE(code, int(BackupEncryptFailed));
    QCOMPARE(contents(m_projects), QStringList{"Show.corvelpro"});
    QVERIFY(readFile(packagePath()) == before);
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(packagePath()));
}

void TstBackupFailures::a_file_named_like_the_project_directory_fails()
{
    QVERIFY(writeFile(m_site->path("projects"), "in the way"));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QCOMPARE(m_savedPath, QString());
    QCOMPARE(readFile(m_site->path("projects")), QByteArray("in the way"));
}

// ---------------------------------------------------------------------------------------------------------------------
// Other programs

void TstBackupFailures::staged_files_changed_by_others_end_the_save_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isChanged");
    QTest::newRow("background taken away") << "BKG/BKG_3.png" << false;
    QTest::newRow("background changed") << "BKG/BKG_12.png" << true;
    QTest::newRow("logo taken away") << "LOGO/LOGO_0.png" << false;
    QTest::newRow("logo changed") << "LOGO/LOGO_5.png" << true;
    QTest::newRow("preset taken away") << "Preset/2.RPst" << false;
    QTest::newRow("preset changed") << "Preset/5.RPst" << true;
}

void TstBackupFailures::staged_files_changed_by_others_end_the_save()
{
    QFETCH(QString, name);
    QFETCH(bool, isChanged);
    QCOMPARE(save(m_site->mainHall, "Show", "the old one"), int(BackupSuccess));
    const QByteArray before = readFile(packagePath());
    bool wasThere = false;
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run(
                                                         [&] {
                                                             QFile file(stage(name));
                                                             wasThere = file.exists();
                                                             if (isChanged)
                                                                 file.resize(file.size() + 1);
                                                             else
                                                                 file.remove();
                                                         },
                                                         6));
    QCOMPARE(save(m_site->mainHall, "Show", "the new one"), int(BackupEncryptFailed));
    QVERIFY(wasThere);
    QCOMPARE(m_savedPath, QString());
    QCOMPARE(contents(m_projects), QStringList{"Show.corvelpro"});
    QVERIFY(readFile(packagePath()) == before);
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter("Save failed: " + name + " was removed from").size(), 1);
}

void TstBackupFailures::a_package_created_meanwhile_is_kept_data()
{
    QTest::addColumn<bool>("isReplaced");
    QTest::newRow("new package") << false;
    QTest::newRow("replaced package") << true;
}

void TstBackupFailures::a_package_created_meanwhile_is_kept()
{
    QFETCH(bool, isReplaced);
    QVERIFY(!isReplaced || writeFile(packagePath(), "there when the save began"));
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run([&] {
                                QFile::remove(packagePath());
                                writeFile(packagePath(), "came meanwhile");
                            }));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QCOMPARE(contents(m_projects), QStringList{"Show.corvelpro"});
    QCOMPARE(readFile(packagePath()), QByteArray("came meanwhile"));
}

void TstBackupFailures::a_package_removed_meanwhile_is_saved_again()
{
    QVERIFY(writeFile(packagePath(), "there when the save began"));
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run([&] { QFile::remove(packagePath()); }));
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(m_savedPath, packagePath());
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(packagePath()));
}

void TstBackupFailures::a_package_damaged_at_once_is_not_announced()
{
    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    // The replaced one is removed after the new one is in place.
    bool isDamaged = false;
    systemCalls().beforeUnlink = [&](const QByteArray &path) {
        if (path.endsWith(".part"))
            isDamaged = QFile::resize(packagePath(), 100);
    };
    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    QVERIFY(isDamaged);
    QCOMPARE(m_savedPath, QString());
}

// ---------------------------------------------------------------------------------------------------------------------
// Cancelling

void TstBackupFailures::canceled_save_stops_at_the_next_point_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("calls");
    const auto backgrounds = [](int count) {
        return QStringList{serailize} + times(count, {queryMaterailData, loadImage});
    };
    const auto logos = [&](int count) { return backgrounds(7) + times(count, {loadImage}); };
    const auto presets = [&](int count) { return logos(4) + times(count, {presetFullDetail2Binary}); };

    QTest::newRow("before background 1") << serailize << 1 << int(BackupUserCanceled) << backgrounds(0);
    for (int done = 1; done < 7; ++done) {
        QTest::addRow("while background %d is fetched", done)
            << queryMaterailData << done << int(BackupUserCanceled) << backgrounds(done);
        QTest::addRow("before background %d", done + 1)
            << loadImage << done << int(BackupUserCanceled) << backgrounds(done);
    }
    for (int done = 0; done < 4; ++done)
        QTest::addRow("before logo %d", done + 1) << loadImage << 7 + done << int(BackupUserCanceled) << logos(done);
    QTest::newRow("before the last picture is written") << loadImage << 11 << int(BackupUserCanceled) << presets(0);
    QTest::newRow("before preset 1") << QString() << 0 << int(BackupUserCanceled) << presets(0);
    for (int done = 1; done < 6; ++done)
        QTest::addRow("before preset %d", done + 1)
            << presetFullDetail2Binary << done << int(BackupUserCanceled) << presets(done);
}

void TstBackupFailures::canceled_save_stops_at_the_next_point()
{
    QFETCH(QString, operation);
    QFETCH(int, call);
    QFETCH(int, code);
    QFETCH(QStringList, calls);
    if (operation.isEmpty())
        systemCalls().beforeMkdir = [this](const QByteArray &path) {
            // The folder is created twice: with the other stage folders, and again for the presets.
            if (path.endsWith("/Preset") && Journal::instance()->count(loadImage) == 11)
                m_job->cancel();
        };
    else
        Faults::instance()->arm(operation, cancelJob(call));
    QCOMPARE(save(m_site->mainHall), code);
    QCOMPARE(m_savedPath, QString());
    VERIFY_JOURNAL(calls);
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::a_cancel_during_encoding_counts_data()
{
    QTest::addColumn<int>("picture");
    for (int picture = 1; picture <= 11; ++picture)
        QTest::addRow("picture %d", picture) << picture;
}

void TstBackupFailures::a_cancel_during_encoding_counts()
{
    QFETCH(int, picture);
    // Whichever encoder is held, the job fetches one picture more than were started before it waits.
    QSemaphore isFetched;
    Faults::instance()->arm(loadImage, Fault::run([&] { isFetched.release(); }, qMin(11, picture + 1)));
    std::atomic<int> encoded{0};
    m_encoded = std::make_shared<EncodedPictures>(EncodedPictures::defaultCapacity, [&](const QImage &image) {
        if (++encoded == picture) {
            isFetched.acquire();
            m_job->cancel();
        }
        return EncodedPictures::encodePng(image);
    });
    QCOMPARE(save(m_site->mainHall), int(BackupUserCanceled));
    QCOMPARE(Journal::instance()->count(presetFullDetail2Binary), 0);
    QCOMPARE(m_savedPath, QString());
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::a_cancel_between_pictures_and_presets_ends_silently()
{
    // An encoder's thread ends, and with it its thread-local data, when the last picture was written.
    struct Canceller
    {
        EngineerDocBackup *job;
        ~Canceller() { job->cancel(); }
    };
    QThreadStorage<Canceller *> cancellers;
    std::atomic<bool> hasCanceller{false};
    m_encoded = std::make_shared<EncodedPictures>(EncodedPictures::defaultCapacity, [&](const QImage &image) {
        if (!hasCanceller.exchange(true))
            cancellers.setLocalData(new Canceller{m_job});
        return EncodedPictures::encodePng(image);
    });
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(Journal::instance()->count(loadImage), 11);
    QCOMPARE(Journal::instance()->count(presetFullDetail2Binary), 0);
    QCOMPARE(m_savedPath, QString());
    QVERIFY(!QFile::exists(packagePath()));
}

void TstBackupFailures::a_cancel_without_pictures_ends_silently()
{
    m_site->changeHardware(m_site->mainHall, [](HardwareState &state) {
        state.backgrounds.clear();
        state.logos.clear();
    });
    for (const QString &ip : {m_site->mainHall, m_site->touringRack}) {
        Journal::instance()->clear();
        Faults::instance()->arm(serailize, cancelJob());
        QCOMPARE(save(ip), int(BackupSuccess));
        VERIFY_JOURNAL({serailize});
        QCOMPARE(m_savedPath, QString());
        QVERIFY(!QFile::exists(packagePath()));
    }
}

void TstBackupFailures::a_cancel_before_the_start_is_lost()
{
    EngineerDocBackup job(nullptr, m_site->touringRack);
    job.setProjectPath(m_projects);
    job.setProjectInfo("Show", QString());
    job.cancel();
    job.start();
    QVERIFY(job.wait(60000));
    QCOMPARE(job.resultCode(), int(BackupSuccess));
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(packagePath()));
}

void TstBackupFailures::a_cancel_during_packing_comes_too_late()
{
    Faults::instance()->arm(presetFullDetail2Binary, cancelJob(6));
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(packagePath()));
}

TEST_MAIN_GUI(TstBackupFailures)
#include "tst_backupfailures.moc"
