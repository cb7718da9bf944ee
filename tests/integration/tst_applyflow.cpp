#include <support/paneltesting.h>

#include <support/answerbook.h>
#include <support/customsite.h>
#include <support/gate.h>
#include <support/journalmatchers.h>
#include <support/testmain.h>
#include <zippackagehandle.h>

#include <core/icore.h>
#include <model/deviceeditor.h>
#include <model/objectbrige.h>
#include <simulation/faults.h>
#include <simulation/journal.h>
#include <widgets/waitingdialog.h>

#include <QLineEdit>
#include <QSemaphore>
#include <QThread>
#include <QTranslator>

#include <atomic>
#include <stdexcept>
#include <utility>

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

static const QString targetIp = QStringLiteral("10.0.0.11");
static const QString secondIp = QStringLiteral("10.0.0.12");
static const QString offlineIp = QStringLiteral("10.0.0.13");
/// The device from which the packages come; the site does not have it.
static const QString sourceIp = QStringLiteral("10.0.0.77");

static const QString backupQuestion =
    QStringLiteral("Whether the current configuration needs to be backed up before the project file is imported?");
static const QString syncText = QStringLiteral("Sync device data , please wait.");
static const QString syncWarning = QStringLiteral("Import project file failed, as sync device from hardware failed.");

namespace {

/// What the user-interface thread did, in order.
QStringList mainThreadOperations()
{
    QStringList operations;
    for (const Simulation::JournalEntry &entry : Journal::instance()->entries()) {
        if (entry.onMainThread)
            operations.append(entry.operation);
    }
    return operations;
}

QVariantList argumentsOf(const QString &operation, const char *argument)
{
    QVariantList values;
    for (const Simulation::JournalEntry &entry : Journal::instance()->entries(operation))
        values.append(entry.arguments.value(QLatin1String(argument)));
    return values;
}

/// From the thread of a job.
void onMainThread(const std::function<void()> &act)
{
    QMetaObject::invokeMethod(qApp, act, Qt::BlockingQueuedConnection);
}

void clickCancel()
{
    click(WaitingDialog::instance()->findChild<QPushButton *>(QStringLiteral("WaitingDialogCancel")));
}

/// Acts once on the user-interface thread, when a text is translated there after it was armed.
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

/// Files that are open and have no name any more, as the copy of a package that is applied.
int openNamelessFiles()
{
    int count = 0;
    for (const QFileInfo &link : QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::AllEntries | QDir::System))
        count += link.symLinkTarget().endsWith(QStringLiteral(" (deleted)"));
    return count;
}

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

/// Applying project files with the real panel, answered as its user would.
class TstApplyFlow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    // The whole flow
    void applying_makes_the_hardware_what_was_saved();
    void applying_online_does_its_steps_in_order();
    void applying_offline_neither_syncs_nor_resets();
    void waiting_texts_of_an_online_apply();
    void the_cancel_button_stays_as_it_was();
    void progress_of_the_job_is_shown();
    void applying_twice_works();
    void the_device_chosen_in_the_selector_becomes_active_and_is_the_target();
    void applying_selects_the_first_screen();
    void applying_a_device_without_screens_clears_the_active_screen();
    void screens_that_are_null_are_passed_over_data();
    void screens_that_are_null_are_passed_over();
    void the_selector_shows_the_name_that_was_applied();

    // The question
    void cancelling_the_question_does_nothing_data();
    void cancelling_the_question_does_nothing();
    void yes_saves_a_project_first_and_then_applies();
    void yes_with_a_failed_backup_applies_nothing();
    void yes_with_a_cancelled_backup_applies_nothing();
    void cancelling_a_backup_after_an_apply_ends_the_backup();
    void yes_with_all_names_taken_saves_without_a_name();
    void yes_applies_only_after_a_backup_that_left_its_package_data();
    void yes_applies_only_after_a_backup_that_left_its_package();
    void a_package_that_waited_is_applied_once();
    void yes_without_an_active_device_leaves_nothing_waiting();
    void a_cancel_that_comes_too_late_for_the_backup_ends_the_apply();

    // Apply Others
    void apply_others_applies_a_package_from_anywhere();
    void apply_others_asks_for_one_file_in_the_current_directory();
    void cancelling_the_chooser_does_nothing();
    void apply_others_refuses_what_is_no_package_data();
    void apply_others_refuses_what_is_no_package();

    // Failures before the job
    void without_a_device_both_ways_ask_for_one();
    void a_selector_entry_with_three_marks_leaves_no_device();
    void a_selector_entry_without_marks_keeps_the_device();
    void an_active_device_that_went_away_ends_silently();
    void a_selected_device_that_went_away_ends_silently();
    void a_package_deleted_since_it_was_listed_is_reported();
    void a_package_deleted_while_the_question_is_open_is_code_2();
    void a_package_changed_since_it_was_listed_is_refused_silently();
    void a_failing_sync_before_the_reset_only_logs();
    void a_failing_sync_after_the_reset_only_logs();
    void a_failing_reset_is_reported();
    void a_device_that_goes_before_the_reset_is_reported();
    void a_device_that_the_host_forgot_is_not_reset();

    // Results of the job
    void each_code_has_its_box_data();
    void each_code_has_its_box();
    void a_refused_package_leaves_the_hardware_alone_data();
    void a_refused_package_leaves_the_hardware_alone();
    void a_failed_serialisation_shows_nothing();
    void a_load_that_fails_at_once_is_not_missed();
    void the_channel_is_freed_before_the_box_and_synced_after_it();
    void a_device_that_drops_off_during_a_load_is_left_offline();
    void a_device_that_the_host_forgets_during_a_load_ends_it_with_the_box_alone();

    // Cancelling and closing
    void cancelling_between_operations_is_reported_as_cancelled();
    void cancelling_interrupts_the_running_operation();
    void cancelling_after_a_backup_asks_the_device_once();
    void cancel_does_nothing_after_the_end();
    void what_the_host_throws_ends_in_a_message_data();
    void what_the_host_throws_ends_in_a_message();
    void a_cancel_that_the_host_throws_back_cancels_all_the_same();
    void deleting_the_panel_during_a_load_ends_it_quietly();
    void deleting_the_panel_before_it_hears_of_the_end_frees_the_device();
    void deleting_the_panel_after_a_load_tells_the_host_nothing();
    void a_picture_that_is_announced_when_the_panel_has_gone_is_not_the_last_word();
    void the_loaded_device_is_freed_when_another_one_was_selected_meanwhile();

