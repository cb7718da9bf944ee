// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/applyfixture.h>
#include <support/journalmatchers.h>
#include <support/openfiles.h>
#include <support/testmain.h>

#include <model/deviceeditor.h>
#include <simulation/faults.h>

using namespace PanelTesting;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;
using Simulation::Journal;

namespace {

const QString syncText = QStringLiteral("Sync device data , please wait.");

} // namespace

Q_DECLARE_METATYPE(QMessageBox::StandardButton)

/// Applying project files with the real panel, from the click to the first steps of the load.
class TstApplyFlow : public QObject, protected Applying
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // The whole flow
    void applying_makes_the_hardware_what_was_saved();
    void online_apply_runs_its_steps_in_order();
    void applying_offline_neither_syncs_nor_resets();
    void an_online_apply_shows_these_waiting_texts();
    void applying_leaves_the_cancel_button_as_is();
    void progress_of_the_job_is_shown();
    void applying_twice_works();
    void the_selected_device_becomes_active_and_the_target();
    void applying_selects_the_first_screen();
    void a_device_without_screens_clears_the_active_screen();
    void null_screens_are_skipped_data();
    void null_screens_are_skipped();
    void the_selector_shows_the_applied_name();

    // The question
    void cancelling_the_question_does_nothing_data();
    void cancelling_the_question_does_nothing();

    // Apply Others
    void apply_others_applies_a_package_from_anywhere();
    void apply_others_applies_to_the_device_selected_before();
    void apply_others_chooses_one_file();
    void cancelling_the_chooser_does_nothing();
    void apply_others_refuses_invalid_packages_data();
    void apply_others_refuses_invalid_packages();

    // Failures before the load
    void without_a_device_applying_asks_for_one();
    void three_marks_deselect_the_device();
    void missing_marks_keep_the_device();
    void without_an_active_device_applying_ends_silently();
    void a_removed_device_ends_the_apply_silently();
    void a_package_deleted_after_listing_is_reported();
    void a_package_deleted_behind_the_question_is_reported();
    void a_package_changed_after_listing_ends_silently();
    void a_failed_sync_before_the_reset_only_logs();
    void a_failed_sync_after_the_reset_only_logs();
    void a_failed_reset_is_reported();
    void a_device_lost_before_the_reset_is_reported();
    void a_removed_device_is_not_reset();

    // A site that changes meanwhile
    void another_device_is_never_reset();
    void device_lost_during_the_check_is_not_reset();
    void device_appearing_during_the_check_stays_unchanged();
    void losing_the_device_behind_the_question_ends_applying();

private:
    /// Acts once, when the load's check looks the device up; `lastCall` is the panel's last call of the host before it.
    static void beforeTheCheck(const QString &lastCall, const std::function<void()> &act);
};

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
    // The model matches the device again.
    QCOMPARE(int((*m_site)->device(targetIp)->getBKGs().size()), source.backgrounds.size());
    QCOMPARE((*m_site)->device(targetIp)->getBKGs().front().lock()->getName(), QStringLiteral("Opening"));
}

void TstApplyFlow::online_apply_runs_its_steps_in_order()
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

    QCOMPARE(journalArguments(updateDeviceInfo, "reset"), QVariantList{3});
    QCOMPARE(journalArguments(setChannelExclusive, "exclusive"), (QVariantList{true, false}));
    QCOMPARE(journalArguments(setOperatorType, "type"),
             (QVariantList{QStringLiteral("OperatorLoad"), QStringLiteral("OperatorNone")}));
    QCOMPARE(journalArguments(setOperatorType, "text"), (QVariantList{QString(), QString()}));
    QCOMPARE(journalArguments(updateOnlineDevice, "ip"), (QVariantList{targetIp, targetIp, targetIp}));
    // The package is sent between the two operator types.
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

void TstApplyFlow::an_online_apply_shows_these_waiting_texts()
{
    applyAndWait(packageOf(richDevice(sourceIp)));
    QCOMPARE(
        journalArguments(showWaitingDialog, "text"),
        (QVariantList{syncText, QStringLiteral("Restore factory,please wait..."), syncText,
                      QStringLiteral("Start save project file"), QStringLiteral("Send Config to Device"), syncText}));
}

