// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <operationresultcodes.h>
#include <support/gate.h>
#include <support/journalmatchers.h>
#include <support/panelfixture.h>
#include <support/testmain.h>
#include <support/testsite.h>
#include <zippackagehandle.h>

#include <simulation/faults.h>

#include <QPointer>
#include <QtConcurrentRun>

#include <stdexcept>

using namespace PanelTesting;
using namespace TestSupport;
using namespace Simulation::Operations;
using namespace ProjectFileCfg::Internal;
using Corvel::Widgets::WaitingDialog;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::Journal;
using Simulation::JournalEntry;

/// How saving a project ends: results, a cancel, exceptions of the host, a deleted panel.
class TstSaveEndings : public QObject, protected PanelOnSite<TestSite>
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup()
    {
        tearDown();
        QThreadPool::globalInstance()->setMaxThreadCount(QThread::idealThreadCount());
    }

    // Results
    void a_failed_backup_is_reported_data();
    void a_failed_backup_is_reported();
    void cancelling_stops_the_transfer_and_is_reported();
    void a_late_cancel_request_does_nothing();
    void host_exceptions_end_in_a_message_data();
    void host_exceptions_end_in_a_message();
    void failing_to_activate_the_device_saves_nothing();
    void nothing_is_saved_without_the_active_device_data();
    void nothing_is_saved_without_the_active_device();
    void a_cancel_the_host_refuses_still_cancels();
    void after_a_failure_the_next_save_works();
    void the_job_stays_until_the_next_save_begins();
    void the_list_is_fresh_around_the_result_box_data();
    void the_list_is_fresh_around_the_result_box();

    // Closing
    void deleting_the_panel_during_a_backup_ends_it();
    void the_panel_may_be_deleted_behind_the_result();
    void deleting_the_panel_afterwards_tells_the_host_nothing();
    void deleting_the_panel_lets_a_scan_finish();
};

// ---------------------------------------------------------------------------------------------------------------------
// Results

void TstSaveEndings::a_failed_backup_is_reported_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");
    QTest::newRow("background") << int(BackupExportBkgFailed) << "Failed to export bkg";
    QTest::newRow("offline picture") << int(BackupOfflineResourceIncomplete)
                                     << "Offline device resource file is incomplete";
    QTest::newRow("packing") << int(BackupEncryptFailed) << "Failed to encrypt file";
    QTest::newRow("serialiser") << int(BackupSaveJsonFailed) << "Failed to save json file";
    QTest::newRow("device") << int(BackupGetDeviceFailed) << "Failed to get device information";
}

void TstSaveEndings::a_failed_backup_is_reported()
{
    QFETCH(int, code);
    QFETCH(QString, message);
    switch (code) {
    case BackupExportBkgFailed:
        Faults::instance()->arm(queryMaterailData, Fault::fail());
        break;
    case BackupOfflineResourceIncomplete:
        selectDevice(m_site->touringRack);
        QVERIFY(QFile::remove(m_site->devicePath(m_site->touringRack, "LOGO/LOGO_1.png")));
        break;
    case BackupEncryptFailed: {
        selectDevice(m_site->touringRack);
        QVERIFY(QDir(projectFilesPath()).removeRecursively());
        QFile inTheWay(projectFilesPath().chopped(1));
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        break;
    }
    case BackupSaveJsonFailed:
        Faults::instance()->arm(serailize, Fault::fail());
        break;
    case BackupGetDeviceFailed:
        Faults::instance()->arm(serailize, Fault::run([ip = m_site->mainHall] { TestSite::removeFromDeviceList(ip); }));
        break;
    }
    QVERIFY(pressSave("Show"));
    m_book->expectInformation("Remind", message);
    QTRY_VERIFY(m_book->isSatisfied() && hasJobEnded());
    // After the property dialog.
    QCOMPARE(m_book->seen().size(), 2);
    QCOMPARE(int(m_book->seen().last().buttons), int(QMessageBox::Ok));
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    QCoreApplication::processEvents();
    QCOMPARE(m_panel->names(), QStringList());
    QVERIFY(!QFile::exists(projectFile("Show")));
}