private:
    /// Puts the package among the listed ones under that name.
    void list(PackageBuilder package, const QString &name = QStringLiteral("show"));
    QString elsewhere(PackageBuilder package, const QString &name) const;
    void clickApply(const QString &name = QStringLiteral("show"));
    /// Lists the package and applies it without a backup; returns when the load has ended.
    void applyAndWait(const PackageBuilder &package);
    void waitForEndOfLoad(int loads = 1);
    void expectQuestion(QMessageBox::StandardButton answer)
    {
        m_book->expectQuestion(QStringLiteral("Remind"), backupQuestion, answer);
    }
    HardwareState hardware(const QString &ip) const { return (*m_site)->hardware(ip)->state(); }
    void selectDevice(const QString &ip);

    std::optional<CustomSite> m_site;
    std::optional<Panel> m_panel;
    std::optional<AnswerBook> m_book;
    QTemporaryDir m_elsewhere;
};

#define VERIFY_BOOK() QVERIFY2(m_book->isSatisfied(), qPrintable(m_book->report()))
#define COMPARE_STATES(actual, expected)                                                                               \
    do {                                                                                                               \
        const QStringList differences = (actual).differencesTo(expected);                                              \
        QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));                              \
    } while (false)

void TstApplyFlow::init()
{
    QVERIFY(clearProjectFilesDirectory());
    m_site.emplace(QVector<CustomDevice>{
        {richDevice(targetIp), true}, {plainDevice(secondIp), true}, {plainDevice(offlineIp), false}});
    WaitingDialog::instance()->setCanelVisible(false);
    m_panel.emplace();
    (*m_panel)->resize(1200, 700);
    (*m_panel)->show();
    settle();
    m_book.emplace();
    WarningGuard::clear();
    Journal::instance()->clear();
}

void TstApplyFlow::cleanup()
{
    settle();
    m_book.reset();
    m_panel.reset();
    settle();
    m_site.reset();
}

void TstApplyFlow::list(PackageBuilder package, const QString &name)
{
    QVERIFY(package.record(name, QStringLiteral("listed")).write(projectFile(name)));
    m_panel->rescan();
    QVERIFY(m_panel->names().contains(name));
    Journal::instance()->clear();
}

QString TstApplyFlow::elsewhere(PackageBuilder package, const QString &name) const
{
    QString path = m_elsewhere.filePath(name);
    if (!package.record(name, QString()).write(path))
        qFatal("The package could not be written");
    return path;
}

void TstApplyFlow::clickApply(const QString &name)
{
    const int row = m_panel->names().indexOf(name);
    QVERIFY(row >= 0);
    click(m_panel->table()->cellWidget(row, 2), QStringLiteral("Apply"));
}

void TstApplyFlow::applyAndWait(const PackageBuilder &package)
{
    list(package);
    expectQuestion(QMessageBox::No);
    clickApply();
    waitForEndOfLoad();
}

void TstApplyFlow::waitForEndOfLoad(int loads)
{
    QTRY_COMPARE(Journal::instance()->count(clearScreenList), loads);
    QVERIFY(!WaitingDialog::instance()->isVisible());
}

void TstApplyFlow::selectDevice(const QString &ip)
{
    QComboBox *combo = m_panel->deviceCombo();
    for (int i = 0; i < combo->count(); ++i) {
        if (combo->itemData(i, Qt::UserRole + 1).toStringList().value(3) == ip)
            combo->setCurrentIndex(i);
    }
    Journal::instance()->clear();
}

// ---------------------------------------------------------------------------------------------------------------------
// The whole flow

void TstApplyFlow::applying_makes_the_hardware_what_was_saved()
{
    const HardwareState source = richDevice(sourceIp);
    const HardwareState before = hardware(targetIp);
    applyAndWait(packageOf(source));
    COMPARE_STATES(hardware(targetIp).configuration(), source.configuration());
    QCOMPARE(hardware(targetIp).identity.mac, before.identity.mac);
    QVERIFY(!(*m_site)->hardware(targetIp)->isChannelExclusive());
    // The model follows what is on the device now.
    QCOMPARE(int((*m_site)->device(targetIp)->getBKGs().size()), source.backgrounds.size());
    QCOMPARE((*m_site)->device(targetIp)->getBKGs().front().lock()->getName(), QStringLiteral("Opening"));
}

void TstApplyFlow::applying_online_does_its_steps_in_order()
{
    applyAndWait(packageOf(plainDevice(sourceIp)));
    const QString difference = sequenceDifference(
        mainThreadOperations(),
        {questionBox,         showWaitingDialog,   updateOnlineDevice, hideWaitingDialog,   showWaitingDialog,
         updateDeviceInfo,    hideWaitingDialog,   showWaitingDialog,  updateOnlineDevice,  hideWaitingDialog,
         setChannelExclusive, showWaitingDialog,   setOperatorType,    showWaitingDialog,   setOperatorType,
         hideWaitingDialog,   setChannelExclusive, showWaitingDialog,  updateOnlineDevice,  hideWaitingDialog,
         setActiveDevice,     clearScreenList,     setActivedScreen,   appendSelectedScreen});
    QVERIFY2(difference.isEmpty(), qPrintable(difference));

    QCOMPARE(argumentsOf(updateDeviceInfo, "reset"), QVariantList{3});
    QCOMPARE(argumentsOf(setChannelExclusive, "exclusive"), (QVariantList{true, false}));
    QCOMPARE(argumentsOf(setOperatorType, "type"),
             (QVariantList{QStringLiteral("OperatorLoad"), QStringLiteral("OperatorNone")}));
    QCOMPARE(argumentsOf(setOperatorType, "text"), (QVariantList{QString(), QString()}));
    QCOMPARE(argumentsOf(updateOnlineDevice, "ip"), (QVariantList{targetIp, targetIp, targetIp}));
    // The package is sent between the announcement and the end.
    VERIFY_JOURNAL_ORDER(
        {setChannelExclusive, setOperatorType, canMVEEnable, copyModelToDevice, setOperatorType, setChannelExclusive});
}

