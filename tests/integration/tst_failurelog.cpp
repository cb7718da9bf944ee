// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <engineerdocbackup.h>
#include <engineerdocload.h>
#include <unit/packagetesting.h>

#include <support/answerbook.h>
#include <support/customsite.h>
#include <support/paneltesting.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <simulation/faults.h>
#include <simulation/hardware.h>
#include <widgets/fixedbitlineeditex.h>

#include <QTextEdit>

#include <functional>

using namespace PackageTesting;
using namespace PanelTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using namespace Simulation::Operations;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;

namespace {

const QString onlineIp = QStringLiteral("10.0.0.11");
const QString offlineIp = QStringLiteral("10.0.0.12");
const QString sourceIp = QStringLiteral("10.0.0.77");

} // namespace

using SaveStep = std::function<void(CustomSite &site, EngineerDocBackup &job)>;
using SiteStep = std::function<void(CustomSite &site)>;
using PackageStep = std::function<void(PackageBuilder &package)>;
Q_DECLARE_METATYPE(SaveStep)
Q_DECLARE_METATYPE(SiteStep)
Q_DECLARE_METATYPE(PackageStep)

/// Every failure logs one line with the path and the cause: docs/diagnosing.md relies on it.
class TstFailureLog : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { Faults::instance()->clear(); }

    void a_failed_save_leaves_one_line_data();
    void a_failed_save_leaves_one_line();
    void a_refused_apply_leaves_one_line_data();
    void a_refused_apply_leaves_one_line();
    void a_failing_apply_logs_one_line_data();
    void a_failing_apply_logs_one_line();
    void a_device_changed_before_its_check_is_logged();
    void a_check_that_no_longer_holds_is_logged_data();
    void a_check_that_no_longer_holds_is_logged();
    void success_and_cancelling_leave_no_line();
    void each_operation_of_the_panel_leaves_one_line();

private:
    /// The log lines that report a failure.
    static QStringList failures()
    {
        return WarningGuard::texts(QtDebugMsg).filter(QRegularExpression("failed:|^Not "));
    }
    static void run(QThread &job);
    /// Returns a complaint unless there is exactly one line, which contains the path and ends with the cause.
    static QString wrongIn(const QStringList &lines, const QString &path, const QString &cause);

    QTemporaryDir m_packages;
};

void TstFailureLog::run(QThread &job)
{
    SignalRecorder<> finished(&job, &QThread::finished);
    job.start(QThread::InheritPriority);
    QTRY_COMPARE(finished.count(), 1);
    job.wait();
}

QString TstFailureLog::wrongIn(const QStringList &lines, const QString &path, const QString &cause)
{
    const bool isRight = lines.size() == 1 && lines.first().contains(path) && lines.first().endsWith(cause);
    return isRight ? QString()
                   : QStringLiteral("not one line with \"%1\" and \"%2\", but: %3").arg(path, cause, lines.join('\n'));
}

