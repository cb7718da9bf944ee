#include "engineerdocload.h"
#include "packagetesting.h"
#include "zippackagehandle.h"

#include <support/customsite.h>
#include <support/journalmatchers.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <core/icore.h>
#include <model/deviceconfigmanager.h>
#include <model/deviceeditor.h>
#include <simulation/faults.h>
#include <simulation/journal.h>

#include <QRegularExpression>
#include <QtEndian>

#include <cmath>
#include <optional>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;
using Simulation::Journal;

static const QString onlineIp = QStringLiteral("10.0.0.11");
static const QString offlineIp = QStringLiteral("10.0.0.12");
/// The device from which the packages come; the site does not have it.
static const QString sourceIp = QStringLiteral("10.0.0.77");

static const QString canEnable = QStringLiteral("DeviceControler.canMVEEnable");
static const QString enableMvr = QStringLiteral("DeviceControler.enableMVR");
static const QString copySlots = QStringLiteral("DeviceControler.copySlotDataToDevice");
static const QString createPicture = QStringLiteral("DeviceControler.createMaterailFromImage");
static const QString copyModel = QStringLiteral("DeviceControler.copyModelToDevice");
static const QString copyMvrItems = QStringLiteral("DeviceControler.copyMVRItemDataToDevice");
static const QString operatorType = QStringLiteral("ICore.setOperatorType");
static const QString serailize = QStringLiteral("Serailizer.serailize");

static const QString sendConfig = QStringLiteral("Send Config to Device");

namespace {

/// A description, changed by hand where a state of the hardware cannot be so.
QByteArray changedDescription(const HardwareState &state, const std::function<void(QJsonObject &)> &change)
{
    QJsonObject object = QJsonDocument::fromJson(descriptionOf(state)).object();
    change(object);
    return QJsonDocument(object).toJson();
}

PackageBuilder descriptionOnly(const QByteArray &description)
{
    PackageBuilder package;
    package.file("device.json", description);
    return package;
}

/// The header says 0 by 0, with the right checksum.
QByteArray pngWithoutSize()
{
    const int chunkAt = 12;
    const int chunkLength = 4 + 13;
    QByteArray png = pngOf(noisePicture({4, 4}, 1));
    png.replace(chunkAt + 4, 8, QByteArray(8, '\0'));
    const quint32 crc = qToBigEndian(PackageBuilder::crc32(png.mid(chunkAt, chunkLength)));
    return png.replace(chunkAt + chunkLength, 4, reinterpret_cast<const char *>(&crc), 4);
}

/// One frame, of one colour.
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

Q_DECLARE_METATYPE(std::function<void(Simulation::HardwareState &)>)
using PackageChange = std::function<void(const QString &)>;
Q_DECLARE_METATYPE(PackageChange)

/// The job against the simulated devices: real packages, a real thread.
class TstEngineerDocLoad : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    // The checks before the start
    void a_job_begins_with_code_0();
    void an_empty_path_is_code_2();
    void a_missing_package_is_code_2();
    void a_wrong_checksum_fails_without_a_code();
    void a_right_checksum_passes();
    void an_unknown_target_is_code_5();
    void a_description_that_fills_the_memory_is_code_5_data();
    void a_description_that_fills_the_memory_is_code_5();
    void a_package_without_description_is_code_8();
    void a_file_without_the_extension_yields_no_description_code_8();
    void only_the_ending_of_the_description_counts();
    void the_first_description_is_used();
    void a_description_that_cannot_be_read_is_code_5_data();
    void a_description_that_cannot_be_read_is_code_5();
    void another_model_is_code_10_data();
    void another_model_is_code_10();
    void cards_that_differ_are_code_3_data();
    void cards_that_differ_are_code_3();
    void cards_match_in_any_order();
    void output_and_exchange_card_replace_each_other_at_the_exchange_position_only_data();
    void output_and_exchange_card_replace_each_other_at_the_exchange_position_only();
    void a_newer_protocol_is_code_12_data();
    void a_newer_protocol_is_code_12();
    void an_offline_target_skips_cards_and_protocol();

    // Reading a description
    void reading_a_description_data();
    void reading_a_description();
    void an_unreadable_description_logs_its_path();
    void invalid_utf8_becomes_replacement_characters();

    // Online
    void online_apply_calls_the_host_in_order();
    void each_operation_is_called_on_its_controller();
    void online_apply_works_on_its_own_thread();
    void online_apply_makes_the_hardware_what_was_saved();
    void online_apply_keeps_the_identity_of_the_target();
    void progress_names_each_picture_then_the_configuration();
    void a_device_that_cannot_switch_its_multiviewer_is_not_asked_to();
    void a_package_without_multiviewer_switches_it_off_and_sends_no_items();
    void each_failing_operation_gives_its_code_data();
    void each_failing_operation_gives_its_code();
    void multiviewer_items_are_sent_after_a_failed_send();
    void failing_multiviewer_items_replace_the_code_of_a_failed_send();
    void key_numbers_have_eight_bits_data();
    void key_numbers_have_eight_bits();
    void of_two_materials_of_one_number_the_first_counts();
    void folders_are_read_with_case_and_endings_without_data();
    void folders_are_read_with_case_and_endings_without();
    void pictures_elsewhere_are_extracted_and_left();
    void an_applied_picture_is_removed_from_the_extraction_folder();
    void a_picture_whose_apply_failed_is_left();
    void a_picture_that_cannot_be_removed_is_no_error();
    void a_picture_of_one_pixel_is_a_picture_data();
    void a_picture_of_one_pixel_is_a_picture();
    void a_bad_picture_is_refused_before_anything_is_sent_data();
    void a_bad_picture_is_refused_before_anything_is_sent();
    void the_first_bad_picture_gives_the_code_data();
    void the_first_bad_picture_gives_the_code();
    void too_many_pixels_are_refused_before_anything_is_read_data();
    void too_many_pixels_are_refused_before_anything_is_read();
    void a_large_picture_is_checked_and_sent_data();
    void a_large_picture_is_checked_and_sent();
    void a_place_that_is_taken_is_refused_before_anything_is_sent();
    void a_picture_that_cannot_be_extracted_any_more_is_sent();
    void no_room_for_the_copy_is_code_6();
    void an_offline_device_is_not_checked_for_pictures();
    void a_picture_that_is_in_the_package_twice_is_sent_once();
    void a_damaged_entry_is_code_6();
    void a_target_that_went_away_before_the_start_is_code_5();
    void a_run_without_check_is_code_5();

    // Offline
    void offline_apply_calls_the_host_in_order();
    void offline_apply_extracts_everything_but_the_description();
    void offline_apply_replaces_the_model_and_keeps_the_identity();
    void offline_apply_writes_the_description_of_the_target();
    void a_failing_serialiser_is_code_9();
    void a_failing_copy_is_code_6_and_the_model_is_replaced_all_the_same();
    void thumbnails_keep_to_three_bands_data();
    void thumbnails_keep_to_three_bands();
    void a_thumbnail_without_picture_is_empty();
    void the_description_can_be_copied_alone();
    void copying_the_description_of_a_package_without_one_succeeds();
    void copying_a_damaged_description_is_code_6();

    void an_offline_device_gets_its_files_before_its_model();
    void an_offline_device_never_holds_more_than_a_package();
    void an_offline_devices_names_never_exceed_those_of_packages();

    // Exceptions and nulls
    void a_host_call_that_throws_is_code_7_data();
    void a_host_call_that_throws_is_code_7();
    void a_check_in_which_the_host_throws_is_code_7_data();
    void a_check_in_which_the_host_throws_is_code_7();
    void null_entries_of_the_host_are_passed_over();

    // Packages from elsewhere
    void nothing_is_written_outside_data();
    void nothing_is_written_outside();
    void a_description_that_climbs_out_is_code_5();

    // Changes between check and run
    void a_package_is_applied_as_it_was_checked_data();
    void a_package_is_applied_as_it_was_checked();
    void a_package_that_became_another_between_the_checks_is_applied_as_it_was();
    void a_package_is_let_go_when_its_run_ends_data();
    void a_package_is_let_go_when_its_run_ends();
    void a_device_that_went_offline_after_its_check_is_code_7();
    void a_device_that_came_online_after_its_check_is_code_7();

    // Cancelling
    void cancelling_online_is_seen_at_every_point_data();
    void cancelling_online_is_seen_at_every_point();
    void cancelling_does_not_hide_an_earlier_failure();
    void cancelling_before_the_thread_starts_is_lost();
    void cancelling_during_the_offline_copy_is_seen_after_it();
    void cancelling_offline_is_seen_at_the_end();
    void cancelling_is_not_seen_after_a_failed_offline_copy();

private:
    QString write(PackageBuilder package, const QString &name = QStringLiteral("show.corvelpro")) const;
    /// A job for that package; its checks must pass.
    std::unique_ptr<EngineerDocLoad> checkedJob(const QString &packagePath, const QString &ip) const;
    /// Runs the thread to its end and returns the code.
    int runJob(EngineerDocLoad &job) const;
    /// Both checks and, when they pass, the thread; the code that comes out of it.
    int apply(const PackageBuilder &package, const QString &ip) const;
    int check(const PackageBuilder &package, const QString &ip) const;
    HardwareState onlineState() const { return (*m_site)->hardware(onlineIp)->state(); }

