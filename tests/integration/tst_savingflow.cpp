#include "diskspace.h"
#include "engineerdocoperwidget.h"
#include "zippackagehandle.h"

#include <core/icore.h>
#include <model/objectbrige.h>
#include <simulation/faults.h>
#include <simulation/journal.h>
#include <support/answerbook.h>
#include <support/freespace.h>
#include <support/gate.h>
#include <support/journalmatchers.h>
#include <support/packagebuilder.h>
#include <support/testmain.h>
#include <support/testsite.h>
#include <widgets/waitingdialog.h>

#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableWidget>
#include <QTextEdit>
#include <QThreadPool>
#include <QtConcurrentRun>

#include <stdexcept>

using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using Corvel::Widgets::WaitingDialog;
using Model::object_brige;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::HardwareState;
using Simulation::Journal;
using Simulation::JournalEntry;
using Simulation::PictureState;

static const QString serailize = QStringLiteral("Serailizer.serailize");
static const QString query = QStringLiteral("MaterialControl.queryMaterailData");
static const QString propertyDialog = QStringLiteral("EngineerPropertySettingWidget");
static const int markRole = Qt::UserRole + 1;

class TstSavingFlow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void saving_packs_the_selected_device_and_lists_the_package();
    void the_host_is_called_in_this_order();
    void the_selected_device_becomes_the_active_one();
    void the_waiting_dialog_shows_text_and_cancel_button();
    void an_offline_device_is_neither_synchronised_nor_reserved();
    void what_changed_on_the_device_is_synchronised_before_it_is_saved();
    void chinese_and_emoji_come_back_in_the_list();
    void saving_twice_lists_both_newest_first();

    void the_proposal_is_a_free_name_and_the_time();
    void a_gap_in_the_numbers_is_filled_first();
    void with_all_999_names_taken_the_proposal_is_empty();
    void cancelling_the_property_dialog_starts_nothing();
    void the_property_dialog_goes_when_it_was_used_data();
    void the_property_dialog_goes_when_it_was_used();

    void without_a_selected_device_a_save_is_refused();
    void a_mark_of_three_elements_deselects_the_device();
    void an_empty_mark_is_logged_and_the_device_stays();
    void a_mark_that_became_short_ends_the_save_silently();
    void without_an_active_device_a_save_ends_silently();
    void a_device_that_is_gone_ends_the_save_silently();
    void a_device_that_goes_while_the_dialog_is_open_starts_nothing();
    void a_failed_synchronisation_is_told();
    void a_missing_project_folder_has_free_space();
    void an_estimate_equal_to_the_free_space_is_refused();
    void one_mebibyte_less_than_the_free_space_passes();
    void an_offline_device_never_meets_the_space_warning();

    void a_failed_backup_is_told_data();
    void a_failed_backup_is_told();
    void cancelling_stops_the_transfer_and_is_told();
    void a_late_cancel_request_does_nothing();
    void what_the_host_throws_ends_in_a_message_data();
    void what_the_host_throws_ends_in_a_message();
    void a_device_that_the_host_throws_back_is_not_saved();
    void a_cancel_that_the_host_throws_back_cancels_all_the_same();
    void after_a_failure_the_next_save_works();
    void the_job_stays_until_the_next_save_begins();
    void the_list_is_fresh_before_and_after_the_box_data();
    void the_list_is_fresh_before_and_after_the_box();

    void a_panel_that_goes_during_a_backup_takes_everything_along();
    void a_panel_that_goes_while_the_end_is_told_is_quiet();
    void a_panel_that_goes_after_a_backup_tells_the_host_nothing();
    void a_panel_that_goes_during_a_scan_leaves_it_alone();

private:
    /// Presses "Save Project" and OK in the dialog with these texts.
    bool pressSave(const QString &name, const QString &comment = QString());
    bool hasEnded() const;
    void select(const QString &ip);
    QStandardItem *item(int row) const;
    QString packagePath(const QString &name) const { return m_projects + name + ".corvelpro"; }
    QStringList listedNames() const;
    /// The journal's entries of one side: the main thread or the jobs'.
    static QStringList calls(bool onMainThread);
    /// Makes the selected device need so many MiB.
    void setEstimate(quint64 mebibytes);

    QScopedPointer<TestSite> m_site;
    QScopedPointer<EngineerDocOperWidget> m_panel;
    QComboBox *m_devices = nullptr;
    QTableWidget *m_table = nullptr;
    QString m_projects;
};

