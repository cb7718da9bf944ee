// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <runningjob.h>

#include <support/applyfixture.h>
#include <support/gate.h>
#include <support/journalmatchers.h>
#include <support/testmain.h>
#include <support/threadcensus.h>

#include <core/icore.h>
#include <simulation/faults.h>

#include <QPointer>
#include <QSemaphore>
#include <QThread>
#include <QTranslator>

#include <stdexcept>
#include <utility>

using namespace PanelTesting;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;
using Simulation::Journal;

namespace {

/// Runs an action once on the user-interface thread, when a text is translated there after arming.
class ActingTranslator : public QTranslator
{
public:
    std::function<void()> act;

    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *, const char *, int) const override
    {
        if (QThread::currentThread() == thread() && act)
            std::exchange(const_cast<ActingTranslator *>(this)->act, nullptr)();
        return QString();
    }
};

PackageBuilder onlyDescription(const QByteArray &description)
{
    PackageBuilder package;
    package.file("device.json", description);
    return package;
}

} // namespace

using MakePackage = std::function<PackageBuilder()>;
Q_DECLARE_METATYPE(MakePackage)
Q_DECLARE_METATYPE(QMessageBox::StandardButton)

/// How applying a project ends: results, a cancel, exceptions of the host, a deleted panel.
class TstApplyEndings : public QObject, protected Applying
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // Results
    void each_result_code_has_its_box_data();
    void each_result_code_has_its_box();
    void a_refused_package_leaves_the_hardware_alone_data();
    void a_refused_package_leaves_the_hardware_alone();
    void a_failed_serialisation_shows_nothing();
    void a_load_failing_at_once_is_noticed();
    void the_box_comes_between_freeing_and_syncing();
    void a_device_lost_during_a_load_stays_offline();
    void a_device_removed_midway_is_not_synced();

    // Cancelling
    void cancelling_between_operations_is_reported();
    void cancelling_interrupts_the_running_operation();
    void cancel_does_nothing_after_the_end();
    void a_cancel_the_host_refuses_still_cancels();

    // Exceptions of the host
    void host_exceptions_end_in_a_message_data();
    void host_exceptions_end_in_a_message();
    void a_lookup_that_throws_finds_no_device_data();
    void a_lookup_that_throws_finds_no_device();

    // No thread to be had
    void without_a_thread_the_job_ends_data();
    void without_a_thread_the_job_ends();

    // Closing
    void deleting_the_panel_midway_ends_the_load();
    void deleting_the_panel_before_finished_frees_the_device();
    void deleting_the_panel_afterwards_tells_the_host_nothing();
    void deleting_the_panel_midway_still_announces_the_end();
    void a_later_operation_stays_announced_at_its_end();
    void selecting_another_device_still_frees_the_loaded_one();

private:
    /// An apply whose thread waits at the gate, before the configuration is sent; null if it did not get there.
    QPointer<QThread> applyHeldAt(Gate &gate);
};

// ---------------------------------------------------------------------------------------------------------------------
// Results

void TstApplyEndings::each_result_code_has_its_box_data()
{
    QTest::addColumn<MakePackage>("package");
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QString>("text");
    const MakePackage rich = [] { return packageOf(richDevice(sourceIp)); };
    QTest::newRow("LoadSuccess") << rich << QString() << QString();
    QTest::newRow("LoadImportFailed, model refused")
        << rich << copyModelToDevice << QStringLiteral("Project file import failed");
    QTest::newRow("LoadApplyGalleryFailed, picture refused")
        << rich << createMaterailFromImage << QStringLiteral("apply gallery failed");
}

void TstApplyEndings::each_result_code_has_its_box()
{
    QFETCH(MakePackage, package);
    QFETCH(QString, failing);
    QFETCH(QString, text);
    list(package());
    if (!failing.isEmpty())
        Faults::instance()->arm(failing, Fault::fail());
    expectQuestion(QMessageBox::No);
    if (!text.isEmpty())
        m_book->expectWarning(QStringLiteral("Remind"), text);
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    QVERIFY(!(*m_site)->hardware(targetIp)->isChannelExclusive());
}