    std::optional<CustomSite> m_site;
    QTemporaryDir m_packages;
};

void TstEngineerDocLoad::init()
{
    HardwareState online = plainDevice(onlineIp);
    online.mvrEnabled = false;
    online.mvrItems = QJsonArray();
    m_site.emplace(QVector<CustomDevice>{{online, true}, {plainDevice(offlineIp), false}});
    WarningGuard::clear();
}

void TstEngineerDocLoad::cleanup()
{
    m_site.reset();
}

QString TstEngineerDocLoad::write(PackageBuilder package, const QString &name) const
{
    QString path = m_packages.filePath(name);
    if (!package.record(QStringLiteral("show"), QStringLiteral("for tests")).write(path))
        qFatal("The package could not be written");
    return path;
}

std::unique_ptr<EngineerDocLoad> TstEngineerDocLoad::checkedJob(const QString &packagePath, const QString &ip) const
{
    auto job = std::make_unique<EngineerDocLoad>(nullptr);
    job->setDeviceIp(ip);
    job->setPackagePath(packagePath);
    if (!job->checkPackageFile() || !job->checkDevice())
        QTest::qFail(qPrintable(QStringLiteral("The checks failed with %1").arg(job->resultCode())), __FILE__,
                     __LINE__);
    return job;
}

int TstEngineerDocLoad::runJob(EngineerDocLoad &job) const
{
    SignalRecorder<> finished(&job, &QThread::finished);
    job.start(QThread::InheritPriority);
    if (!QTest::qWaitFor([&finished] { return finished.count() == 1; }, 60000))
        qFatal("The job does not end");
    job.wait();
    return job.resultCode();
}

int TstEngineerDocLoad::apply(const PackageBuilder &package, const QString &ip) const
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(ip);
    job.setPackagePath(write(package));
    return job.checkPackageFile() && job.checkDevice() ? runJob(job) : job.resultCode();
}

int TstEngineerDocLoad::check(const PackageBuilder &package, const QString &ip) const
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(ip);
    job.setPackagePath(write(package));
    const bool passed = job.checkPackageFile() && job.checkDevice();
    if (passed != (job.resultCode() == LoadSuccess))
        QTest::qFail("The answer of the checks contradicts the code", __FILE__, __LINE__);
    return job.resultCode();
}

// ---------------------------------------------------------------------------------------------------------------------
// The checks before the start

void TstEngineerDocLoad::a_job_begins_with_code_0()
{
    QCOMPARE(EngineerDocLoad(nullptr).resultCode(), 0);
}

void TstEngineerDocLoad::an_empty_path_is_code_2()
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    QVERIFY(!job.checkPackageFile());
    QCOMPARE(job.resultCode(), 2);
}

void TstEngineerDocLoad::a_missing_package_is_code_2()
{
    EngineerDocLoad job(nullptr);
    job.setPackagePath(m_packages.filePath(QStringLiteral("missing.corvelpro")));
    QVERIFY(!job.checkPackageFile());
    QCOMPARE(job.resultCode(), 2);
}

void TstEngineerDocLoad::a_wrong_checksum_fails_without_a_code()
{
    const QString path = m_packages.filePath(QStringLiteral("wrong.corvelpro"));
    QVERIFY(packageOf(plainDevice(sourceIp))
                .recordWithChecksum(QString(32, QLatin1Char('0')), QStringLiteral("show"), QString())
                .write(path));
    EngineerDocLoad job(nullptr);
    job.setPackagePath(path);
    QVERIFY(!job.checkPackageFile());
    QCOMPARE(job.resultCode(), 0);
}

void TstEngineerDocLoad::a_right_checksum_passes()
{
    EngineerDocLoad job(nullptr);
    job.setPackagePath(write(packageOf(plainDevice(sourceIp))));
    QVERIFY(job.checkPackageFile());
    QCOMPARE(job.resultCode(), 0);
}

void TstEngineerDocLoad::a_description_that_fills_the_memory_is_code_5_data()
{
    QTest::addColumn<QByteArray>("description");
    QTest::addColumn<int>("code");
    const QByteArray device = descriptionOf(plainDevice(sourceIp)).trimmed();
    const int longest = 16 * 1024 * 1024;
    QTest::newRow("16 MiB") << device.leftJustified(longest) << 0;
    QTest::newRow("above 16 MiB") << device.leftJustified(longest + 1) << 5;

    const auto partsOf = [](QByteArray json) {
        const QRegularExpression strings(QStringLiteral("\"[^\"]*\""));
        json = QString::fromUtf8(json).remove(strings).toUtf8();
        const auto beginsPart = [](char c) { return c == ',' || c == ':' || c == '[' || c == '{'; };
        return int(std::count_if(json.begin(), json.end(), beginsPart));
    };
    const int most = 1024 * 1024;
    for (const QByteArray element : {"1", "[]", "{}", "{\"a\":1}"}) {
        const QByteArray begun = device.left(device.size() - 1) + ",\"more\":[1";
        const QByteArray many = begun + (',' + element).repeated((most - partsOf(begun)) / (1 + partsOf(element)));
        const auto withParts = [&](int count) {
            return many + QByteArray(",1").repeated(count - partsOf(many)) + "]}";
        };
        QTest::newRow(qPrintable("a million parts, " + element)) << withParts(most) << 0;
        QTest::newRow(qPrintable("above a million parts, " + element)) << withParts(most + 1) << 5;
    }
    QTest::newRow("a million commas in a text")
        << device.left(device.size() - 1) + ",\"more\":\"" + QByteArray(most + 1, ',') + "\"}" << 0;
}

void TstEngineerDocLoad::a_description_that_fills_the_memory_is_code_5()
{
    QFETCH(QByteArray, description);
    QFETCH(int, code);
    QCOMPARE(check(descriptionOnly(description), onlineIp), code);
}

void TstEngineerDocLoad::an_unknown_target_is_code_5()
{
    QCOMPARE(check(packageOf(plainDevice(sourceIp)), QStringLiteral("10.0.0.99")), 5);
}

void TstEngineerDocLoad::a_package_without_description_is_code_8()
{
    QCOMPARE(check(PackageBuilder().file("json.txt", "{}").file("json", "{}"), onlineIp), 8);
}

void TstEngineerDocLoad::a_file_without_the_extension_yields_no_description_code_8()
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(write(packageOf(plainDevice(sourceIp)), QStringLiteral("show.zip")));
    QVERIFY(job.checkPackageFile());
    QVERIFY(!job.checkDevice());
    QCOMPARE(job.resultCode(), 8);
}

void TstEngineerDocLoad::only_the_ending_of_the_description_counts()
{
    PackageBuilder package;
    package.file("notes/any name.JsOn", descriptionOf(plainDevice(sourceIp)));
    QCOMPARE(check(package, onlineIp), 0);
}

void TstEngineerDocLoad::the_first_description_is_used()
{
    const QByteArray right = descriptionOf(plainDevice(sourceIp));
    const QByteArray wrong = descriptionOf(plainDevice(sourceIp, otherModel));
    QCOMPARE(check(PackageBuilder().file("b.json", right).file("a.json", wrong), onlineIp), 0);
    QCOMPARE(check(PackageBuilder().file("b.json", wrong).file("a.json", right), onlineIp), 10);
}

void TstEngineerDocLoad::a_description_that_cannot_be_read_is_code_5_data()
{
    QTest::addColumn<QByteArray>("description");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("<xml/>");
    QTest::newRow("cut off") << descriptionOf(plainDevice(sourceIp)).left(100);
}

void TstEngineerDocLoad::a_description_that_cannot_be_read_is_code_5()
{
    QFETCH(QByteArray, description);
    QCOMPARE(check(descriptionOnly(description), onlineIp), 5);
    QCOMPARE(check(descriptionOnly(description), offlineIp), 5);
}

void TstEngineerDocLoad::another_model_is_code_10_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("online") << onlineIp;
    QTest::newRow("offline") << offlineIp;
}

void TstEngineerDocLoad::another_model_is_code_10()
{
    QFETCH(QString, target);
    QCOMPARE(check(packageOf(plainDevice(sourceIp, otherModel)), target), 10);
}

void TstEngineerDocLoad::cards_that_differ_are_code_3_data()
{
    using Change = std::function<void(HardwareState &)>;
    QTest::addColumn<Change>("change");
    QTest::newRow("one more") << Change([](HardwareState &state) { state.cards.append({1, 9, 201, {}}); });
    QTest::newRow("one less") << Change([](HardwareState &state) { state.cards.removeLast(); });
    QTest::newRow("none") << Change([](HardwareState &state) { state.cards.clear(); });
    QTest::newRow("type") << Change([](HardwareState &state) { state.cards[0].type = 4; });
    QTest::newRow("position") << Change([](HardwareState &state) { state.cards[1].pos = 5; });
    QTest::newRow("model") << Change([](HardwareState &state) { state.cards[2].modelId = 302; });
}

