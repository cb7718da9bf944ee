// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "diskspace.h"

#include <support/freespace.h>
#include <support/gate.h>
#include <support/journalmatchers.h>
#include <support/panelfixture.h>
#include <support/testmain.h>
#include <support/testsite.h>
#include <zippackagehandle.h>

#include <core/icore.h>
#include <model/objectbrige.h>
#include <simulation/faults.h>

#include <QPointer>

using namespace PanelTesting;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
using Model::object_brige;
namespace DiskSpace = ProjectFileCfg::Internal::DiskSpace;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ZipPackageHandle;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;
using Simulation::Journal;
using Simulation::JournalEntry;

namespace {

/// In the format of calls().
QString called(QLatin1String operation, const QString &arguments)
{
    return operation + QLatin1Char(' ') + arguments;
}

} // namespace

/// Saving a project with the real panel, from the click to the package in the list, and the reasons for which a save
/// does not start.
class TstSavingFlow : public QObject, protected PanelOnSite<TestSite>
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // Saving
    void saving_packs_and_lists_the_selected_device();
    void the_host_is_called_in_this_order();
    void the_selected_device_becomes_the_active_one();
    void the_waiting_dialog_shows_text_and_cancel_button();
    void an_offline_device_is_neither_synchronised_nor_reserved();
    void changes_on_the_device_are_synchronised_first();
    void chinese_and_emoji_survive_a_save();
    void saving_twice_lists_both_newest_first();

    // The property dialog
    void a_free_name_and_the_time_are_proposed();
    void a_gap_in_the_numbers_is_filled_first();
    void with_all_names_taken_the_proposal_is_empty();
    void cancelling_the_property_dialog_starts_nothing();
    void the_property_dialog_is_deleted_after_use_data();
    void the_property_dialog_is_deleted_after_use();

    // Reasons not to start
    void saving_without_a_selected_device_is_refused();
    void three_marks_deselect_the_device();
    void an_empty_mark_keeps_the_device();
    void a_shortened_mark_ends_the_save_silently();
    void without_an_active_device_a_save_ends_silently();
    void a_removed_device_ends_the_save_silently();
    void losing_the_device_behind_the_dialog_starts_nothing();
    void device_activated_behind_the_dialog_is_not_saved();
    void package_created_before_the_job_is_kept();
    void a_failed_synchronisation_is_reported();
    void a_missing_project_folder_has_free_space();
    void needing_all_the_free_space_is_refused();
    void one_mebibyte_less_than_the_free_space_passes();
    void free_space_does_not_matter_offline();

private:
    /// The journal's entries of one side: the main thread or the jobs.
    static QStringList calls(bool onMainThread);
    /// Makes the selected device require that many MiB.
    void setEstimate(quint64 mebibytes);
};

QStringList TstSavingFlow::calls(bool onMainThread)
{
    QStringList calls;
    for (const JournalEntry &entry : Journal::instance()->entries()) {
        if (entry.onMainThread != onMainThread)
            continue;
        QString call = entry.operation;
        for (const QVariant &argument : entry.arguments) {
            const QString text =
                argument.type() == QVariant::List ? argument.toStringList().join(',') : argument.toString();
            if (!text.isEmpty())
                call += ' ' + text;
        }
        calls.append(call);
    }
    return calls;
}

void TstSavingFlow::setEstimate(quint64 mebibytes)
{
    const quint64 margin = 10;
    const quint64 logos = Q_UINT64_C(3) << 20;
    // The last byte before the next MiB: sizes are rounded down.
    const quint64 others = ((mebibytes - margin + 1) << 20) - 1 - logos;
    (*m_site)->hardware(m_site->mainHall)->fixCounters(logos, others);
}

// ---------------------------------------------------------------------------------------------------------------------
// Saving

void TstSavingFlow::saving_packs_and_lists_the_selected_device()
{
    QVERIFY(pressSave("Gala", "before the show"));
    QTRY_VERIFY(hasJobEnded());
    QTRY_COMPARE(m_panel->names(), QStringList{"Gala"});
    QCOMPARE(m_panel->table()->item(0, 1)->text(), QString("before the show"));
    EngineerPacketInfo info;
    info.strFilePath = projectFile("Gala");
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QString("Gala"));
    QCOMPARE(info.strComment, QString("before the show"));
    QVERIFY(ZipPackageHandle::getFileList(info.strFilePath).contains("192.168.1.11.json"));
}