void TstApplyEndings::a_refused_package_leaves_the_hardware_alone_data()
{
    QTest::addColumn<MakePackage>("package");
    QTest::addColumn<QString>("text");
    QTest::newRow("LoadCardMismatch") << MakePackage([] {
        HardwareState source = plainDevice(sourceIp);
        source.cards.removeLast();
        return packageOf(source);
    }) << QStringLiteral("Input or output card mismatch");
    QTest::newRow("LoadGetDeviceFailed, no device described")
        << MakePackage([] { return onlyDescription("null"); }) << QStringLiteral("Failed to get device information");
    QTest::newRow("LoadJsonFileError, no description") << MakePackage([] {
        PackageBuilder package;
        package.file("notes.txt", "none");
        return package;
    }) << QStringLiteral("Incorrect JSON file");
    QTest::newRow("LoadDeviceTypeMismatch") << MakePackage([] { return packageOf(plainDevice(sourceIp, otherModel)); })
                                            << QStringLiteral("Device type mismatch");
    QTest::newRow("LoadProtocolVersionMismatch") << MakePackage([] {
        HardwareState source = plainDevice(sourceIp);
        source.protocolNumber = 3;
        return packageOf(source);
    }) << QStringLiteral("Protocol version mismatch");
    QTest::newRow("LoadDecompressFailed, damaged entry") << MakePackage([] {
        PackageBuilder package = packageOf(richDevice(sourceIp));
        package.claimCrc(1);
        return package;
    }) << QStringLiteral("Failed to decompress file");
    QTest::newRow("LoadImageContentError, no picture") << MakePackage([] {
        PackageBuilder package = packageOf(plainDevice(sourceIp));
        package.file("BKG/BKG_1.png", "no picture");
        return package;
    }) << QStringLiteral("Incorrect file content");
    QTest::newRow("LoadGalleryFileError, no material") << MakePackage([] {
        PackageBuilder package = packageOf(plainDevice(sourceIp));
        package.file("BKG/BKG_1.png", pngOf(noisePicture({4, 4}, 1)));
        return package;
    }) << QStringLiteral("Incorrect gallery file.");
}

void TstApplyEndings::a_refused_package_leaves_the_hardware_alone()
{
    QFETCH(MakePackage, package);
    QFETCH(QString, text);
    const HardwareState before = hardware(targetIp);
    list(package());
    applyAndExpect(text);
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox, showWaitingDialog, updateOnlineDevice, hideWaitingDialog, warningBox});
    COMPARE_STATES(hardware(targetIp), before);
}

void TstApplyEndings::a_failed_serialisation_shows_nothing()
{
    selectDevice(offlineIp);
    Faults::instance()->arm(serailize, Fault::fail());
    applyAndWait(packageOf(plainDevice(sourceIp)));
    VERIFY_BOOK();
    QCOMPARE(Faults::instance()->armedCount(), 0);
}

void TstApplyEndings::a_load_failing_at_once_is_noticed()
{
    selectDevice(offlineIp);
    QSemaphore begun;
    QThread *job = nullptr;
    Faults::instance()->arm(serailize, Fault::run([&] {
                                job = QThread::currentThread();
                                begun.release();
                            }));
    Faults::instance()->arm(serailize, Fault::fail());
    // Between starting the thread and making its first connection the panel asks for the waiting dialog. If the host
    // has to create it again, it translates the button's text: time enough for a job that does not wait.
    ActingTranslator translator;
    QCoreApplication::installTranslator(&translator);
    bool wasBetween = false;
    QObject context;
    connect(Core::ICore::instance(), &Core::ICore::operatorTypeChanged, &context, [&](auto type) {
        if (type != Core::ICore::OperatorLoad)
            return;
        delete static_cast<QObject *>(WaitingDialog::instance());
        translator.act = [&] {
            wasBetween = true;
            if (begun.tryAcquire(1, 500))
                job->wait();
        };
    });
    applyAndWait(packageOf(plainDevice(sourceIp)));
    QCoreApplication::removeTranslator(&translator);
    QVERIFY(wasBetween);
    QCOMPARE(journalArguments(setOperatorType, "type").last().toString(), QStringLiteral("OperatorNone"));
}