void TstFailureLog::a_failed_save_leaves_one_line_data()
{
    QTest::addColumn<SaveStep>("prepare");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("cause");

    const auto row = [](const char *name, int code, const QString &where, const QString &cause, const SaveStep &step) {
        QTest::newRow(name) << step << code << where << cause;
    };
    row("a background does not come", BackupExportBkgFailed, "the device did not send", "the background Opening",
        [](CustomSite &, EngineerDocBackup &) { Faults::instance()->arm(queryMaterailData, Fault::fail()); });
    row("an offline device lacks a picture", BackupOfflineResourceIncomplete, "pictures are missing in",
        QString("devices/") + offlineIp, [](CustomSite &site, EngineerDocBackup &job) {
            job.setDeviceIp(offlineIp);
            QDir(site.devicePath(offlineIp) + "/BKG").removeRecursively();
        });
    row("no device", BackupGetDeviceFailed, "Save failed: ", "there is no device 10.0.0.99",
        [](CustomSite &, EngineerDocBackup &job) { job.setDeviceIp("10.0.0.99"); });
    row("a preset is not serialised", BackupEncryptFailed,
        "Save failed: ", "preset 1 of Device 11 could not be serialised",
        [](CustomSite &, EngineerDocBackup &) { Faults::instance()->arm(presetFullDetail2Binary, Fault::fail()); });
    row("the presets' folder goes", BackupEncryptFailed, "Save failed: ", "/10.0.0.11/Preset/ was removed",
        [](CustomSite &site, EngineerDocBackup &) {
            const QString presets = site.devicePath(onlineIp) + "/Preset";
            Faults::instance()->arm(presetFullDetail2Binary,
                                    Fault::run([presets] { QDir(presets).removeRecursively(); }));
        });
    row("a file in the presets' place", BackupEncryptFailed, "Save failed: ", "/10.0.0.11/Preset/ cannot be created",
        [](CustomSite &site, EngineerDocBackup &) {
            QVERIFY(writeFile(site.devicePath(onlineIp) + "/Preset", "a file"));
        });
    row("a file in the folder's place", BackupEncryptFailed, "cannot create the folder", "/projects: File exists",
        [](CustomSite &site, EngineerDocBackup &job) {
            QVERIFY(writeFile(site.path() + "/projects", "a file"));
            job.setProjectPath(site.path() + "/projects/");
        });
    row("a folder of the name is missing", BackupEncryptFailed, "/no/folder.corvelpro", "No such file or directory",
        [](CustomSite &, EngineerDocBackup &job) { job.setProjectInfo("no/folder", QString()); });
    row("a folder in the package's place", BackupEncryptFailed, "show.corvelpro", "is a folder",
        [](CustomSite &site, EngineerDocBackup &) {
            QVERIFY(QDir().mkpath(site.path() + "/projects/show.corvelpro"));
        });
    row("a pipe among the files", BackupEncryptFailed, onlineIp + "/pipe", "it is not a plain file, or cannot be read",
        [](CustomSite &site, EngineerDocBackup &) {
            QVERIFY(QDir().mkpath(site.devicePath(onlineIp)));
            ::mkfifo(QFile::encodeName(site.devicePath(onlineIp) + "/pipe").constData(), 0600);
        });
}

void TstFailureLog::a_failed_save_leaves_one_line()
{
    QFETCH(SaveStep, prepare);
    QFETCH(int, code);
    QFETCH(QString, where);
    QFETCH(QString, cause);
    CustomSite site({{richDevice(onlineIp), true}, {richDevice(offlineIp), false}});
    EngineerDocBackup job(nullptr, onlineIp);
    job.setProjectPath(site.path() + "/projects/");
    job.setProjectInfo("show", "a comment");
    prepare(site, job);
    WarningGuard::clear();
    run(job);
    QCOMPARE(job.resultCode(), code);
    QCOMPARE(wrongIn(failures(), where, cause), QString());
}

