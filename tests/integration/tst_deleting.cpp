// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/heldfile.h>
#include <support/panelfixture.h>
#include <support/paneltexts.h>
#include <support/testmain.h>
#include <unit/packagetesting.h>

#include <widgets/waitingdialog.h>

using namespace PackageTesting;
using namespace PanelTesting;
using namespace PanelTexts;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
using Simulation::Journal;

/// Deleting projects, one or all, and deleting the panel behind one of its dialogs.
class TstDeleting : public QObject, protected PanelOnSite<TestSite>
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

    void deleting_one_removes_file_and_row();
    void deleting_the_last_one_disables_both_all_buttons();
    void answering_no_deletes_nothing_data();
    void answering_no_deletes_nothing();
    void deleting_a_missing_file_keeps_the_row();
    void a_failed_delete_stops_watching_the_directory();
    void a_successful_delete_keeps_watching_the_directory();
    void deleting_all_removes_only_listed_files();
    void answering_no_to_all_deletes_nothing();
    void deleting_all_skips_files_it_cannot_remove();
    void a_scan_overtaken_by_a_change_runs_again_data();
    void a_scan_overtaken_by_a_change_runs_again();
    void deleting_the_panel_behind_its_dialog_starts_nothing_data();
    void deleting_the_panel_behind_its_dialog_starts_nothing();
};

void TstDeleting::deleting_one_removes_file_and_row()
{
    list(QStringLiteral("first"));
    list(QStringLiteral("second"));
    list(QStringLiteral("third"));
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    clickRow(QStringLiteral("second"), QStringLiteral("Delete"));
    VERIFY_BOOK();
    QCOMPARE(m_book->seen().first().buttons, QMessageBox::Yes | QMessageBox::No);
    // Immediately, not after a scan.
    QVERIFY(!m_panel->names().contains(QStringLiteral("second")));
    QCOMPARE(m_panel->table()->rowCount(), 2);
    QVERIFY(!QFile::exists(projectFile(QStringLiteral("second"))));
    QVERIFY(QFile::exists(projectFile(QStringLiteral("first"))));
    settle();
    QCOMPARE(m_panel->table()->rowCount(), 2);
    QVERIFY(m_panel->allDelete()->isEnabled());
}

void TstDeleting::deleting_the_last_one_disables_both_all_buttons()
{
    list(QStringLiteral("only"));
    QVERIFY(m_panel->allDelete()->isEnabled());
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    clickRow(QStringLiteral("only"), QStringLiteral("Delete"));
    QCOMPARE(m_panel->table()->rowCount(), 0);
    QVERIFY(!m_panel->allDelete()->isEnabled());
    QVERIFY(!m_panel->allSaveAs()->isEnabled());
}

void TstDeleting::answering_no_deletes_nothing_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("No") << int(QMessageBox::No);
    QTest::newRow("Escape") << int(QMessageBox::NoButton);
}

void TstDeleting::answering_no_deletes_nothing()
{
    QFETCH(int, answer);
    list(QStringLiteral("show"));
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::StandardButton(answer));
    clickRow(QStringLiteral("show"), QStringLiteral("Delete"));
    VERIFY_BOOK();
    settle();
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("show")});
    QVERIFY(QFile::exists(projectFile(QStringLiteral("show"))));
}

void TstDeleting::deleting_a_missing_file_keeps_the_row()
{
    list(QStringLiteral("show"));
    const QString path = projectFile(QStringLiteral("show"));
    {
        const HeldThreadPool held;
        QVERIFY(QFile::remove(path));
        m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
        const ExpectMessage logged(
            QtCriticalMsg,
            QRegularExpression(
                QStringLiteral("^File not exist \\. path: ?\"?%1\"?$").arg(QRegularExpression::escape(path))),
            1);
        clickRow(QStringLiteral("show"), QStringLiteral("Delete"));
        VERIFY_BOOK();
        QCOMPARE(m_panel->names(), QStringList{QStringLiteral("show")});
    }
    m_panel->rescan();
    QCOMPARE(m_panel->table()->rowCount(), 0);
    QVERIFY(isFollowingTheDirectory());
}