void TstApplyEndings::the_box_comes_between_freeing_and_syncing()
{
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(copyModelToDevice, Fault::fail());
    applyAndExpect(QStringLiteral("Project file import failed"));
    waitForEndOfLoad();
    const QStringList operations = mainThreadOperations();
    const QString difference =
        sequenceDifference(operations.mid(operations.lastIndexOf(setOperatorType)),
                           {setOperatorType, hideWaitingDialog, setChannelExclusive, warningBox, showWaitingDialog,
                            updateOnlineDevice, hideWaitingDialog, setActiveDevice, clearScreenList});
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void TstApplyEndings::a_device_lost_during_a_load_stays_offline()
{
    list(packageOf(richDevice(sourceIp)));
    Faults::instance()->arm(createMaterailFromImage, Fault::disconnect());
    expectQuestion(QMessageBox::No);
    // The multi-viewer's items, which are sent regardless, fail as well.
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("Project file import failed"));
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    QVERIFY(!(*m_site)->device(targetIp)->getDeviceOnlineFlag());
    QCOMPARE(journalArguments(setChannelExclusive, "exclusive"), QVariantList{true});
    QCOMPARE(Journal::instance()->count(updateOnlineDevice), 2);
}

void TstApplyEndings::a_device_removed_midway_is_not_synced()
{
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(copyModelToDevice,
                            Fault::run([] { Model::DeviceList::instance()->removeDevice(targetIp); }));
    Faults::instance()->arm(copyModelToDevice, Fault::fail());
    applyAndExpect(QStringLiteral("Project file import failed"));
    waitForAnswers();
    settle();
    const QStringList operations = mainThreadOperations();
    QCOMPARE(operations.mid(operations.lastIndexOf(setOperatorType)),
             (QStringList{setOperatorType, hideWaitingDialog, warningBox}));
}

// ---------------------------------------------------------------------------------------------------------------------
// Cancelling

void TstApplyEndings::cancelling_between_operations_is_reported()
{
    // A previous load must not leave a connection that cancels a second time.
    applyAndWait(packageOf(plainDevice(sourceIp)));
    list(packageOf(richDevice(sourceIp)));
    WaitingDialog::instance()->setCanelVisible(true);
    Faults::instance()->arm(canMVEEnable, cancelling());
    applyAndExpect(QStringLiteral("User cancels current operation"));
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(cancelCurrentTask), 1);
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), 0);
    QCOMPARE(Journal::instance()->count(copyModelToDevice), 0);
}

void TstApplyEndings::cancelling_interrupts_the_running_operation()
{
    list(packageOf(richDevice(sourceIp)));
    WaitingDialog::instance()->setCanelVisible(true);
    // Would take ten minutes without the cancel.
    Faults::instance()->arm(createMaterailFromImage, cancelling());
    Faults::instance()->arm(createMaterailFromImage, Fault::late(600000));
    applyAndExpect(QStringLiteral("apply gallery failed"));
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(cancelCurrentTask), 1);
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), 1);
    QCOMPARE(Journal::instance()->count(copyModelToDevice), 0);
}

void TstApplyEndings::cancel_does_nothing_after_the_end()
{
    WaitingDialog::instance()->setCanelVisible(true);
    applyAndWait(packageOf(plainDevice(sourceIp)));
    Journal::instance()->clear();
    emit WaitingDialog::instance()->signal_canelLoad();
    VERIFY_JOURNAL({});
}

void TstApplyEndings::a_cancel_the_host_refuses_still_cancels()
{
    list(packageOf(richDevice(sourceIp)));
    WaitingDialog::instance()->setCanelVisible(true);
    const ExpectMessage logged(QtCriticalMsg, QStringLiteral("The host threw in cancelCurrentTask: out of luck"), 1);
    Faults::instance()->arm(cancelCurrentTask, Fault::run([] { throw std::runtime_error("out of luck"); }));
    Faults::instance()->arm(canMVEEnable, cancelling());
    applyAndExpect(QStringLiteral("User cancels current operation"));
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), 0);
}

// ---------------------------------------------------------------------------------------------------------------------
// Exceptions of the host