void TstFailureLog::a_refused_apply_leaves_one_line_data()
{
    QTest::addColumn<PackageStep>("change");
    QTest::addColumn<QString>("ip");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("cause");

    const auto row = [](const char *name, const QString &ip, int code, const QString &cause, const PackageStep &step) {
        QTest::newRow(name) << step << ip << code << cause;
    };
    const PackageStep none = [](PackageBuilder &) {};
    row("no device", "10.0.0.99", LoadGetDeviceFailed, "there is no device 10.0.0.99", none);
    row("a wrong checksum", onlineIp, LoadSuccess, "its record says \"0\"",
        [](PackageBuilder &package) { package.recordWithChecksum("0", "show", "x"); });
    row("no record", onlineIp, LoadSuccess, "the archive's comment is not an info record",
        [](PackageBuilder &package) { package.archiveComment("x"); });
    row("no description", onlineIp, LoadJsonFileError,
        "there is no device description, or the archive's directory is damaged",
        [](PackageBuilder &package) { package = PackageBuilder().file("a.txt", "x"); });
    row("no JSON", onlineIp, LoadGetDeviceFailed, "a.json is empty, too large or not JSON: illegal value",
        [](PackageBuilder &package) { package = PackageBuilder().file("a.json", "no JSON"); });
    row("a damaged description", onlineIp, LoadGetDeviceFailed, "a.json: its CRC is wrong",
        [](PackageBuilder &package) { package = PackageBuilder().file("a.json", "{\"a\": 1}").claimCrc(1); });
    row("another model", onlineIp, LoadDeviceTypeMismatch, "the package's model ID is 400, the device's 1600",
        [](PackageBuilder &package) { package = packageOf(plainDevice(sourceIp, otherModel)); });
    row("other cards", onlineIp, LoadCardMismatch, "the package has 2 slots, the device 3, or the cards in them differ",
        [](PackageBuilder &package) {
            HardwareState state = plainDevice(sourceIp);
            state.cards.removeLast();
            package = packageOf(state);
        });
    row("a newer protocol", onlineIp, LoadProtocolVersionMismatch,
        "the package's protocol number is 9.5, the device's 2.4", [](PackageBuilder &package) {
            HardwareState state = plainDevice(sourceIp);
            state.protocolNumber = 9.5;
            package = packageOf(state);
        });
    row("a damaged picture", onlineIp, LoadDecompressFailed, "extracted/LOGO/LOGO_2.png: its CRC is wrong",
        [](PackageBuilder &package) { package.claimCrc(1); });
    row("no picture", onlineIp, LoadImageContentError,
        "the picture BKG/BKG_9.png: it cannot be read, is not a PNG, or is larger than 268435456 bytes",
        [](PackageBuilder &package) { package.file("BKG/BKG_9.png", "text"); });
    row("a picture without a place", onlineIp, LoadGalleryFileError,
        "the picture BKG/BKG_9.png has no place in the description, or its place has another size",
        [](PackageBuilder &package) {
            package.file("BKG/BKG_9.png", pngOf(noisePicture({4, 4}, 9)));
        });
    row("a cut picture", onlineIp, LoadGalleryFileError, "cannot decode BKG/BKG_1.png: Unable to read image data",
        [](PackageBuilder &package) {
            const HardwareState state = richDevice(sourceIp);
            const QByteArray png = pngOf(state.backgrounds.value(1).pixels);
            package =
                PackageBuilder().file("a.json", descriptionOf(state)).file("BKG/BKG_1.png", png.left(png.size() / 2));
        });
}

void TstFailureLog::a_refused_apply_leaves_one_line()
{
    QFETCH(PackageStep, change);
    QFETCH(QString, ip);
    QFETCH(int, code);
    QFETCH(QString, cause);
    const CustomSite site({{plainDevice(onlineIp), true}, {plainDevice(offlineIp), false}});
    PackageBuilder package = packageOf(richDevice(sourceIp));
    const bool hasOwnComment = code == LoadSuccess;
    change(package);
    if (!hasOwnComment)
        package.record("show", "x");
    const QString path = m_packages.filePath("show.corvelpro");
    QVERIFY(package.write(path));
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(ip);
    job.setPackagePath(path);
    WarningGuard::clear();
    QVERIFY(!job.checkPackageFile() || !job.checkDevice());
    QCOMPARE(job.resultCode(), code);
    QCOMPARE(wrongIn(failures().filter("Apply of"), path, cause), QString());
}

void TstFailureLog::a_failing_apply_logs_one_line_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("ip");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("cause");

    QTest::newRow("slots") << QString(copySlotDataToDevice) << onlineIp << int(LoadImportFailed)
                           << "did not accept MVR or the slots";
    QTest::newRow("picture") << QString(createMaterailFromImage) << onlineIp << int(LoadApplyGalleryFailed)
                             << "did not accept the picture BKG/BKG_1.png";
    // A device that is told to stop may refuse its current operation: the log must not suggest a fault.
    QTest::newRow("picture after a cancel")
        << QString(createMaterailFromImage) << onlineIp << int(LoadApplyGalleryFailed)
        << "did not accept the picture BKG/BKG_1.png; Cancel was pressed before";
    QTest::newRow("configuration") << QString(copyModelToDevice) << onlineIp << int(LoadImportFailed)
                                   << "did not accept the configuration";
    QTest::newRow("multi-viewer") << QString(copyMVRItemDataToDevice) << onlineIp << int(LoadImportFailed)
                                  << "the device did not accept the MVR items";
    QTest::newRow("description") << QString(serailize) << offlineIp << int(LoadSerializeFailed)
                                 << "cannot write the description";
}

