// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/applyfixture.h>
#include <support/testmain.h>
#include <zippackagehandle.h>

#include <simulation/faults.h>

#include <QThread>

using namespace PanelTesting;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ZipPackageHandle;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;
using Simulation::Journal;

Q_DECLARE_METATYPE(QMessageBox::StandardButton)

/// Applying a project after backing up the device's current configuration: "Yes" to the question.
class TstBackupBeforeApply : public QObject, protected Applying
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void yes_saves_a_project_before_applying();
    void a_failed_backup_applies_nothing();
    void a_cancelled_backup_applies_nothing();
    void cancel_reaches_a_backup_after_an_apply();
    void with_all_names_taken_the_backup_is_nameless();
    void a_backup_without_a_valid_package_applies_nothing_data();
    void a_backup_without_a_valid_package_applies_nothing();
    void a_waiting_package_is_applied_once();
    void without_an_active_device_nothing_waits();
    void a_late_cancel_of_the_backup_prevents_applying();
    void cancelling_after_a_backup_cancels_once();
    void cancel_reaches_the_backed_up_device();
    void restoring_the_window_changes_no_target_data();
    void restoring_the_window_changes_no_target();
};

void TstBackupBeforeApply::yes_saves_a_project_before_applying()
{
    const HardwareState before = hardware(targetIp);
    const HardwareState source = plainDevice(sourceIp);
    list(packageOf(source));
    apply(QMessageBox::Yes);
    waitForEndOfLoad();
    VERIFY_BOOK();
    COMPARE_STATES(hardware(targetIp).configuration(), source.configuration());
    QCOMPARE(journalArguments(setOperatorType, "type"),
             (QVariantList{QStringLiteral("OperatorBackup"), QStringLiteral("OperatorNone"),
                           QStringLiteral("OperatorLoad"), QStringLiteral("OperatorNone")}));

    QTRY_COMPARE(m_panel->table()->rowCount(), 2);
    EngineerPacketInfo info;
    info.strFilePath = projectFile(QStringLiteral("Project1"));
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QStringLiteral("Project1"));
    QVERIFY2(QRegularExpression(QStringLiteral("^\\d{8}_\\d{6}$")).match(info.strComment).hasMatch(),
             qPrintable(info.strComment));

    // The saved package restores the previous state.
    apply(QMessageBox::No, QStringLiteral("Project1"));
    waitForEndOfLoad(2);
    COMPARE_STATES(hardware(targetIp), before);
}

void TstBackupBeforeApply::a_failed_backup_applies_nothing()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(queryMaterailData, Fault::fail());
    expectQuestion(QMessageBox::Yes);
    m_book->expectInformation(QStringLiteral("Remind"), QStringLiteral("Failed to export bkg"));
    clickApply();
    waitForAnswers();
    settle();
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    COMPARE_STATES(hardware(targetIp), before);
    QVERIFY(!QFile::exists(projectFile(QStringLiteral("Project1"))));

    // The package is not kept for the next backup either.
    saveAsProposed();
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    VERIFY_BOOK();
}

void TstBackupBeforeApply::a_cancelled_backup_applies_nothing()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(queryMaterailData, cancelling());
    expectQuestion(QMessageBox::Yes);
    m_book->expectInformation(QStringLiteral("Remind"), QStringLiteral("User cancels current operation"));
    clickApply();
    waitForAnswers();
    settle();
    QCOMPARE(journalArguments(cancelOperator, "command"), (QVariantList{QVariant(QVariantList{4, 10})}));
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    COMPARE_STATES(hardware(targetIp), before);
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("show")});
}

void TstBackupBeforeApply::cancel_reaches_a_backup_after_an_apply()
{
    // Its job still exists.
    applyAndWait(packageOf(richDevice(sourceIp)));
    Journal::instance()->clear();
    Faults::instance()->arm(queryMaterailData, cancelling());
    expectQuestion(QMessageBox::Yes);
    m_book->expectInformation(QStringLiteral("Remind"), QStringLiteral("User cancels current operation"));
    clickApply();
    waitForAnswers();
    settle();
    QCOMPARE(Journal::instance()->count(cancelOperator), 1);
    QCOMPARE(Journal::instance()->count(cancelCurrentTask), 0);
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
}