void TstDeleting::a_failed_delete_stops_watching_the_directory()
{
    list(QStringLiteral("show"));
    const QString path = projectFile(QStringLiteral("show"));
    {
        // A folder in its place cannot be removed as a file. No scan may run in between.
        const HeldThreadPool held;
        QVERIFY(QFile::remove(path) && writeFile(path + QStringLiteral("/inside"), "x"));
    }
    settle();
    list(QStringLiteral("other"));
    QVERIFY(isFollowingTheDirectory());
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    m_book->expectWarning(warning, QStringLiteral("Delete project file failed!"));
    clickRow(QStringLiteral("show"), QStringLiteral("Delete"));
    VERIFY_BOOK();
    QVERIFY(row(QStringLiteral("show")));
    QVERIFY(isIgnoringTheDirectory());

    // The panel's own operations watch it again.
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    clickRow(QStringLiteral("other"), QStringLiteral("Delete"));
    VERIFY_BOOK();
    QVERIFY(isFollowingTheDirectory());
    QVERIFY(QDir(path).removeRecursively());
}

void TstDeleting::a_successful_delete_keeps_watching_the_directory()
{
    list(QStringLiteral("show"));
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    clickRow(QStringLiteral("show"), QStringLiteral("Delete"));
    QVERIFY(isFollowingTheDirectory());
}