void TstApplyFlow::applying_offline_neither_syncs_nor_resets()
{
    selectDevice(offlineIp);
    const HardwareState source = richDevice(sourceIp);
    applyAndWait(packageOf(source));
    const QString difference =
        sequenceDifference(mainThreadOperations(), {questionBox, setActiveDevice, showWaitingDialog, setOperatorType,
                                                    setOperatorType, hideWaitingDialog, setActiveDevice,
                                                    clearScreenList, setActivedScreen, appendSelectedScreen});
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    QCOMPARE((*m_site)->device(offlineIp)->getName(), source.identity.name);
    QVERIFY(QFile::exists(m_site->devicePath(offlineIp) + QStringLiteral("/BKG/BKG_7.png")));
}

void TstApplyFlow::waiting_texts_of_an_online_apply()
{
    applyAndWait(packageOf(richDevice(sourceIp)));
    QCOMPARE(
        argumentsOf(showWaitingDialog, "text"),
        (QVariantList{syncText, QStringLiteral("Restore factory,please wait..."), syncText,
                      QStringLiteral("Start save project file"), QStringLiteral("Send Config to Device"), syncText}));
}

void TstApplyFlow::the_cancel_button_stays_as_it_was()
{
    for (const bool visible : {true, false}) {
        WaitingDialog::instance()->setCanelVisible(visible);
        applyAndWait(packageOf(plainDevice(sourceIp)));
        QCOMPARE(WaitingDialog::instance()->isCanelVisible(), visible);
        QCOMPARE(Journal::instance()->count(setCanelVisible), 0);
    }
}

void TstApplyFlow::progress_of_the_job_is_shown()
{
    QStringList shown;
    Faults::instance()->arm(createMaterailFromImage, Fault::run([&] {
                                onMainThread([&] { shown.append(WaitingDialog::instance()->text()); });
                            }));
    Faults::instance()->arm(copyModelToDevice, Fault::run([&] {
                                onMainThread([&] {
                                    shown.append(WaitingDialog::instance()->text());
                                    QVERIFY(WaitingDialog::instance()->isVisible());
                                });
                            }));
    applyAndWait(packageOf(richDevice(sourceIp)));
    QCOMPARE(shown, (QStringList{QStringLiteral("Start save project file"), QStringLiteral("Send Config to Device")}));
    QCOMPARE(argumentsOf(setOperatorType, "text"),
             (QVariantList{QString(), QStringLiteral("BKG:Opening"), QStringLiteral("BKG:Keynote"),
                           QStringLiteral("LOGO:Sponsor"), QString()}));
}

void TstApplyFlow::applying_twice_works()
{
    applyAndWait(packageOf(richDevice(sourceIp)));
    const HardwareState second = plainDevice(QStringLiteral("10.0.0.78"));
    applyAndWait(packageOf(second));
    COMPARE_STATES(hardware(targetIp).configuration(), second.configuration());
}

void TstApplyFlow::the_device_chosen_in_the_selector_becomes_active_and_is_the_target()
{
    const HardwareState first = hardware(targetIp);
    const HardwareState source = richDevice(sourceIp);
    selectDevice(secondIp);
    QCOMPARE(Model::object_brige::instance()->activeDevice(), (*m_site)->device(targetIp));
    applyAndWait(packageOf(source));
    COMPARE_STATES(hardware(secondIp).configuration(), source.configuration());
    COMPARE_STATES(hardware(targetIp), first);
    QCOMPARE(Model::object_brige::instance()->activeDevice(), (*m_site)->device(secondIp));
    QCOMPARE(m_panel->deviceCombo()->currentData(Qt::UserRole + 1).toStringList().value(3), secondIp);
}

void TstApplyFlow::applying_selects_the_first_screen()
{
    applyAndWait(packageOf(plainDevice(sourceIp)));
    QCOMPARE(argumentsOf(clearScreenList, "withActived"), QVariantList{false});
    QCOMPARE(Model::object_brige::instance()->activedScreen()->id, 1);
    QCOMPARE(int(Model::object_brige::instance()->selectedScreens().size()), 1);
    QCOMPARE(Model::object_brige::instance()->selectedScreens().front()->id, 1);
}

void TstApplyFlow::applying_a_device_without_screens_clears_the_active_screen()
{
    HardwareState source = plainDevice(sourceIp);
    source.screens.clear();
    Model::object_brige::instance()->setActivedScreen((*m_site)->device(targetIp)->getScreens().front());
    applyAndWait(packageOf(source));
    QCOMPARE(argumentsOf(clearScreenList, "withActived"), QVariantList{true});
    QVERIFY(!Model::object_brige::instance()->activedScreen());
    QCOMPARE(Journal::instance()->count(setActivedScreen), 0);
    QCOMPARE(Journal::instance()->count(appendSelectedScreen), 0);
}

void TstApplyFlow::screens_that_are_null_are_passed_over_data()
{
    QTest::addColumn<bool>("others");
    QTest::newRow("first is null") << true;
    QTest::newRow("all are null") << false;
}

void TstApplyFlow::screens_that_are_null_are_passed_over()
{
    QFETCH(bool, others);
    Faults::instance()->arm(setActiveDevice, Fault::run([&] {
                                Model::DeviceEditor editor(*(*m_site)->device(targetIp));
                                Model::DeviceData data = editor.data();
                                if (!others)
                                    data.screens.clear();
                                data.screens.insert(data.screens.begin(), nullptr);
                                editor.replace(data);
                            }));
    applyAndWait(packageOf(plainDevice(sourceIp)));
    QCOMPARE(argumentsOf(clearScreenList, "withActived"), QVariantList{!others});
    QCOMPARE(argumentsOf(setActivedScreen, "screen"), others ? QVariantList{1} : QVariantList());
    QCOMPARE(argumentsOf(appendSelectedScreen, "screen"), others ? QVariantList{1} : QVariantList());
}

void TstApplyFlow::the_selector_shows_the_name_that_was_applied()
{
    selectDevice(offlineIp);
    HardwareState source = plainDevice(sourceIp);
    source.identity.name = QStringLiteral("Renamed by the package");
    applyAndWait(packageOf(source));
    QCOMPARE((*m_site)->device(offlineIp)->getName(), source.identity.name);
    QCOMPARE(m_panel->deviceCombo()->currentData(Qt::UserRole + 1).toStringList().value(2), source.identity.name);
    QCOMPARE(m_panel->deviceCombo()->currentData(Qt::ToolTipRole).toString(),
             (*m_site)->device(offlineIp)->getDeviceInfo());
}