void TstEngineerDocLoad::cards_that_differ_are_code_3()
{
    QFETCH(std::function<void(HardwareState &)>, change);
    HardwareState source = plainDevice(sourceIp);
    change(source);
    QCOMPARE(check(packageOf(source), onlineIp), 3);
}

void TstEngineerDocLoad::cards_match_in_any_order()
{
    HardwareState source = plainDevice(sourceIp);
    std::reverse(source.cards.begin(), source.cards.end());
    source.cards[0].settings = QJsonObject{{QStringLiteral("settings"), QStringLiteral("do not count")}};
    QCOMPARE(check(packageOf(source), onlineIp), 0);
}

void TstEngineerDocLoad::output_and_exchange_card_replace_each_other_at_the_exchange_position_only_data()
{
    QTest::addColumn<int>("model");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("packageType");
    QTest::addColumn<int>("targetType");
    QTest::addColumn<int>("code");

    const int unknownModel = 4711;
    struct
    {
        const char *name;
        int model;
        int exchangePos;
    } const models[] = {
        {"configured 8", mainModel, 8}, {"configured 1", otherModel, 1}, {"unknown, so 8", unknownModel, 8}};
    for (const auto &model : models) {
        for (int position = model.exchangePos - 1; position <= model.exchangePos + 1; ++position) {
            const int exchanged = position == model.exchangePos ? 0 : 3;
            const auto row = [&](int package, int target, int code) {
                QTest::addRow("%s, %d for %d at %d", model.name, package, target, position)
                    << model.model << position << package << target << code;
            };
            row(3, 5, exchanged);
            row(5, 3, exchanged);
            row(3, 3, 0);
            row(5, 5, 0);
            row(3, 4, 3);
            row(4, 5, 3);
        }
    }
}

void TstEngineerDocLoad::output_and_exchange_card_replace_each_other_at_the_exchange_position_only()
{
    QFETCH(int, model);
    QFETCH(int, position);
    QFETCH(int, packageType);
    QFETCH(int, targetType);
    QFETCH(int, code);

    HardwareState target = plainDevice(onlineIp, model);
    target.cards = {{targetType, position, 301, {}}};
    m_site.reset();
    m_site.emplace(QVector<CustomDevice>{{target, true}});
    HardwareState source = plainDevice(sourceIp, model);
    source.cards = {{packageType, position, 301, {}}};
    QCOMPARE(check(packageOf(source), onlineIp), code);
}

void TstEngineerDocLoad::a_newer_protocol_is_code_12_data()
{
    QTest::addColumn<double>("target");
    QTest::addColumn<double>("protocol");
    QTest::addColumn<int>("code");
    QTest::newRow("none") << 2.4 << 0.0 << 0;
    QTest::newRow("older") << 2.4 << 2.3 << 0;
    QTest::newRow("equal") << 2.4 << 2.4 << 0;
    QTest::newRow("newer") << 2.4 << 2.5 << 12;
    QTest::newRow("a little newer") << 2.4 << 2.41 << 12;
    QTest::newRow("equal but for the last bit") << 3.3 << std::nextafter(3.3, 4) << 0;
}

void TstEngineerDocLoad::a_newer_protocol_is_code_12()
{
    QFETCH(double, target);
    QFETCH(double, protocol);
    QFETCH(int, code);
    (*m_site)->device(onlineIp)->setCommunicationProtocol(target);
    HardwareState source = plainDevice(sourceIp);
    source.protocolNumber = protocol;
    QCOMPARE(check(packageOf(source), onlineIp), code);
}

void TstEngineerDocLoad::an_offline_target_skips_cards_and_protocol()
{
    HardwareState source = plainDevice(sourceIp);
    source.cards = {{9, 9, 9, {}}};
    source.protocolNumber = 99;
    QCOMPARE(check(packageOf(source), offlineIp), 0);
    QCOMPARE(check(packageOf(source), onlineIp), 3);
}

// ---------------------------------------------------------------------------------------------------------------------
// Reading a description

void TstEngineerDocLoad::reading_a_description_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isDevice");
    QTest::newRow("missing") << QByteArray() << false;
    QTest::newRow("empty") << QByteArray("") << false;
    QTest::newRow("blank") << QByteArray(" \n") << false;
    QTest::newRow("null") << QByteArray("null") << false;
    QTest::newRow("number") << QByteArray("42") << false;
    QTest::newRow("empty object") << QByteArray("{}") << true;
    QTest::newRow("array") << QByteArray("[1]") << true;
    QTest::newRow("object") << QByteArray("{\"modelId\": 1600}") << true;
    QTest::newRow("Windows line ends") << QByteArray("{\r\n\"modelId\": 1600\r\n}\r\n") << true;
    QTest::newRow("cut off") << QByteArray("{\"modelId\": 16") << false;
}

void TstEngineerDocLoad::reading_a_description()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isDevice);
    const QString path = m_packages.filePath(QStringLiteral("description.json"));
    QFile::remove(path);
    if (!content.isNull())
        QVERIFY(writeFile(path, content));

    const std::shared_ptr<Model::Device> device = EngineerDocLoad(nullptr).unserailizeDevice(path);
    QCOMPARE(bool(device), isDevice);
    if (device)
        QCOMPARE(device->getModelID(), content.contains("modelId") ? mainModel : 0);
    QFile::remove(path);
}

void TstEngineerDocLoad::an_unreadable_description_logs_its_path()
{
    const QString path = m_packages.filePath(QStringLiteral("folder.json"));
    QVERIFY(QDir().mkpath(path));
    QVERIFY(!EngineerDocLoad(nullptr).unserailizeDevice(path));
    QCOMPARE(WarningGuard::count(QtDebugMsg, QStringLiteral("Open file [%1] failed").arg(path)), 1);
}

void TstEngineerDocLoad::invalid_utf8_becomes_replacement_characters()
{
    const QString path = m_packages.filePath(QStringLiteral("latin1.json"));
    QVERIFY(writeFile(path, "{\"name\": \"B\xfchne\", \"modelId\": 1600}"));
    const std::shared_ptr<Model::Device> device = EngineerDocLoad(nullptr).unserailizeDevice(path);
    QVERIFY(device);
    QCOMPARE(device->getName(), QStringLiteral("B%1hne").arg(QChar(QChar::ReplacementCharacter)));
}

// ---------------------------------------------------------------------------------------------------------------------
// Online

void TstEngineerDocLoad::online_apply_calls_the_host_in_order()
{
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), 0);
    VERIFY_JOURNAL({canEnable, enableMvr, copySlots, operatorType, createPicture, operatorType, createPicture,
                    operatorType, createPicture, copyModel, copyMvrItems});

    QVector<QVariantMap> pictures;
    for (const Simulation::JournalEntry &entry : Journal::instance()->entries(createPicture))
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

void TstEngineerDocLoad::each_operation_is_called_on_its_controller()
{
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), 0);
    // The others are those of the device that the package describes.
    const QStringList ofTarget{canEnable, enableMvr, copySlots, createPicture};
    for (const Simulation::JournalEntry &entry : Journal::instance()->entries()) {
        if (entry.operation != operatorType)
            QCOMPARE(entry.arguments.value(QStringLiteral("isListed")).toBool(), ofTarget.contains(entry.operation));
    }
}

void TstEngineerDocLoad::online_apply_works_on_its_own_thread()
{
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), 0);
    const QVector<Simulation::JournalEntry> entries = Journal::instance()->entries();
    QVERIFY(!entries.isEmpty());
    for (const Simulation::JournalEntry &entry : entries)
        QVERIFY2(!entry.onMainThread, qPrintable(entry.operation));
}

void TstEngineerDocLoad::online_apply_makes_the_hardware_what_was_saved()
{
    HardwareState source = richDevice(sourceIp);
    source.cards[0].settings = QJsonObject{{QStringLiteral("edid"), QStringLiteral("3840x2160@60")}};
    source.screens.removeLast();
    source.settings = QJsonObject{{QStringLiteral("brightness"), 40}};
    QCOMPARE(apply(packageOf(source), onlineIp), 0);
    const QStringList differences = onlineState().configuration().differencesTo(source.configuration());
    QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));
}

void TstEngineerDocLoad::online_apply_keeps_the_identity_of_the_target()
{
    const HardwareState before = onlineState();
    HardwareState source = richDevice(sourceIp);
    source.protocolNumber = 1.5;
    QCOMPARE(apply(packageOf(source), onlineIp), 0);
    const QJsonObject is = onlineState().toJson();
    for (const char *key : {"ip", "netMask", "gateWay", "mac", "sn", "name", "id", "modelId", "protocolNumber"})
        QCOMPARE(is.value(QLatin1String(key)), before.toJson().value(QLatin1String(key)));
    for (const Simulation::JournalEntry &entry : Journal::instance()->entries()) {
        if (entry.operation != operatorType)
            QCOMPARE(entry.arguments.value(QStringLiteral("ip")).toString(), onlineIp);
    }
}

