#include "encodedpictures.h"
#include "engineerdocbackup.h"
#include "packagetesting.h"
#include "zippackagehandle.h"

#include <model/deviceeditor.h>
#include <simulation/faults.h>
#include <simulation/journal.h>
#include <support/journalmatchers.h>
#include <support/packagebuilder.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>
#include <support/testsite.h>

#include <QJsonDocument>
#include <QSemaphore>
#include <QTextCodec>
#include <QThreadStorage>
#include <QTimer>

#include <atomic>
#include <cerrno>
#include <cstdarg>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

/// Called on the thread that is about to make a directory. Between looking up a device and using it the job
/// calls no operation of the host, so this is how a test gets in there.
static std::function<void(const QByteArray &path)> s_beforeMkdir;

// Stands before the C library's.
extern "C" Q_DECL_EXPORT int mkdir(const char *path, mode_t mode) noexcept
{
    using Function = int (*)(const char *, mode_t);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "mkdir"));
    if (s_beforeMkdir)
        s_beforeMkdir(path);
    return original(path, mode);
}

/// Called with a file that is about to be removed.
static std::function<void(const QByteArray &path)> s_beforeUnlink;

extern "C" Q_DECL_EXPORT int unlink(const char *path) noexcept
{
    using Function = int (*)(const char *);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "unlink"));
    if (s_beforeUnlink)
        s_beforeUnlink(path);
    return original(path);
}

/// Asked with a file that is about to be opened: whether that fails, as where its folder is missing.
static std::function<bool(const QByteArray &path)> s_isGone;

extern "C" Q_DECL_EXPORT int open64(const char *path, int flags, ...)
{
    using Function = int (*)(const char *, int, mode_t);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "open64"));
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (s_isGone && s_isGone(path)) {
        errno = ENOENT;
        return -1;
    }
    return original(path, flags, mode);
}

static QStringList times(int count, const QStringList &operations)
{
    QStringList all;
    for (int i = 0; i < count; ++i)
        all += operations;
    return all;
}

class TstEngineerDocBackup : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_save_calls_the_host_in_this_order_and_on_the_jobs_thread();
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
    void without_a_path_the_package_goes_to_the_users_documents();
    void a_path_separator_in_the_name_is_used_as_it_stands();
    void a_name_that_leads_to_a_missing_folder_ends_with_5();
    void chinese_and_emoji_survive_whatever_the_locale_codec_is();
    void saving_under_the_same_name_replaces_the_package();
    void a_link_in_the_packages_place_stays_one();
    void the_job_tells_the_package_that_it_left();

    void the_next_picture_is_fetched_while_one_is_written();
    void a_second_save_encodes_only_what_changed();

    void progress_names_each_background_and_no_logo();
    void a_name_with_place_markers_is_shown_as_it_is();

    void a_failing_serialiser_ends_with_6();
    void an_unwritable_configuration_path_ends_with_6();
    void a_failing_serialiser_comes_before_an_unknown_device();
    void an_unknown_device_ends_with_7();
    void a_device_that_vanishes_on_the_way_ends_with_7_data();
    void a_device_that_vanishes_on_the_way_ends_with_7();
    void a_background_that_cannot_be_fetched_ends_with_1();
    void a_device_that_drops_off_ends_with_1();
    void a_background_that_fails_while_cancelled_ends_with_4();
    void a_picture_that_cannot_be_written_does_not_end_the_save_data();
    void a_picture_that_cannot_be_written_does_not_end_the_save();
    void an_unopenable_preset_ends_silently_without_a_package();
    void a_preset_that_cannot_be_serialised_ends_with_5();
    void a_file_in_the_preset_folders_place_ends_with_5_data();
    void a_file_in_the_preset_folders_place_ends_with_5();
    void a_preset_folder_taken_away_ends_with_5();
    void a_preset_folder_made_anew_does_not_end_the_save();
    void an_exception_of_the_host_ends_with_5_data();
    void an_exception_of_the_host_ends_with_5();
    void an_exception_of_an_encoder_ends_with_5();
    void an_exception_without_a_text_ends_with_5();
    void null_entries_of_the_hosts_lists_are_passed_over();
    void a_full_disk_under_a_picture_ends_with_5();
    void a_full_disk_under_a_preset_ends_with_5_data();
    void a_full_disk_under_a_preset_ends_with_5();
    void a_full_disk_under_the_package_keeps_the_old_one();
    void a_file_in_the_projects_directorys_place_ends_with_5();

    void what_another_program_took_away_ends_with_5_data();
    void what_another_program_took_away_ends_with_5();
    void a_package_that_came_meanwhile_is_kept_data();
    void a_package_that_came_meanwhile_is_kept();
    void a_package_that_went_meanwhile_is_not_missed();
    void a_package_that_is_damaged_at_once_is_not_told();

    void an_offline_device_is_saved_from_its_directory();
    void an_offline_device_keeps_its_files_and_only_its_presets_are_made_anew();
    void an_offline_device_without_a_picture_ends_with_3_data();
    void an_offline_device_without_a_picture_ends_with_3();

    void left_over_files_are_neither_saved_nor_kept();
    void links_in_the_stage_folders_are_not_followed();
    void staged_files_are_gone_when_packing_failed();

    void a_cancelled_save_ends_at_the_next_point_data();
    void a_cancelled_save_ends_at_the_next_point();
    void a_cancel_while_pictures_are_encoded_ends_with_4_data();
    void a_cancel_while_pictures_are_encoded_ends_with_4();
    void a_cancel_between_pictures_and_presets_ends_silently();
    void a_cancel_without_pictures_ends_silently_before_the_presets();
    void a_request_before_the_start_is_lost();
    void a_request_while_the_package_is_written_comes_too_late();