void TstDeleting::deleting_all_removes_only_listed_files()
{
    list(QStringLiteral("first"));
    list(QStringLiteral("second"));
    QVERIFY(writeFile(projectFile(QStringLiteral("no package")), "text"));
    QVERIFY(writeFile(projectFilesPath() + QStringLiteral("notes.txt"), "text"));
    m_panel->rescan();
    m_book->expectQuestion(remind, deleteAllQuestion, QMessageBox::Yes);
    click(m_panel->allDelete());
    VERIFY_BOOK();
    QCOMPARE(m_book->seen().first().buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(m_panel->table()->rowCount(), 0);
    QVERIFY(!m_panel->allDelete()->isEnabled());
    QVERIFY(!m_panel->allSaveAs()->isEnabled());
    QCOMPARE(contents(projectFilesPath()),
             (QStringList{QStringLiteral("no package.corvelpro"), QStringLiteral("notes.txt")}));
    QVERIFY(isFollowingTheDirectory());
}

void TstDeleting::answering_no_to_all_deletes_nothing()
{
    list(QStringLiteral("first"));
    list(QStringLiteral("second"));
    m_book->expectQuestion(remind, deleteAllQuestion, QMessageBox::No);
    click(m_panel->allDelete());
    m_book->expectQuestion(remind, deleteAllQuestion, QMessageBox::NoButton);
    click(m_panel->allDelete());
    VERIFY_BOOK();
    settle();
    QCOMPARE(m_panel->table()->rowCount(), 2);
    QCOMPARE(contents(projectFilesPath()).size(), 2);
}

void TstDeleting::deleting_all_skips_files_it_cannot_remove()
{
    list(QStringLiteral("first"));
    list(QStringLiteral("second"));
    // Files in a read-only folder cannot be removed.
    const QFile::Permissions readable =
        QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    const QFile::Permissions home = QFile::permissions(QDir::homePath());
    QVERIFY(QFile::setPermissions(QDir::homePath(), readable | QFile::WriteOwner));
    QVERIFY(QFile::setPermissions(projectFilesPath(), readable));
    // The directory's change triggers a scan, which may find the files again at any moment.
    settle();
    {
        const OrdinaryUser user;
        m_book->expectQuestion(remind, deleteAllQuestion, QMessageBox::Yes);
        click(m_panel->allDelete());
    }
    QVERIFY(QFile::setPermissions(projectFilesPath(), readable | QFile::WriteOwner));
    QVERIFY(QFile::setPermissions(QDir::homePath(), home));
    VERIFY_BOOK();
    QCOMPARE(contents(projectFilesPath()).size(), 2);
    QCOMPARE(m_panel->table()->rowCount(), 0);
    QVERIFY(!m_panel->allDelete()->isEnabled());
    m_panel->rescan();
    QCOMPARE(m_panel->table()->rowCount(), 2);
}

void TstDeleting::a_scan_overtaken_by_a_change_runs_again_data()
{
    QTest::addColumn<QString>("change");
    for (const char *change : {"Delete", "All Delete", "Edit"})
        QTest::newRow(change) << QString::fromLatin1(change);
}

void TstDeleting::a_scan_overtaken_by_a_change_runs_again()
{
    QFETCH(QString, change);
    // On a first start the directory was not there to be watched, so no change is reported.
    m_panel.reset();
    settle();
    QVERIFY(removeProjectFilesDirectory());
    m_panel.emplace();
    (*m_panel)->show();
    settle();
    list(QStringLiteral("show"));

    const QString brought = projectFile(QStringLiteral("brought"));
    QVERIFY(writePackage(brought, QString()));
    HeldFile held(brought);
    QMetaObject::invokeMethod(m_panel->widget.get(), "slot_projectFilesChanged");
    QVERIFY(held.waitForReader());
    if (change == QStringLiteral("Edit")) {
        expectProperties(QStringLiteral("renamed"), QString());
        clickRow(QStringLiteral("show"), change);
    } else if (change == QStringLiteral("Delete")) {
        m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
        clickRow(QStringLiteral("show"), change);
    } else {
        m_book->expectQuestion(remind, deleteAllQuestion, QMessageBox::Yes);
        click(m_panel->allDelete());
    }
    VERIFY_BOOK();
    QVERIFY(!m_panel->names().contains(QStringLiteral("show")));
    held.release();
    QTRY_VERIFY(m_panel->names().contains(QStringLiteral("brought")));
    settle();
    QVERIFY(!m_panel->names().contains(QStringLiteral("show")));
}

void TstDeleting::deleting_the_panel_behind_its_dialog_starts_nothing_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("dialog");
    const QString files = QStringLiteral("QFileDialog");
    const QString box = QStringLiteral("HX::Widgets::FramelessMessageBox");
    QTest::newRow("saving") << QStringLiteral("Save Project") << propertyDialog;
    QTest::newRow("editing") << QStringLiteral("Edit") << propertyDialog;
    QTest::newRow("applying") << QStringLiteral("Apply") << box;
    QTest::newRow("applying from elsewhere") << QStringLiteral("Apply Others") << files;
    QTest::newRow("importing") << QStringLiteral("Import Project") << files;
    QTest::newRow("saving one elsewhere") << QStringLiteral("Save as") << files;
    QTest::newRow("saving all elsewhere") << QStringLiteral("ALL Save as") << files;
    QTest::newRow("deleting") << QStringLiteral("Delete") << box;
    QTest::newRow("deleting all") << QStringLiteral("All Delete") << box;
}

void TstDeleting::deleting_the_panel_behind_its_dialog_starts_nothing()
{
    QFETCH(QString, button);
    QFETCH(QString, dialog);
    list(QStringLiteral("show"));
    const QByteArray before = readFile(projectFile(QStringLiteral("show")));
    m_book->expectDialog(dialog, [&](QDialog *) { m_panel.reset(); });
    QAbstractButton *pressed = nullptr;
    for (QAbstractButton *one : (*m_panel)->findChildren<QAbstractButton *>()) {
        if (one->text() == button)
            pressed = one;
    }
    QVERIFY(pressed);
    // Not with a mouse click: the event's sender would touch the deleted button afterwards.
    QMetaObject::invokeMethod(pressed, "click", Qt::QueuedConnection);
    waitForAnswers();
    QVERIFY(!m_panel);
    settle();
    QCOMPARE(readFile(projectFile(QStringLiteral("show"))), before);
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
    QVERIFY(!WaitingDialog::instance()->isVisible());
    m_panel.emplace();
}

TEST_MAIN(TstDeleting)
#include "tst_deleting.moc"