// ---------------------------------------------------------------------------------------------------------------------
// The question

void TstApplyFlow::cancelling_the_question_does_nothing_data()
{
    QTest::addColumn<QMessageBox::StandardButton>("answer");
    QTest::newRow("Cancel") << QMessageBox::Cancel;
    QTest::newRow("Escape") << QMessageBox::NoButton;
}

void TstApplyFlow::cancelling_the_question_does_nothing()
{
    QFETCH(QMessageBox::StandardButton, answer);
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    expectQuestion(answer);
    clickApply();
    VERIFY_BOOK();
    QCOMPARE(m_book->seen().first().buttons, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    settle();
    VERIFY_JOURNAL({questionBox});
    COMPARE_STATES(hardware(targetIp), before);
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("show")});
}

void TstApplyFlow::yes_saves_a_project_first_and_then_applies()
{
    const HardwareState before = hardware(targetIp);
    const HardwareState source = plainDevice(sourceIp);
    list(packageOf(source));
    expectQuestion(QMessageBox::Yes);
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    COMPARE_STATES(hardware(targetIp).configuration(), source.configuration());
    QCOMPARE(argumentsOf(setOperatorType, "type"),
             (QVariantList{QStringLiteral("OperatorBackup"), QStringLiteral("OperatorNone"),
                           QStringLiteral("OperatorLoad"), QStringLiteral("OperatorNone")}));

    QTRY_COMPARE(m_panel->table()->rowCount(), 2);
    EngineerPacketInfo info;
    info.strFilePath = projectFile(QStringLiteral("Project1"));
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QStringLiteral("Project1"));
    QVERIFY2(QRegularExpression(QStringLiteral("^\\d{8}_\\d{6}$")).match(info.strComment).hasMatch(),
             qPrintable(info.strComment));

    // What was saved brings back what was there before.
    expectQuestion(QMessageBox::No);
    clickApply(QStringLiteral("Project1"));
    waitForEndOfLoad(2);
    COMPARE_STATES(hardware(targetIp), before);
}

void TstApplyFlow::yes_with_a_failed_backup_applies_nothing()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(queryMaterailData, Fault::fail());
    expectQuestion(QMessageBox::Yes);
    m_book->expectInformation(QStringLiteral("Remind"), QStringLiteral("Failed to export bkg"));
    clickApply();
    QTRY_VERIFY2(m_book->isSatisfied(), qPrintable(m_book->report()));
    settle();
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    COMPARE_STATES(hardware(targetIp), before);
    QVERIFY(!QFile::exists(projectFile(QStringLiteral("Project1"))));

    // The package does not wait for the next backup either.
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"),
                         [](QDialog *dialog) { click(dialog, QStringLiteral("OK")); });
    Journal::instance()->clear();
    click(m_panel->saveProject());
    QTRY_COMPARE(argumentsOf(setOperatorType, "type").value(1).toString(), QStringLiteral("OperatorNone"));
    settle();
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    VERIFY_BOOK();
}

void TstApplyFlow::yes_with_a_cancelled_backup_applies_nothing()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(queryMaterailData, Fault::run([] { onMainThread(clickCancel); }));
    expectQuestion(QMessageBox::Yes);
    m_book->expectInformation(QStringLiteral("Remind"), QStringLiteral("User cancels current operation"));
    clickApply();
    QTRY_VERIFY2(m_book->isSatisfied(), qPrintable(m_book->report()));
    settle();
    QCOMPARE(argumentsOf(cancelOperator, "command"), (QVariantList{QVariant(QVariantList{4, 10})}));
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    COMPARE_STATES(hardware(targetIp), before);
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("show")});
}

void TstApplyFlow::cancelling_a_backup_after_an_apply_ends_the_backup()
{
    // Its job is still there.
    applyAndWait(packageOf(richDevice(sourceIp)));
    Journal::instance()->clear();
    Faults::instance()->arm(queryMaterailData, Fault::run([] { onMainThread(clickCancel); }));
    expectQuestion(QMessageBox::Yes);
    m_book->expectInformation(QStringLiteral("Remind"), QStringLiteral("User cancels current operation"));
    clickApply();
    QTRY_VERIFY2(m_book->isSatisfied(), qPrintable(m_book->report()));
    settle();
    QCOMPARE(Journal::instance()->count(cancelOperator), 1);
    QCOMPARE(Journal::instance()->count(cancelCurrentTask), 0);
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
}

void TstApplyFlow::yes_with_all_names_taken_saves_without_a_name()
{
    for (int number = 1; number <= 999; ++number) {
        QFile taken(projectFile(QStringLiteral("Project%1").arg(number)));
        QVERIFY(taken.open(QIODevice::WriteOnly));
    }
    const HardwareState source = plainDevice(sourceIp);
    list(packageOf(source));
    expectQuestion(QMessageBox::Yes);
    clickApply();
    waitForEndOfLoad();
    EngineerPacketInfo info;
    info.strFilePath = projectFile(QString());
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QString());
    COMPARE_STATES(hardware(targetIp).configuration(), source.configuration());
}

void TstApplyFlow::yes_applies_only_after_a_backup_that_left_its_package_data()
{
    QTest::addColumn<QString>("harm");
    QTest::newRow("a preset file cannot be opened") << "preset";
    QTest::newRow("a file has the name of the presets' folder") << "file in the way";
    QTest::newRow("the package is broken before the panel hears of the end") << "broken";
    QTest::newRow("the package is gone before the panel hears of the end") << "gone";
}

void TstApplyFlow::yes_applies_only_after_a_backup_that_left_its_package()
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
        // The end of the thread is told to the panel through its event loop, so this comes before.
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
    // A folder that cannot be made ends the save with a message; where there is none, the log tells why nothing
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
        QTRY_COMPARE(argumentsOf(setOperatorType, "type").value(1).toString(), QStringLiteral("OperatorNone"));
        settle();
    }
    VERIFY_BOOK();
    QVERIFY(!WaitingDialog::instance()->isVisible());
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    COMPARE_STATES(hardware(targetIp), before);

    // Nor does it wait for the next backup.
    QFile::remove(presetFolder);
    Journal::instance()->clear();
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [](QDialog *dialog) {
        dialog->findChild<QLineEdit *>()->setText(QStringLiteral("Afterwards"));
        click(dialog, QStringLiteral("OK"));
    });
    click(m_panel->saveProject());
    QTRY_COMPARE(argumentsOf(setOperatorType, "type").value(1).toString(), QStringLiteral("OperatorNone"));
    settle();
    VERIFY_BOOK();
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(projectFile(QStringLiteral("Afterwards"))));
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
}