void TstSaveEndings::cancelling_stops_the_transfer_and_is_reported()
{
    const int untilCancelled = 600000;
    Faults::instance()->arm(queryMaterailData, Fault::late(untilCancelled, 3));
    QVERIFY(pressSave("Show"));
    QTRY_COMPARE(Journal::instance()->count(queryMaterailData), 3);
    m_book->expectInformation("Remind", "User cancels current operation");
    QVERIFY(click(WaitingDialog::instance(), QStringLiteral("Cancel")));
    QTRY_VERIFY(m_book->isSatisfied() && hasJobEnded());
    const QVector<JournalEntry> cancels = Journal::instance()->entries(cancelOperator);
    QCOMPARE(cancels.size(), 1);
    QCOMPARE(cancels.first().arguments["command"].toList(), QVariantList({4, 10}));
    QCOMPARE(cancels.first().arguments["ip"].toString(), m_site->mainHall);
    QCOMPARE(Journal::instance()->count(cancelCurrentTask), 0);
    QCOMPARE(Journal::instance()->count(queryMaterailData), 3);
    QCOMPARE(mainThreadOperations().last(), setChannelExclusive);
    QCOMPARE(journalArguments(setChannelExclusive, "exclusive").last(), QVariant(false));
    QCOMPARE(journalArguments(setChannelExclusive, "ip").last(), QVariant(m_site->mainHall));
    QVERIFY(!QFile::exists(projectFile("Show")));
}

void TstSaveEndings::a_late_cancel_request_does_nothing()
{
    QVERIFY(pressSave("Show"));
    QTRY_VERIFY(hasJobEnded());
    Journal::instance()->clear();
    emit WaitingDialog::instance()->signal_canelLoad();
    QCOMPARE(Journal::instance()->operations(), QStringList());
}

void TstSaveEndings::host_exceptions_end_in_a_message_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    QTest::addColumn<bool>("refused");
    QTest::newRow("sync") << updateOnlineDevice << 1 << true;
    QTest::newRow("size of the logos") << calLogoMaterailCapacity << 1 << true;
    QTest::newRow("size of the rest") << usedCapacity << 1 << true;
    QTest::newRow("active device before the sync") << activeDevice << 2 << true;
    QTest::newRow("active device to be synchronised") << activeDevice << 3 << true;
    QTest::newRow("freeing the channel before") << setChannelExclusive << 1 << false;
    QTest::newRow("telling that a save runs") << setOperatorType << 1 << false;
    QTest::newRow("telling that it ended") << setOperatorType << 2 << false;
    QTest::newRow("freeing the channel after") << setChannelExclusive << 2 << false;
    QTest::newRow("active device after") << activeDevice << 5 << false;
}

void TstSaveEndings::host_exceptions_end_in_a_message()
{
    QFETCH(QString, operation);
    QFETCH(int, call);
    QFETCH(bool, refused);
    Faults::instance()->arm(operation, Fault::run([] { throw std::runtime_error("out of luck"); }, call));
    const bool isEstimate = operation.endsWith(QStringLiteral("Capacity"));
    const QString name = isEstimate ? QStringLiteral("the estimate of the size") : operation.section('.', -1);
    {
        const ExpectMessage logged(QtCriticalMsg, QStringLiteral("The host threw in %1: out of luck").arg(name), 1);
        if (refused) {
            m_book->expectWarning("Warning", "Failed to get device information");
            QVERIFY(click(m_panel->saveProject()));
            VERIFY_BOOK();
            QCOMPARE(Journal::instance()->count(setOperatorType), 0);
        } else {
            QVERIFY(pressSave("Show"));
            QTRY_COMPARE(m_panel->names(), QStringList{"Show"});
            QTRY_COMPARE(logged.count(), 1);
        }
    }
    // The project may be listed before the save has ended.
    QTRY_VERIFY(!WaitingDialog::instance()->isVisible());
    // The panel remains usable.
    Journal::instance()->clear();
    QVERIFY(pressSave("Afterwards"));
    QTRY_VERIFY(hasJobEnded());
    QTRY_VERIFY(m_panel->names().contains("Afterwards"));
}