void TstFailureLog::a_failing_apply_logs_one_line()
{
    QFETCH(QString, operation);
    QFETCH(QString, ip);
    QFETCH(int, code);
    QFETCH(QString, cause);
    const CustomSite site({{plainDevice(onlineIp), true}, {plainDevice(offlineIp), false}});
    const QString path = m_packages.filePath("show.corvelpro");
    QVERIFY(packageOf(richDevice(sourceIp)).record("show", "x").write(path));
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(ip);
    job.setPackagePath(path);
    QVERIFY(job.checkPackageFile() && job.checkDevice());
    WarningGuard::clear();
    if (cause.contains("Cancel"))
        Faults::instance()->arm(operation, Fault::run([&job] { job.cancel(); }));
    Faults::instance()->arm(operation, Fault::fail());
    const ExpectMessage ofTheHost(QtWarningMsg, QRegularExpression("^set slot data failed"), ExpectMessage::AnyNumber);
    run(job);
    QCOMPARE(job.resultCode(), code);
    QCOMPARE(wrongIn(failures().filter("Apply of"), path, cause), QString());
}

void TstFailureLog::a_device_changed_before_its_check_is_logged()
{
    const CustomSite site({{plainDevice(onlineIp), true}});
    const QString path = m_packages.filePath("show.corvelpro");
    QVERIFY(packageOf(richDevice(sourceIp)).record("show", "x").write(path));
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(path);
    QVERIFY(job.checkPackageFile() && job.checkDevice() && job.confirmOnline(true));
    WarningGuard::clear();
    QVERIFY(!job.confirmOnline(false));
    QCOMPARE(job.resultCode(), int(LoadImportFailed));
    QCOMPARE(
        wrongIn(failures().filter("Apply of"), path, "the device went offline or came online before it was checked"),
        QString());
}

void TstFailureLog::a_check_that_no_longer_holds_is_logged_data()
{
    QTest::addColumn<SiteStep>("change");
    QTest::addColumn<QString>("ip");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("cause");

    QTest::newRow("unplugged") << SiteStep([](CustomSite &site) { site->unplug(onlineIp); }) << onlineIp
                               << int(LoadImportFailed)
                               << "the device went offline or came online after it was checked";
    const SiteStep growth = [](CustomSite &site) {
        QVERIFY(writeFile(site.devicePath(offlineIp) + "/notes", QByteArray()));
        QVERIFY(QFile::resize(site.devicePath(offlineIp) + "/notes", 5000 * MiB));
    };
    QTest::newRow("grown") << growth << offlineIp << int(LoadDecompressFailed)
                           << "devices/10.0.0.12/ would no longer fit into a package";
}

void TstFailureLog::a_check_that_no_longer_holds_is_logged()
{
    QFETCH(SiteStep, change);
    QFETCH(QString, ip);
    QFETCH(int, code);
    QFETCH(QString, cause);
    CustomSite site({{plainDevice(onlineIp), true}, {plainDevice(offlineIp), false}});
    const QString path = m_packages.filePath("show.corvelpro");
    QVERIFY(packageOf(richDevice(sourceIp)).record("show", "x").write(path));
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(ip);
    job.setPackagePath(path);
    QVERIFY(job.checkPackageFile() && job.checkDevice());
    change(site);
    WarningGuard::clear();
    run(job);
    QCOMPARE(job.resultCode(), code);
    QCOMPARE(wrongIn(failures().filter("Apply of"), path, cause), QString());
}