private:
    /// Runs a job to its end and returns its result code, -1 when it does not come.
    int save(const QString &ip, const QString &name = QStringLiteral("Show"), const QString &comment = QString());
    /// A fault that asks the running job to cancel.
    Fault cancelJob(int call = 1);
    /// Unpacks with another program than the product and returns the entries' names, sorted.
    QStringList unpack(const QString &packagePath);
    QString packagePath(const QString &name = QStringLiteral("Show")) const;
    QString unpacked(const QString &entry) const { return m_site->path("unpacked/" + entry); }
    QString stage(const QString &name) const { return m_site->devicePath(m_site->mainHall, name); }
    void makePackageDirectory() { QDir().mkpath(m_projects); }

    QScopedPointer<TestSite> m_site;
    QString m_projects;
    std::shared_ptr<EncodedPictures> m_encoded;
    EngineerDocBackup *m_job = nullptr;
    QVector<QString> m_progress;
    /// What the last job told.
    QString m_savedPath;
    /// What saves of the main hall left of what they staged.
    QStringList m_leftOver;
};

void TstEngineerDocBackup::init()
{
    m_site.reset(new TestSite);
    m_encoded = std::make_shared<EncodedPictures>();
    m_projects = m_site->path("projects/");
    m_progress.clear();
    m_leftOver.clear();
    WarningGuard::clear();
}

void TstEngineerDocBackup::cleanup()
{
    s_beforeMkdir = nullptr;
    s_beforeUnlink = nullptr;
    s_isGone = nullptr;
    m_site.reset();
    QCOMPARE(m_leftOver, QStringList());
}

int TstEngineerDocBackup::save(const QString &ip, const QString &name, const QString &comment)
{
    EngineerDocBackup job(nullptr, QString());
    job.setProjectPath(m_projects);
    job.setDeviceIp(ip);
    job.setProjectInfo(name, comment);
    job.setEncodedPictures(m_encoded);
    const SignalRecorder<QString> progress(&job, &EngineerDocBackup::signal_operatoerChanged);
    const SignalRecorder<> finished(&job, &QThread::finished);
    m_job = &job;
    job.start(QThread::InheritPriority);
    const bool ended = QTest::qWaitFor([&finished] { return !finished.isEmpty(); }, 60000);
    job.wait();
    m_job = nullptr;
    m_progress = progress.values();
    m_savedPath = job.savedPackagePath();
    for (const char *folder : {"BKG", "LOGO", "Preset"})
        m_leftOver += contents(m_site->devicePath(m_site->mainHall, folder));
    return ended ? job.resultCode() : -1;
}

Fault TstEngineerDocBackup::cancelJob(int call)
{
    return Fault::run([this] { m_job->cancel(); }, call);
}

QStringList TstEngineerDocBackup::unpack(const QString &packagePath)
{
    const QString python = "import sys, zipfile\n"
                           "z = zipfile.ZipFile(sys.argv[1])\n"
                           "z.extractall(sys.argv[2])\n"
                           "print('\\n'.join(z.namelist()))\n";
    QDir(m_site->path("unpacked")).removeRecursively();
    const Run outcome = runPython(python, {packagePath, m_site->path("unpacked")});
    if (outcome.exitCode != 0)
        return {QStringLiteral("cannot be unpacked: ") + outcome.errors};
    QStringList names = QString::fromUtf8(outcome.output).split('\n', Qt::SkipEmptyParts);
    names.sort();
    return names;
}