void TstBackupBeforeApply::with_all_names_taken_the_backup_is_nameless()
{
    for (int number = 1; number <= 999; ++number) {
        QFile taken(projectFile(QStringLiteral("Project%1").arg(number)));
        QVERIFY(taken.open(QIODevice::WriteOnly));
    }
    const HardwareState source = plainDevice(sourceIp);
    list(packageOf(source));
    apply(QMessageBox::Yes);
    waitForEndOfLoad();
    EngineerPacketInfo info;
    info.strFilePath = projectFile(QString());
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QString());
    COMPARE_STATES(hardware(targetIp).configuration(), source.configuration());
}

void TstBackupBeforeApply::a_backup_without_a_valid_package_applies_nothing_data()
{
    QTest::addColumn<QString>("harm");
    QTest::newRow("a preset file cannot be opened") << "preset";
    QTest::newRow("a file has the name of the presets' folder") << "file in the way";
    QTest::newRow("the package is broken before the panel hears of the end") << "broken";
    QTest::newRow("the package is gone before the panel hears of the end") << "gone";
}

void TstBackupBeforeApply::a_backup_without_a_valid_package_applies_nothing()
{
    QFETCH(QString, harm);
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    const QString presetFolder = m_site->devicePath(targetIp) + QStringLiteral("/Preset");
    const QString backup = projectFile(QStringLiteral("Project1"));
    if (harm == QStringLiteral("preset")) {
        Faults::instance()->arm(presetFullDetail2Binary,
                                Fault::run([&] { QDir().mkpath(presetFolder + QStringLiteral("/1.RPst")); }));
    } else if (harm == QStringLiteral("file in the way")) {
        QVERIFY(QDir().mkpath(m_site->devicePath(targetIp)));
        QFile inTheWay(presetFolder);
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    } else {
        // The panel hears of the thread's end through its event loop, so this comes first.
        Faults::instance()->arm(presetFullDetail2Binary, Fault::run([&] {
                                    QThread *const job = QThread::currentThread();
                                    connect(
                                        job, &QThread::finished, job,
                                        [&] {
                                            if (harm == QStringLiteral("gone"))
                                                QFile::remove(backup);
                                            else
                                                QFile::resize(backup, 3);
                                        },
                                        Qt::DirectConnection);
                                }));
    }
    // A folder that cannot be created ends the save with a message; without a message, the log says why nothing
    // follows.
    const bool isTold = harm == QStringLiteral("file in the way");
    {
        const ExpectMessage logged(
            QtWarningMsg, QRegularExpression(QStringLiteral("^The backup left no valid package,.* not applied:")),
            isTold ? 0 : 1);
        expectQuestion(QMessageBox::Yes);
        if (isTold)
            m_book->expectInformation(QStringLiteral("Remind"), QStringLiteral("Failed to encrypt file"));
        clickApply();
        QTRY_VERIFY(hasJobEnded());
        settle();
    }
    VERIFY_BOOK();
    QVERIFY(!WaitingDialog::instance()->isVisible());
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    COMPARE_STATES(hardware(targetIp), before);

    // Nor is it kept for the next backup.
    QFile::remove(presetFolder);
    Journal::instance()->clear();
    expectProperties(QStringLiteral("Afterwards"), QString());
    click(m_panel->saveProject());
    QTRY_VERIFY(hasJobEnded());
    settle();
    VERIFY_BOOK();
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(projectFile(QStringLiteral("Afterwards"))));
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
}

void TstBackupBeforeApply::a_waiting_package_is_applied_once()
{
    list(packageOf(plainDevice(sourceIp)));
    apply(QMessageBox::Yes);
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 1);

    saveAsProposed();
    VERIFY_BOOK();
    QVERIFY(QFile::exists(projectFile(QStringLiteral("Project2"))));
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
}