void TstApplyFlow::a_package_that_waited_is_applied_once()
{
    list(packageOf(plainDevice(sourceIp)));
    expectQuestion(QMessageBox::Yes);
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 1);

    Journal::instance()->clear();
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"),
                         [](QDialog *dialog) { click(dialog, QStringLiteral("OK")); });
    click(m_panel->saveProject());
    QTRY_COMPARE(argumentsOf(setOperatorType, "type").value(1).toString(), QStringLiteral("OperatorNone"));
    settle();
    VERIFY_BOOK();
    QVERIFY(QFile::exists(projectFile(QStringLiteral("Project2"))));
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
}

void TstApplyFlow::yes_without_an_active_device_leaves_nothing_waiting()
{
    list(packageOf(plainDevice(sourceIp)));
    Model::object_brige::instance()->setActiveDevice({});
    expectQuestion(QMessageBox::Yes);
    clickApply();
    VERIFY_BOOK();
    settle();

    // The next save is a save alone.
    Model::object_brige::instance()->setActiveDevice((*m_site)->device(targetIp));
    Journal::instance()->clear();
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"),
                         [](QDialog *dialog) { click(dialog, QStringLiteral("OK")); });
    click(m_panel->saveProject());
    QTRY_COMPARE(argumentsOf(setOperatorType, "type").value(1).toString(), QStringLiteral("OperatorNone"));
    settle();
    VERIFY_BOOK();
    QVERIFY(QFile::exists(projectFile(QStringLiteral("Project1"))));
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
}

void TstApplyFlow::a_cancel_that_comes_too_late_for_the_backup_ends_the_apply()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    // While the last preset is fetched: the save looks at a cancel before each picture and preset, and only packs now.
    const int presets = before.presets.size();
    Faults::instance()->arm(presetFullDetail2Binary, Fault::run([] { onMainThread(clickCancel); }, presets));
    expectQuestion(QMessageBox::Yes);
    clickApply();
    QTRY_COMPARE(argumentsOf(setOperatorType, "type").value(1).toString(), QStringLiteral("OperatorNone"));
    settle();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(cancelOperator), 1);
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(projectFile(QStringLiteral("Project1"))));
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    COMPARE_STATES(hardware(targetIp), before);
}

// ---------------------------------------------------------------------------------------------------------------------
// Apply Others

void TstApplyFlow::apply_others_applies_a_package_from_anywhere()
{
    const HardwareState source = richDevice(sourceIp);
    const QString path = elsewhere(packageOf(source), QString::fromUtf8("演出 🎬.corvelpro"));
    m_book->expectFileDialog(QStringLiteral("Project file"), {path});
    expectQuestion(QMessageBox::No);
    click(m_panel->applyOthers());
    waitForEndOfLoad();
    VERIFY_BOOK();
    COMPARE_STATES(hardware(targetIp).configuration(), source.configuration());
    QVERIFY(QFile::exists(path));
    QCOMPARE(m_panel->table()->rowCount(), 0);
}

void TstApplyFlow::apply_others_asks_for_one_file_in_the_current_directory()
{
    // Where the user was the last time does not matter.
    m_book->expectFileDialog(QStringLiteral("Project file"),
                             {elsewhere(packageOf(plainDevice(sourceIp)), QStringLiteral("show.corvelpro"))});
    expectQuestion(QMessageBox::Cancel);
    click(m_panel->applyOthers());
    m_book->expectFileDialog(QStringLiteral("Project file"), {});
    click(m_panel->applyOthers());
    const AnswerBook::Seen dialog = m_book->seen().value(2);
    QCOMPARE(dialog.directory, QStringLiteral("."));
    QCOMPARE(dialog.nameFilters, QStringList{QStringLiteral("file(*.corvelpro)")});
    QCOMPARE(dialog.fileMode, QFileDialog::ExistingFile);
    QCOMPARE(dialog.acceptMode, QFileDialog::AcceptOpen);
}

void TstApplyFlow::cancelling_the_chooser_does_nothing()
{
    m_book->expectFileDialog(QStringLiteral("Project file"), {});
    click(m_panel->applyOthers());
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({});
}

void TstApplyFlow::apply_others_refuses_what_is_no_package_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("no archive");
    QTest::newRow("archive without record") << packageOf(plainDevice(sourceIp)).build();
    QTest::newRow("wrong checksum") << packageOf(plainDevice(sourceIp))
                                           .recordWithChecksum(QString(32, QLatin1Char('0')), QString(), QString())
                                           .build();
}

void TstApplyFlow::apply_others_refuses_what_is_no_package()
{
    QFETCH(QByteArray, bytes);
    const QString path = m_elsewhere.filePath(QStringLiteral("odd.corvelpro"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    m_book->expectFileDialog(QStringLiteral("Project file"), {path});
    m_book->expectWarning(QStringLiteral("Remind"),
                          QStringLiteral("The file does not exist or the file format is incorrect."));
    click(m_panel->applyOthers());
    VERIFY_BOOK();
    VERIFY_JOURNAL({warningBox});
}

// ---------------------------------------------------------------------------------------------------------------------
// Failures before the job

void TstApplyFlow::without_a_device_both_ways_ask_for_one()
{
    m_panel.reset();
    Model::object_brige::instance()->setActiveDevice({});
    m_panel.emplace();
    (*m_panel)->resize(1200, 700);
    (*m_panel)->show();
    list(packageOf(plainDevice(sourceIp)));
    m_book->expectWarning(QStringLiteral("Warning"), QStringLiteral("Please select a device."));
    clickApply();
    VERIFY_BOOK();
    m_book->expectWarning(QStringLiteral("Warning"), QStringLiteral("Please select a device."));
    click(m_panel->applyOthers());
    VERIFY_BOOK();
    VERIFY_JOURNAL({warningBox, warningBox});
}

void TstApplyFlow::a_selector_entry_with_three_marks_leaves_no_device()
{
    list(packageOf(plainDevice(sourceIp)));
    QComboBox *combo = m_panel->deviceCombo();
    combo->addItem(QStringLiteral("odd"));
    combo->setItemData(combo->count() - 1, QStringList{"a", "b", "c"}, Qt::UserRole + 1);
    {
        const ExpectMessage expected(QtCriticalMsg, QStringLiteral("device mark list count error."), 1);
        combo->setCurrentIndex(combo->count() - 1);
    }
    for (int i = 0; i < 2; ++i) {
        m_book->expectWarning(QStringLiteral("Warning"), QStringLiteral("Please select a device."));
        if (i == 0)
            clickApply();
        else
            click(m_panel->applyOthers());
        VERIFY_BOOK();
    }
}

void TstApplyFlow::a_selector_entry_without_marks_keeps_the_device()
{
    list(packageOf(plainDevice(sourceIp)));
    QComboBox *combo = m_panel->deviceCombo();
    combo->addItem(QStringLiteral("odd"));
    {
        const ExpectMessage expected(QtCriticalMsg, QStringLiteral("parameter is empty!!!"), 1);
        combo->setCurrentIndex(combo->count() - 1);
    }
    expectQuestion(QMessageBox::Cancel);
    clickApply();
    VERIFY_BOOK();
}

void TstApplyFlow::an_active_device_that_went_away_ends_silently()
{
    list(packageOf(plainDevice(sourceIp)));
    Model::object_brige::instance()->setActiveDevice({});
    Journal::instance()->clear();
    expectQuestion(QMessageBox::No);
    clickApply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox});
}