void TstSavingFlow::the_host_is_called_in_this_order()
{
    QVERIFY(pressSave("Show"));
    QTRY_VERIFY(hasJobEnded());
    QStringList expected{called(showWaitingDialog, "0 Sync device data , please wait."),
                         called(updateOnlineDevice, "192.168.1.11 ST16-2208-0117"),
                         hideWaitingDialog,
                         called(calLogoMaterailCapacity, "192.168.1.11 1 true"),
                         called(usedCapacity, "192.168.1.11"),
                         called(setChannelExclusive, "false 192.168.1.11"),
                         called(setOperatorType, "OperatorBackup"),
                         called(setCanelVisible, "true"),
                         called(showWaitingDialog, "0 Please wait while the project file is exported")};
    for (const char *name : {"Opening beams", "Keynote aurora", "Walk-in bokeh", "Stage blue", "Panel aurora",
                             "Award gold", "Finale beams"})
        expected << called(showWaitingDialog, QStringLiteral("0 Saving the gallery [BKG:%1]...").arg(name))
                 << called(setCanelVisible, "true");
    expected << hideWaitingDialog << called(setOperatorType, "OperatorNone")
             << called(setChannelExclusive, "false 192.168.1.11");
    QString difference = sequenceDifference(calls(true), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    QCOMPARE(int(Core::ICore::OperatorBackup), 1);
    QCOMPARE(int(Core::ICore::OperatorNone), 2);

    const QStringList ofTheJob = calls(false);
    QCOMPARE(ofTheJob.first(), called(serailize, m_site->path("devices")));
    QCOMPARE(ofTheJob.size(), 1 + 7 * 2 + 4 + 6);
    // The job starts only after the host was told.
    VERIFY_JOURNAL_ORDER(
        {setOperatorType, showWaitingDialog, serailize, queryMaterailData, presetFullDetail2Binary, setOperatorType});
}

void TstSavingFlow::the_selected_device_becomes_the_active_one()
{
    selectDevice(m_site->foyer);
    QCOMPARE(object_brige::instance()->activeDevice()->getIPAddress(), m_site->mainHall);
    QVERIFY(pressSave("Foyer"));
    QTRY_VERIFY(hasJobEnded());
    QCOMPARE(calls(true).first(), called(setActiveDevice, "192.168.1.20"));
    QCOMPARE(Journal::instance()->count(setActiveDevice), 1);
    QCOMPARE(object_brige::instance()->activeDevice()->getIPAddress(), m_site->foyer);
    QCOMPARE(m_panel->deviceCombo()->toolTip(), (*m_site)->device(m_site->foyer)->getDeviceInfo());
    QVERIFY(ZipPackageHandle::getFileList(projectFile("Foyer")).contains("192.168.1.20.json"));
}

void TstSavingFlow::the_waiting_dialog_shows_text_and_cancel_button()
{
    WaitingDialog *waiting = WaitingDialog::instance();
    const auto *cancel = waiting->findChild<QPushButton *>();
    // As a host operation may have left it.
    const auto disturb = [waiting] {
        waiting->setButtonText(QStringLiteral("Skip"));
        waiting->setCanelVisible(false);
    };
    disturb();
    Gate start;
    Gate picture;
    Faults::instance()->arm(serailize, start.fault());
    Faults::instance()->arm(queryMaterailData, picture.fault());
    QVERIFY(pressSave("Show"));
    QVERIFY(start.waitForThread());
    QVERIFY(waiting->isVisible());
    QCOMPARE(waiting->text(), QString("Please wait while the project file is exported"));
    QVERIFY(cancel->isVisible());
    QCOMPARE(cancel->text(), QString("Cancel"));

    disturb();
    start.open();
    QVERIFY(picture.waitForThread());
    QTRY_COMPARE(waiting->text(), QString("Saving the gallery [BKG:Opening beams]..."));
    QVERIFY(cancel->isVisible());
    QCOMPARE(cancel->text(), QString("Cancel"));
    picture.open();
    QTRY_VERIFY(hasJobEnded());
}

void TstSavingFlow::an_offline_device_is_neither_synchronised_nor_reserved()
{
    selectDevice(m_site->touringRack);
    QVERIFY(pressSave("Rack"));
    QTRY_VERIFY(hasJobEnded());
    const QString difference =
        sequenceDifference(calls(true), {called(setActiveDevice, "192.168.1.30"),
                                         called(setOperatorType, "OperatorBackup"), called(setCanelVisible, "true"),
                                         called(showWaitingDialog, "0 Please wait while the project file is exported"),
                                         hideWaitingDialog, called(setOperatorType, "OperatorNone")});
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    QTRY_COMPARE(m_panel->names(), QStringList{"Rack"});
}

void TstSavingFlow::changes_on_the_device_are_synchronised_first()
{
    // Not yet in the host's model.
    (*m_site)->hardware(m_site->mainHall)->change([](HardwareState &state) {
        state.backgrounds = {{200, state.backgrounds.first()}};
    });
    QVERIFY(pressSave("Show"));
    QTRY_VERIFY(hasJobEnded());
    QCOMPARE(ZipPackageHandle::getFileList(projectFile("Show")).filter(QRegularExpression("^BKG/.")),
             QStringList{"BKG/BKG_200.png"});
}

void TstSavingFlow::chinese_and_emoji_survive_a_save()
{
    const QString name = QString::fromUtf8("年会 🎬");
    const QString comment = QString::fromUtf8("彩排之后 👩‍🎤");
    QVERIFY(pressSave(name, comment));
    QTRY_VERIFY(hasJobEnded());
    QTRY_COMPARE(m_panel->names(), QStringList{name});
    QCOMPARE(m_panel->table()->item(0, 1)->text(), comment);
    QVERIFY(QFile::exists(projectFile(name)));
    // Read from the disk, independently of the writer.
    const EngineerDocOperWidget another(nullptr);
    const auto *table = another.findChild<QTableWidget *>();
    QTRY_COMPARE(table->rowCount(), 1);
    QCOMPARE(table->item(0, 0)->text(), name);
    QCOMPARE(table->item(0, 1)->text(), comment);
}

void TstSavingFlow::saving_twice_lists_both_newest_first()
{
    QVERIFY(pressSave("First", "1"));
    QTRY_VERIFY(hasJobEnded());
    QTRY_COMPARE(m_panel->names(), QStringList{"First"});
    QFile first(projectFile("First"));
    QVERIFY(first.open(QIODevice::ReadWrite));
    QVERIFY(first.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime));
    first.close();
    Journal::instance()->clear();
    QVERIFY(pressSave("Second", "2"));
    QTRY_VERIFY(hasJobEnded());
    QTRY_COMPARE(m_panel->names(), QStringList({"Second", "First"}));
    QCOMPARE(m_panel->table()->item(0, 1)->text(), QString("2"));
    QCOMPARE(m_panel->table()->item(1, 1)->text(), QString("1"));
}