QString TstEngineerDocBackup::packagePath(const QString &name) const
{
    return m_projects + name + ".corvelpro";
}

// ---------------------------------------------------------------------------------------------------------------------
// What is saved

void TstEngineerDocBackup::a_save_calls_the_host_in_this_order_and_on_the_jobs_thread()
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

void TstEngineerDocBackup::without_a_path_the_package_goes_to_the_users_documents()
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

void TstEngineerDocBackup::a_path_separator_in_the_name_is_used_as_it_stands()
{
    QVERIFY(QDir().mkpath(m_projects + "tour/day 1"));
    QCOMPARE(save(m_site->mainHall, "tour/day 1/Show"), int(BackupSuccess));
    EngineerPacketInfo info;
    info.strFilePath = m_projects + "tour/day 1/Show.corvelpro";
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QString("tour/day 1/Show"));
}

void TstEngineerDocBackup::a_name_that_leads_to_a_missing_folder_ends_with_5()
{
    QCOMPARE(save(m_site->mainHall, "tour/Show"), int(BackupEncryptFailed));
    QCOMPARE(contents(m_projects), QStringList());
}

void TstEngineerDocBackup::chinese_and_emoji_survive_whatever_the_locale_codec_is()
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

void TstEngineerDocBackup::a_link_in_the_packages_place_stays_one()
{
    const QString elsewhere = m_site->path("elsewhere.corvelpro");
    QVERIFY(writeFile(elsewhere, "old"));
    makePackageDirectory();
    QVERIFY(QFile::link(elsewhere, packagePath()));
    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    QVERIFY(QFileInfo(packagePath()).isSymLink());
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(elsewhere));
    QCOMPARE(m_savedPath, packagePath());
}

void TstEngineerDocBackup::the_job_tells_the_package_that_it_left()
{
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(m_savedPath, packagePath());
    QCOMPARE(save(m_site->touringRack, "Tour"), int(BackupSuccess));
    QCOMPARE(m_savedPath, packagePath("Tour"));
}