void TstSaveEndings::failing_to_activate_the_device_saves_nothing()
{
    selectDevice(m_site->foyer);
    // Also what is not a std::exception.
    Faults::instance()->arm(setActiveDevice, Fault::run([] { throw 42; }));
    const ExpectMessage logged(QtCriticalMsg, QStringLiteral("The host threw in setActiveDevice: not a std::exception"),
                               1);
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    VERIFY_JOURNAL({setActiveDevice});
}

void TstSaveEndings::nothing_is_saved_without_the_active_device_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<bool>("isAsked");
    QTest::newRow("before the dialog") << 1 << false;
    QTest::newRow("after the dialog") << 4 << true;
}

void TstSaveEndings::nothing_is_saved_without_the_active_device()
{
    QFETCH(int, call);
    QFETCH(bool, isAsked);
    Faults::instance()->arm(activeDevice, Fault::run([] { throw std::runtime_error("out of luck"); }, call));
    {
        const ExpectMessage logged(QtCriticalMsg, QStringLiteral("The host threw in activeDevice: out of luck"), 1);
        QVERIFY(isAsked ? pressSave("Show") : click(m_panel->saveProject()));
    }
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
    QVERIFY(!WaitingDialog::instance()->isVisible());
    // The panel remains usable.
    QVERIFY(pressSave("Afterwards"));
    QTRY_VERIFY(hasJobEnded());
    QTRY_COMPARE(m_panel->names(), QStringList{"Afterwards"});
}

void TstSaveEndings::a_cancel_the_host_refuses_still_cancels()
{
    Gate gate;
    Faults::instance()->arm(queryMaterailData, gate.fault(2));
    Faults::instance()->arm(cancelOperator, Fault::run([] { throw std::runtime_error("out of luck"); }));
    QVERIFY(pressSave("Show"));
    QVERIFY(gate.waitForThread());
    m_book->expectInformation("Remind", "User cancels current operation");
    {
        const ExpectMessage logged(QtCriticalMsg, QStringLiteral("The host threw in cancelOperator: out of luck"), 1);
        QTRY_VERIFY(WaitingDialog::instance()->findChild<QPushButton *>("WaitingDialogCancel")->isEnabled());
        QVERIFY(click(WaitingDialog::instance(), QStringLiteral("Cancel")));
    }
    gate.open();
    QTRY_VERIFY(m_book->isSatisfied() && hasJobEnded());
    QVERIFY(!QFile::exists(projectFile("Show")));
}

void TstSaveEndings::after_a_failure_the_next_save_works()
{
    Faults::instance()->arm(queryMaterailData, Fault::fail());
    QVERIFY(pressSave("Show"));
    m_book->expectInformation("Remind", "Failed to export bkg");
    QTRY_VERIFY(m_book->isSatisfied() && hasJobEnded());
    Journal::instance()->clear();
    QVERIFY(pressSave("Show"));
    QTRY_VERIFY(hasJobEnded());
    QTRY_COMPARE(m_panel->names(), QStringList{"Show"});
}

void TstSaveEndings::the_job_stays_until_the_next_save_begins()
{
    QPointer<QThread> jobs[2];
    for (QPointer<QThread> &job : jobs) {
        Gate gate;
        Faults::instance()->arm(serailize, gate.fault());
        QVERIFY(pressSave(QStringLiteral("Show %1").arg(&job - jobs)));
        job = gate.waitForThread();
        QVERIFY(job && !job->parent());
        QCOMPARE(job->priority(), QThread::InheritPriority);
        gate.open();
        QTRY_VERIFY(hasJobEnded());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(job);
        Journal::instance()->clear();
    }
    QTRY_VERIFY(!jobs[0]);
    QVERIFY(jobs[1]);
}