// ---------------------------------------------------------------------------------------------------------------------
// The property dialog

void TstSavingFlow::a_free_name_and_the_time_are_proposed()
{
    for (int number = 1; number <= 3; ++number)
        QVERIFY(QFile(projectFile("Project" + QString::number(number))).open(QIODevice::WriteOnly));
    const QDateTime before = QDateTime::currentDateTime();
    QString name;
    QString comment;
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        name = propertiesIn(dialog).name;
        comment = propertiesIn(dialog).comment;
        click(dialog, QStringLiteral("OK"));
    });
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    QCOMPARE(name, QString("Project4"));
    const QDateTime proposed = QDateTime::fromString(comment, "yyyyMMdd_hhmmss");
    QVERIFY2(proposed.isValid(), qPrintable(comment));
    QVERIFY(proposed >= before.addSecs(-1) && proposed <= QDateTime::currentDateTime());
    QTRY_VERIFY(hasJobEnded());
    EngineerPacketInfo info;
    info.strFilePath = projectFile("Project4");
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QString("Project4"));
    QCOMPARE(info.strComment, comment);
}

void TstSavingFlow::a_gap_in_the_numbers_is_filled_first()
{
    for (const int number : {1, 3})
        QVERIFY(QFile(projectFile("Project" + QString::number(number))).open(QIODevice::WriteOnly));
    QString name;
    m_book->expectDialog(propertyDialog, [&name](QDialog *dialog) {
        name = propertiesIn(dialog).name;
        click(dialog, QStringLiteral("Cancel"));
    });
    QVERIFY(click(m_panel->saveProject()));
    QCOMPARE(name, QString("Project2"));
}

void TstSavingFlow::with_all_names_taken_the_proposal_is_empty()
{
    const auto take = [](int number) {
        return QFile(projectFile("Project" + QString::number(number))).open(QIODevice::WriteOnly);
    };
    const auto proposal = [this] {
        QString name = "unread";
        m_book->expectDialog(propertyDialog, [&name](QDialog *dialog) {
            name = propertiesIn(dialog).name;
            click(dialog, QStringLiteral("Cancel"));
        });
        click(m_panel->saveProject());
        return name;
    };
    for (int number = 1; number <= 998; ++number)
        QVERIFY(take(number));
    QCOMPARE(proposal(), QString("Project999"));
    QVERIFY(take(999));
    QCOMPARE(proposal(), QString());
}