void TstApplyFlow::applying_leaves_the_cancel_button_as_is()
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
    QCOMPARE(journalArguments(setOperatorType, "text"),
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

void TstApplyFlow::the_selected_device_becomes_active_and_the_target()
{
    const HardwareState first = hardware(targetIp);
    const HardwareState source = richDevice(sourceIp);
    selectDevice(secondIp);
    QCOMPARE(Model::object_brige::instance()->activeDevice(), (*m_site)->device(targetIp));
    applyAndWait(packageOf(source));
    COMPARE_STATES(hardware(secondIp).configuration(), source.configuration());
    COMPARE_STATES(hardware(targetIp), first);
    QCOMPARE(Model::object_brige::instance()->activeDevice(), (*m_site)->device(secondIp));
    QCOMPARE(m_panel->selectedAddress(), secondIp);
}

void TstApplyFlow::applying_selects_the_first_screen()
{
    applyAndWait(packageOf(plainDevice(sourceIp)));
    QCOMPARE(journalArguments(clearScreenList, "withActived"), QVariantList{false});
    QCOMPARE(Model::object_brige::instance()->activedScreen()->id, 1);
    QCOMPARE(int(Model::object_brige::instance()->selectedScreens().size()), 1);
    QCOMPARE(Model::object_brige::instance()->selectedScreens().front()->id, 1);
}

void TstApplyFlow::a_device_without_screens_clears_the_active_screen()
{
    HardwareState source = plainDevice(sourceIp);
    source.screens.clear();
    Model::object_brige::instance()->setActivedScreen((*m_site)->device(targetIp)->getScreens().front());
    applyAndWait(packageOf(source));
    QCOMPARE(journalArguments(clearScreenList, "withActived"), QVariantList{true});
    QVERIFY(!Model::object_brige::instance()->activedScreen());
    QCOMPARE(Journal::instance()->count(setActivedScreen), 0);
    QCOMPARE(Journal::instance()->count(appendSelectedScreen), 0);
}

void TstApplyFlow::null_screens_are_skipped_data()
{
    QTest::addColumn<bool>("others");
    QTest::newRow("first is null") << true;
    QTest::newRow("all are null") << false;
}

void TstApplyFlow::null_screens_are_skipped()
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
    QCOMPARE(journalArguments(clearScreenList, "withActived"), QVariantList{!others});
    QCOMPARE(journalArguments(setActivedScreen, "screen"), others ? QVariantList{1} : QVariantList());
    QCOMPARE(journalArguments(appendSelectedScreen, "screen"), others ? QVariantList{1} : QVariantList());
}

void TstApplyFlow::the_selector_shows_the_applied_name()
{
    selectDevice(offlineIp);
    HardwareState source = plainDevice(sourceIp);
    source.identity.name = QStringLiteral("Renamed by the package");
    applyAndWait(packageOf(source));
    QCOMPARE((*m_site)->device(offlineIp)->getName(), source.identity.name);
    QCOMPARE(m_panel->marks(m_panel->deviceCombo()->currentIndex()).value(2), source.identity.name);
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
    apply(answer);
    VERIFY_BOOK();
    QCOMPARE(m_book->seen().first().buttons, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    settle();
    VERIFY_JOURNAL({questionBox});
    COMPARE_STATES(hardware(targetIp), before);
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("show")});
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

void TstApplyFlow::apply_others_applies_to_the_device_selected_before()
{
    const HardwareState active = hardware(targetIp);
    const HardwareState source = richDevice(sourceIp);
    const QString package = elsewhere(packageOf(source), QStringLiteral("elsewhere.corvelpro"));
    selectDevice(secondIp);
    m_book->expectDialog(QStringLiteral("QFileDialog"), [&](QDialog *dialog) {
        // As when the window is restored: selects the active device.
        (*m_panel)->hide();
        (*m_panel)->show();
        QCOMPARE(m_panel->selectedAddress(), targetIp);
        typePaths(qobject_cast<QFileDialog *>(dialog), {package});
    });
    expectQuestion(QMessageBox::No);
    click(m_panel->applyOthers());
    waitForEndOfLoad();
    VERIFY_BOOK();
    COMPARE_STATES(hardware(targetIp), active);
    COMPARE_STATES(hardware(secondIp).configuration(), source.configuration());
}

void TstApplyFlow::apply_others_chooses_one_file()
{
    // The user's last folder is ignored.
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

void TstApplyFlow::apply_others_refuses_invalid_packages_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("no archive");
    QTest::newRow("archive without record") << packageOf(plainDevice(sourceIp)).build();
    QTest::newRow("wrong checksum") << packageOf(plainDevice(sourceIp))
                                           .recordWithChecksum(QString(32, QLatin1Char('0')), QString(), QString())
                                           .build();
}