void TstSavingFlow::init()
{
    m_projects = QDir::homePath() + QStringLiteral("/Documents/Velmora/Tarvo/ProjectFiles/");
    QVERIFY(QDir(QDir::homePath() + QStringLiteral("/Documents/Velmora")).removeRecursively());
    QVERIFY(QDir().mkpath(m_projects));
    m_site.reset(new TestSite);
    m_panel.reset(new EngineerDocOperWidget(nullptr));
    m_panel->show();
    m_devices = m_panel->findChild<QComboBox *>();
    m_table = m_panel->findChild<QTableWidget *>();
    QVERIFY(m_devices && m_table);
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    Journal::instance()->clear();
    WarningGuard::clear();
}

void TstSavingFlow::cleanup()
{
    m_panel.reset();
    // Where a test failed, a job may still be waiting for the device.
    Simulation::cancelRunningOperations();
    QThreadPool::globalInstance()->waitForDone();
    QThreadPool::globalInstance()->setMaxThreadCount(QThread::idealThreadCount());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    WaitingDialog::instance()->hideWaitingDialog();
    m_site.reset();
}

bool TstSavingFlow::pressSave(const QString &name, const QString &comment)
{
    AnswerBook book;
    book.expectDialog(propertyDialog, [&](QDialog *dialog) {
        dialog->findChild<QLineEdit *>()->setText(name);
        dialog->findChild<QTextEdit *>()->setPlainText(comment);
        click(dialog, QStringLiteral("OK"));
    });
    return click(m_panel.data(), QStringLiteral("Save Project")) && book.isSatisfied();
}

bool TstSavingFlow::hasEnded() const
{
    const QVector<JournalEntry> types = Journal::instance()->entries(QStringLiteral("ICore.setOperatorType"));
    return !types.isEmpty() && types.last().arguments["type"] == QStringLiteral("OperatorNone") &&
           !WaitingDialog::instance()->isVisible();
}

void TstSavingFlow::select(const QString &ip)
{
    for (int row = 0; row < m_devices->count(); ++row) {
        if (m_devices->itemData(row, markRole).toStringList().value(3) == ip)
            m_devices->setCurrentIndex(row);
    }
    QCOMPARE(m_devices->currentData(markRole).toStringList().value(3), ip);
}

QStandardItem *TstSavingFlow::item(int row) const
{
    return qobject_cast<QStandardItemModel *>(m_devices->model())->item(row);
}

QStringList TstSavingFlow::listedNames() const
{
    QStringList names;
    for (int row = 0; row < m_table->rowCount(); ++row)
        names.append(m_table->item(row, 0)->text());
    return names;
}

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

// ---------------------------------------------------------------------------------------------------------------------
// Saving

void TstSavingFlow::saving_packs_the_selected_device_and_lists_the_package()
{
    QVERIFY(pressSave("Gala", "before the show"));
    QTRY_VERIFY(hasEnded());
    QTRY_COMPARE(listedNames(), QStringList{"Gala"});
    QCOMPARE(m_table->item(0, 1)->text(), QString("before the show"));
    EngineerPacketInfo info;
    info.strFilePath = packagePath("Gala");
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QString("Gala"));
    QCOMPARE(info.strComment, QString("before the show"));
    QVERIFY(ZipPackageHandle::getFileList(info.strFilePath).contains("192.168.1.11.json"));
}

