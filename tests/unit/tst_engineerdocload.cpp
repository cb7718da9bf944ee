// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "loadtesting.h"

#include <support/journalmatchers.h>
#include <support/openfiles.h>

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

using PackageChange = std::function<void(const QString &)>;
Q_DECLARE_METATYPE(PackageChange)

/// What can happen to any load: exceptions, names that climb out, changed packages, a cancel.
class TstEngineerDocLoad : public QObject, protected Loading
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // Exceptions and nulls
    void a_throwing_host_call_ends_the_load_data();
    void a_throwing_host_call_ends_the_load();
    void a_throwing_host_call_fails_the_check_data();
    void a_throwing_host_call_fails_the_check();
    void null_entries_are_skipped();

    // Packages from elsewhere
    void nothing_is_written_outside_data();
    void nothing_is_written_outside();
    void a_description_that_climbs_out_is_refused();

    // Changes between check and run
    void a_package_is_applied_as_it_was_checked_data();
    void a_package_is_applied_as_it_was_checked();
    void a_package_replaced_between_checks_stays_the_first();
    void a_finished_run_releases_its_package_data();
    void a_finished_run_releases_its_package();
    void each_run_needs_a_check_of_its_own();
    void going_offline_after_the_check_ends_the_load();
    void coming_online_after_the_check_ends_the_load();

    // Cancelling
    void cancelling_online_is_seen_at_every_point_data();
    void cancelling_online_is_seen_at_every_point();
    void cancelling_does_not_hide_an_earlier_failure();
    void cancelling_before_the_thread_starts_is_lost();
    void cancelling_an_offline_copy_is_seen_afterwards();
    void cancelling_offline_is_seen_at_the_end();
    void a_failed_offline_copy_outranks_a_cancel();
};

// ---------------------------------------------------------------------------------------------------------------------
// Exceptions and nulls

void TstEngineerDocLoad::a_throwing_host_call_ends_the_load_data()
{
    QTest::addColumn<QString>("ip");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    for (const QLatin1String operation :
         {canMVEEnable, enableMVR, copySlotDataToDevice, setOperatorType, createMaterailFromImage, copyModelToDevice,
          copyMVRItemDataToDevice, getDeviceByIPAddr})
        QTest::addRow("online, %s", operation.data()) << onlineIp << operation << 1;
    QTest::addRow("online, the last picture") << onlineIp << createMaterailFromImage << 3;
    for (const QLatin1String operation : {serailize, deviceFromJson, getDeviceByIPAddr})
        QTest::addRow("offline, %s", operation.data()) << offlineIp << operation << 1;
}

void TstEngineerDocLoad::a_throwing_host_call_ends_the_load()
{
    QFETCH(QString, ip);
    QFETCH(QString, operation);
    QFETCH(int, call);
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(richDevice(sourceIp))), ip);
    const ExpectMessage expected(QtCriticalMsg,
                                 QStringLiteral("Import project file failed, exception: %1 throws").arg(operation), 1);
    Faults::instance()->arm(operation, Fault::throwing(call));
    QCOMPARE(runJob(*job), int(LoadImportFailed));
    // It still works.
    QCOMPARE(apply(packageOf(richDevice(sourceIp)), ip), int(LoadSuccess));
}

void TstEngineerDocLoad::a_throwing_host_call_fails_the_check_data()
{
    QTest::addColumn<QString>("operation");
    QTest::newRow("looking for the device") << getDeviceByIPAddr;
    QTest::newRow("reading the description") << deviceFromJson;
}

void TstEngineerDocLoad::a_throwing_host_call_fails_the_check()
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
    QCOMPARE(job.resultCode(), int(LoadImportFailed));
    VERIFY_JOURNAL({});
}