void TstApplyFlow::apply_others_refuses_invalid_packages()
{
    QFETCH(QByteArray, bytes);
    const QString path = elsewhere(QStringLiteral("odd.corvelpro"));
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
// Failures before the load

void TstApplyFlow::without_a_device_applying_asks_for_one()
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

void TstApplyFlow::three_marks_deselect_the_device()
{
    list(packageOf(plainDevice(sourceIp)));
    QComboBox *combo = m_panel->deviceCombo();
    combo->addItem(QStringLiteral("odd"));
    combo->setItemData(combo->count() - 1, QStringList{"a", "b", "c"}, Panel::markRole);
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

void TstApplyFlow::missing_marks_keep_the_device()
{
    list(packageOf(plainDevice(sourceIp)));
    QComboBox *combo = m_panel->deviceCombo();
    combo->addItem(QStringLiteral("odd"));
    {
        const ExpectMessage expected(QtCriticalMsg, QStringLiteral("parameter is empty!!!"), 1);
        combo->setCurrentIndex(combo->count() - 1);
    }
    apply(QMessageBox::Cancel);
    VERIFY_BOOK();
}

void TstApplyFlow::without_an_active_device_applying_ends_silently()
{
    list(packageOf(plainDevice(sourceIp)));
    Model::object_brige::instance()->setActiveDevice({});
    Journal::instance()->clear();
    apply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox});
}

void TstApplyFlow::a_removed_device_ends_the_apply_silently()
{
    list(packageOf(plainDevice(sourceIp)));
    selectDevice(secondIp);
    Model::DeviceList::instance()->removeDevice(secondIp);
    Journal::instance()->clear();
    apply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox});
    QCOMPARE(Model::object_brige::instance()->activeDevice(), (*m_site)->device(targetIp));
}

void TstApplyFlow::a_package_deleted_after_listing_is_reported()
{
    list(packageOf(plainDevice(sourceIp)));
    // The list must not notice before the click.
    const HeldThreadPool held;
    QVERIFY(QFile::remove(projectFile(QStringLiteral("show"))));
    m_book->expectWarning(QStringLiteral("Remind"), QStringLiteral("The file does not exist."));
    clickApply();
    VERIFY_BOOK();
    VERIFY_JOURNAL({warningBox});
}

void TstApplyFlow::a_package_deleted_behind_the_question_is_reported()
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

void TstApplyFlow::a_package_changed_after_listing_ends_silently()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    QFile file(projectFile(QStringLiteral("show")));
    QVERIFY(file.open(QIODevice::ReadWrite));
    // Bytes covered by the checksum: next to the magic number, the version needed.
    QVERIFY(file.seek(4) && file.write("\x15", 1) == 1);
    file.close();
    apply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox, showWaitingDialog, updateOnlineDevice, hideWaitingDialog});
    COMPARE_STATES(hardware(targetIp), before);
}

void TstApplyFlow::a_failed_sync_before_the_reset_only_logs()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(updateOnlineDevice, Fault::fail());
    const ExpectMessage expected(QtWarningMsg, syncWarning, 1);
    apply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox, showWaitingDialog, updateOnlineDevice, hideWaitingDialog});
    COMPARE_STATES(hardware(targetIp), before);
}

void TstApplyFlow::a_failed_sync_after_the_reset_only_logs()
{
    const int open = openNamelessFiles();
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(updateOnlineDevice, Fault::fail(2));
    const ExpectMessage expected(QtWarningMsg, syncWarning, 1);
    apply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox, showWaitingDialog, updateOnlineDevice, hideWaitingDialog, showWaitingDialog,
                    updateDeviceInfo, hideWaitingDialog, showWaitingDialog, updateOnlineDevice, hideWaitingDialog});
    QVERIFY(!WaitingDialog::instance()->isVisible());
    // The apply has ended, so none of its files may remain.
    QCOMPARE(openNamelessFiles(), open);
}

void TstApplyFlow::a_failed_reset_is_reported()
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
    // The apply has ended, so none of its files may remain.
    QCOMPARE(openNamelessFiles(), open);
}

void TstApplyFlow::a_device_lost_before_the_reset_is_reported()
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

