// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/freespace.h>
#include <support/heldfile.h>
#include <support/panelfixture.h>
#include <support/paneltexts.h>
#include <support/testmain.h>
#include <unit/packagetesting.h>

#include <widgets/waitingdialog.h>

#include <QLineEdit>

using namespace PackageTesting;
using namespace PanelTesting;
using namespace PanelTexts;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
using Simulation::Journal;

/// Copying projects elsewhere, one ("Save as") or all ("ALL Save as").
class TstCopyingOut : public QObject, protected PanelOnSite<TestSite>
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Lets an import and a scan run at the same time, whatever the number of processors.
        QThreadPool::globalInstance()->setMaxThreadCount(4);
    }
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // One
    void save_as_copies_the_package();
    void save_as_suggests_the_documents_folder();
    void cancelling_the_save_dialog_copies_nothing();
    void save_as_refuses_an_existing_file();
    void save_as_adds_extension_to_a_bare_name();
    void save_as_adds_extension_to_other_names_data();
    void save_as_adds_extension_to_other_names();
    void save_as_with_a_bare_name_overwrites_nothing_data();
    void save_as_with_a_bare_name_overwrites_nothing();
    void save_as_reports_a_missing_package();
    void save_as_names_the_package_it_failed_on();
    void a_package_replaced_by_a_pipe_never_blocks();
    void the_waiting_dialog_closes_before_the_result_box();
    void file_dialogs_are_deleted_after_use();
    void deleting_the_panel_during_a_copy_is_quiet();

    // All
    void saving_all_copies_every_listed_file();
    void saving_all_reports_existing_files_and_copies_others();
    void saving_all_into_the_documents_folder_does_nothing();
    void cancelling_the_folder_dialog_copies_nothing();
    void saving_all_needs_more_space_than_the_files_data();
    void saving_all_needs_more_space_than_the_files();
};

// ---------------------------------------------------------------------------------------------------------------------
// One

void TstCopyingOut::save_as_copies_the_package()
{
    list(QStringLiteral("show"));
    const QString target = elsewhere(QString::fromUtf8("复制 🎬.corvelpro"));
    m_book->expectFileDialog(saveTitle, {target});
    m_book->expectInformation(remind, saveSucceeded);
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    waitForAnswers();
    QCOMPARE(readFile(target), readFile(projectFile(QStringLiteral("show"))));
    QCOMPARE(waitingTexts(), QStringList{saveWaiting});
    QVERIFY(!WaitingDialog::instance()->isVisible());
    const QStringList logged = WarningGuard::texts(QtDebugMsg).filter(QStringLiteral("file save path is "));
    QCOMPARE(logged.size(), 1);
    QVERIFY(logged.first().contains(target));
}