void TstSavingFlow::the_host_is_called_in_this_order()
{
    QVERIFY(pressSave("Show"));
    QTRY_VERIFY(hasEnded());
    QStringList expected{"WaitingDialog.showWaitingDialog Sync device data , please wait.",
                         "OperationAdapter.updateOnlineDevice 192.168.1.11 ST16-2208-0117",
                         "WaitingDialog.hideWaitingDialog",
                         "DeviceControler.calLogoMaterailCapacity 192.168.1.11 1 true",
                         "DeviceControler.usedCapacity 192.168.1.11",
                         "DeviceControler.setChannelExclusive false 192.168.1.11",
                         "ICore.setOperatorType OperatorBackup",
                         "WaitingDialog.setCanelVisible true",
                         "WaitingDialog.showWaitingDialog Please wait while the project file is exported"};
    for (const char *name : {"Opening beams", "Keynote aurora", "Walk-in bokeh", "Stage blue", "Panel aurora",
                             "Award gold", "Finale beams"})
        expected << QStringLiteral("WaitingDialog.showWaitingDialog Saving the gallery [BKG:%1]...").arg(name)
                 << "WaitingDialog.setCanelVisible true";
    expected << "WaitingDialog.hideWaitingDialog"
             << "ICore.setOperatorType OperatorNone"
             << "DeviceControler.setChannelExclusive false 192.168.1.11";
    QString difference = sequenceDifference(calls(true), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    QCOMPARE(int(Core::ICore::OperatorBackup), 1);
    QCOMPARE(int(Core::ICore::OperatorNone), 2);

    const QStringList ofTheJob = calls(false);
    QCOMPARE(ofTheJob.first(), serailize + ' ' + m_site->path("devices"));
    QCOMPARE(ofTheJob.size(), 1 + 7 * 2 + 4 + 6);
    // The job begins only after the host was told of it.
    VERIFY_JOURNAL_ORDER({"ICore.setOperatorType", "WaitingDialog.showWaitingDialog", serailize, query,
                          "PresetControl.presetFullDetail2Binary", "ICore.setOperatorType"});
}

void TstSavingFlow::the_selected_device_becomes_the_active_one()
{
    select(m_site->foyer);
    QCOMPARE(object_brige::instance()->activeDevice()->getIPAddress(), m_site->mainHall);
    QVERIFY(pressSave("Foyer"));
    QTRY_VERIFY(hasEnded());
    QCOMPARE(calls(true).first(), QString("object_brige.setActiveDevice 192.168.1.20"));
    QCOMPARE(Journal::instance()->count("object_brige.setActiveDevice"), 1);
    QCOMPARE(object_brige::instance()->activeDevice()->getIPAddress(), m_site->foyer);
    QCOMPARE(m_devices->toolTip(), (*m_site)->device(m_site->foyer)->getDeviceInfo());
    QVERIFY(ZipPackageHandle::getFileList(packagePath("Foyer")).contains("192.168.1.20.json"));
}

void TstSavingFlow::the_waiting_dialog_shows_text_and_cancel_button()
{
    WaitingDialog *waiting = WaitingDialog::instance();
    const auto *cancel = waiting->findChild<QPushButton *>();
    // As an operation of the host may have left it.
    const auto disturb = [waiting] {
        waiting->setButtonText(QStringLiteral("Skip"));
        waiting->setCanelVisible(false);
    };
    disturb();
    Gate start;
    Gate picture;
    Faults::instance()->arm(serailize, start.fault());
    Faults::instance()->arm(query, picture.fault());
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
    QTRY_VERIFY(hasEnded());
}

void TstSavingFlow::an_offline_device_is_neither_synchronised_nor_reserved()
{
    select(m_site->touringRack);
    QVERIFY(pressSave("Rack"));
    QTRY_VERIFY(hasEnded());
    const QString difference = sequenceDifference(
        calls(true), {"object_brige.setActiveDevice 192.168.1.30", "ICore.setOperatorType OperatorBackup",
                      "WaitingDialog.setCanelVisible true",
                      "WaitingDialog.showWaitingDialog Please wait while the project file is exported",
                      "WaitingDialog.hideWaitingDialog", "ICore.setOperatorType OperatorNone"});
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    QTRY_COMPARE(listedNames(), QStringList{"Rack"});
}

void TstSavingFlow::what_changed_on_the_device_is_synchronised_before_it_is_saved()
{
    // The host's model does not know of it yet.
    (*m_site)->hardware(m_site->mainHall)->change([](HardwareState &state) {
        state.backgrounds = {{200, state.backgrounds.first()}};
    });
    QVERIFY(pressSave("Show"));
    QTRY_VERIFY(hasEnded());
    QCOMPARE(ZipPackageHandle::getFileList(packagePath("Show")).filter(QRegularExpression("^BKG/.")),
             QStringList{"BKG/BKG_200.png"});
}

void TstSavingFlow::chinese_and_emoji_come_back_in_the_list()
{
    const QString name = QString::fromUtf8("年会 🎬");
    const QString comment = QString::fromUtf8("彩排之后 👩‍🎤");
    QVERIFY(pressSave(name, comment));
    QTRY_VERIFY(hasEnded());
    QTRY_COMPARE(listedNames(), QStringList{name});
    QCOMPARE(m_table->item(0, 1)->text(), comment);
    QVERIFY(QFile::exists(packagePath(name)));
    // Read from the disk by somebody who did not write it.
    const EngineerDocOperWidget another(nullptr);
    const auto *table = another.findChild<QTableWidget *>();
    QTRY_COMPARE(table->rowCount(), 1);
    QCOMPARE(table->item(0, 0)->text(), name);
    QCOMPARE(table->item(0, 1)->text(), comment);
}

void TstSavingFlow::saving_twice_lists_both_newest_first()
{
    QVERIFY(pressSave("First", "1"));
    QTRY_VERIFY(hasEnded());
    QTRY_COMPARE(listedNames(), QStringList{"First"});
    QFile first(packagePath("First"));
    QVERIFY(first.open(QIODevice::ReadWrite));
    QVERIFY(first.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime));
    first.close();
    Journal::instance()->clear();
    QVERIFY(pressSave("Second", "2"));
    QTRY_VERIFY(hasEnded());
    QTRY_COMPARE(listedNames(), QStringList({"Second", "First"}));
    QCOMPARE(m_table->item(0, 1)->text(), QString("2"));
    QCOMPARE(m_table->item(1, 1)->text(), QString("1"));
}