void TstApplyFlow::a_selected_device_that_went_away_ends_silently()
{
    list(packageOf(plainDevice(sourceIp)));
    selectDevice(secondIp);
    Model::DeviceList::instance()->removeDevice(secondIp);
    Journal::instance()->clear();
    expectQuestion(QMessageBox::No);
    clickApply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox});
    QCOMPARE(Model::object_brige::instance()->activeDevice(), (*m_site)->device(targetIp));
}

void TstApplyFlow::a_package_deleted_since_it_was_listed_is_reported()
{
    list(packageOf(plainDevice(sourceIp)));
    // The list must not hear of it before the click.
    const HeldThreadPool held;
    QVERIFY(QFile::remove(projectFile(QStringLiteral("show"))));
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("The file does not exist."));
    clickApply();
    VERIFY_BOOK();
    VERIFY_JOURNAL({warningBox});
}

void TstApplyFlow::a_package_deleted_while_the_question_is_open_is_code_2()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    m_book->expectDialog(QStringLiteral("HX::Widgets::FramelessMessageBox"), [](QDialog *dialog) {
        QVERIFY(QFile::remove(projectFile(QStringLiteral("show"))));
        click(qobject_cast<HX::Widgets::FramelessMessageBox *>(dialog)->button(QMessageBox::No));
    });
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("Incorrect file content"));
    clickApply();
    VERIFY_BOOK();
    VERIFY_JOURNAL({questionBox, showWaitingDialog, updateOnlineDevice, hideWaitingDialog, warningBox});
    COMPARE_STATES(hardware(targetIp), before);
}

void TstApplyFlow::a_package_changed_since_it_was_listed_is_refused_silently()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    QFile file(projectFile(QStringLiteral("show")));
    QVERIFY(file.open(QIODevice::ReadWrite));
    // Within the bytes that the checksum covers: the magic number's neighbour, the version that is needed.
    QVERIFY(file.seek(4) && file.write("\x15", 1) == 1);
    file.close();
    expectQuestion(QMessageBox::No);
    clickApply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox, showWaitingDialog, updateOnlineDevice, hideWaitingDialog});
    COMPARE_STATES(hardware(targetIp), before);
}

void TstApplyFlow::a_failing_sync_before_the_reset_only_logs()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(updateOnlineDevice, Fault::fail());
    const ExpectMessage expected(QtWarningMsg, syncWarning, 1);
    expectQuestion(QMessageBox::No);
    clickApply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox, showWaitingDialog, updateOnlineDevice, hideWaitingDialog});
    COMPARE_STATES(hardware(targetIp), before);
}

void TstApplyFlow::a_failing_sync_after_the_reset_only_logs()
{
    const int open = openNamelessFiles();
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(updateOnlineDevice, Fault::fail(2));
    const ExpectMessage expected(QtWarningMsg, syncWarning, 1);
    expectQuestion(QMessageBox::No);
    clickApply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox, showWaitingDialog, updateOnlineDevice, hideWaitingDialog, showWaitingDialog,
                    updateDeviceInfo, hideWaitingDialog, showWaitingDialog, updateOnlineDevice, hideWaitingDialog});
    QVERIFY(!WaitingDialog::instance()->isVisible());
    // Nothing is applied any more, so nothing of it takes room.
    QCOMPARE(openNamelessFiles(), open);
}

void TstApplyFlow::a_failing_reset_is_reported()
{
    const int open = openNamelessFiles();
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(updateDeviceInfo, Fault::fail());
    expectQuestion(QMessageBox::No);
    m_book->expectWarning(QStringLiteral("Warning"), QStringLiteral(" Restore factory failed "));
    clickApply();
    VERIFY_BOOK();
    VERIFY_JOURNAL({questionBox, showWaitingDialog, updateOnlineDevice, hideWaitingDialog, showWaitingDialog,
                    updateDeviceInfo, hideWaitingDialog, warningBox});
    COMPARE_STATES(hardware(targetIp), before);
    // Nothing is applied any more, so nothing of it takes room.
    QCOMPARE(openNamelessFiles(), open);
}

void TstApplyFlow::a_device_that_goes_before_the_reset_is_reported()
{
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(updateOnlineDevice,
                            Fault::run([] { Model::object_brige::instance()->setActiveDevice({}); }));
    expectQuestion(QMessageBox::No);
    m_book->expectWarning(QStringLiteral("Warning"), QStringLiteral(" Restore factory failed "));
    clickApply();
    VERIFY_BOOK();
    settle();
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
}

void TstApplyFlow::a_device_that_the_host_forgot_is_not_reset()
{
    list(packageOf(plainDevice(sourceIp)));
    // It stays the active one.
    const std::shared_ptr<Model::Device> device = Model::object_brige::instance()->activeDevice();
    Model::DeviceList::instance()->removeDevice(targetIp);
    Model::object_brige::instance()->setActiveDevice(device);
    QVERIFY(device->getDeviceOnlineFlag());
    Journal::instance()->clear();
    const ExpectMessage warned(QtWarningMsg, syncWarning, 1);
    expectQuestion(QMessageBox::No);
    clickApply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox});
}