void TstCopyingOut::save_as_suggests_the_documents_folder()
{
    list(QStringLiteral("show"));
    QString suggested;
    m_book->expectDialog(QStringLiteral("QFileDialog"), [&](QDialog *dialog) {
        suggested = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->text();
        dialog->reject();
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    VERIFY_BOOK();
    QCOMPARE(suggested, QStringLiteral("show.corvelpro"));
    const AnswerBook::Seen seen = m_book->seen().first();
    QCOMPARE(seen.title, saveTitle);
    QCOMPARE(seen.directory, QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    QCOMPARE(seen.nameFilters, QStringList{QStringLiteral("file(*.corvelpro)")});
    QCOMPARE(seen.acceptMode, QFileDialog::AcceptSave);
}

void TstCopyingOut::cancelling_the_save_dialog_copies_nothing()
{
    list(QStringLiteral("show"));
    m_book->expectFileDialog(saveTitle, {});
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    VERIFY_BOOK();
    settle();
    QVERIFY(waitingTexts().isEmpty());
}

void TstCopyingOut::save_as_refuses_an_existing_file()
{
    list(QStringLiteral("show"));
    const QString target = elsewhere(QStringLiteral("taken.old.corvelpro"));
    QVERIFY(writeFile(target, "precious"));
    const QString text = QStringLiteral("Project File [taken] already exist. Please change file name and try again");
    m_book->expectFileDialog(saveTitle, {target});
    m_book->expectWarning(remind, text);
    {
        const ExpectMessage logged(QtWarningMsg, text, 1);
        clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    }
    VERIFY_BOOK();
    settle();
    QCOMPARE(readFile(target), QByteArray("precious"));
    QVERIFY(waitingTexts().isEmpty());
}

void TstCopyingOut::save_as_adds_extension_to_a_bare_name()
{
    list(QStringLiteral("show"));
    m_book->expectFileDialog(saveTitle, {elsewhere(QString::fromUtf8("晚场 show"))});
    m_book->expectInformation(remind, saveSucceeded);
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    waitForAnswers();
    QCOMPARE(readFile(elsewhere(QString::fromUtf8("晚场 show.corvelpro"))),
             readFile(projectFile(QStringLiteral("show"))));
    QVERIFY(!QFile::exists(elsewhere(QString::fromUtf8("晚场 show"))));
}

void TstCopyingOut::save_as_adds_extension_to_other_names_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("written");
    const auto row = [](const char *typed, const char *written) {
        QTest::newRow(typed) << QString::fromLatin1(typed) << QString::fromLatin1(written);
    };
    row("a.corvelpro", "a.corvelpro");
    row("a.CORVELPRO", "a.CORVELPRO");
    row("show 1.5", "show 1.5.corvelpro");
    row("a.backup", "a.backup.corvelpro");
    row("a.corvelpro.bak", "a.corvelpro.bak.corvelpro");
    row("a.", "a..corvelpro");
    row("acorvelpro", "acorvelpro.corvelpro");
}

void TstCopyingOut::save_as_adds_extension_to_other_names()
{
    QFETCH(QString, typed);
    QFETCH(QString, written);
    list(QStringLiteral("show"));
    m_book->expectFileDialog(saveTitle, {elsewhere(typed)});
    m_book->expectInformation(remind, saveSucceeded);
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    waitForAnswers();
    QCOMPARE(contents(m_elsewhere->path()), QStringList{written});
}

void TstCopyingOut::save_as_with_a_bare_name_overwrites_nothing_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("named");
    QTest::newRow("plain") << QStringLiteral("taken") << QStringLiteral("taken");
    QTest::newRow("with a dot") << QStringLiteral("taken 1.5") << QStringLiteral("taken 1");
}

void TstCopyingOut::save_as_with_a_bare_name_overwrites_nothing()
{
    QFETCH(QString, typed);
    QFETCH(QString, named);
    list(QStringLiteral("show"));
    const QString existing =
        elsewhere(TestSupport::PackageBuilder().file("other.json", "{}"), typed + QStringLiteral(".corvelpro"));
    const QByteArray before = readFile(existing);
    m_book->expectFileDialog(saveTitle, {elsewhere(typed)});
    m_book->expectWarning(
        remind, QStringLiteral("Project File [%1] already exist. Please change file name and try again").arg(named));
    const ExpectMessage logged(QtWarningMsg, QRegularExpression(QStringLiteral("already exist")));
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    waitForAnswers();
    QCOMPARE(readFile(existing), before);
    QVERIFY(!QFile::exists(elsewhere(typed)));
}

void TstCopyingOut::save_as_reports_a_missing_package()
{
    list(QStringLiteral("show"));
    const HeldThreadPool held;
    QVERIFY(QFile::remove(projectFile(QStringLiteral("show"))));
    m_book->expectWarning(remind, QStringLiteral("The file does not exist."));
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    VERIFY_BOOK();
    QVERIFY(waitingTexts().isEmpty());
}

void TstCopyingOut::save_as_names_the_package_it_failed_on()
{
    list(QStringLiteral("show"));
    // Into a folder that does not exist.
    m_book->expectDialog(QStringLiteral("QFileDialog"), [&](QDialog *dialog) {
        auto *chooser = qobject_cast<QFileDialog *>(dialog);
        chooser->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))
            ->setText(elsewhere(QStringLiteral("gone/new.corvelpro")));
        QMetaObject::invokeMethod(chooser, "accept");
    });
    m_book->expectWarning(warning, QStringLiteral("save as [show] failed"));
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    waitForAnswers();
    QVERIFY(contents(m_elsewhere->path()).isEmpty());
    QVERIFY(!WaitingDialog::instance()->isVisible());
}