// ---------------------------------------------------------------------------------------------------------------------
// The property dialog

void TstSavingFlow::the_proposal_is_a_free_name_and_the_time()
{
    for (int number = 1; number <= 3; ++number)
        QVERIFY(QFile(packagePath("Project" + QString::number(number))).open(QIODevice::WriteOnly));
    const QDateTime before = QDateTime::currentDateTime();
    QString name;
    QString comment;
    AnswerBook book;
    book.expectDialog(propertyDialog, [&](QDialog *dialog) {
        name = dialog->findChild<QLineEdit *>()->text();
        comment = dialog->findChild<QTextEdit *>()->toPlainText();
        click(dialog, QStringLiteral("OK"));
    });
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(name, QString("Project4"));
    const QDateTime proposed = QDateTime::fromString(comment, "yyyyMMdd_hhmmss");
    QVERIFY2(proposed.isValid(), qPrintable(comment));
    QVERIFY(proposed >= before.addSecs(-1) && proposed <= QDateTime::currentDateTime());
    QTRY_VERIFY(hasEnded());
    EngineerPacketInfo info;
    info.strFilePath = packagePath("Project4");
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QString("Project4"));
    QCOMPARE(info.strComment, comment);
}

void TstSavingFlow::a_gap_in_the_numbers_is_filled_first()
{
    for (const int number : {1, 3})
        QVERIFY(QFile(packagePath("Project" + QString::number(number))).open(QIODevice::WriteOnly));
    QString name;
    AnswerBook book;
    book.expectDialog(propertyDialog, [&name](QDialog *dialog) {
        name = dialog->findChild<QLineEdit *>()->text();
        click(dialog, QStringLiteral("Cancel"));
    });
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QCOMPARE(name, QString("Project2"));
}

void TstSavingFlow::with_all_999_names_taken_the_proposal_is_empty()
{
    const auto take = [this](int number) {
        return QFile(packagePath("Project" + QString::number(number))).open(QIODevice::WriteOnly);
    };
    const auto proposal = [this] {
        QString name = "unread";
        AnswerBook book;
        book.expectDialog(propertyDialog, [&name](QDialog *dialog) {
            name = dialog->findChild<QLineEdit *>()->text();
            click(dialog, QStringLiteral("Cancel"));
        });
        click(m_panel.data(), QStringLiteral("Save Project"));
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
    AnswerBook book;
    book.expectDialog(propertyDialog, [](QDialog *dialog) { click(dialog, QStringLiteral("Cancel")); });
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(Journal::instance()->count("ICore.setOperatorType"), 0);
    QCOMPARE(calls(false), QStringList());
    QCOMPARE(QDir(m_projects).entryList(QDir::Files), QStringList());
    QVERIFY(pressSave("Afterwards"));
    QTRY_VERIFY(hasEnded());
    QVERIFY(QFile::exists(packagePath("Afterwards")));
}

void TstSavingFlow::the_property_dialog_goes_when_it_was_used_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("accepted") << "OK";
    QTest::newRow("rejected") << "Cancel";
}