void TstEngineerDocLoad::progress_names_each_picture_then_the_configuration()
{
    HardwareState source = richDevice(sourceIp);
    source.backgrounds[7].name = QString::fromUtf8("Ключ 主题 🎬");
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(source)), onlineIp);
    SignalRecorder<QString> progress(job.get(), &EngineerDocLoad::signal_operatoerChanged);
    QStringList seenAtCopy;
    Faults::instance()->arm(copyModel, Fault::run([&] {
                                QMetaObject::invokeMethod(
                                    QCoreApplication::instance(), [&] { seenAtCopy = progress.values().toList(); },
                                    Qt::BlockingQueuedConnection);
                            }));
    QCOMPARE(runJob(*job), 0);

    QCOMPARE(progress.values(), (QVector<QString>{sendConfig}));
    QCOMPARE(seenAtCopy, QStringList{sendConfig});
    QStringList told;
    for (const Simulation::JournalEntry &entry : Journal::instance()->entries(operatorType)) {
        QCOMPARE(entry.arguments.value(QStringLiteral("type")).toString(), QStringLiteral("OperatorLoad"));
        told.append(entry.arguments.value(QStringLiteral("text")).toString());
    }
    QCOMPARE(told, (QStringList{QStringLiteral("BKG:Opening"), QString::fromUtf8("BKG:Ключ 主题 🎬"),
                                QStringLiteral("LOGO:Sponsor")}));
}

void TstEngineerDocLoad::a_device_that_cannot_switch_its_multiviewer_is_not_asked_to()
{
    (*m_site)->hardware(onlineIp)->change([](HardwareState &state) { state.mvrCapable = false; });
    QCOMPARE(apply(packageOf(plainDevice(sourceIp)), onlineIp), 0);
    VERIFY_JOURNAL({canEnable, copySlots, copyModel, copyMvrItems});
}

void TstEngineerDocLoad::a_package_without_multiviewer_switches_it_off_and_sends_no_items()
{
    (*m_site)->hardware(onlineIp)->change([](HardwareState &state) { state.mvrEnabled = true; });
    HardwareState source = plainDevice(sourceIp);
    source.mvrEnabled = false;
    QCOMPARE(apply(packageOf(source), onlineIp), 0);
    VERIFY_JOURNAL({canEnable, enableMvr, copySlots, copyModel});
    QCOMPARE(Journal::instance()->entries(enableMvr).first().arguments.value(QStringLiteral("enable")).toBool(), false);
    QVERIFY(!onlineState().mvrEnabled);
}

void TstEngineerDocLoad::each_failing_operation_gives_its_code_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("warning");
    QTest::addColumn<QStringList>("calls");
    QTest::newRow("switching the multi-viewer")
        << enableMvr << 1 << 7 << "^enable\\(disable\\) MVR failed:  ?The device did not answer\\.$"
        << QStringList{canEnable, enableMvr};
    QTest::newRow("cards") << copySlots << 1 << 7 << "^set slot data failed\\.$"
                           << QStringList{canEnable, enableMvr, copySlots};
    QTest::newRow("first picture") << createPicture << 1 << 14 << QString()
                                   << QStringList{canEnable,    enableMvr,     copySlots,
                                                  operatorType, createPicture, copyMvrItems};
    QTest::newRow("last picture") << createPicture << 3 << 14 << QString()
                                  << QStringList{canEnable,     enableMvr,    copySlots,     operatorType,
                                                 createPicture, operatorType, createPicture, operatorType,
                                                 createPicture, copyMvrItems};
    QTest::newRow("model") << copyModel << 1 << 7 << QString()
                           << QStringList{canEnable,     enableMvr,    copySlots,     operatorType,
                                          createPicture, operatorType, createPicture, operatorType,
                                          createPicture, copyModel,    copyMvrItems};
    QTest::newRow("multi-viewer items") << copyMvrItems << 1 << 7 << QString()
                                        << QStringList{canEnable,     enableMvr,    copySlots,     operatorType,
                                                       createPicture, operatorType, createPicture, operatorType,
                                                       createPicture, copyModel,    copyMvrItems};
}

void TstEngineerDocLoad::each_failing_operation_gives_its_code()
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

void TstEngineerDocLoad::multiviewer_items_are_sent_after_a_failed_send()
{
    Faults::instance()->arm(createPicture, Fault::fail());
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), 14);
    QCOMPARE(onlineState().mvrItems, richDevice(sourceIp).mvrItems);
}

void TstEngineerDocLoad::failing_multiviewer_items_replace_the_code_of_a_failed_send()
{
    Faults::instance()->arm(createPicture, Fault::fail());
    Faults::instance()->arm(copyMvrItems, Fault::fail());
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), 7);
}

void TstEngineerDocLoad::key_numbers_have_eight_bits_data()
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

void TstEngineerDocLoad::key_numbers_have_eight_bits()
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
    QCOMPARE(apply(descriptionOnly(descriptionOf(source)).file(entry, pngOf(picture)), onlineIp), 0);
    const QVector<Simulation::JournalEntry> sent = Journal::instance()->entries(createPicture);
    QCOMPARE(sent.size(), 1);
    QCOMPARE(sent.first().arguments.value(QStringLiteral("name")).toString(), sentName);
    QCOMPARE(sent.first().arguments.value(QStringLiteral("kind")).toInt(), isLogo ? 1 : 0);
    const HardwareState state = onlineState();
    QCOMPARE((isLogo ? state.logos : state.backgrounds).keys(), QList<quint8>{quint8(keyNo)});
}

void TstEngineerDocLoad::of_two_materials_of_one_number_the_first_counts()
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
    QCOMPARE(apply(package.file("BKG/BKG_1.png", pngOf(picture)), onlineIp), 0);
}

void TstEngineerDocLoad::folders_are_read_with_case_and_endings_without_data()
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

void TstEngineerDocLoad::folders_are_read_with_case_and_endings_without()
{
    QFETCH(QByteArray, entry);
    QFETCH(bool, isApplied);
    HardwareState source = plainDevice(sourceIp);
    const QImage picture = noisePicture({5, 3}, 5, QImage::Format_ARGB32);
    source.logos.insert(2, {QStringLiteral("Sponsor"), picture});
    QCOMPARE(apply(descriptionOnly(descriptionOf(source)).file(entry, pngOf(picture)), onlineIp), 0);
    QCOMPARE(Journal::instance()->count(createPicture), isApplied ? 1 : 0);
    if (isApplied)
        QCOMPARE(onlineState().logos.value(2).pixels, picture);
}

void TstEngineerDocLoad::pictures_elsewhere_are_extracted_and_left()
{
    const QByteArray png = pngOf(noisePicture({4, 4}, 1));
    const QByteArray cut = cutPng(noisePicture({40, 40}, 1));
    PackageBuilder package = packageOf(richDevice(sourceIp));
    package.file("Extra/cover.png", png).file("top.PNG", cut).file("Extra/notes.txt", "not a picture");
    QCOMPARE(apply(package, onlineIp), 0);
    QCOMPARE(readFile(m_site->extractPath() + QStringLiteral("/Extra/cover.png")), png);
    QCOMPARE(readFile(m_site->extractPath() + QStringLiteral("/top.PNG")), cut);
    QVERIFY(!QFile::exists(m_site->extractPath() + QStringLiteral("/Extra/notes.txt")));
    QCOMPARE(Journal::instance()->count(createPicture), 3);
}

void TstEngineerDocLoad::an_applied_picture_is_removed_from_the_extraction_folder()
{
    const QString path = m_site->extractPath() + QStringLiteral("/BKG/BKG_1.png");
    bool wasThere = false;
    Faults::instance()->arm(createPicture, Fault::run([&] { wasThere = QFile::exists(path); }));
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), 0);
    QVERIFY(wasThere);
    QCOMPARE(contents(m_site->extractPath()),
             (QStringList{sourceIp + QStringLiteral(".json"), QStringLiteral("BKG"), QStringLiteral("LOGO")}));
}

void TstEngineerDocLoad::a_picture_whose_apply_failed_is_left()
{
    Faults::instance()->arm(createPicture, Fault::fail(2));
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), 14);
    QCOMPARE(contents(m_site->extractPath()), (QStringList{sourceIp + QStringLiteral(".json"), QStringLiteral("BKG"),
                                                           QStringLiteral("BKG/BKG_7.png"), QStringLiteral("LOGO")}));
}

void TstEngineerDocLoad::a_picture_that_cannot_be_removed_is_no_error()
{
    const QString path = m_site->extractPath() + QStringLiteral("/BKG/BKG_1.png");
    Faults::instance()->arm(createPicture, Fault::run([&] { QFile::remove(path); }));
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), onlineIp), 0);
    const QStringList logged = WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Remove file failed:"));
    QCOMPARE(logged.size(), 1);
    QVERIFY(logged.first().contains(path));
}