void TstCopyingOut::a_package_replaced_by_a_pipe_never_blocks()
{
    // Listed through a link, so that no change of the directory removes the row.
    const QString pipe = elsewhere(QStringLiteral("real.corvelpro"));
    QVERIFY(writePackage(pipe, QString()));
    QVERIFY(QFile::link(pipe, projectFile(QStringLiteral("show"))));
    m_panel->rescan();
    QVERIFY(QFile::remove(pipe));
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);

    m_book->expectFileDialog(saveTitle, {elsewhere(QStringLiteral("copy.corvelpro"))});
    m_book->expectWarning(warning, QStringLiteral("save as [show] failed"));
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    waitForAnswers();
    m_book->expectFileDialog(saveTitle, {m_elsewhere->path()});
    m_book->expectWarning(warning, QStringLiteral("save as [show] failed"));
    QVERIFY(click(m_panel->allSaveAs()));
    waitForAnswers();
    QVERIFY(!WaitingDialog::instance()->isVisible());

    m_book->expectFileDialog(chooserTitle, {pipe});
    m_book->expectWarning(remind, QStringLiteral("The file does not exist or the file format is incorrect."));
    QVERIFY(click(m_panel->applyOthers()));
    waitForAnswers();
    m_book->expectQuestion(remind, QString(), QMessageBox::No);
    m_book->answerOthers([](QDialog *dialog) { dialog->reject(); });
    clickRow(QStringLiteral("show"), QStringLiteral("Apply"));
    waitForAnswers();
    QCOMPARE(Journal::instance()->count(updateDeviceInfo), 0);

    expectProperties(QStringLiteral("other"), QStringLiteral("edited"));
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    waitForAnswers();
    QVERIFY(!QFile::exists(projectFile(QStringLiteral("other"))));

    m_book->expectFileDialog(chooserTitle, {pipe});
    m_book->expectWarning(warning, QStringLiteral("The file[%1] context is invalid.").arg(pipe));
    QVERIFY(click(m_panel->importProject()));
    waitForAnswers();
    QCOMPARE(contents(m_elsewhere->path()), QStringList{QStringLiteral("real.corvelpro")});
}

void TstCopyingOut::the_waiting_dialog_closes_before_the_result_box()
{
    list(QStringLiteral("show"));
    const QStringList expected{showWaitingDialog, hideWaitingDialog, informationBox};
    Journal::instance()->clear();
    m_book->expectFileDialog(saveTitle, {elsewhere(QStringLiteral("copy.corvelpro"))});
    m_book->expectInformation(remind, saveSucceeded);
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    waitForAnswers();
    QCOMPARE(Journal::instance()->operations(), expected);

    Journal::instance()->clear();
    m_book->expectFileDialog(chooserTitle, {elsewhere(QStringLiteral("copy.corvelpro"))});
    m_book->expectInformation(remind, importSucceeded);
    click(m_panel->importProject());
    waitForAnswers();
    QCOMPARE(Journal::instance()->operations(), expected);
}

void TstCopyingOut::file_dialogs_are_deleted_after_use()
{
    list(QStringLiteral("show"));
    m_book->expectFileDialog(saveTitle, {elsewhere(QStringLiteral("copy.corvelpro"))});
    m_book->expectInformation(remind, saveSucceeded);
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    waitForAnswers();
    m_book->expectFileDialog(saveTitle, {});
    click(m_panel->allSaveAs());
    m_book->expectFileDialog(chooserTitle, {});
    click(m_panel->importProject());
    m_book->expectFileDialog(chooserTitle, {});
    click(m_panel->applyOthers());
    VERIFY_BOOK();
    QTRY_VERIFY((*m_panel)->findChildren<QDialog *>().isEmpty());
}

void TstCopyingOut::deleting_the_panel_during_a_copy_is_quiet()
{
    list(QStringLiteral("show"));
    const QString target = elsewhere(QStringLiteral("out.corvelpro"));
    HeldFile held(projectFile(QStringLiteral("show")));
    m_book->expectFileDialog(saveTitle, {target});
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    QCOMPARE(WaitingDialog::instance()->text(), saveWaiting);
    QVERIFY(held.waitForReader());
    m_panel.reset();
    QVERIFY(!WaitingDialog::instance()->isVisible());
    held.release();
    settle();
    VERIFY_BOOK();
    // The requested copy is finished.
    QCOMPARE(readFile(target), readFile(projectFile(QStringLiteral("show"))));
    m_panel.emplace();
}

// ---------------------------------------------------------------------------------------------------------------------
// All