void TstEngineerDocLoad::null_entries_are_skipped()
{
    const HardwareState source = richDevice(sourceIp);
    // Nulls among the compared and refreshed objects; a missing card fits no slot.
    const auto withNulls = [](const std::shared_ptr<Model::Device> &device) {
        Model::DeviceData data = Model::DeviceEditor(*device).data();
        data.backgrounds.insert(data.backgrounds.begin(), nullptr);
        data.logos.insert(data.logos.begin(), nullptr);
        Model::DeviceEditor(*device).replace(data);
    };
    Faults::instance()->arm(serailize, Fault::run([&] { withNulls((*m_site)->device(offlineIp)); }));
    QCOMPARE(apply(packageOf(source), offlineIp), int(LoadSuccess));
    QVERIFY(!(*m_site)->device(offlineIp)->getLogos().back().lock()->thumb().isNull());

    const std::shared_ptr<Model::Device> online = (*m_site)->device(onlineIp);
    Model::DeviceData data = Model::DeviceEditor(*online).data();
    data.cards[1] = nullptr;
    Model::DeviceEditor(*online).replace(data);
    QCOMPARE(check(packageOf(source), onlineIp), int(LoadCardMismatch));
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
    QCOMPARE(apply(package, target), int(LoadDecompressFailed));

    // The description extracted by the check; a link does not produce a file either.
    before.append({QStringLiteral("extracted/device.json"), QStringLiteral("devices/%1").arg(onlineIp),
                   QStringLiteral("devices/%1/%1.json").arg(onlineIp)});
    for (const QString &path : contents(m_site->path()))
        QVERIFY2(before.contains(path), qPrintable(path));
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/projectfilecfg-evil.png")));
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), 0);
    QCOMPARE(Journal::instance()->count(serailize), target == offlineIp ? 1 : 0);
    QCOMPARE(Journal::instance()->count(copySlotDataToDevice), 0);
}

void TstEngineerDocLoad::a_description_that_climbs_out_is_refused()
{
    const QStringList before = contents(m_site->path());
    PackageBuilder package;
    package.file("../evil.json", descriptionOf(plainDevice(sourceIp)));
    QCOMPARE(check(package, onlineIp), int(LoadGetDeviceFailed));
    QCOMPARE(contents(m_site->path()), before);
}

// ---------------------------------------------------------------------------------------------------------------------
// Changes between check and run

namespace {

/// A package that a reader does not keep in memory as a whole: it keeps the end of the archive.
PackageBuilder largePackageOf(const HardwareState &state)
{
    PackageBuilder package = packageOf(state);
    return package.file("large.bin", noise(256 * 1024), PackageBuilder::Stored);
}

} // namespace

void TstEngineerDocLoad::a_package_is_applied_as_it_was_checked_data()
{
    QTest::addColumn<QString>("ip");
    QTest::addColumn<bool>("isRunning");
    QTest::addColumn<PackageChange>("change");
    static const auto other = [] {
        // The same pictures by number and size, and a description of the same length: nothing else differs.
        HardwareState state = richDevice(QStringLiteral("10.0.0.78"));
        state.settings.insert(QStringLiteral("brightness"), 13);
        PackageBuilder package = largePackageOf(state);
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
    const QString path = write(largePackageOf(packed));
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(path, ip);
    if (isRunning)
        Faults::instance()->arm(ip == onlineIp ? createMaterailFromImage : serailize,
                                Fault::run([&] { change(path); }));
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

void TstEngineerDocLoad::a_package_replaced_between_checks_stays_the_first()
{
    const HardwareState packed = richDevice(sourceIp);
    const QString path = write(packageOf(packed));
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(path);
    QVERIFY(job.checkPackageFile());
    QVERIFY(QFile::remove(path));
    QVERIFY(job.checkDevice());
    QCOMPARE(runJob(job), int(LoadSuccess));
    const QStringList differences = onlineState().configuration().differencesTo(packed.configuration());
    QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));
}

void TstEngineerDocLoad::a_finished_run_releases_its_package_data()
{
    QTest::addColumn<QString>("ip");
    QTest::addColumn<bool>("isFitting");
    QTest::newRow("online") << onlineIp << true;
    QTest::newRow("offline") << offlineIp << true;
    QTest::newRow("refused") << onlineIp << false;
}

void TstEngineerDocLoad::a_finished_run_releases_its_package()
{
    QFETCH(QString, ip);
    QFETCH(bool, isFitting);
    const int before = openNamelessFiles();
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(ip);
    job.setPackagePath(write(packageOf(plainDevice(sourceIp, isFitting ? mainModel : otherModel))));
    QVERIFY(job.checkPackageFile());
    QCOMPARE(openNamelessFiles(), before + 1);
    QCOMPARE(job.checkDevice(), isFitting);
    if (isFitting)
        QCOMPARE(runJob(job), int(LoadSuccess));
    QCOMPARE(openNamelessFiles(), before);
}

void TstEngineerDocLoad::each_run_needs_a_check_of_its_own()
{
    const std::unique_ptr<EngineerDocLoad> job =
        checkedJob(write(packageOf(richDevice(QStringLiteral("10.0.0.77")))), offlineIp);
    QCOMPARE(runJob(*job), int(LoadSuccess));
    QCOMPARE(runJob(*job), int(LoadGetDeviceFailed));
}