void TstEngineerDocLoad::a_picture_of_one_pixel_is_a_picture_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("one pixel wide") << QSize(1, 5);
    QTest::newRow("one pixel high") << QSize(5, 1);
}

void TstEngineerDocLoad::a_picture_of_one_pixel_is_a_picture()
{
    QFETCH(QSize, size);
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture(size, 1)});
    QCOMPARE(apply(packageOf(source), onlineIp), 0);
    QCOMPARE(onlineState().backgrounds.value(1).pixels, source.backgrounds.value(1).pixels);
}

void TstEngineerDocLoad::a_bad_picture_is_refused_before_anything_is_sent_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("code");
    const QImage right = noisePicture({16, 9}, 1);
    QTest::newRow("no such background") << QByteArray("BKG/BKG_2.png") << pngOf(right) << 15;
    QTest::newRow("number of a logo only") << QByteArray("BKG/BKG_3.png") << pngOf(noisePicture({8, 8}, 1)) << 15;
    QTest::newRow("no such logo") << QByteArray("LOGO/LOGO_1.png") << pngOf(right) << 15;
    QTest::newRow("other width") << QByteArray("BKG/BKG_1.png") << pngOf(noisePicture({17, 9}, 1)) << 15;
    QTest::newRow("other height") << QByteArray("BKG/BKG_1.png") << pngOf(noisePicture({16, 10}, 1)) << 15;
    QTest::newRow("turned") << QByteArray("BKG/BKG_1.png") << pngOf(noisePicture({9, 16}, 1)) << 15;
    QTest::newRow("cut off") << QByteArray("BKG/BKG_1.png") << cutPng(right) << 15;
    QTest::newRow("empty") << QByteArray("BKG/BKG_1.png") << QByteArray() << 11;
    QTest::newRow("no picture") << QByteArray("BKG/BKG_1.png") << QByteArray("no picture at all") << 11;
    QTest::newRow("0 by 0") << QByteArray("BKG/BKG_1.png") << pngWithoutSize() << 11;
    // Behind a picture's name may be a picture of another format, and those can be without width or height.
    QTest::newRow("without width") << QByteArray("BKG/BKG_1.png") << gifOfSize(0, 5) << 11;
    QTest::newRow("without height") << QByteArray("BKG/BKG_1.png") << gifOfSize(5, 0) << 11;
    QTest::newRow("no picture, in another folder") << QByteArray("Extra/cover.png") << QByteArray("none") << 11;
}

void TstEngineerDocLoad::a_bad_picture_is_refused_before_anything_is_sent()
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

void TstEngineerDocLoad::the_first_bad_picture_gives_the_code_data()
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
    // What is wrong with pixels is found later than what is wrong with a header.
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

void TstEngineerDocLoad::the_first_bad_picture_gives_the_code()
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
    // It says nothing about how many cores found it.
    QCOMPARE(check(package, onlineIp), code);
}

void TstEngineerDocLoad::too_many_pixels_are_refused_before_anything_is_read_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("code");
    QTest::newRow("4,294,967,296 pixels, the first one is no picture") << 128 << 11;
    QTest::newRow("above") << 129 << 15;
    QTest::newRow("far above") << 512 << 15;
}

void TstEngineerDocLoad::too_many_pixels_are_refused_before_anything_is_read()
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
    // Of key numbers eight bits count.
    for (int number = 0; number < count; ++number)
        package.file("BKG/BKG_" + QByteArray::number(1 + 256 * (number % 256)) + QByteArray(number / 256, '.') + ".png",
                     "no picture");
    QCOMPARE(check(package, onlineIp), code);
    // An offline device takes what is no picture as it is, but makes thumbnails of the others.
    QCOMPARE(check(package, offlineIp), code == LoadGalleryFileError ? code : 0);
}

void TstEngineerDocLoad::a_large_picture_is_checked_and_sent_data()
{
    QTest::addColumn<bool>("isDiskFull");
    QTest::newRow("with room") << false;
    QTest::newRow("on a disk that is full after the check") << true;
}

void TstEngineerDocLoad::a_large_picture_is_checked_and_sent()
{
    QFETCH(bool, isDiskFull);
    // Beyond what is taken into memory; noise does not get smaller.
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({3600, 3600}, 1)});
    source.backgrounds.insert(2, {QStringLiteral("Keynote"), noisePicture({16, 9}, 2)});
    QVERIFY(pngOf(source.backgrounds.value(1).pixels).size() > 32 * MiB);
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(source)), onlineIp);
    std::optional<FullDisk> full;
    if (isDiskFull)
        full.emplace(30 * MiB);
    QCOMPARE(runJob(*job), 0);
    full.reset();
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Extract file failed:")).size(), int(isDiskFull));
    QVERIFY(onlineState().backgrounds.value(1).pixels == source.backgrounds.value(1).pixels);
    QCOMPARE(contents(m_site->extractPath()), (QStringList{sourceIp + QStringLiteral(".json"), QStringLiteral("BKG")}));
}

void TstEngineerDocLoad::a_place_that_is_taken_is_refused_before_anything_is_sent()
{
    QVERIFY(writeFile(m_site->extractPath() + QStringLiteral("/LOGO/LOGO_2.png/file"), "in the way"));
    QCOMPARE(check(packageOf(richDevice(sourceIp)), onlineIp), 6);
    VERIFY_JOURNAL({});
}

void TstEngineerDocLoad::a_picture_that_cannot_be_extracted_any_more_is_sent()
{
    const HardwareState source = richDevice(sourceIp);
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(source)), onlineIp);
    const QString path = m_site->extractPath() + QStringLiteral("/BKG/BKG_1.png");
    QVERIFY(writeFile(path + QStringLiteral("/file"), "in the way"));
    QCOMPARE(runJob(*job), 0);
    const QStringList differences = onlineState().configuration().differencesTo(source.configuration());
    QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));
    const QStringList logged = WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Extract file failed:"));
    QCOMPARE(logged.size(), 1);
    QVERIFY(logged.first().contains(path));
    QCOMPARE(readFile(path + QStringLiteral("/file")), QByteArray("in the way"));
}

void TstEngineerDocLoad::no_room_for_the_copy_is_code_6()
{
    const QString path = write(packageOf(plainDevice(sourceIp)).file("x.bin", noise(MiB)));
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(path);
    {
        const FullDisk full(MiB / 2);
        QVERIFY(!job.checkPackageFile());
    }
    QCOMPARE(job.resultCode(), 6);
    VERIFY_JOURNAL({});
    QCOMPARE(contents(m_site->extractPath()), QStringList());
}

void TstEngineerDocLoad::an_offline_device_is_not_checked_for_pictures()
{
    QCOMPARE(apply(packageWithSecondPicture("no picture at all"), offlineIp), 0);
    QCOMPARE(readFile(m_site->devicePath(offlineIp) + QStringLiteral("/BKG/BKG_2.png")),
             QByteArray("no picture at all"));
}

void TstEngineerDocLoad::a_picture_that_is_in_the_package_twice_is_sent_once()
{
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({16, 9}, 1)});
    PackageBuilder package = packageOf(source);
    package.file("BKG/BKG_1.png", pngOf(noisePicture({16, 9}, 2)));
    QCOMPARE(apply(package, onlineIp), 0);
    VERIFY_JOURNAL({canEnable, enableMvr, copySlots, operatorType, createPicture, copyModel, copyMvrItems});
    QCOMPARE(onlineState().backgrounds.value(1).pixels, source.backgrounds.value(1).pixels);
}

void TstEngineerDocLoad::a_damaged_entry_is_code_6()
{
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({16, 9}, 1)});
    PackageBuilder package = packageOf(source);
    package.claimCrc(1);
    QCOMPARE(apply(package, onlineIp), 6);
    VERIFY_JOURNAL({});
    const QStringList logged = WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Extract file failed:"));
    QCOMPARE(logged.size(), 1);
    QVERIFY(logged.first().contains(m_site->extractPath() + QStringLiteral("/BKG/BKG_1.png")));
}

void TstEngineerDocLoad::a_target_that_went_away_before_the_start_is_code_5()
{
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(plainDevice(sourceIp))), onlineIp);
    Model::DeviceList::instance()->removeDevice(onlineIp);
    QCOMPARE(runJob(*job), 5);
    VERIFY_JOURNAL({});
}

void TstEngineerDocLoad::a_run_without_check_is_code_5()
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(write(packageOf(plainDevice(sourceIp))));
    QCOMPARE(runJob(job), 5);
    VERIFY_JOURNAL({});
}

// ---------------------------------------------------------------------------------------------------------------------
// Offline