void TstSavingFlow::the_property_dialog_goes_when_it_was_used()
{
    QFETCH(QString, button);
    QPointer<QDialog> used;
    AnswerBook book;
    book.expectDialog(propertyDialog, [&](QDialog *dialog) {
        QCOMPARE(dialog->parentWidget(), m_panel.data());
        used = dialog;
        click(dialog, button);
    });
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QTRY_VERIFY(!used);
    QVERIFY(m_panel->findChildren<QDialog *>().isEmpty());
    if (button == QStringLiteral("OK"))
        QTRY_VERIFY(hasEnded());
}

// ---------------------------------------------------------------------------------------------------------------------
// What keeps a save from starting

void TstSavingFlow::without_a_selected_device_a_save_is_refused()
{
    m_panel.reset();
    object_brige::instance()->setActiveDevice({});
    m_panel.reset(new EngineerDocOperWidget(nullptr));
    m_panel->show();
    object_brige::instance()->setActiveDevice((*m_site)->device(m_site->mainHall));
    Journal::instance()->clear();
    AnswerBook book;
    book.expectWarning("Warning", "Please select a device.");
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    VERIFY_JOURNAL({"FramelessMessageBox.warning"});
}

void TstSavingFlow::a_mark_of_three_elements_deselects_the_device()
{
    item(1)->setData(QStringList({"Info", "Type", "Name"}), markRole);
    {
        const ExpectMessage logged(QtCriticalMsg, "device mark list count error.", 1);
        m_devices->setCurrentIndex(1);
    }
    QCOMPARE(m_devices->toolTip(), QString("Info"));
    for (int attempt = 0; attempt < 2; ++attempt) {
        AnswerBook book;
        book.expectWarning("Warning", "Please select a device.");
        QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
        QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    }
    VERIFY_JOURNAL({"FramelessMessageBox.warning", "FramelessMessageBox.warning"});
}

void TstSavingFlow::an_empty_mark_is_logged_and_the_device_stays()
{
    item(1)->setData(QStringList(), markRole);
    {
        const ExpectMessage logged(QtCriticalMsg, "parameter is empty!!!", 1);
        m_devices->setCurrentIndex(1);
    }
    {
        // Still the device that was selected before: it is the mark that stops the save.
        const ExpectMessage logged(QtCriticalMsg, "parameter is empty!!!", 1);
        const AnswerBook book;
        QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    }
    QCOMPARE(Journal::instance()->operations(), QStringList());
    m_devices->blockSignals(true);
    m_devices->setCurrentIndex(0);
    m_devices->blockSignals(false);
    QVERIFY(pressSave("Main hall"));
    QTRY_VERIFY(hasEnded());
    QVERIFY(ZipPackageHandle::getFileList(packagePath("Main hall")).contains("192.168.1.11.json"));
}

void TstSavingFlow::a_mark_that_became_short_ends_the_save_silently()
{
    m_devices->blockSignals(true);
    item(0)->setData(QStringList({"Short", "Type", "Name"}), markRole);
    m_devices->blockSignals(false);
    const AnswerBook book;
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(m_devices->toolTip(), QString("Short"));
    QCOMPARE(Journal::instance()->operations(), QStringList());
}

void TstSavingFlow::without_an_active_device_a_save_ends_silently()
{
    object_brige::instance()->setActiveDevice({});
    Journal::instance()->clear();
    const AnswerBook book;
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(Journal::instance()->operations(), QStringList());
}

void TstSavingFlow::a_device_that_is_gone_ends_the_save_silently()
{
    select(m_site->foyer);
    TestSite::removeFromDeviceList(m_site->foyer);
    const AnswerBook book;
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(Journal::instance()->operations(), QStringList());
}

void TstSavingFlow::a_device_that_goes_while_the_dialog_is_open_starts_nothing()
{
    AnswerBook book;
    book.expectDialog(propertyDialog, [](QDialog *dialog) {
        object_brige::instance()->setActiveDevice({});
        click(dialog, QStringLiteral("OK"));
    });
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(Journal::instance()->count("ICore.setOperatorType"), 0);
    QVERIFY(!WaitingDialog::instance()->isVisible());
}

void TstSavingFlow::a_failed_synchronisation_is_told()
{
    Faults::instance()->arm("OperationAdapter.updateOnlineDevice", Fault::fail());
    AnswerBook book;
    book.expectWarning("Warning", "Failed to get device information");
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    VERIFY_JOURNAL({"WaitingDialog.showWaitingDialog", "OperationAdapter.updateOnlineDevice",
                    "WaitingDialog.hideWaitingDialog", "FramelessMessageBox.warning"});
}