// ---------------------------------------------------------------------------------------------------------------------
// Results of the job

void TstApplyFlow::each_code_has_its_box_data()
{
    QTest::addColumn<MakePackage>("package");
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QString>("text");
    const MakePackage rich = [] { return packageOf(richDevice(sourceIp)); };
    QTest::newRow("0, no box") << rich << QString() << QString();
    QTest::newRow("7, device refuses the model")
        << rich << copyModelToDevice << QStringLiteral("Project file import failed");
    QTest::newRow("14, device refuses a picture")
        << rich << createMaterailFromImage << QStringLiteral("apply gallery failed");
}

void TstApplyFlow::each_code_has_its_box()
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

void TstApplyFlow::a_refused_package_leaves_the_hardware_alone_data()
{
    QTest::addColumn<MakePackage>("package");
    QTest::addColumn<QString>("text");
    QTest::newRow("3, cards") << MakePackage([] {
        HardwareState source = plainDevice(sourceIp);
        source.cards.removeLast();
        return packageOf(source);
    }) << QStringLiteral("Input or output card mismatch");
    QTest::newRow("5, no device in the description")
        << MakePackage([] { return onlyDescription("null"); }) << QStringLiteral("Failed to get device information");
    QTest::newRow("8, no description") << MakePackage([] {
        PackageBuilder package;
        package.file("notes.txt", "none");
        return package;
    }) << QStringLiteral("Incorrect JSON file");
    QTest::newRow("10, another model") << MakePackage([] { return packageOf(plainDevice(sourceIp, otherModel)); })
                                       << QStringLiteral("Device type mismatch");
    QTest::newRow("12, newer protocol") << MakePackage([] {
        HardwareState source = plainDevice(sourceIp);
        source.protocolNumber = 3;
        return packageOf(source);
    }) << QStringLiteral("Protocol version mismatch");
    QTest::newRow("6, damaged entry") << MakePackage([] {
        PackageBuilder package = packageOf(richDevice(sourceIp));
        package.claimCrc(1);
        return package;
    }) << QStringLiteral("Failed to decompress file");
    QTest::newRow("11, no picture") << MakePackage([] {
        PackageBuilder package = packageOf(plainDevice(sourceIp));
        package.file("BKG/BKG_1.png", "no picture");
        return package;
    }) << QStringLiteral("Incorrect file content");
    QTest::newRow("15, picture of no material") << MakePackage([] {
        PackageBuilder package = packageOf(plainDevice(sourceIp));
        package.file("BKG/BKG_1.png", pngOf(noisePicture({4, 4}, 1)));
        return package;
    }) << QStringLiteral("Incorrect gallery file.");
}

void TstApplyFlow::a_refused_package_leaves_the_hardware_alone()
{
    QFETCH(MakePackage, package);
    QFETCH(QString, text);
    const HardwareState before = hardware(targetIp);
    list(package());
    expectQuestion(QMessageBox::No);
    m_book->expectWarning(QStringLiteral("Remind"), text);
    clickApply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox, showWaitingDialog, updateOnlineDevice, hideWaitingDialog, warningBox});
    COMPARE_STATES(hardware(targetIp), before);
}

void TstApplyFlow::a_failed_serialisation_shows_nothing()
{
    selectDevice(offlineIp);
    Faults::instance()->arm(serailize, Fault::fail());
    applyAndWait(packageOf(plainDevice(sourceIp)));
    VERIFY_BOOK();
    QCOMPARE(Faults::instance()->armedCount(), 0);
}

void TstApplyFlow::a_load_that_fails_at_once_is_not_missed()
{
    selectDevice(offlineIp);
    QSemaphore begun;
    QThread *job = nullptr;
    Faults::instance()->arm(serailize, Fault::run([&] {
                                job = QThread::currentThread();
                                begun.release();
                            }));
    Faults::instance()->arm(serailize, Fault::fail());
    // Between the start of the thread and the first connection the panel asks for the waiting dialog. If the host has
    // to make it anew, it translates the text of its button: time enough for a job that does not wait.
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
    QCOMPARE(argumentsOf(setOperatorType, "type").last().toString(), QStringLiteral("OperatorNone"));
}

void TstApplyFlow::the_channel_is_freed_before_the_box_and_synced_after_it()
{
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(copyModelToDevice, Fault::fail());
    expectQuestion(QMessageBox::No);
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("Project file import failed"));
    clickApply();
    waitForEndOfLoad();
    const QStringList operations = mainThreadOperations();
    const QString difference =
        sequenceDifference(operations.mid(operations.lastIndexOf(setOperatorType)),
                           {setOperatorType, hideWaitingDialog, setChannelExclusive, warningBox, showWaitingDialog,
                            updateOnlineDevice, hideWaitingDialog, setActiveDevice, clearScreenList});
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void TstApplyFlow::a_device_that_drops_off_during_a_load_is_left_offline()
{
    list(packageOf(richDevice(sourceIp)));
    Faults::instance()->arm(createMaterailFromImage, Fault::disconnect());
    expectQuestion(QMessageBox::No);
    // The multi-viewer's items, which are sent all the same, fail as well.
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("Project file import failed"));
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    QVERIFY(!(*m_site)->device(targetIp)->getDeviceOnlineFlag());
    QCOMPARE(argumentsOf(setChannelExclusive, "exclusive"), QVariantList{true});
    QCOMPARE(Journal::instance()->count(updateOnlineDevice), 2);
}

void TstApplyFlow::a_device_that_the_host_forgets_during_a_load_ends_it_with_the_box_alone()
{
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(copyModelToDevice,
                            Fault::run([] { Model::DeviceList::instance()->removeDevice(targetIp); }));
    Faults::instance()->arm(copyModelToDevice, Fault::fail());
    expectQuestion(QMessageBox::No);
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("Project file import failed"));
    clickApply();
    QTRY_VERIFY2(m_book->isSatisfied(), qPrintable(m_book->report()));
    settle();
    const QStringList operations = mainThreadOperations();
    QCOMPARE(operations.mid(operations.lastIndexOf(setOperatorType)),
             (QStringList{setOperatorType, hideWaitingDialog, warningBox}));
}