void TstSaveEndings::the_list_is_fresh_around_the_result_box_data()
{
    QTest::addColumn<bool>("before");
    QTest::newRow("while the box is open") << true;
    QTest::newRow("when it is closed") << false;
}

void TstSaveEndings::the_list_is_fresh_around_the_result_box()
{
    QFETCH(bool, before);
    // On a first start the directory was not there to be watched, so no change is reported.
    m_panel.reset();
    QVERIFY(QDir(projectFilesPath()).removeRecursively());
    m_panel.emplace();
    (*m_panel)->show();
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    QCoreApplication::processEvents();
    const auto bring = [] {
        return PackageBuilder().file("device.json", "{}").record("Brought", QString()).write(projectFile("Brought"));
    };

    Gate gate;
    Faults::instance()->arm(queryMaterailData, gate.fault());
    Faults::instance()->arm(queryMaterailData, Fault::fail());
    QVERIFY(pressSave("Show"));
    QVERIFY(gate.waitForThread());
    QVERIFY(!before || bring());
    m_book->expectDialog("HX::Widgets::FramelessMessageBox", [&](QDialog *dialog) {
        // All jobs and scans have ended, and their results are shown.
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCOMPARE(m_panel->names(), before ? QStringList{"Brought"} : QStringList());
        QVERIFY(before || bring());
        dialog->accept();
    });
    gate.open();
    QTRY_VERIFY(m_book->isSatisfied() && hasJobEnded());
    QTRY_COMPARE(m_panel->names(), QStringList{"Brought"});
}

// ---------------------------------------------------------------------------------------------------------------------
// Closing

void TstSaveEndings::deleting_the_panel_during_a_backup_ends_it()
{
    Gate gate;
    Faults::instance()->arm(queryMaterailData, gate.fault(2));
    QVERIFY(pressSave("Show"));
    const QPointer<QThread> job = gate.waitForThread();
    QVERIFY(job);
    m_panel.reset();
    QVERIFY(hasJobEnded());
    gate.open();
    QTRY_VERIFY(job.isNull());
    QVERIFY(!QFile::exists(projectFile("Show")));
    QCOMPARE(Journal::instance()->count(queryMaterailData), 2);
    VERIFY_BOOK();
}

void TstSaveEndings::the_panel_may_be_deleted_behind_the_result()
{
    Faults::instance()->arm(queryMaterailData, Fault::fail());
    m_book->expectDialog(propertyDialog, [](QDialog *dialog) { click(dialog, QStringLiteral("OK")); });
    m_book->expectDialog("HX::Widgets::FramelessMessageBox", [this](QDialog *) { m_panel.reset(); });
    QVERIFY(click(m_panel->saveProject()));
    waitForAnswers();
    QVERIFY(!m_panel);
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    QCoreApplication::processEvents();
    QVERIFY(!WaitingDialog::instance()->isVisible());
}

void TstSaveEndings::deleting_the_panel_afterwards_tells_the_host_nothing()
{
    QVERIFY(pressSave("Show"));
    QTRY_VERIFY(hasJobEnded());
    QTRY_COMPARE(m_panel->names(), QStringList{"Show"});
    Journal::instance()->clear();
    m_panel.reset();
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
    QCOMPARE(Journal::instance()->count(hideWaitingDialog), 0);
}

void TstSaveEndings::deleting_the_panel_lets_a_scan_finish()
{
    QThreadPool *pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(1);
    Gate gate;
    QtConcurrent::run(gate.action());
    QVERIFY(gate.waitForThread());
    QVERIFY(QDir(projectFilesPath()).removeRecursively());
    delete new EngineerDocOperWidget(nullptr);
    m_panel.reset();
    QVERIFY(!QDir(projectFilesPath()).exists());
    gate.open();
    QVERIFY(pool->waitForDone());
    // The scans still ran to their end.
    QVERIFY(QDir(projectFilesPath()).exists());
    QCoreApplication::processEvents();
}

TEST_MAIN(TstSaveEndings)
#include "tst_saveendings.moc"