void TstSavingFlow::setEstimate(quint64 mebibytes)
{
    const quint64 margin = 10;
    const quint64 logos = Q_UINT64_C(3) << 20;
    // The last byte before the next MiB: sizes are rounded down.
    const quint64 others = ((mebibytes - margin + 1) << 20) - 1 - logos;
    (*m_site)->hardware(m_site->mainHall)->fixCounters(logos, others);
}

void TstSavingFlow::a_missing_project_folder_has_free_space()
{
    const FreeSpace free(Q_INT64_C(1000) << 20);
    setEstimate(999);
    QVERIFY(QDir(m_projects).removeRecursively());
    AnswerBook book;
    book.expectDialog(propertyDialog, [](QDialog *dialog) { click(dialog, QStringLiteral("Cancel")); });
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstSavingFlow::an_estimate_equal_to_the_free_space_is_refused()
{
    const FreeSpace free(Q_INT64_C(1000) << 20);
    setEstimate(1000);
    const ExpectMessage logged(
        QtCriticalMsg,
        QStringLiteral("m_strDefaultPath: \"%1\"   project file size: 1000   available space size: 1000")
            .arg(m_projects),
        1);
    AnswerBook book;
    book.expectWarning("Warning", "Insufficient default path space to perform current operation");
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(Journal::instance()->count("ICore.setOperatorType"), 0);
}

void TstSavingFlow::one_mebibyte_less_than_the_free_space_passes()
{
    const FreeSpace free(Q_INT64_C(1000) << 20);
    setEstimate(999);
    AnswerBook book;
    book.expectDialog(propertyDialog, [](QDialog *dialog) { click(dialog, QStringLiteral("Cancel")); });
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstSavingFlow::an_offline_device_never_meets_the_space_warning()
{
    select(m_site->touringRack);
    // On a folder that does not exist nothing is free.
    QVERIFY(QDir(m_projects).removeRecursively());
    QCOMPARE(DiskSpace::getDiskAvailableSize(m_projects), 0ULL);
    QVERIFY(pressSave("Rack"));
    QTRY_VERIFY(hasEnded());
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(packagePath("Rack")));
}

// ---------------------------------------------------------------------------------------------------------------------
// How a save ends

void TstSavingFlow::a_failed_backup_is_told_data()
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

void TstSavingFlow::a_failed_backup_is_told()
{
    QFETCH(int, code);
    QFETCH(QString, message);
    switch (code) {
    case BackupExportBkgFailed:
        Faults::instance()->arm(query, Fault::fail());
        break;
    case BackupOfflineResourceIncomplete:
        select(m_site->touringRack);
        QVERIFY(QFile::remove(m_site->devicePath(m_site->touringRack, "LOGO/LOGO_1.png")));
        break;
    case BackupEncryptFailed: {
        select(m_site->touringRack);
        QVERIFY(QDir(m_projects).removeRecursively());
        QFile inTheWay(m_projects.chopped(1));
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
    AnswerBook book;
    book.expectInformation("Remind", message);
    QTRY_VERIFY(book.isSatisfied() && hasEnded());
    QCOMPARE(book.seen().size(), 1);
    QCOMPARE(int(book.seen().first().buttons), int(QMessageBox::Ok));
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    QCoreApplication::processEvents();
    QCOMPARE(listedNames(), QStringList());
    QVERIFY(!QFile::exists(packagePath("Show")));
}

void TstSavingFlow::cancelling_stops_the_transfer_and_is_told()
{
    const int untilCancelled = 600000;
    Faults::instance()->arm(query, Fault::late(untilCancelled, 3));
    QVERIFY(pressSave("Show"));
    QTRY_COMPARE(Journal::instance()->count(query), 3);
    AnswerBook book;
    book.expectInformation("Remind", "User cancels current operation");
    QVERIFY(click(WaitingDialog::instance(), QStringLiteral("Cancel")));
    QTRY_VERIFY(book.isSatisfied() && hasEnded());
    const QVector<JournalEntry> cancels = Journal::instance()->entries("DeviceControler.cancelOperator");
    QCOMPARE(cancels.size(), 1);
    QCOMPARE(cancels.first().arguments["command"].toList(), QVariantList({4, 10}));
    QCOMPARE(cancels.first().arguments["ip"].toString(), m_site->mainHall);
    QCOMPARE(Journal::instance()->count("DeviceControler.cancelCurrentTask"), 0);
    QCOMPARE(Journal::instance()->count(query), 3);
    QCOMPARE(calls(true).last(), QString("DeviceControler.setChannelExclusive false 192.168.1.11"));
    QVERIFY(!QFile::exists(packagePath("Show")));
}

void TstSavingFlow::a_late_cancel_request_does_nothing()
{
    QVERIFY(pressSave("Show"));
    QTRY_VERIFY(hasEnded());
    Journal::instance()->clear();
    emit WaitingDialog::instance()->signal_canelLoad();
    QCOMPARE(Journal::instance()->operations(), QStringList());
}

void TstSavingFlow::what_the_host_throws_ends_in_a_message_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("call");
    QTest::addColumn<bool>("refused");
    QTest::newRow("sync") << "OperationAdapter.updateOnlineDevice" << 1 << true;
    QTest::newRow("size of the logos") << "DeviceControler.calLogoMaterailCapacity" << 1 << true;
    QTest::newRow("size of the rest") << "DeviceControler.usedCapacity" << 1 << true;
    QTest::newRow("freeing the channel before") << "DeviceControler.setChannelExclusive" << 1 << false;
    QTest::newRow("telling that a save runs") << "ICore.setOperatorType" << 1 << false;
    QTest::newRow("telling that it ended") << "ICore.setOperatorType" << 2 << false;
    QTest::newRow("freeing the channel after") << "DeviceControler.setChannelExclusive" << 2 << false;
}

void TstSavingFlow::what_the_host_throws_ends_in_a_message()
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
            AnswerBook book;
            book.expectWarning("Warning", "Failed to get device information");
            QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
            QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
            QCOMPARE(Journal::instance()->count("ICore.setOperatorType"), 0);
        } else {
            QVERIFY(pressSave("Show"));
            QTRY_COMPARE(listedNames(), QStringList{"Show"});
            QTRY_COMPARE(logged.count(), 1);
        }
    }
    QVERIFY(!WaitingDialog::instance()->isVisible());
    // And the panel goes on.
    Journal::instance()->clear();
    QVERIFY(pressSave("Afterwards"));
    QTRY_VERIFY(hasEnded());
    QTRY_VERIFY(listedNames().contains("Afterwards"));
}