void TstEngineerDocLoad::going_offline_after_the_check_ends_the_load()
{
    const std::unique_ptr<EngineerDocLoad> job =
        checkedJob(write(packageOf(richDevice(QStringLiteral("10.0.0.77")))), onlineIp);
    (*m_site)->unplug(onlineIp);
    QCOMPARE(runJob(*job), int(LoadImportFailed));
    QVERIFY((*m_site)->device(onlineIp)->getBKGs().empty());
}

void TstEngineerDocLoad::coming_online_after_the_check_ends_the_load()
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

    const QStringList begin{canMVEEnable, enableMVR, copySlotDataToDevice};
    const QStringList picture{setOperatorType, createMaterailFromImage};
    const QString description = QStringLiteral("a.json");
    const QStringList folders{QStringLiteral("BKG"), description};
    QTest::newRow("before the cards: seen at the first entry")
        << enableMVR << 1 << begin + QStringList{copyMVRItemDataToDevice} << folders;
    QTest::newRow("during the cards: seen at the first entry")
        << copySlotDataToDevice << 1 << begin + QStringList{copyMVRItemDataToDevice} << folders;
    QTest::newRow("during the first picture: seen at the second entry")
        << createMaterailFromImage << 1 << begin + picture + QStringList{copyMVRItemDataToDevice} << folders;
    QTest::newRow("during the second picture: seen at the third entry")
        << createMaterailFromImage << 2 << begin + picture + picture + QStringList{copyMVRItemDataToDevice} << folders;
    QTest::newRow("during the last picture: seen after the pictures")
        << createMaterailFromImage << 3 << begin + picture + picture + picture + QStringList{copyMVRItemDataToDevice}
        << folders;
    QTest::newRow("during the model: seen at the end")
        << copyModelToDevice << 1
        << begin + picture + picture + picture + QStringList{copyModelToDevice, copyMVRItemDataToDevice} << folders;
    QTest::newRow("during the multi-viewer items: seen at the end")
        << copyMVRItemDataToDevice << 1
        << begin + picture + picture + picture + QStringList{copyModelToDevice, copyMVRItemDataToDevice} << folders;
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
    QCOMPARE(runJob(*job), int(LoadUserCanceled));
    VERIFY_JOURNAL(calls);
    // Entries that are not sent leave no file; the check has created the folder.
    QCOMPARE(contents(m_site->extractPath()), extracted);
    QCOMPARE(progress.count(), calls.contains(copyModelToDevice) ? 1 : 0);
}

void TstEngineerDocLoad::cancelling_does_not_hide_an_earlier_failure()
{
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(richDevice(sourceIp))), onlineIp);
    Faults::instance()->arm(createMaterailFromImage, Fault::run([&] { job->cancel(); }));
    Faults::instance()->arm(createMaterailFromImage, Fault::fail());
    QCOMPARE(runJob(*job), int(LoadApplyGalleryFailed));
}

void TstEngineerDocLoad::cancelling_before_the_thread_starts_is_lost()
{
    for (const QString &ip : {onlineIp, offlineIp}) {
        const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(richDevice(sourceIp))), ip);
        job->cancel();
        QCOMPARE(runJob(*job), int(LoadSuccess));
    }
    QCOMPARE(onlineState().backgrounds.size(), 2);
}

void TstEngineerDocLoad::cancelling_an_offline_copy_is_seen_afterwards()
{
    // The copy reports no progress, so the first file on disk is the sign; the second one takes long enough for the
    // request to arrive in time. If the copy missed the request, the failing serialiser would change the result code.
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
            QCOMPARE(job->resultCode(), int(LoadUserCanceled));
    }
    QVERIFY(inTime);
    QVERIFY(Journal::instance()->count(serailize) > 0);
}

void TstEngineerDocLoad::cancelling_offline_is_seen_at_the_end()
{
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(packageOf(richDevice(sourceIp))), offlineIp);
    Faults::instance()->arm(serailize, Fault::run([&] { job->cancel(); }));
    QCOMPARE(runJob(*job), int(LoadUserCanceled));
    QVERIFY(!(*m_site)->device(offlineIp)->getLogos().front().lock()->thumb().isNull());
}

void TstEngineerDocLoad::a_failed_offline_copy_outranks_a_cancel()
{
    PackageBuilder package = packageOf(richDevice(sourceIp));
    package.file("broken.txt", "some text").claimCrc(1);
    const std::unique_ptr<EngineerDocLoad> job = checkedJob(write(package), offlineIp);
    Faults::instance()->arm(serailize, Fault::run([&] { job->cancel(); }));
    QCOMPARE(runJob(*job), int(LoadDecompressFailed));
}

TEST_MAIN_GUI(TstEngineerDocLoad)
#include "tst_engineerdocload.moc"