void TstCopyingOut::saving_all_copies_every_listed_file()
{
    list(QStringLiteral("first"));
    list(QString::fromUtf8("第二"));
    QVERIFY(writeFile(projectFile(QStringLiteral("no package")), "text"));
    m_panel->rescan();
    m_book->expectFileDialog(saveTitle, {m_elsewhere->path()});
    m_book->expectInformation(remind, saveSucceeded);
    click(m_panel->allSaveAs());
    waitForAnswers();
    QCOMPARE(contents(m_elsewhere->path()),
             (QStringList{QStringLiteral("first.corvelpro"), QString::fromUtf8("第二.corvelpro")}));
    QCOMPARE(readFile(elsewhere(QStringLiteral("first.corvelpro"))), readFile(projectFile(QStringLiteral("first"))));
    QCOMPARE(waitingTexts(), QStringList{saveWaiting});
    QVERIFY(!WaitingDialog::instance()->isVisible());
    const AnswerBook::Seen seen = m_book->seen().first();
    QCOMPARE(seen.directory, QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    QVERIFY(seen.onlyDirectories);
}

void TstCopyingOut::saving_all_reports_existing_files_and_copies_others()
{
    // Listed, and so reported, newest first.
    QVERIFY(writePackage(projectFile(QStringLiteral("a.2026")), QString(), 30));
    QVERIFY(writePackage(projectFile(QStringLiteral("b")), QString(), 20));
    QVERIFY(writePackage(projectFile(QStringLiteral("c")), QString(), 10));
    m_panel->rescan();
    QVERIFY(writeFile(elsewhere(QStringLiteral("a.2026.corvelpro")), "precious"));
    QVERIFY(writeFile(elsewhere(QStringLiteral("c.corvelpro")), "precious"));
    m_book->expectFileDialog(saveTitle, {m_elsewhere->path()});
    m_book->expectWarning(warning, QStringLiteral("save as [c, a] failed"));
    click(m_panel->allSaveAs());
    waitForAnswers();
    QCOMPARE(readFile(elsewhere(QStringLiteral("a.2026.corvelpro"))), QByteArray("precious"));
    QCOMPARE(readFile(elsewhere(QStringLiteral("c.corvelpro"))), QByteArray("precious"));
    QCOMPARE(readFile(elsewhere(QStringLiteral("b.corvelpro"))), readFile(projectFile(QStringLiteral("b"))));
}

void TstCopyingOut::saving_all_into_the_documents_folder_does_nothing()
{
    list(QStringLiteral("show"));
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    m_book->expectFileDialog(saveTitle, {documents});
    click(m_panel->allSaveAs());
    VERIFY_BOOK();
    settle();
    QVERIFY(waitingTexts().isEmpty());
    QVERIFY(!QFile::exists(documents + QStringLiteral("/show.corvelpro")));
}

void TstCopyingOut::cancelling_the_folder_dialog_copies_nothing()
{
    list(QStringLiteral("show"));
    m_book->expectFileDialog(saveTitle, {});
    click(m_panel->allSaveAs());
    VERIFY_BOOK();
    settle();
    QVERIFY(waitingTexts().isEmpty());
}

void TstCopyingOut::saving_all_needs_more_space_than_the_files_data()
{
    QTest::addColumn<int>("difference");
    QTest::addColumn<bool>("isEnough");
    QTest::newRow("one byte more than is free") << 1 << false;
    QTest::newRow("exactly the space that is free") << 0 << false;
    QTest::newRow("one byte less") << -1 << true;
}

void TstCopyingOut::saving_all_needs_more_space_than_the_files()
{
    QFETCH(int, difference);
    QFETCH(bool, isEnough);
    list(QStringLiteral("show"));
    list(QStringLiteral("another"));
    Journal::instance()->clear();
    {
        // Grown to that size after it was listed.
        const HeldThreadPool held;
        QVERIFY(QFile::resize(projectFile(QStringLiteral("show")), 4 * MiB));
        QVERIFY(QFile::resize(projectFile(QStringLiteral("another")), 2 * MiB + difference));
        const FreeSpace free(6 * MiB);
        m_book->expectFileDialog(saveTitle, {m_elsewhere->path()});
        if (!isEnough)
            m_book->expectWarning(
                warning, QStringLiteral("Cannot save the file because there is not enough storage available."));
        click(m_panel->allSaveAs());
        VERIFY_BOOK();
        if (isEnough)
            m_book->expectInformation(remind, saveSucceeded);
    }
    waitForAnswers();
    QCOMPARE(waitingTexts().count(), isEnough ? 1 : 0);
    QCOMPARE(contents(m_elsewhere->path()).count(), isEnough ? 2 : 0);
}

TEST_MAIN(TstCopyingOut)
#include "tst_copyingout.moc"