void TstBackupBeforeApply::without_an_active_device_nothing_waits()
{
    list(packageOf(plainDevice(sourceIp)));
    Model::object_brige::instance()->setActiveDevice({});
    apply(QMessageBox::Yes);
    VERIFY_BOOK();
    settle();

    // The next save does not apply anything.
    Model::object_brige::instance()->setActiveDevice((*m_site)->device(targetIp));
    saveAsProposed();
    VERIFY_BOOK();
    QVERIFY(QFile::exists(projectFile(QStringLiteral("Project1"))));
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
}

void TstBackupBeforeApply::a_late_cancel_of_the_backup_prevents_applying()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    // During the fetch of the last preset: the save checks for a cancel before each picture and preset; after that it
    // only packs.
    const int presets = before.presets.size();
    Faults::instance()->arm(presetFullDetail2Binary, cancelling(presets));
    apply(QMessageBox::Yes);
    QTRY_VERIFY(hasJobEnded());
    settle();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(cancelOperator), 1);
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(projectFile(QStringLiteral("Project1"))));
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    COMPARE_STATES(hardware(targetIp), before);
}

void TstBackupBeforeApply::cancelling_after_a_backup_cancels_once()
{
    // A connection left by the backup would cancel a second time.
    list(packageOf(richDevice(sourceIp)));
    Faults::instance()->arm(canMVEEnable, cancelling());
    expectQuestion(QMessageBox::Yes);
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("User cancels current operation"));
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(cancelCurrentTask), 1);
}

void TstBackupBeforeApply::cancel_reaches_the_backed_up_device()
{
    list(packageOf(plainDevice(sourceIp)));
    selectDevice(secondIp);
    Faults::instance()->arm(serailize, Fault::run([this] {
                                onMainThread([this] {
                                    // Selects the active device.
                                    (*m_panel)->hide();
                                    (*m_panel)->show();
                                });
                            }));
    Faults::instance()->arm(serailize, cancelling());
    apply(QMessageBox::Yes);
    QTRY_VERIFY(hasJobEnded());
    settle();
    VERIFY_BOOK();
    QCOMPARE(journalArguments(cancelOperator, "ip"), QVariantList{secondIp});
}

void TstBackupBeforeApply::restoring_the_window_changes_no_target_data()
{
    QTest::addColumn<bool>("isDuringBackup");
    QTest::addColumn<QMessageBox::StandardButton>("answer");
    QTest::newRow("behind the question, then no backup") << false << QMessageBox::No;
    QTest::newRow("behind the question, then a backup") << false << QMessageBox::Yes;
    QTest::newRow("during the backup") << true << QMessageBox::Yes;
}

void TstBackupBeforeApply::restoring_the_window_changes_no_target()
{
    QFETCH(bool, isDuringBackup);
    QFETCH(QMessageBox::StandardButton, answer);
    const HardwareState active = hardware(targetIp);
    const HardwareState source = richDevice(sourceIp);
    list(packageOf(source));
    // Selecting a device does not make it active; showing the panel selects the active one.
    selectDevice(secondIp);
    const auto restore = [this] {
        (*m_panel)->hide();
        (*m_panel)->show();
        QCOMPARE(m_panel->selectedAddress(), targetIp);
    };
    if (isDuringBackup)
        Faults::instance()->arm(serailize, Fault::run([&] { onMainThread(restore); }));
    m_book->expectDialog(QStringLiteral("HX::Widgets::FramelessMessageBox"), [&](QDialog *dialog) {
        if (!isDuringBackup)
            restore();
        click(qobject_cast<HX::Widgets::FramelessMessageBox *>(dialog)->button(answer));
    });
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Faults::instance()->armedCount(), 0);
    COMPARE_STATES(hardware(targetIp), active);
    COMPARE_STATES(hardware(secondIp).configuration(), source.configuration());
    QCOMPARE(m_panel->selectedAddress(), secondIp);
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 1);
    QCOMPARE(ZipPackageHandle::isValidEngineerPacket(projectFile(QStringLiteral("Project1"))),
             answer == QMessageBox::Yes);
}

TEST_MAIN(TstBackupBeforeApply)
#include "tst_backupbeforeapply.moc"