void TstApplyEndings::host_exceptions_end_in_a_message_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    QTest::addColumn<QString>("warned");
    QTest::addColumn<QString>("box");
    QTest::addColumn<bool>("applied");
    const QString resetFailed = QStringLiteral(" Restore factory failed ");
    QTest::newRow("sync before the reset") << updateOnlineDevice << 1 << syncWarning << QString() << false;
    QTest::newRow("reset") << updateDeviceInfo << 1 << QString() << resetFailed << false;
    QTest::newRow("sync after the reset") << updateOnlineDevice << 2 << syncWarning << QString() << false;
    QTest::newRow("reserving the channel") << setChannelExclusive << 1 << QString() << QString() << true;
    QTest::newRow("telling that a load runs") << setOperatorType << 1 << QString() << QString() << true;
    QTest::newRow("freeing the channel") << setChannelExclusive << 2 << QString() << QString() << true;
    QTest::newRow("sync after the load") << updateOnlineDevice << 3 << QString() << QString() << true;
    QTest::newRow("making the device active") << setActiveDevice << 1 << QString() << QString() << true;
    QTest::newRow("clearing the screens") << clearScreenList << 1 << QString() << QString() << true;
    QTest::newRow("activating a screen") << setActivedScreen << 1 << QString() << QString() << true;
    QTest::newRow("selecting a screen") << appendSelectedScreen << 1 << QString() << QString() << true;
}

void TstApplyEndings::host_exceptions_end_in_a_message()
{
    QFETCH(QString, operation);
    QFETCH(int, call);
    QFETCH(QString, warned);
    QFETCH(QString, box);
    QFETCH(bool, applied);
    const HardwareState before = hardware(targetIp);
    const HardwareState source = plainDevice(sourceIp);
    list(packageOf(source));
    Faults::instance()->arm(operation, Fault::run([] { throw std::runtime_error("out of luck"); }, call));
    const ExpectMessage logged(
        QtCriticalMsg, QStringLiteral("The host threw in %1: out of luck").arg(operation.section(QLatin1Char('.'), -1)),
        1);
    const ExpectMessage warning(QtWarningMsg, warned, warned.isEmpty() ? ExpectMessage::AnyNumber : 1);
    expectQuestion(QMessageBox::No);
    if (!box.isEmpty())
        m_book->expectWarning(QStringLiteral("Warning"), box);
    clickApply();
    if (applied)
        waitForEndOfLoad();
    settle();
    VERIFY_BOOK();
    QVERIFY(!WaitingDialog::instance()->isVisible());
    if (applied)
        COMPARE_STATES(hardware(targetIp).configuration(), source.configuration());
    else if (call == 1)
        COMPARE_STATES(hardware(targetIp), before);
    QCOMPARE(logged.count(), 1);

    // The panel remains usable.
    Journal::instance()->clear();
    applyAndWait(packageOf(plainDevice(QStringLiteral("10.0.0.78"))));
    VERIFY_BOOK();
}

// ---------------------------------------------------------------------------------------------------------------------
// Closing

void TstApplyEndings::a_lookup_that_throws_finds_no_device_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QMessageBox::StandardButton>("answer");
    QTest::addColumn<bool>("isCancelled");
    QTest::newRow("apply") << QString(getDeviceByIPAddr) << QMessageBox::No << false;
    QTest::newRow("cancelled apply") << QString(getDeviceByIPAddr) << QMessageBox::No << true;
    QTest::newRow("apply after a backup") << QString(getDeviceByIPAddr) << QMessageBox::Yes << false;
    QTest::newRow("cancelled backup") << QString(getDeviceByIPAddr) << QMessageBox::Yes << true;
    QTest::newRow("active device of an apply") << QString(activeDevice) << QMessageBox::No << false;
    QTest::newRow("active device of an apply after a backup") << QString(activeDevice) << QMessageBox::Yes << false;
}