void TstEngineerDocBackup::the_next_picture_is_fetched_while_one_is_written()
{
    // Who writes into a pipe waits for its reader, and that is whoever is asked for the next picture.
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
    // A job that does not go on would wait for ever.
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

void TstEngineerDocBackup::a_name_with_place_markers_is_shown_as_it_is()
{
    m_site->changeHardware(m_site->mainHall, [](HardwareState &state) {
        const QImage pixels = state.backgrounds.first().pixels;
        state.backgrounds = {{1, PictureState{"50%1off %2 %%", pixels}}};
    });
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(m_progress, QVector<QString>{"Saving the gallery [BKG:50%1off %2 %%]..."});
}

// ---------------------------------------------------------------------------------------------------------------------
// What goes wrong

void TstEngineerDocBackup::a_failing_serialiser_ends_with_6()
{
    Faults::instance()->arm(serailize, Fault::fail());
    QCOMPARE(save(m_site->mainHall), int(BackupSaveJsonFailed));
    QCOMPARE(WarningGuard::count(QtDebugMsg, "Fail to serailize model data."), 1);
    VERIFY_JOURNAL({serailize});
    QVERIFY(!QFile::exists(packagePath()));
}

void TstEngineerDocBackup::an_unwritable_configuration_path_ends_with_6()
{
    QVERIFY(QDir(m_site->path("devices")).removeRecursively());
    QVERIFY(writeFile(m_site->path("devices"), "in the way"));
    QCOMPARE(save(m_site->mainHall), int(BackupSaveJsonFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstEngineerDocBackup::a_failing_serialiser_comes_before_an_unknown_device()
{
    Faults::instance()->arm(serailize, Fault::fail());
    QCOMPARE(save("10.0.0.1"), int(BackupSaveJsonFailed));
}

void TstEngineerDocBackup::an_unknown_device_ends_with_7()
{
    QCOMPARE(save("10.0.0.1"), int(BackupGetDeviceFailed));
    VERIFY_JOURNAL({serailize});
    QVERIFY(!QFile::exists(packagePath()));
    QVERIFY(!QFile::exists(m_site->devicePath("10.0.0.1")));
}

void TstEngineerDocBackup::a_device_that_vanishes_on_the_way_ends_with_7_data()
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

void TstEngineerDocBackup::a_device_that_vanishes_on_the_way_ends_with_7()
{
    QFETCH(QString, operation);
    QFETCH(int, call);
    QFETCH(QStringList, calls);
    const auto vanish = [ip = m_site->mainHall] { TestSite::removeFromDeviceList(ip); };
    if (operation.isEmpty())
        s_beforeMkdir = [vanish](const QByteArray &path) {
            if (path.endsWith("/BKG"))
                vanish();
        };
    else
        Faults::instance()->arm(operation, Fault::run(vanish, call));
    QCOMPARE(save(m_site->mainHall), int(BackupGetDeviceFailed));
    VERIFY_JOURNAL(calls);
    QVERIFY(!QFile::exists(packagePath()));
}

void TstEngineerDocBackup::a_background_that_cannot_be_fetched_ends_with_1()
{
    Faults::instance()->arm(queryMaterailData, Fault::fail(3));
    QCOMPARE(save(m_site->mainHall), int(BackupExportBkgFailed));
    VERIFY_JOURNAL(QStringList{serailize} + times(2, {queryMaterailData, loadImage}) + QStringList{queryMaterailData});
    QCOMPARE(m_progress.size(), 3);
    QVERIFY(!QFile::exists(packagePath()));
}

void TstEngineerDocBackup::a_device_that_drops_off_ends_with_1()
{
    Faults::instance()->arm(queryMaterailData, Fault::disconnect(7));
    QCOMPARE(save(m_site->mainHall), int(BackupExportBkgFailed));
    QVERIFY(!(*m_site)->device(m_site->mainHall)->getDeviceOnlineFlag());
    QVERIFY(!QFile::exists(packagePath()));
}

void TstEngineerDocBackup::a_background_that_fails_while_cancelled_ends_with_4()
{
    Faults::instance()->arm(queryMaterailData, cancelJob(2));
    Faults::instance()->arm(queryMaterailData, Fault::fail(2));
    QCOMPARE(save(m_site->mainHall), int(BackupUserCanceled));
    VERIFY_JOURNAL({serailize, queryMaterailData, loadImage, queryMaterailData});
}

void TstEngineerDocBackup::a_picture_that_cannot_be_written_does_not_end_the_save_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<QString>("missing");
    QTest::newRow("background") << 2 << "BKG/BKG_1.png";
    QTest::newRow("logo") << 8 << "LOGO/LOGO_0.png";
}

void TstEngineerDocBackup::a_picture_that_cannot_be_written_does_not_end_the_save()
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

void TstEngineerDocBackup::an_unopenable_preset_ends_silently_without_a_package()
{
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run([this] { QDir().mkpath(stage("Preset/2.RPst")); }, 2));
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(m_savedPath, QString());
    QVERIFY(!QFile::exists(packagePath()));
    QCOMPARE(Journal::instance()->count(presetFullDetail2Binary), 2);
    QCOMPARE(WarningGuard::count(QtDebugMsg, "Device [Main hall] serailize error,reason: Is a directory"), 1);
}

void TstEngineerDocBackup::a_preset_that_cannot_be_serialised_ends_with_5()
{
    Faults::instance()->arm(presetFullDetail2Binary, Fault::fail(2));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
    QCOMPARE(Journal::instance()->count(presetFullDetail2Binary), 2);
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter("could not be serialised").size(), 1);
}

void TstEngineerDocBackup::a_file_in_the_preset_folders_place_ends_with_5_data()
{
    QTest::addColumn<bool>("hasPresets");
    QTest::newRow("with presets") << true;
    QTest::newRow("without presets") << false;
}

void TstEngineerDocBackup::a_file_in_the_preset_folders_place_ends_with_5()
{
    QFETCH(bool, hasPresets);
    if (!hasPresets)
        m_site->changeHardware(m_site->mainHall, [](HardwareState &state) { state.presets.clear(); });
    QVERIFY(writeFile(stage("Preset"), "in the way"));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QCOMPARE(m_savedPath, QString());
    QCOMPARE(readFile(stage("Preset")), QByteArray("in the way"));
    QVERIFY(!QFile::exists(packagePath()));
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter("/Preset/ cannot be made").size(), 1);
}