void TstSavingFlow::a_device_that_the_host_throws_back_is_not_saved()
{
    select(m_site->foyer);
    // Something that is no std::exception, too.
    Faults::instance()->arm("object_brige.setActiveDevice", Fault::run([] { throw 42; }));
    const ExpectMessage logged(
        QtCriticalMsg, QStringLiteral("The host threw in setActiveDevice: something that is no std::exception"), 1);
    const AnswerBook book;
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    VERIFY_JOURNAL({"object_brige.setActiveDevice"});
}

void TstSavingFlow::a_cancel_that_the_host_throws_back_cancels_all_the_same()
{
    Gate gate;
    Faults::instance()->arm(query, gate.fault(2));
    Faults::instance()->arm("DeviceControler.cancelOperator",
                            Fault::run([] { throw std::runtime_error("out of luck"); }));
    QVERIFY(pressSave("Show"));
    QVERIFY(gate.waitForThread());
    AnswerBook book;
    book.expectInformation("Remind", "User cancels current operation");
    {
        const ExpectMessage logged(QtCriticalMsg, QStringLiteral("The host threw in cancelOperator: out of luck"), 1);
        QVERIFY(click(WaitingDialog::instance(), QStringLiteral("Cancel")));
    }
    gate.open();
    QTRY_VERIFY(book.isSatisfied() && hasEnded());
    QVERIFY(!QFile::exists(packagePath("Show")));
}

void TstSavingFlow::after_a_failure_the_next_save_works()
{
    Faults::instance()->arm(query, Fault::fail());
    QVERIFY(pressSave("Show"));
    {
        AnswerBook book;
        book.expectInformation("Remind", "Failed to export bkg");
        QTRY_VERIFY(book.isSatisfied() && hasEnded());
    }
    Journal::instance()->clear();
    QVERIFY(pressSave("Show"));
    QTRY_VERIFY(hasEnded());
    QTRY_COMPARE(listedNames(), QStringList{"Show"});
}