void TstApplyEndings::a_lookup_that_throws_finds_no_device()
{
    QFETCH(QString, operation);
    QFETCH(QMessageBox::StandardButton, answer);
    QFETCH(bool, isCancelled);
    list(packageOf(richDevice(sourceIp)));
    WaitingDialog::instance()->setCanelVisible(true);
    const ExpectMessage critical(QtCriticalMsg, QRegularExpression(QStringLiteral("(exception|in \\w+): out of luck$")),
                                 ExpectMessage::AnyNumber);
    const ExpectMessage warned(QtWarningMsg, QRegularExpression(QStringLiteral("^(Import project|Not begun)")),
                               ExpectMessage::AnyNumber);
    m_book->answerOthers([answer](QDialog *dialog) {
        auto *box = qobject_cast<HX::Widgets::FramelessMessageBox *>(dialog);
        click(box->kind() == HX::Widgets::FramelessMessageBox::Question ? box->button(answer)
                                                                        : box->button(QMessageBox::Ok));
    });
    // Each lookup in turn, until none is left.
    bool hasThrown = true;
    for (int call = 1; hasThrown; ++call) {
        QVERIFY(call < 50);
        hasThrown = false;
        Faults::instance()->clear();
        Journal::instance()->clear();
        if (isCancelled)
            Faults::instance()->arm(answer == QMessageBox::Yes ? serailize : canMVEEnable, cancelling());
        Faults::instance()->arm(operation, Fault::run(
                                               [&hasThrown] {
                                                   hasThrown = true;
                                                   throw std::runtime_error("out of luck");
                                               },
                                               call));
        clickApply();
        QTRY_VERIFY(Journal::instance()->count(setOperatorType) == 0 || hasJobEnded());
        settle();
        QVERIFY(!WaitingDialog::instance()->isVisible());
    }
}

void TstApplyEndings::without_a_thread_the_job_ends_data()
{
    QTest::addColumn<QMessageBox::StandardButton>("answer");
    QTest::addColumn<QString>("box");
    QTest::newRow("apply") << QMessageBox::No << QStringLiteral("Project file import failed");
    QTest::newRow("backup") << QMessageBox::Yes << QStringLiteral("Failed to encrypt file");
}

void TstApplyEndings::without_a_thread_the_job_ends()
{
    if (!canWatchThreads)
        QSKIP("A sanitizer has a hook of its own there");
    QFETCH(QMessageBox::StandardButton, answer);
    QFETCH(QString, box);
    list(packageOf(richDevice(sourceIp)));
    WarningGuard::clear();
    // No other thread begins between this call and the start of the job.
    Faults::instance()->arm(setOperatorType, Fault::run([] { refuseThreads(1); }));
    {
        const ExpectMessage told(QtCriticalMsg, QRegularExpression(QStringLiteral("^QThread::start: Thread creation")),
                                 1);
        expectQuestion(answer);
        m_book->expectBox(answer == QMessageBox::Yes ? HX::Widgets::FramelessMessageBox::Information
                                                     : HX::Widgets::FramelessMessageBox::Warning,
                          QStringLiteral("Remind"), box, QMessageBox::Ok);
        clickApply();
        VERIFY_BOOK();
    }
    QCOMPARE(WarningGuard::texts(QtDebugMsg).filter(QRegularExpression("the system has no thread for it$")).size(), 1);
    QVERIFY(hasJobEnded());
    QVERIFY(!(*m_site)->hardware(targetIp)->isChannelExclusive());
    settle();

    // No later save applies what was to follow the failed backup.
    Journal::instance()->clear();
    QVERIFY(pressSave(QStringLiteral("Evening show")));
    QTRY_VERIFY(hasJobEnded());
    settle();
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);

    // The next one works.
    Journal::instance()->clear();
    apply(answer);
    waitForEndOfLoad();
    VERIFY_BOOK();
}

void TstApplyEndings::deleting_the_panel_midway_ends_the_load()
{
    list(packageOf(richDevice(sourceIp)));
    QPointer<QThread> job;
    Faults::instance()->arm(createMaterailFromImage, Fault::run([&] {
                                QThread *const thread = QThread::currentThread();
                                onMainThread([&, thread] {
                                    job = thread;
                                    m_panel.reset();
                                });
                            }));
    apply();
    QTRY_VERIFY_WITH_TIMEOUT(!m_panel, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(!job, 30000);
    VERIFY_BOOK();
    QCOMPARE(journalArguments(setOperatorType, "type").last().toString(), QStringLiteral("OperatorNone"));
    QVERIFY(!WaitingDialog::instance()->isVisible());
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), 1);
    QCOMPARE(Journal::instance()->count(copyModelToDevice), 0);
    // Released at the end of the load, not while it was still sending.
    QVERIFY(!(*m_site)->hardware(targetIp)->isChannelExclusive());
    VERIFY_JOURNAL_ORDER({setChannelExclusive, createMaterailFromImage, setChannelExclusive});
    QCOMPARE(journalArguments(setChannelExclusive, "exclusive"), (QVariantList{true, false}));
    m_panel.emplace();
}