void TstEngineerDocBackup::a_preset_folder_taken_away_ends_with_5()
{
    Faults::instance()->arm(presetFullDetail2Binary,
                            Fault::run([this] { QDir(stage("Preset")).removeRecursively(); }, 2));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstEngineerDocBackup::a_preset_folder_made_anew_does_not_end_the_save()
{
    // Another program that saves this device: at the one moment the folder is missing, at the next it is back.
    int asked = 0;
    s_isGone = [&asked](const QByteArray &path) { return path.endsWith("/2.RPst") && ++asked == 1; };
    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    QVERIFY(asked > 1);
    QCOMPARE(m_savedPath, packagePath());
    QCOMPARE(unpack(packagePath()).filter(".RPst").size(), 3);
}

void TstEngineerDocBackup::an_exception_of_the_host_ends_with_5_data()
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

void TstEngineerDocBackup::an_exception_of_the_host_ends_with_5()
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

void TstEngineerDocBackup::an_exception_of_an_encoder_ends_with_5()
{
    m_encoded = std::make_shared<EncodedPictures>(EncodedPictures::DefaultCapacity,
                                                  [](const QImage &) -> QByteArray { throw std::bad_alloc(); });
    const ExpectMessage told(QtCriticalMsg, QRegularExpression("^The save ended with an exception"), 1);
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstEngineerDocBackup::an_exception_without_a_text_ends_with_5()
{
    Faults::instance()->arm(loadImage, Fault::run([] { throw 5; }));
    const ExpectMessage told(QtCriticalMsg, QStringLiteral("The save ended with an exception"), 1);
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstEngineerDocBackup::null_entries_of_the_hosts_lists_are_passed_over()
{
    const auto change = [this](const std::function<void(Model::DeviceData &)> &edit) {
        Model::DeviceEditor editor(*(*m_site)->device(m_site->mainHall));
        Model::DeviceData data = editor.data();
        edit(data);
        editor.replace(data);
    };
    s_beforeMkdir = [change](const QByteArray &path) {
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

void TstEngineerDocBackup::a_full_disk_under_a_picture_ends_with_5()
{
    QScopedPointer<FullDisk> fullDisk;
    Faults::instance()->arm(loadImage, Fault::run([&fullDisk] { fullDisk.reset(new FullDisk(50)); }));
    // The package itself would have room again.
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run([&fullDisk] { fullDisk.reset(); }));
    const int code = save(m_site->mainHall);
    QVERIFY(fullDisk);
    fullDisk.reset();
    QCOMPARE(code, int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstEngineerDocBackup::a_full_disk_under_a_preset_ends_with_5_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("room");
    QTest::newRow("noticed while it is written") << int(3 * MiB) << int(MiB);
    QTest::newRow("noticed when it is flushed") << 100 << 50;
}

void TstEngineerDocBackup::a_full_disk_under_a_preset_ends_with_5()
{
    QFETCH(int, size);
    QFETCH(int, room);
    m_site->changeHardware(m_site->mainHall, [size](HardwareState &state) {
        state.presets = {{1, PresetState{"large", noise(size)}}, {2, PresetState{"small", "small"}}};
    });
    QScopedPointer<FullDisk> fullDisk;
    Faults::instance()->arm(presetFullDetail2Binary,
                            Fault::run([&fullDisk, room] { fullDisk.reset(new FullDisk(room)); }));
    // The package itself would have room again.
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run([&fullDisk] { fullDisk.reset(); }, 2));
    const int code = save(m_site->mainHall);
    QVERIFY(fullDisk);
    fullDisk.reset();
    QCOMPARE(code, int(BackupEncryptFailed));
    QVERIFY(!QFile::exists(packagePath()));
}

void TstEngineerDocBackup::a_full_disk_under_the_package_keeps_the_old_one()
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

void TstEngineerDocBackup::a_file_in_the_projects_directorys_place_ends_with_5()
{
    QVERIFY(writeFile(m_site->path("projects"), "in the way"));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QCOMPARE(m_savedPath, QString());
    QCOMPARE(readFile(m_site->path("projects")), QByteArray("in the way"));
}

// ---------------------------------------------------------------------------------------------------------------------
// Other programs

void TstEngineerDocBackup::what_another_program_took_away_ends_with_5_data()
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

void TstEngineerDocBackup::what_another_program_took_away_ends_with_5()
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
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter("Save failed: " + name + " was taken out").size(), 1);
}

void TstEngineerDocBackup::a_package_that_came_meanwhile_is_kept_data()
{
    QTest::addColumn<bool>("isReplaced");
    QTest::newRow("where none was") << false;
    QTest::newRow("where another one was") << true;
}

void TstEngineerDocBackup::a_package_that_came_meanwhile_is_kept()
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

void TstEngineerDocBackup::a_package_that_went_meanwhile_is_not_missed()
{
    QVERIFY(writeFile(packagePath(), "there when the save began"));
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run([&] { QFile::remove(packagePath()); }));
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QCOMPARE(m_savedPath, packagePath());
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(packagePath()));
}