void TstSavingFlow::cancelling_the_property_dialog_starts_nothing()
{
    m_book->expectDialog(propertyDialog, [](QDialog *dialog) { click(dialog, QStringLiteral("Cancel")); });
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
    QCOMPARE(calls(false), QStringList());
    QCOMPARE(QDir(projectFilesPath()).entryList(QDir::Files), QStringList());
    QVERIFY(pressSave("Afterwards"));
    QTRY_VERIFY(hasJobEnded());
    QVERIFY(QFile::exists(projectFile("Afterwards")));
}

void TstSavingFlow::the_property_dialog_is_deleted_after_use_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("accepted") << "OK";
    QTest::newRow("rejected") << "Cancel";
}

void TstSavingFlow::the_property_dialog_is_deleted_after_use()
{
    QFETCH(QString, button);
    QPointer<QDialog> used;
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        QCOMPARE(dialog->parentWidget(), m_panel->widget.get());
        used = dialog;
        click(dialog, button);
    });
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    QTRY_VERIFY(!used);
    QVERIFY((*m_panel)->findChildren<QDialog *>().isEmpty());
    if (button == QStringLiteral("OK"))
        QTRY_VERIFY(hasJobEnded());
}

// ---------------------------------------------------------------------------------------------------------------------
// Reasons not to start

void TstSavingFlow::saving_without_a_selected_device_is_refused()
{
    m_panel.reset();
    object_brige::instance()->setActiveDevice({});
    m_panel.emplace();
    (*m_panel)->show();
    object_brige::instance()->setActiveDevice((*m_site)->device(m_site->mainHall));
    Journal::instance()->clear();
    m_book->expectWarning("Warning", "Please select a device.");
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    VERIFY_JOURNAL({warningBox});
}

void TstSavingFlow::three_marks_deselect_the_device()
{
    m_panel->deviceCombo()->setItemData(1, QStringList({"Info", "Type", "Name"}), Panel::markRole);
    {
        const ExpectMessage logged(QtCriticalMsg, "device mark list count error.", 1);
        m_panel->deviceCombo()->setCurrentIndex(1);
    }
    QCOMPARE(m_panel->deviceCombo()->toolTip(), QString("Info"));
    for (int attempt = 0; attempt < 2; ++attempt) {
        m_book->expectWarning("Warning", "Please select a device.");
        QVERIFY(click(m_panel->saveProject()));
        VERIFY_BOOK();
    }
    VERIFY_JOURNAL({warningBox, warningBox});
}

void TstSavingFlow::an_empty_mark_keeps_the_device()
{
    m_panel->deviceCombo()->setItemData(1, QStringList(), Panel::markRole);
    {
        const ExpectMessage logged(QtCriticalMsg, "parameter is empty!!!", 1);
        m_panel->deviceCombo()->setCurrentIndex(1);
    }
    {
        // The previously selected device remains: its mark stops the save.
        const ExpectMessage logged(QtCriticalMsg, "parameter is empty!!!", 1);
        QVERIFY(click(m_panel->saveProject()));
    }
    QCOMPARE(Journal::instance()->operations(), QStringList());
    m_panel->deviceCombo()->blockSignals(true);
    m_panel->deviceCombo()->setCurrentIndex(0);
    m_panel->deviceCombo()->blockSignals(false);
    QVERIFY(pressSave("Main hall"));
    QTRY_VERIFY(hasJobEnded());
    QVERIFY(ZipPackageHandle::getFileList(projectFile("Main hall")).contains("192.168.1.11.json"));
}

void TstSavingFlow::a_shortened_mark_ends_the_save_silently()
{
    m_panel->deviceCombo()->blockSignals(true);
    m_panel->deviceCombo()->setItemData(0, QStringList({"Short", "Type", "Name"}), Panel::markRole);
    m_panel->deviceCombo()->blockSignals(false);
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    QCOMPARE(m_panel->deviceCombo()->toolTip(), QString("Short"));
    QCOMPARE(Journal::instance()->operations(), QStringList());
}

void TstSavingFlow::without_an_active_device_a_save_ends_silently()
{
    object_brige::instance()->setActiveDevice({});
    Journal::instance()->clear();
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->operations(), QStringList());
}