void TstEngineerDocLoad::offline_apply_calls_the_host_in_order()
{
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(richDevice(sourceIp))), offlineIp);
    SignalRecorder<QString> progress(job.get(), &EngineerDocLoad::signal_operatoerChanged);
    QCOMPARE(runJob(*job), 0);
    VERIFY_JOURNAL({serailize});
    QCOMPARE(Journal::instance()->entries().first().arguments.value(QStringLiteral("configPath")).toString(),
             m_site->configPath());
    QVERIFY(!Journal::instance()->entries().first().onMainThread);
    QVERIFY(progress.isEmpty());
}

void TstEngineerDocLoad::offline_apply_extracts_everything_but_the_description()
{
    const HardwareState source = richDevice(sourceIp);
    PackageBuilder package = packageOf(source);
    package.folder("Empty").file("notes/second.JSON", "{\"a\":1}").file("notes/read me.txt", "text");
    QCOMPARE(apply(package, offlineIp), 0);
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

void TstEngineerDocLoad::offline_apply_replaces_the_model_and_keeps_the_identity()
{
    HardwareState source = richDevice(sourceIp);
    source.cards = {{9, 9, 9, {}}};
    source.protocolNumber = 99;
    const HardwareState target = plainDevice(offlineIp);
    QCOMPARE(apply(packageOf(source), offlineIp), 0);

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

void TstEngineerDocLoad::offline_apply_writes_the_description_of_the_target()
{
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), offlineIp), 0);
    const QByteArray written = readFile(m_site->devicePath(offlineIp) + QStringLiteral("/%1.json").arg(offlineIp));
    QCOMPARE(QJsonDocument::fromJson(written).object(), (*m_site)->device(offlineIp)->toJson());
}

void TstEngineerDocLoad::a_failing_serialiser_is_code_9()
{
    Faults::instance()->arm(serailize, Fault::fail());
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), offlineIp), 9);
    QCOMPARE(WarningGuard::count(QtDebugMsg, QStringLiteral("Fail to serailize model data.")), 1);
    const std::vector<Talvik::weak_refrence<Model::Materail>> logos = (*m_site)->device(offlineIp)->getLogos();
    QCOMPARE(int(logos.size()), 1);
    QVERIFY2(logos.front().lock()->thumb().isNull(), "the job went on after the failure");
}

void TstEngineerDocLoad::a_failing_copy_is_code_6_and_the_model_is_replaced_all_the_same()
{
    HardwareState source = richDevice(sourceIp);
    PackageBuilder package = packageOf(source);
    package.file("broken.txt", "some text").claimCrc(1).file("never.txt", "not reached");
    QCOMPARE(apply(package, offlineIp), 6);
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

void TstEngineerDocLoad::thumbnails_keep_to_three_bands_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("thumb");
    QTest::newRow("1 by 1: itself") << QSize(1, 1) << QSize(1, 1);
    QTest::newRow("65,535: itself") << QSize(255, 257) << QSize(255, 257);
    QTest::newRow("65,536: itself") << QSize(256, 256) << QSize(256, 256);
    // A prime: the one height that gives this area is no tenth of anything, so nothing is left.
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

void TstEngineerDocLoad::thumbnails_keep_to_three_bands()
{
    QFETCH(QSize, size);
    QFETCH(QSize, thumb);
    const QImage picture = noisePicture(size, 3, QImage::Format_ARGB32);
    const QImage logo = noisePicture(size, 4, QImage::Format_ARGB32);
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), picture});
    source.logos.insert(2, {QStringLiteral("Sponsor"), logo});
    QCOMPARE(apply(packageOf(source), offlineIp), 0);

    const auto expected = [&](const QImage &whole) {
        return thumb == size ? whole : whole.scaled(thumb, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    };
    const std::shared_ptr<Model::Device> device = (*m_site)->device(offlineIp);
    const QImage background = device->getBKGs().front().lock()->thumb();
    QCOMPARE(background.size(), thumb);
    QCOMPARE(background, expected(picture));
    QCOMPARE(device->getLogos().front().lock()->thumb(), expected(logo));
}

void TstEngineerDocLoad::a_thumbnail_without_picture_is_empty()
{
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({4, 4}, 1)});
    QCOMPARE(apply(descriptionOnly(descriptionOf(source)), offlineIp), 0);
    QVERIFY((*m_site)->device(offlineIp)->getBKGs().front().lock()->thumb().isNull());
}

void TstEngineerDocLoad::the_description_can_be_copied_alone()
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

void TstEngineerDocLoad::copying_the_description_of_a_package_without_one_succeeds()
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(offlineIp);
    job.setPackagePath(write(PackageBuilder().file("x.txt", "x")));
    QVERIFY(job.copyConfigFileToDevice());
    QCOMPARE(job.resultCode(), 0);
}

void TstEngineerDocLoad::copying_a_damaged_description_is_code_6()
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(offlineIp);
    job.setPackagePath(write(PackageBuilder().file("x.json", "{\"a\":1}").claimCrc(1)));
    const QString target = m_site->devicePath(offlineIp) + QStringLiteral("/%1.json").arg(offlineIp);
    QVERIFY(QFile::exists(target));
    QVERIFY(!job.copyConfigFileToDevice());
    QVERIFY2(!QFile::exists(target), "the description of another state is left");
    QCOMPARE(job.resultCode(), 6);
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("Extract json file failed:")).size(), 1);
}

void TstEngineerDocLoad::an_offline_device_gets_its_files_before_its_model()
{
    const HardwareState source = richDevice(sourceIp);
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(source)), offlineIp);
    const std::shared_ptr<Model::Device> device = (*m_site)->device(offlineIp);
    bool hasFiles = false;
    QString name;
    int presets = 0;
    bool hasThumbnail = true;
    bool wasOldModel = false;
    Faults::instance()->arm(QStringLiteral("Device.fromJson"), Fault::run([&] {
                                hasFiles = QFile::exists(m_site->devicePath(offlineIp) + "/Preset/300.RPst");
                                wasOldModel = device->getName() == plainDevice(offlineIp).identity.name &&
                                              device->getScreens().empty();
                            }));
    Faults::instance()->arm(serailize, Fault::run([&] {
                                name = device->getName();
                                presets = int(device->getPresets().size());
                                hasThumbnail = !device->getLogos().front().lock()->thumb().isNull();
                            }));
    QCOMPARE(runJob(*job), 0);
    QVERIFY(hasFiles);
    QVERIFY2(wasOldModel, "the model was not cleared, or was replaced already");
    QCOMPARE(name, source.identity.name);
    QCOMPARE(presets, 2);
    QVERIFY2(!hasThumbnail, "thumbnails are made last");
    QVERIFY(!device->getLogos().front().lock()->thumb().isNull());
}

void TstEngineerDocLoad::an_offline_device_never_holds_more_than_a_package()
{
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
    QCOMPARE(apply(packageOfFiles("first", 20), offlineIp), 0);
    const int most = 65534;
    const int room = 10;
    for (int count = contents(folder).size(); count < most - room; ++count)
        QVERIFY(writeFile(folder + QStringLiteral("/before%1").arg(count), "x"));
    const QStringList before = contents(folder);
    QCOMPARE(before.size(), most - room);
    QCOMPARE(apply(packageOfFiles("second", room + 1), offlineIp), 6);
    QCOMPARE(contents(folder), before);
    // What is replaced takes no more room.
    QCOMPARE(apply(packageOfFiles("first", 20), offlineIp), 0);

    // The folder is an entry as well.
    QCOMPARE(apply(packageOfFiles("more/", room), offlineIp), 6);
    QCOMPARE(contents(folder), before);
    QCOMPARE(apply(packageOfFiles("more/", room - 1), offlineIp), 0);
    EngineerPacketInfo info;
    info.strFilePath = m_packages.filePath(QStringLiteral("saved.corvelpro"));
    QVERIFY(ZipPackageHandle::compressEngineerPacket(folder, info));
}

void TstEngineerDocLoad::an_offline_devices_names_never_exceed_those_of_packages()
{
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
    QCOMPARE(apply(first, offlineIp), 0);

    const QString path = m_site->devicePath(offlineIp);
    const QStringList before = contents(path);
    int length = 0;
    for (const QString &name : before)
        length += name.toUtf8().size() + (QFileInfo(path + QLatin1Char('/') + name).isDir() ? 1 : 0);
    PackageBuilder tooMuch = descriptionOnly(descriptionOf(plainDevice(sourceIp)));
    addFiles(tooMuch, most - length + 1);
    QCOMPARE(apply(tooMuch, offlineIp), 6);
    QCOMPARE(contents(path), before);

    PackageBuilder asMuchAsFits = descriptionOnly(descriptionOf(plainDevice(sourceIp)));
    addFiles(asMuchAsFits, most - length);
    QCOMPARE(apply(asMuchAsFits, offlineIp), 0);
    EngineerPacketInfo info;
    info.strFilePath = m_packages.filePath(QStringLiteral("saved.corvelpro"));
    QVERIFY(ZipPackageHandle::compressEngineerPacket(path, info));
    QVERIFY(writeFile(path + QStringLiteral("/y"), "one name too many"));
    QVERIFY(!ZipPackageHandle::compressEngineerPacket(path, info));
}