// ---------------------------------------------------------------------------------------------------------------------
// Cancelling and closing

void TstApplyFlow::cancelling_between_operations_is_reported_as_cancelled()
{
    // A load before it must not leave a connection that cancels once more.
    applyAndWait(packageOf(plainDevice(sourceIp)));
    list(packageOf(richDevice(sourceIp)));
    WaitingDialog::instance()->setCanelVisible(true);
    Faults::instance()->arm(canMVEEnable, Fault::run([] { onMainThread(clickCancel); }));
    expectQuestion(QMessageBox::No);
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("User cancels current operation"));
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(cancelCurrentTask), 1);
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), 0);
    QCOMPARE(Journal::instance()->count(copyModelToDevice), 0);
}

void TstApplyFlow::cancelling_interrupts_the_running_operation()
{
    list(packageOf(richDevice(sourceIp)));
    WaitingDialog::instance()->setCanelVisible(true);
    // Would take ten minutes if nobody cancelled it.
    Faults::instance()->arm(createMaterailFromImage, Fault::run([] { onMainThread(clickCancel); }));
    Faults::instance()->arm(createMaterailFromImage, Fault::late(600000));
    expectQuestion(QMessageBox::No);
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("apply gallery failed"));
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(cancelCurrentTask), 1);
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), 1);
    QCOMPARE(Journal::instance()->count(copyModelToDevice), 0);
}

void TstApplyFlow::cancelling_after_a_backup_asks_the_device_once()
{
    // A connection that the backup had left would cancel once more.
    list(packageOf(richDevice(sourceIp)));
    Faults::instance()->arm(canMVEEnable, Fault::run([] { onMainThread(clickCancel); }));
    expectQuestion(QMessageBox::Yes);
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("User cancels current operation"));
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(cancelCurrentTask), 1);
}

void TstApplyFlow::cancel_does_nothing_after_the_end()
{
    WaitingDialog::instance()->setCanelVisible(true);
    applyAndWait(packageOf(plainDevice(sourceIp)));
    Journal::instance()->clear();
    emit WaitingDialog::instance()->signal_canelLoad();
    VERIFY_JOURNAL({});
}

void TstApplyFlow::deleting_the_panel_during_a_load_ends_it_quietly()
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
    expectQuestion(QMessageBox::No);
    clickApply();
    QTRY_VERIFY_WITH_TIMEOUT(!m_panel, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(!job, 30000);
    VERIFY_BOOK();
    QCOMPARE(argumentsOf(setOperatorType, "type").last().toString(), QStringLiteral("OperatorNone"));
    QVERIFY(!WaitingDialog::instance()->isVisible());
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), 1);
    QCOMPARE(Journal::instance()->count(copyModelToDevice), 0);
    // Freed at the end of the load, not while it was still sending.
    QVERIFY(!(*m_site)->hardware(targetIp)->isChannelExclusive());
    VERIFY_JOURNAL_ORDER({setChannelExclusive, createMaterailFromImage, setChannelExclusive});
    QCOMPARE(argumentsOf(setChannelExclusive, "exclusive"), (QVariantList{true, false}));
    m_panel.emplace();
}

void TstApplyFlow::deleting_the_panel_before_it_hears_of_the_end_frees_the_device()
{
    list(packageOf(plainDevice(sourceIp)));
    Gate gate;
    Faults::instance()->arm(copyModelToDevice, gate.fault());
    expectQuestion(QMessageBox::No);
    clickApply();
    VERIFY_BOOK();
    const QPointer<QThread> job = gate.waitForThread();
    QVERIFY(job);
    gate.open();
    QVERIFY(job->wait(60000));
    QVERIFY((*m_site)->hardware(targetIp)->isChannelExclusive());
    m_panel.reset();
    QTRY_VERIFY_WITH_TIMEOUT(!job, 30000);
    QVERIFY(!(*m_site)->hardware(targetIp)->isChannelExclusive());
    QCOMPARE(argumentsOf(setChannelExclusive, "exclusive"), (QVariantList{true, false}));
    m_panel.emplace();
}

void TstApplyFlow::deleting_the_panel_after_a_load_tells_the_host_nothing()
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

void TstApplyFlow::a_picture_that_is_announced_when_the_panel_has_gone_is_not_the_last_word()
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
    expectQuestion(QMessageBox::No);
    clickApply();
    QTRY_VERIFY(!m_panel);
    QTRY_VERIFY(!job);
    disconnect(announcing);
    disconnect(listening);
    QCOMPARE(told, int(Core::ICore::OperatorNone));
    m_panel.emplace();
}

void TstApplyFlow::the_loaded_device_is_freed_when_another_one_was_selected_meanwhile()
{
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(copyModelToDevice, Fault::run([&] {
                                onMainThread([&] {
                                    Model::object_brige::instance()->setActiveDevice((*m_site)->device(secondIp));
                                    // The selector follows, as when the language is switched.
                                    (*m_panel)->retranslateUi();
                                });
                            }));
    expectQuestion(QMessageBox::No);
    clickApply();
    waitForEndOfLoad();
    QVERIFY(!(*m_site)->hardware(targetIp)->isChannelExclusive());
}

void TstApplyFlow::what_the_host_throws_ends_in_a_message_data()
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

void TstApplyFlow::what_the_host_throws_ends_in_a_message()
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

    // And the panel goes on.
    Journal::instance()->clear();
    applyAndWait(packageOf(plainDevice(QStringLiteral("10.0.0.78"))));
    VERIFY_BOOK();
}

void TstApplyFlow::a_cancel_that_the_host_throws_back_cancels_all_the_same()
{
    list(packageOf(richDevice(sourceIp)));
    WaitingDialog::instance()->setCanelVisible(true);
    const ExpectMessage logged(QtCriticalMsg, QStringLiteral("The host threw in cancelCurrentTask: out of luck"), 1);
    Faults::instance()->arm(cancelCurrentTask, Fault::run([] { throw std::runtime_error("out of luck"); }));
    Faults::instance()->arm(canMVEEnable, Fault::run([] { onMainThread(clickCancel); }));
    expectQuestion(QMessageBox::No);
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("User cancels current operation"));
    clickApply();
    waitForEndOfLoad();
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(createMaterailFromImage), 0);
}

TEST_MAIN(TstApplyFlow)
#include "tst_applyflow.moc"