void TstApplyFlow::a_removed_device_is_not_reset()
{
    list(packageOf(plainDevice(sourceIp)));
    // It stays active.
    const std::shared_ptr<Model::Device> device = Model::object_brige::instance()->activeDevice();
    Model::DeviceList::instance()->removeDevice(targetIp);
    Model::object_brige::instance()->setActiveDevice(device);
    QVERIFY(device->getDeviceOnlineFlag());
    Journal::instance()->clear();
    const ExpectMessage warned(QtWarningMsg, syncWarning, 1);
    apply();
    VERIFY_BOOK();
    settle();
    VERIFY_JOURNAL({questionBox});
}

// ---------------------------------------------------------------------------------------------------------------------
// A site that changes meanwhile

void TstApplyFlow::another_device_is_never_reset()
{
    const HardwareState first = hardware(targetIp);
    const HardwareState second = hardware(secondIp);
    list(packageOf(plainDevice(sourceIp)));
    Faults::instance()->arm(updateOnlineDevice, Fault::run([this] {
                                Model::object_brige::instance()->setActiveDevice((*m_site)->device(secondIp));
                            }));
    const ExpectMessage told(
        QtWarningMsg, QStringLiteral("Not reset: %1 is to be, but %2 is the active device").arg(targetIp, secondIp), 1);
    expectQuestion(QMessageBox::No);
    m_book->expectWarning(QStringLiteral("Warning"), QStringLiteral(" Restore factory failed "));
    clickApply();
    VERIFY_BOOK();
    settle();
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
    COMPARE_STATES(hardware(targetIp), first);
    COMPARE_STATES(hardware(secondIp), second);
}

void TstApplyFlow::beforeTheCheck(const QString &lastCall, const std::function<void()> &act)
{
    const auto isDone = std::make_shared<bool>(false);
    constexpr int lookups = 20;
    for (int call = 1; call <= lookups; ++call)
        Faults::instance()->arm(getDeviceByIPAddr, Fault::run(
                                                       [=] {
                                                           if (*isDone ||
                                                               mainThreadOperations().value(0) != questionBox ||
                                                               mainThreadOperations().last() != lastCall)
                                                               return;
                                                           *isDone = true;
                                                           act();
                                                       },
                                                       call));
}

void TstApplyFlow::device_lost_during_the_check_is_not_reset()
{
    const HardwareState before = hardware(targetIp);
    list(packageOf(richDevice(sourceIp)));
    beforeTheCheck(hideWaitingDialog, [this] { (*m_site)->unplug(targetIp); });
    Faults::instance()->arm(deviceFromJson, Fault::run([this] { (*m_site)->plug(targetIp); }));
    applyAndExpect(QStringLiteral("Project file import failed"));
    VERIFY_BOOK();
    settle();
    QVERIFY((*m_site)->device(targetIp)->getDeviceOnlineFlag());
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);
    COMPARE_STATES(hardware(targetIp), before);
}

void TstApplyFlow::device_appearing_during_the_check_stays_unchanged()
{
    list(packageOf(richDevice(sourceIp)));
    selectDevice(offlineIp);
    HardwareState before;
    beforeTheCheck(setActiveDevice, [&] {
        (*m_site)->plug(offlineIp);
        before = hardware(offlineIp);
    });
    applyAndExpect(QStringLiteral("Project file import failed"));
    VERIFY_BOOK();
    settle();
    QVERIFY((*m_site)->device(offlineIp)->getDeviceOnlineFlag());
    QCOMPARE(Journal::instance()->count(copySlotDataToDevice), 0);
    COMPARE_STATES(hardware(offlineIp), before);
}

void TstApplyFlow::losing_the_device_behind_the_question_ends_applying()
{
    const HardwareState second = hardware(secondIp);
    list(packageOf(plainDevice(sourceIp)));
    m_book->expectDialog(QStringLiteral("HX::Widgets::FramelessMessageBox"), [&](QDialog *dialog) {
        Model::DeviceList::instance()->removeDevice(targetIp);
        Model::object_brige::instance()->setActiveDevice((*m_site)->device(secondIp));
        (*m_panel)->hide();
        (*m_panel)->show();
        click(qobject_cast<HX::Widgets::FramelessMessageBox *>(dialog)->button(QMessageBox::No));
    });
    const ExpectMessage told(
        QtWarningMsg, QStringLiteral("Not begun for %1: it has gone, and %2 is selected now").arg(targetIp, secondIp),
        1);
    clickApply();
    VERIFY_BOOK();
    settle();
    QCOMPARE(m_panel->selectedAddress(), secondIp);
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
    COMPARE_STATES(hardware(secondIp), second);
}

TEST_MAIN(TstApplyFlow)
#include "tst_applyflow.moc"