void TstFailureLog::success_and_cancelling_leave_no_line()
{
    CustomSite site({{richDevice(onlineIp), true}, {plainDevice(offlineIp), false}});
    EngineerDocBackup save(nullptr, onlineIp);
    save.setProjectPath(site.path() + "/projects/");
    save.setProjectInfo("show", "a comment");
    WarningGuard::clear();
    run(save);
    QCOMPARE(save.resultCode(), int(BackupSuccess));
    QCOMPARE(save.savedPackagePath(), site.path() + "/projects/show.corvelpro");
    EngineerDocLoad load(nullptr);
    load.setDeviceIp(offlineIp);
    load.setPackagePath(site.path() + "/projects/show.corvelpro");
    QVERIFY(load.checkPackageFile() && load.checkDevice());
    run(load);
    QCOMPARE(load.resultCode(), int(LoadSuccess));

    Faults::instance()->arm(queryMaterailData, Fault::run([&save] { save.cancel(); }));
    run(save);
    QCOMPARE(save.resultCode(), int(BackupUserCanceled));
    QCOMPARE(save.savedPackagePath(), QString());
    load.setPackagePath(site.path() + "/missing.corvelpro");
    QVERIFY(!load.checkPackageFile());
    WarningGuard::clear();
    load.setPackagePath(site.path() + "/projects/show.corvelpro");
    QVERIFY(load.checkPackageFile() && load.checkDevice());
    Faults::instance()->arm(serailize, Fault::run([&load] { load.cancel(); }));
    run(load);
    QCOMPARE(load.resultCode(), int(LoadUserCanceled));
    QCOMPARE(failures(), QStringList());
}

void TstFailureLog::each_operation_of_the_panel_leaves_one_line()
{
    QVERIFY(clearProjectFilesDirectory());
    const QTemporaryDir elsewhere;
    const TestSite site;
    Panel panel;
    panel->show();
    settle();
    const QString show = projectFile("show");
    QVERIFY(writePackage(show, "a comment"));
    panel.rescan();
    AnswerBook book;
    const auto rowButton = [&](const QString &text) { return click(panel.table()->cellWidget(0, 2), text); };
    const auto logged = [&] {
        settle();
        const bool isAnswered = QTest::qWaitFor([&] { return book.isSatisfied(); }, 60000);
        const QStringList lines = isAnswered ? failures() : QStringList(book.report());
        WarningGuard::clear();
        return lines;
    };
    WarningGuard::clear();

    const QString broken = elsewhere.filePath("broken.corvelpro");
    QVERIFY(writeFile(broken, "text"));

    book.expectFileDialog("Project file", {broken});
    book.expectWarning("Warning", QStringLiteral("The file[%1] context is invalid.").arg(broken));
    QVERIFY(click(panel.importProject()));
    QCOMPARE(wrongIn(logged(), broken, "is not a zip archive, or is incomplete"), QString());

    book.expectFileDialog("Project file", {show});
    book.expectWarning("Warning", "Import project file [show] failed");
    QVERIFY(click(panel.importProject()));
    QCOMPARE(wrongIn(logged(), show, "already exists"), QString());

    book.expectFileDialog("Project file", {broken});
    book.expectWarning("Remind", "The file does not exist or the file format is incorrect.");
    QVERIFY(click(panel.applyOthers()));
    QCOMPARE(wrongIn(logged(), broken, "is not a zip archive, or is incomplete"), QString());

    QVERIFY(writeFile(elsewhere.filePath("show.corvelpro"), "taken"));
    book.expectFileDialog("choose Des Directory", {elsewhere.path()});
    book.expectWarning("Warning", "save as [show] failed");
    QVERIFY(click(panel.allSaveAs()));
    QCOMPARE(wrongIn(logged(), elsewhere.filePath("show.corvelpro"), "already exists"), QString());

    book.expectDialog("EngineerPropertySettingWidget", [&](QDialog *dialog) {
        QVERIFY(QFile::remove(show));
        click(dialog, "OK");
    });
    QVERIFY(rowButton("Edit"));
    QCOMPARE(wrongIn(logged(), show, "No such file or directory"), QString());

    QVERIFY(writePackage(show, "a comment"));
    panel.rescan();
    WarningGuard::clear();
    QVERIFY(writePackage(projectFile("taken"), "a comment"));
    book.expectDialog("EngineerPropertySettingWidget", [](QDialog *dialog) {
        // With the blank the dialog does not find the existing name itself.
        dialog->findChild<Corvel::Widgets::FixedBitLineEditEx *>()->setText("taken ");
        click(dialog, "OK");
    });
    book.expectWarning("Remind", "File rename failed");
    {
        const ExpectMessage fixedLine(QtWarningMsg, QStringLiteral("File rename failed."), 1);
        QVERIFY(rowButton("Edit"));
    }
    QCOMPARE(wrongIn(logged(), projectFile("taken"), "File exists"), QString());
}

TEST_MAIN(TstFailureLog)
#include "tst_failurelog.moc"