void TstSavingFlow::a_removed_device_ends_the_save_silently()
{
    selectDevice(m_site->foyer);
    TestSite::removeFromDeviceList(m_site->foyer);
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->operations(), QStringList());
}

void TstSavingFlow::losing_the_device_behind_the_dialog_starts_nothing()
{
    m_book->expectDialog(propertyDialog, [](QDialog *dialog) {
        object_brige::instance()->setActiveDevice({});
        click(dialog, QStringLiteral("OK"));
    });
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
    QVERIFY(!WaitingDialog::instance()->isVisible());
}

void TstSavingFlow::device_activated_behind_the_dialog_is_not_saved()
{
    const QString selected = m_panel->selectedAddress();
    QVERIFY(selected != m_site->touringRack);
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        object_brige::instance()->setActiveDevice((*m_site)->device(m_site->touringRack));
        (*m_panel)->hide();
        (*m_panel)->show();
        QCOMPARE(m_panel->selectedAddress(), m_site->touringRack);
        answerProperties(dialog, QStringLiteral("Show"), QString());
    });
    QVERIFY(click(m_panel->saveProject()));
    QTRY_VERIFY(hasJobEnded());
    settle();
    VERIFY_BOOK();
    QVERIFY(ZipPackageHandle::getFileList(projectFile(QStringLiteral("Show")))
                .contains(selected + QStringLiteral(".json")));
    QCOMPARE(m_panel->selectedAddress(), selected);
}

void TstSavingFlow::package_created_before_the_job_is_kept()
{
    // Another program saves under the name between OK and the start of the job, while the device is asked for its
    // channel.
    Faults::instance()->arm(setChannelExclusive, Fault::run([] {
                                QVERIFY(writePackage(projectFile(QStringLiteral("Show")), QStringLiteral("theirs")));
                            }));
    m_book->expectDialog(propertyDialog, [](QDialog *dialog) {
        answerProperties(dialog, QStringLiteral("Show"), QStringLiteral("ours"));
    });
    m_book->expectInformation(QStringLiteral("Remind"), QStringLiteral("Failed to encrypt file"));
    QVERIFY(click(m_panel->saveProject()));
    waitForAnswers();
    settle();
    EngineerPacketInfo info;
    info.strFilePath = projectFile(QStringLiteral("Show"));
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strComment, QStringLiteral("theirs"));
}

void TstSavingFlow::a_failed_synchronisation_is_reported()
{
    Faults::instance()->arm(updateOnlineDevice, Fault::fail());
    m_book->expectWarning("Warning", "Failed to get device information");
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    VERIFY_JOURNAL({showWaitingDialog, updateOnlineDevice, hideWaitingDialog, warningBox});
}

void TstSavingFlow::a_missing_project_folder_has_free_space()
{
    const FreeSpace free(Q_INT64_C(1000) << 20);
    setEstimate(999);
    QVERIFY(QDir(projectFilesPath()).removeRecursively());
    m_book->expectDialog(propertyDialog, [](QDialog *dialog) { click(dialog, QStringLiteral("Cancel")); });
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
}

void TstSavingFlow::needing_all_the_free_space_is_refused()
{
    const FreeSpace free(Q_INT64_C(1000) << 20);
    setEstimate(1000);
    const ExpectMessage logged(
        QtCriticalMsg,
        QStringLiteral("m_strDefaultPath: \"%1\"   project file size: 1000   available space size: 1000")
            .arg(projectFilesPath()),
        1);
    m_book->expectWarning("Warning", "Insufficient default path space to perform current operation");
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
}

void TstSavingFlow::one_mebibyte_less_than_the_free_space_passes()
{
    const FreeSpace free(Q_INT64_C(1000) << 20);
    setEstimate(999);
    m_book->expectDialog(propertyDialog, [](QDialog *dialog) { click(dialog, QStringLiteral("Cancel")); });
    QVERIFY(click(m_panel->saveProject()));
    VERIFY_BOOK();
}

void TstSavingFlow::free_space_does_not_matter_offline()
{
    selectDevice(m_site->touringRack);
    // A folder that does not exist has no free space.
    QVERIFY(QDir(projectFilesPath()).removeRecursively());
    QCOMPARE(DiskSpace::getDiskAvailableSize(projectFilesPath()), 0ULL);
    QVERIFY(pressSave("Rack"));
    QTRY_VERIFY(hasJobEnded());
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(projectFile("Rack")));
}

TEST_MAIN(TstSavingFlow)
#include "tst_savingflow.moc"