void TstSavingFlow::the_job_stays_until_the_next_save_begins()
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
        QTRY_VERIFY(hasEnded());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(job);
        Journal::instance()->clear();
    }
    QTRY_VERIFY(!jobs[0]);
    QVERIFY(jobs[1]);
}

void TstSavingFlow::the_list_is_fresh_before_and_after_the_box_data()
{
    QTest::addColumn<bool>("before");
    QTest::newRow("while the box is open") << true;
    QTest::newRow("when it is closed") << false;
}

void TstSavingFlow::the_list_is_fresh_before_and_after_the_box()
{
    QFETCH(bool, before);
    // On a first start nobody reports changes: the directory was not there to be watched.
    m_panel.reset();
    QVERIFY(QDir(m_projects).removeRecursively());
    m_panel.reset(new EngineerDocOperWidget(nullptr));
    m_panel->show();
    m_table = m_panel->findChild<QTableWidget *>();
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    QCoreApplication::processEvents();
    const auto bring = [this] {
        return PackageBuilder().file("device.json", "{}").record("Brought", QString()).write(packagePath("Brought"));
    };

    Gate gate;
    Faults::instance()->arm(query, gate.fault());
    Faults::instance()->arm(query, Fault::fail());
    QVERIFY(pressSave("Show"));
    QVERIFY(gate.waitForThread());
    QVERIFY(!before || bring());
    AnswerBook book;
    book.expectDialog("HX::Widgets::FramelessMessageBox", [&](QDialog *dialog) {
        // Whatever was started has ended, and is shown.
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCOMPARE(listedNames(), before ? QStringList{"Brought"} : QStringList());
        QVERIFY(before || bring());
        dialog->accept();
    });
    gate.open();
    QTRY_VERIFY(book.isSatisfied() && hasEnded());
    QTRY_COMPARE(listedNames(), QStringList{"Brought"});
}

// ---------------------------------------------------------------------------------------------------------------------
// A panel that goes too early

void TstSavingFlow::a_panel_that_goes_during_a_backup_takes_everything_along()
{
    Gate gate;
    Faults::instance()->arm(query, gate.fault(2));
    QVERIFY(pressSave("Show"));
    const QPointer<QThread> job = gate.waitForThread();
    QVERIFY(job);
    const AnswerBook book;
    m_panel.reset();
    QVERIFY(hasEnded());
    gate.open();
    QTRY_VERIFY(job.isNull());
    QVERIFY(!QFile::exists(packagePath("Show")));
    QCOMPARE(Journal::instance()->count(query), 2);
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstSavingFlow::a_panel_that_goes_while_the_end_is_told_is_quiet()
{
    Faults::instance()->arm(query, Fault::fail());
    AnswerBook book;
    book.expectDialog("EngineerPropertySettingWidget", [](QDialog *dialog) { click(dialog, QStringLiteral("OK")); });
    book.expectDialog("HX::Widgets::FramelessMessageBox", [this](QDialog *) { m_panel.reset(); });
    QVERIFY(click(m_panel.data(), QStringLiteral("Save Project")));
    QTRY_VERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QVERIFY(!m_panel);
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    QCoreApplication::processEvents();
    QVERIFY(!WaitingDialog::instance()->isVisible());
}

void TstSavingFlow::a_panel_that_goes_after_a_backup_tells_the_host_nothing()
{
    QVERIFY(pressSave("Show"));
    QTRY_VERIFY(hasEnded());
    QTRY_COMPARE(listedNames(), QStringList{"Show"});
    Journal::instance()->clear();
    m_panel.reset();
    QCOMPARE(Journal::instance()->count("ICore.setOperatorType"), 0);
    QCOMPARE(Journal::instance()->count("WaitingDialog.hideWaitingDialog"), 0);
}

void TstSavingFlow::a_panel_that_goes_during_a_scan_leaves_it_alone()
{
    QThreadPool *pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(1);
    Gate gate;
    QtConcurrent::run(gate.action());
    QVERIFY(gate.waitForThread());
    QVERIFY(QDir(m_projects).removeRecursively());
    delete new EngineerDocOperWidget(nullptr);
    m_panel.reset();
    QVERIFY(!QDir(m_projects).exists());
    gate.open();
    QVERIFY(pool->waitForDone());
    // The scans ran to their end all the same.
    QVERIFY(QDir(m_projects).exists());
    QCoreApplication::processEvents();
}

TEST_MAIN(TstSavingFlow)
#include "tst_savingflow.moc"