QPointer<QThread> TstApplyEndings::applyHeldAt(Gate &gate)
{
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(copyModelToDevice, gate.fault());
    apply();
    return m_book->isSatisfied() ? QPointer<QThread>(gate.waitForThread()) : nullptr;
}

void TstApplyEndings::deleting_the_panel_before_finished_frees_the_device()
{
    Gate gate;
    const QPointer<QThread> job = applyHeldAt(gate);
    QVERIFY(job);
    gate.open();
    QVERIFY(job->wait(60000));
    QVERIFY((*m_site)->hardware(targetIp)->isChannelExclusive());
    m_panel.reset();
    QTRY_VERIFY_WITH_TIMEOUT(!job, 30000);
    QVERIFY(!(*m_site)->hardware(targetIp)->isChannelExclusive());
    QCOMPARE(journalArguments(setChannelExclusive, "exclusive"), (QVariantList{true, false}));
    m_panel.emplace();
}

void TstApplyEndings::deleting_the_panel_afterwards_tells_the_host_nothing()
{
    applyAndWait(packageOf(plainDevice(sourceIp)));
    settle();
    Journal::instance()->clear();
    m_panel.reset();
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
    QCOMPARE(Journal::instance()->count(hideWaitingDialog), 0);
    QCOMPARE(Journal::instance()->count(setChannelExclusive), 0);
    m_panel.emplace();
}

void TstApplyEndings::deleting_the_panel_midway_still_announces_the_end()
{
    list(packageOf(richDevice(sourceIp)));
    std::atomic<int> told{Core::ICore::OperatorNone};
    const auto listening = connect(
        Core::ICore::instance(), &Core::ICore::operatorTypeChanged, Core::ICore::instance(),
        [&told](auto type) { told = type; }, Qt::DirectConnection);
    std::atomic<bool> isGone{false};
    QPointer<QThread> job;
    const auto announcing = connect(
        Journal::instance(), &Journal::recorded, Journal::instance(),
        [&](const Simulation::JournalEntry &entry) {
            if (entry.operation != setOperatorType || entry.onMainThread || isGone.exchange(true))
                return;
            QThread *const thread = QThread::currentThread();
            onMainThread([&, thread] {
                job = thread;
                m_panel.reset();
            });
        },
        Qt::DirectConnection);
    apply();
    QTRY_VERIFY(!m_panel);
    QTRY_VERIFY(!job);
    disconnect(announcing);
    disconnect(listening);
    QCOMPARE(told, int(Core::ICore::OperatorNone));
    m_panel.emplace();
}

void TstApplyEndings::a_later_operation_stays_announced_at_its_end()
{
    Gate gate;
    const QPointer<QThread> job = applyHeldAt(gate);
    QVERIFY(job);
    m_panel.reset();
    // As another panel does when it begins a save.
    ProjectFileCfg::Internal::RunningJob::announce(Core::ICore::OperatorBackup);
    Journal::instance()->clear();
    gate.open();
    QTRY_VERIFY_WITH_TIMEOUT(!job, 30000);
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
    ProjectFileCfg::Internal::RunningJob::announce(Core::ICore::OperatorNone);
    m_panel.emplace();
}

void TstApplyEndings::selecting_another_device_still_frees_the_loaded_one()
{
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(copyModelToDevice, Fault::run([&] {
                                onMainThread([&] {
                                    Model::object_brige::instance()->setActiveDevice((*m_site)->device(secondIp));
                                    // The selector is refilled, as on a change of the language.
                                    (*m_panel)->retranslateUi();
                                });
                            }));
    apply();
    waitForEndOfLoad();
    QVERIFY(!(*m_site)->hardware(targetIp)->isChannelExclusive());
}

TEST_MAIN(TstApplyEndings)
#include "tst_applyendings.moc"