void TstEngineerDocBackup::a_package_that_is_damaged_at_once_is_not_told()
{
    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    // The one that was replaced goes when the new one has its place.
    bool isDamaged = false;
    s_beforeUnlink = [&](const QByteArray &path) {
        if (path.endsWith(".part"))
            isDamaged = QFile::resize(packagePath(), 100);
    };
    QCOMPARE(save(m_site->touringRack), int(BackupSuccess));
    QVERIFY(isDamaged);
    QCOMPARE(m_savedPath, QString());
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

void TstEngineerDocBackup::an_offline_device_keeps_its_files_and_only_its_presets_are_made_anew()
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

void TstEngineerDocBackup::an_offline_device_without_a_picture_ends_with_3_data()
{
    QTest::addColumn<QString>("missing");
    QTest::newRow("first background") << "BKG/BKG_0.png";
    QTest::newRow("last background") << "BKG/BKG_1.png";
    QTest::newRow("logo with key number 3") << "LOGO/LOGO_3.png";
}

void TstEngineerDocBackup::an_offline_device_without_a_picture_ends_with_3()
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

void TstEngineerDocBackup::links_in_the_stage_folders_are_not_followed()
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

void TstEngineerDocBackup::staged_files_are_gone_when_packing_failed()
{
    QVERIFY(writeFile(m_site->path("projects"), "in the way"));
    QCOMPARE(save(m_site->mainHall), int(BackupEncryptFailed));
    QCOMPARE(contents(m_site->devicePath(m_site->mainHall)),
             QStringList({"192.168.1.11.json", "BKG", "LOGO", "Preset"}));
}

// ---------------------------------------------------------------------------------------------------------------------
// Cancelling

void TstEngineerDocBackup::a_cancelled_save_ends_at_the_next_point_data()
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

void TstEngineerDocBackup::a_cancelled_save_ends_at_the_next_point()
{
    QFETCH(QString, operation);
    QFETCH(int, call);
    QFETCH(int, code);
    QFETCH(QStringList, calls);
    if (operation.isEmpty())
        s_beforeMkdir = [this](const QByteArray &path) {
            // The folder is made twice: with the other stage folders, and anew for the presets.
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

void TstEngineerDocBackup::a_cancel_while_pictures_are_encoded_ends_with_4_data()
{
    QTest::addColumn<int>("picture");
    for (int picture = 1; picture <= 11; ++picture)
        QTest::addRow("picture %d", picture) << picture;
}

void TstEngineerDocBackup::a_cancel_while_pictures_are_encoded_ends_with_4()
{
    QFETCH(int, picture);
    // Whichever encoder is held, the job fetches one picture more than were begun before it waits.
    QSemaphore isFetched;
    Faults::instance()->arm(loadImage, Fault::run([&] { isFetched.release(); }, qMin(11, picture + 1)));
    std::atomic<int> encoded{0};
    m_encoded = std::make_shared<EncodedPictures>(EncodedPictures::DefaultCapacity, [&](const QImage &image) {
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

void TstEngineerDocBackup::a_cancel_between_pictures_and_presets_ends_silently()
{
    // An encoder's thread ends, and with it what belongs to the thread, when the last picture was written.
    struct Canceller
    {
        EngineerDocBackup *job;
        ~Canceller() { job->cancel(); }
    };
    QThreadStorage<Canceller *> cancellers;
    std::atomic<bool> hasCanceller{false};
    m_encoded = std::make_shared<EncodedPictures>(EncodedPictures::DefaultCapacity, [&](const QImage &image) {
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

void TstEngineerDocBackup::a_cancel_without_pictures_ends_silently_before_the_presets()
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

void TstEngineerDocBackup::a_request_before_the_start_is_lost()
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

void TstEngineerDocBackup::a_request_while_the_package_is_written_comes_too_late()
{
    Faults::instance()->arm(presetFullDetail2Binary, cancelJob(6));
    QCOMPARE(save(m_site->mainHall), int(BackupSuccess));
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(packagePath()));
}

TEST_MAIN_GUI(TstEngineerDocBackup)
#include "tst_engineerdocbackup.moc"