// ---------------------------------------------------------------------------------------------------------------------
// Exceptions and nulls

void TstEngineerDocLoad::a_host_call_that_throws_is_code_7_data()
{
    QTest::addColumn<QString>("ip");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    for (const QString &operation : {canEnable, enableMvr, copySlots, operatorType, createPicture, copyModel,
                                     copyMvrItems, QStringLiteral("DeviceList.getDeviceByIPAddr")})
        QTest::addRow("online, %s", qPrintable(operation)) << onlineIp << operation << 1;
    QTest::addRow("online, the last picture") << onlineIp << createPicture << 3;
    for (const QString &operation :
         {serailize, QStringLiteral("Device.fromJson"), QStringLiteral("DeviceList.getDeviceByIPAddr")})
        QTest::addRow("offline, %s", qPrintable(operation)) << offlineIp << operation << 1;
}

void TstEngineerDocLoad::a_host_call_that_throws_is_code_7()
{
    QFETCH(QString, ip);
    QFETCH(QString, operation);
    QFETCH(int, call);
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(richDevice(sourceIp))), ip);
    const ExpectMessage expected(QtCriticalMsg,
                                 QStringLiteral("Import project file failed, exception: %1 throws").arg(operation), 1);
    Faults::instance()->arm(operation, Fault::throwing(call));
    QCOMPARE(runJob(*job), 7);
    // It goes on working.
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), ip), 0);
}

void TstEngineerDocLoad::a_check_in_which_the_host_throws_is_code_7_data()
{
    QTest::addColumn<QString>("operation");
    QTest::newRow("looking for the device") << QStringLiteral("DeviceList.getDeviceByIPAddr");
    QTest::newRow("reading the description") << QStringLiteral("Device.fromJson");
}

void TstEngineerDocLoad::a_check_in_which_the_host_throws_is_code_7()
{
    QFETCH(QString, operation);
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(write(packageOf(richDevice(sourceIp))));
    QVERIFY(job.checkPackageFile());
    const ExpectMessage expected(QtCriticalMsg,
                                 QStringLiteral("Import project file failed, exception: %1 throws").arg(operation), 1);
    Faults::instance()->arm(operation, Fault::throwing());
    QVERIFY(!job.checkDevice());
    QCOMPARE(job.resultCode(), 7);
    VERIFY_JOURNAL({});
}

void TstEngineerDocLoad::null_entries_of_the_host_are_passed_over()
{
    const HardwareState source = richDevice(sourceIp);
    // Nulls among what is compared and what is refreshed; a card that is not there fits no place.
    const auto withNulls = [](const std::shared_ptr<Model::Device> &device) {
        Model::DeviceData data = Model::DeviceEditor(*device).data();
        data.backgrounds.insert(data.backgrounds.begin(), nullptr);
        data.logos.insert(data.logos.begin(), nullptr);
        Model::DeviceEditor(*device).replace(data);
    };
    Faults::instance()->arm(serailize, Fault::run([&] { withNulls((*m_site)->device(offlineIp)); }));
    QCOMPARE(apply(packageOf(source), offlineIp), 0);
    QVERIFY(!(*m_site)->device(offlineIp)->getLogos().back().lock()->thumb().isNull());

    const std::shared_ptr<Model::Device> online = (*m_site)->device(onlineIp);
    Model::DeviceData data = Model::DeviceEditor(*online).data();
    data.cards[1] = nullptr;
    Model::DeviceEditor(*online).replace(data);
    QCOMPARE(check(packageOf(source), onlineIp), 3);
}

// ---------------------------------------------------------------------------------------------------------------------
// Packages from elsewhere

void TstEngineerDocLoad::nothing_is_written_outside_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isLink");
    for (const QString &ip : {onlineIp, offlineIp}) {
        const char *where = ip == onlineIp ? "online" : "offline";
        QTest::addRow("%s, climbs out", where) << ip << QByteArray("../evil.png") << false;
        QTest::addRow("%s, climbs out behind a folder", where) << ip << QByteArray("BKG/../../../evil.png") << false;
        QTest::addRow("%s, climbs out with backslashes", where) << ip << QByteArray("..\\..\\evil.png") << false;
        QTest::addRow("%s, absolute", where) << ip << QByteArray("/tmp/projectfilecfg-evil.png") << false;
        QTest::addRow("%s, symbolic link", where) << ip << QByteArray("BKG/BKG_1.png") << true;
    }
}

void TstEngineerDocLoad::nothing_is_written_outside()
{
    QFETCH(QString, target);
    QFETCH(QByteArray, name);
    QFETCH(bool, isLink);
    HardwareState source = plainDevice(sourceIp);
    source.backgrounds.insert(1, {QStringLiteral("Opening"), noisePicture({4, 4}, 1)});
    const QString victim = m_site->path() + QStringLiteral("/victim.png");
    QVERIFY(writeFile(victim, pngOf(noisePicture({4, 4}, 1))));
    QStringList before = contents(m_site->path());

    PackageBuilder package = descriptionOnly(descriptionOf(source));
    if (isLink)
        package.symbolicLink(name, victim.toUtf8());
    else
        package.file(name, pngOf(noisePicture({4, 4}, 1)));
    QCOMPARE(apply(package, target), 6);

    // The description that the check extracted; and a link makes no file either.
    before.append({QStringLiteral("extracted/device.json"), QStringLiteral("devices/%1").arg(onlineIp),
                   QStringLiteral("devices/%1/%1.json").arg(onlineIp)});
    for (const QString &path : contents(m_site->path()))
        QVERIFY2(before.contains(path), qPrintable(path));
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/projectfilecfg-evil.png")));
    QCOMPARE(Journal::instance()->count(createPicture), 0);
    QCOMPARE(Journal::instance()->count(serailize), target == offlineIp ? 1 : 0);
    QCOMPARE(Journal::instance()->count(copySlots), 0);
}

void TstEngineerDocLoad::a_description_that_climbs_out_is_code_5()
{
    const QStringList before = contents(m_site->path());
    PackageBuilder package;
    package.file("../evil.json", descriptionOf(plainDevice(sourceIp)));
    QCOMPARE(check(package, onlineIp), 5);
    QCOMPARE(contents(m_site->path()), before);
}

// ---------------------------------------------------------------------------------------------------------------------
// Changes between check and run

void TstEngineerDocLoad::a_package_is_applied_as_it_was_checked_data()
{
    QTest::addColumn<QString>("ip");
    QTest::addColumn<bool>("isRunning");
    QTest::addColumn<PackageChange>("change");
    static const auto other = [] {
        // The same pictures by number and size, and a description of the same length: nothing else would tell.
        HardwareState state = richDevice(QStringLiteral("10.0.0.78"));
        state.settings.insert(QStringLiteral("brightness"), 13);
        PackageBuilder package = packageOf(state);
        return package.record(QStringLiteral("show"), QStringLiteral("for tests")).build();
    };
    const auto replace = [](const QString &path) {
        if (!writeFile(path + QStringLiteral(".new"), other()) ||
            ::rename(QFile::encodeName(path + QStringLiteral(".new")), QFile::encodeName(path)) != 0)
            qFatal("The package could not be replaced");
    };
    const auto overwrite = [](const QString &path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadWrite) || file.write(other()) != other().size())
            qFatal("The package could not be overwritten");
    };
    const auto cut = [](const QString &path) { QFile::resize(path, 10); };
    const auto empty = [](const QString &path) { QFile::resize(path, 0); };
    const auto remove = [](const QString &path) { QFile::remove(path); };
    const auto touch = [](const QString &path) {
        QFile file(path);
        file.open(QIODevice::ReadWrite);
        file.setFileTime(QDateTime::currentDateTime().addSecs(3600), QFileDevice::FileModificationTime);
    };
    for (const QString &ip : {onlineIp, offlineIp}) {
        for (const bool isRunning : {false, true}) {
            const auto row = [&](const char *what, const PackageChange &change) {
                QTest::addRow("%s, %s %s", ip == onlineIp ? "online" : "offline", what,
                              isRunning ? "during the run" : "before the run")
                    << ip << isRunning << change;
            };
            row("replaced", replace);
            row("overwritten in place", overwrite);
            row("cut", cut);
            row("emptied", empty);
            row("removed", remove);
            row("touched", touch);
        }
    }
}

void TstEngineerDocLoad::a_package_is_applied_as_it_was_checked()
{
    QFETCH(QString, ip);
    QFETCH(bool, isRunning);
    QFETCH(PackageChange, change);
    const HardwareState packed = richDevice(QStringLiteral("10.0.0.77"));
    const QString path = write(packageOf(packed));
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(path, ip);
    if (isRunning)
        Faults::instance()->arm(ip == onlineIp ? createPicture : serailize, Fault::run([&] { change(path); }));
    else
        change(path);
    QCOMPARE(runJob(*job), int(LoadSuccess));
    if (ip == onlineIp) {
        const QStringList differences = onlineState().configuration().differencesTo(packed.configuration());
        QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));
    } else {
        QCOMPARE(QImage(m_site->devicePath(offlineIp) + QStringLiteral("/BKG/BKG_7.png"))
                     .convertToFormat(QImage::Format_RGB32),
                 packed.backgrounds.value(7).pixels);
    }
}

void TstEngineerDocLoad::a_package_that_became_another_between_the_checks_is_applied_as_it_was()
{
    const HardwareState packed = richDevice(sourceIp);
    const QString path = write(packageOf(packed));
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(path);
    QVERIFY(job.checkPackageFile());
    QVERIFY(QFile::remove(path));
    QVERIFY(job.checkDevice());
    QCOMPARE(runJob(job), 0);
    const QStringList differences = onlineState().configuration().differencesTo(packed.configuration());
    QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));
}

/// How many files of this process have no name any more, or never had one.
static int namelessFiles()
{
    int count = 0;
    for (const QFileInfo &link : QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::AllEntries | QDir::System))
        count += link.symLinkTarget().endsWith(QStringLiteral(" (deleted)"));
    return count;
}

void TstEngineerDocLoad::a_package_is_let_go_when_its_run_ends_data()
{
    QTest::addColumn<QString>("ip");
    QTest::addColumn<bool>("isFitting");
    QTest::newRow("online") << onlineIp << true;
    QTest::newRow("offline") << offlineIp << true;
    QTest::newRow("refused") << onlineIp << false;
}

void TstEngineerDocLoad::a_package_is_let_go_when_its_run_ends()
{
    QFETCH(QString, ip);
    QFETCH(bool, isFitting);
    const int before = namelessFiles();
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(ip);
    job.setPackagePath(write(packageOf(plainDevice(sourceIp, isFitting ? mainModel : otherModel))));
    QVERIFY(job.checkPackageFile());
    QCOMPARE(namelessFiles(), before + 1);
    QCOMPARE(job.checkDevice(), isFitting);
    if (isFitting)
        QCOMPARE(runJob(job), 0);
    QCOMPARE(namelessFiles(), before);
}

void TstEngineerDocLoad::a_device_that_went_offline_after_its_check_is_code_7()
{
    const std::unique_ptr<EngineerDocLoad> job =
        checkedJob(write(packageOf(richDevice(QStringLiteral("10.0.0.77")))), onlineIp);
    (*m_site)->unplug(onlineIp);
    QCOMPARE(runJob(*job), int(LoadImportFailed));
    QVERIFY((*m_site)->device(onlineIp)->getBKGs().empty());
}

void TstEngineerDocLoad::a_device_that_came_online_after_its_check_is_code_7()
{
    const std::unique_ptr<EngineerDocLoad> job =
        checkedJob(write(packageOf(richDevice(QStringLiteral("10.0.0.77")))), offlineIp);
    (*m_site)->plug(offlineIp);
    const HardwareState before = (*m_site)->hardware(offlineIp)->state();
    QCOMPARE(runJob(*job), int(LoadImportFailed));
    QVERIFY((*m_site)->hardware(offlineIp)->state() == before);
}

// ---------------------------------------------------------------------------------------------------------------------
// Cancelling

void TstEngineerDocLoad::cancelling_online_is_seen_at_every_point_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<QStringList>("extracted");

    const QStringList begin{canEnable, enableMvr, copySlots};
    const QStringList picture{operatorType, createPicture};
    const QString description = QStringLiteral("a.json");
    const QStringList folders{QStringLiteral("BKG"), description};
    QTest::newRow("before the cards: seen at the first entry")
        << enableMvr << 1 << begin + QStringList{copyMvrItems} << folders;
    QTest::newRow("during the cards: seen at the first entry")
        << copySlots << 1 << begin + QStringList{copyMvrItems} << folders;
    QTest::newRow("during the first picture: seen at the second entry")
        << createPicture << 1 << begin + picture + QStringList{copyMvrItems} << folders;
    QTest::newRow("during the second picture: seen at the third entry")
        << createPicture << 2 << begin + picture + picture + QStringList{copyMvrItems} << folders;
    QTest::newRow("during the last picture: seen after the pictures")
        << createPicture << 3 << begin + picture + picture + picture + QStringList{copyMvrItems} << folders;
    QTest::newRow("during the model: seen at the end")
        << copyModel << 1 << begin + picture + picture + picture + QStringList{copyModel, copyMvrItems} << folders;
    QTest::newRow("during the multi-viewer items: seen at the end")
        << copyMvrItems << 1 << begin + picture + picture + picture + QStringList{copyModel, copyMvrItems} << folders;
}

void TstEngineerDocLoad::cancelling_online_is_seen_at_every_point()
{
    QFETCH(QString, operation);
    QFETCH(int, call);
    QFETCH(QStringList, calls);
    QFETCH(QStringList, extracted);
    HardwareState source = plainDevice(sourceIp);
    PackageBuilder package;
    for (int number : {1, 2, 3})
        source.backgrounds.insert(quint8(number), {QStringLiteral("b"), noisePicture({4, 4}, quint32(number))});
    package.file("a.json", descriptionOf(source));
    for (int number : {1, 2, 3})
        package.file("BKG/BKG_" + QByteArray::number(number) + ".png",
                     pngOf(source.backgrounds.value(quint8(number)).pixels));

    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(package), onlineIp);
    SignalRecorder<QString> progress(job.get(), &EngineerDocLoad::signal_operatoerChanged);
    Faults::instance()->arm(operation, Fault::run([&] { job->cancel(); }, call));
    QCOMPARE(runJob(*job), 1);
    VERIFY_JOURNAL(calls);
    // No file is left of an entry that is not sent; the check has made the folder.
    QCOMPARE(contents(m_site->extractPath()), extracted);
    QCOMPARE(progress.count(), calls.contains(copyModel) ? 1 : 0);
}

void TstEngineerDocLoad::cancelling_does_not_hide_an_earlier_failure()
{
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(richDevice(sourceIp))), onlineIp);
    Faults::instance()->arm(createPicture, Fault::run([&] { job->cancel(); }));
    Faults::instance()->arm(createPicture, Fault::fail());
    QCOMPARE(runJob(*job), 14);
}

void TstEngineerDocLoad::cancelling_before_the_thread_starts_is_lost()
{
    for (const QString &ip : {onlineIp, offlineIp}) {
        const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(richDevice(sourceIp))), ip);
        job->cancel();
        QCOMPARE(runJob(*job), 0);
    }
    QCOMPARE(onlineState().backgrounds.size(), 2);
}

void TstEngineerDocLoad::cancelling_during_the_offline_copy_is_seen_after_it()
{
    // The copy tells nobody how far it is, so the first file on disk is the sign; the second one takes so
    // long that the request comes in time. Were it not seen after the copy, the failing serialiser would
    // replace the code.
    const HardwareState source = plainDevice(sourceIp);
    const QString first = m_site->devicePath(offlineIp) + QStringLiteral("/first.txt");
    const QString second = m_site->devicePath(offlineIp) + QStringLiteral("/second.bin");
    int megabytes = 32;
    bool inTime = false;
    for (; !inTime && megabytes <= 512; megabytes *= 4) {
        QFile::remove(first);
        QFile::remove(second);
        PackageBuilder package = descriptionOnly(descriptionOf(source));
        package.file("first.txt", "first").file("second.bin", QByteArray(megabytes * 1024 * 1024, '\0'));
        const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(package), offlineIp);
        Faults::instance()->arm(serailize, Fault::fail());
        SignalRecorder<> finished(job.get(), &QThread::finished);
        job->start(QThread::InheritPriority);
        while (!QFile::exists(first) && job->isRunning())
            QThread::yieldCurrentThread();
        job->cancel();
        inTime = !QFile::exists(second);
        QVERIFY(job->wait(60000));
        QVERIFY2(QFile::exists(second), "the copy itself does not look for the request");
        if (inTime)
            QCOMPARE(job->resultCode(), 1);
    }
    QVERIFY(inTime);
    QVERIFY(Journal::instance()->count(serailize) > 0);
}

void TstEngineerDocLoad::cancelling_offline_is_seen_at_the_end()
{
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(richDevice(sourceIp))), offlineIp);
    Faults::instance()->arm(serailize, Fault::run([&] { job->cancel(); }));
    QCOMPARE(runJob(*job), 1);
    QVERIFY(!(*m_site)->device(offlineIp)->getLogos().front().lock()->thumb().isNull());
}

void TstEngineerDocLoad::cancelling_is_not_seen_after_a_failed_offline_copy()
{
    PackageBuilder package = packageOf(richDevice(sourceIp));
    package.file("broken.txt", "some text").claimCrc(1);
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(package), offlineIp);
    Faults::instance()->arm(serailize, Fault::run([&] { job->cancel(); }));
    QCOMPARE(runJob(*job), 6);
}

TEST_MAIN_GUI(TstEngineerDocLoad)
#include "tst_engineerdocload.moc"
