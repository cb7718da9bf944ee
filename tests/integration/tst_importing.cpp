// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/freespace.h>
#include <support/heldfile.h>
#include <support/objectcensus.h>
#include <support/panelfixture.h>
#include <support/paneltexts.h>
#include <support/testmain.h>
#include <unit/packagetesting.h>
#include <zippackagehandle.h>

#include <widgets/waitingdialog.h>

using namespace PackageTesting;
using namespace PanelTesting;
using namespace PanelTexts;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ZipPackageHandle;
using Simulation::Journal;

/// Importing packages from elsewhere.
class TstImporting : public QObject, protected PanelOnSite<TestSite>
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

    void importing_copies_and_lists();
    void the_chooser_accepts_several_files();
    void the_chooser_always_shows_details();
    void cancelling_the_chooser_imports_nothing();
    void an_invalid_package_ends_an_import();
    void existing_names_are_reported_and_the_rest_imported();
    void importing_from_the_project_directory_fails();
    void importing_needs_more_space_than_the_files_data();
    void importing_needs_more_space_than_the_files();
    void an_import_pauses_watching_the_directory();
    void imported_packages_are_listed_behind_the_result_box();
    void packages_arriving_behind_the_result_box_are_listed();
    void importing_repeatedly_works();
    void the_panel_keeps_one_watcher_per_kind();
    void import_watchers_are_deleted_with_the_panel();
    void deleting_the_panel_during_an_import_is_quiet();
    void the_panel_may_be_deleted_behind_the_result();
};

void TstImporting::importing_copies_and_lists()
{
    const QStringList files{elsewhere(QStringLiteral("first.corvelpro")),
                            elsewhere(QString::fromUtf8("第二 🎬.corvelpro"))};
    for (const QString &file : files)
        QVERIFY(writePackage(file, QStringLiteral("imported")));
    m_book->expectFileDialog(chooserTitle, files);
    m_book->expectInformation(remind, importSucceeded);
    click(m_panel->importProject());
    waitForAnswers();
    QTRY_COMPARE(m_panel->table()->rowCount(), 2);
    for (const QString &file : files)
        QCOMPARE(readFile(projectFilesPath() + QFileInfo(file).fileName()), readFile(file));
    QCOMPARE(waitingTexts(), QStringList{importWaiting});
    QVERIFY(!WaitingDialog::instance()->isVisible());
    QCOMPARE(Journal::instance()->count(setCanelVisible), 0);
    QVERIFY(isFollowingTheDirectory());
}

void TstImporting::the_chooser_accepts_several_files()
{
    // The user's last folder is ignored.
    QVERIFY(writePackage(elsewhere(QStringLiteral("show.corvelpro")), QString()));
    m_book->expectFileDialog(chooserTitle, {elsewhere(QStringLiteral("show.corvelpro"))});
    m_book->expectInformation(remind, importSucceeded);
    click(m_panel->importProject());
    waitForAnswers();
    m_book->expectFileDialog(chooserTitle, {});
    click(m_panel->importProject());
    const AnswerBook::Seen seen = m_book->seen().last();
    QCOMPARE(seen.directory, QStringLiteral("."));
    QCOMPARE(seen.nameFilters, QStringList{QStringLiteral("file(*.corvelpro)")});
    QCOMPARE(seen.fileMode, QFileDialog::ExistingFiles);
    QCOMPARE(seen.acceptMode, QFileDialog::AcceptOpen);
}

void TstImporting::the_chooser_always_shows_details()
{
    {
        // Qt remembers the choices made in the last one.
        QFileDialog last;
        last.setViewMode(QFileDialog::List);
    }
    QCOMPARE(QFileDialog().viewMode(), QFileDialog::List);
    for (QPushButton *button : {m_panel->importProject(), m_panel->applyOthers()}) {
        m_book->expectDialog(QStringLiteral("QFileDialog"), [&](QDialog *dialog) {
            QCOMPARE(qobject_cast<QFileDialog *>(dialog)->viewMode(), QFileDialog::Detail);
            QCOMPARE(dialog->parentWidget(), m_panel->widget.get());
            dialog->reject();
        });
        click(button);
        VERIFY_BOOK();
    }
}

void TstImporting::cancelling_the_chooser_imports_nothing()
{
    m_book->expectFileDialog(chooserTitle, {});
    click(m_panel->importProject());
    VERIFY_BOOK();
    settle();
    QVERIFY(waitingTexts().isEmpty());
    QVERIFY(isFollowingTheDirectory());
}

void TstImporting::an_invalid_package_ends_an_import()
{
    const QString first = elsewhere(QStringLiteral("first.corvelpro"));
    const QString second = elsewhere(QStringLiteral("second.corvelpro"));
    const QString third = elsewhere(QStringLiteral("third.corvelpro"));
    QVERIFY(writePackage(first, QString()) && writeFile(second, "no package") && writePackage(third, QString()));
    m_book->expectFileDialog(chooserTitle, {first, second, third});
    m_book->expectWarning(warning, QStringLiteral("The file[%1] context is invalid.").arg(second));
    click(m_panel->importProject());
    waitForAnswers();
    QTRY_COMPARE(m_panel->names(), QStringList{QStringLiteral("first")});
    QCOMPARE(contents(projectFilesPath()), QStringList{QStringLiteral("first.corvelpro")});
    QVERIFY(isFollowingTheDirectory());
}

void TstImporting::existing_names_are_reported_and_the_rest_imported()
{
    list(QStringLiteral("show"), QStringLiteral("mine"));
    list(QStringLiteral("tour.2026"), QStringLiteral("mine"));
    const QStringList files{elsewhere(QStringLiteral("show.corvelpro")), elsewhere(QStringLiteral("new.corvelpro")),
                            elsewhere(QStringLiteral("tour.2026.corvelpro"))};
    for (const QString &file : files)
        QVERIFY(writePackage(file, QStringLiteral("theirs")));
    m_book->expectFileDialog(chooserTitle, files);
    m_book->expectWarning(warning, QStringLiteral("Import project file [show, tour] failed"));
    click(m_panel->importProject());
    waitForAnswers();
    QTRY_COMPARE(m_panel->table()->rowCount(), 3);
    EngineerPacketInfo info;
    info.strFilePath = projectFile(QStringLiteral("show"));
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strComment, QStringLiteral("mine"));
}

void TstImporting::importing_from_the_project_directory_fails()
{
    list(QStringLiteral("show"));
    const QByteArray before = readFile(projectFile(QStringLiteral("show")));
    m_book->expectFileDialog(chooserTitle, {projectFile(QStringLiteral("show"))});
    m_book->expectWarning(warning, QStringLiteral("Import project file [show] failed"));
    click(m_panel->importProject());
    waitForAnswers();
    QCOMPARE(readFile(projectFile(QStringLiteral("show"))), before);
}

void TstImporting::importing_needs_more_space_than_the_files_data()
{
    QTest::addColumn<int>("difference");
    QTest::addColumn<bool>("isEnough");
    QTest::newRow("one byte more than is free") << 1 << false;
    QTest::newRow("exactly the space that is free") << 0 << false;
    QTest::newRow("one byte less") << -1 << true;
}

void TstImporting::importing_needs_more_space_than_the_files()
{
    QFETCH(int, difference);
    QFETCH(bool, isEnough);
    const QString first = elsewhere(QStringLiteral("first.corvelpro"));
    const QString second = elsewhere(QStringLiteral("second.corvelpro"));
    QVERIFY(writeFile(first, "no package") && QFile::resize(first, 4 * MiB));
    QVERIFY(writeFile(second, "no package") && QFile::resize(second, 2 * MiB + difference));
    const FreeSpace free(6 * MiB);
    m_book->expectFileDialog(chooserTitle, {first, second});
    // A file that fits passes on to the next check.
    if (isEnough)
        m_book->expectWarning(warning, QStringLiteral("The file[%1] context is invalid.").arg(first));
    else
        m_book->expectWarning(remind, QStringLiteral("Not enough space to import all selected files."));
    click(m_panel->importProject());
    waitForAnswers();
    QCOMPARE(waitingTexts().count(), isEnough ? 1 : 0);
    QVERIFY(contents(projectFilesPath()).isEmpty());
}

void TstImporting::an_import_pauses_watching_the_directory()
{
    const QString first = elsewhere(QStringLiteral("first.corvelpro"));
    const QString second = elsewhere(QStringLiteral("second.corvelpro"));
    QVERIFY(writePackage(first, QString()) && writeFile(second, "no package"));
    HeldFile held(second);
    const DirectoryObserver observer;
    m_book->expectFileDialog(chooserTitle, {first, second});
    click(m_panel->importProject());
    QTRY_VERIFY(QFile::exists(projectFile(QStringLiteral("first"))));
    QTRY_VERIFY(observer.changes() > 0);
    QCoreApplication::processEvents();
    // A scan would be queued in the pool or have run next to the import.
    QCOMPARE(QThreadPool::globalInstance()->activeThreadCount(), 1);
    QCOMPARE(m_panel->table()->rowCount(), 0);
    QVERIFY(WaitingDialog::instance()->isVisible());
    QCOMPARE(WaitingDialog::instance()->text(), importWaiting);

    m_book->expectWarning(warning, QStringLiteral("The file[%1] context is invalid.").arg(second));
    held.release();
    waitForAnswers();
    QTRY_COMPARE(m_panel->names(), QStringList{QStringLiteral("first")});
    QVERIFY(isFollowingTheDirectory());
}

void TstImporting::imported_packages_are_listed_behind_the_result_box()
{
    const QString file = elsewhere(QStringLiteral("imported.corvelpro"));
    QVERIFY(writePackage(file, QString()));
    m_book->expectFileDialog(chooserTitle, {file});
    QStringList listed;
    m_book->expectDialog(QStringLiteral("HX::Widgets::FramelessMessageBox"), [&](QDialog *dialog) {
        settle();
        listed = m_panel->names();
        click(qobject_cast<HX::Widgets::FramelessMessageBox *>(dialog)->button(QMessageBox::Ok));
    });
    click(m_panel->importProject());
    waitForAnswers();
    QCOMPARE(listed, QStringList{QStringLiteral("imported")});
}

void TstImporting::packages_arriving_behind_the_result_box_are_listed()
{
    const QString file = elsewhere(QStringLiteral("imported.corvelpro"));
    QVERIFY(writePackage(file, QString()));
    m_book->expectFileDialog(chooserTitle, {file});
    m_book->expectDialog(QStringLiteral("HX::Widgets::FramelessMessageBox"), [](QDialog *dialog) {
        settle();
        const DirectoryObserver observer;
        QVERIFY(writePackage(projectFile(QStringLiteral("brought")), QString()));
        QVERIFY(QTest::qWaitFor([&] { return observer.changes() > 0; }, patience));
        click(qobject_cast<HX::Widgets::FramelessMessageBox *>(dialog)->button(QMessageBox::Ok));
    });
    click(m_panel->importProject());
    waitForAnswers();
    settle();
    QVERIFY(m_panel->names().contains(QStringLiteral("imported")));
    QVERIFY(m_panel->names().contains(QStringLiteral("brought")));
}

void TstImporting::importing_repeatedly_works()
{
    for (int number = 1; number <= 4; ++number) {
        const QString name = QStringLiteral("show%1").arg(number);
        QVERIFY(writePackage(elsewhere(name + QStringLiteral(".corvelpro")), QString()));
        m_book->expectFileDialog(chooserTitle, {elsewhere(name + QStringLiteral(".corvelpro"))});
        m_book->expectInformation(remind, importSucceeded);
        click(m_panel->importProject());
        waitForAnswers();
        QTRY_COMPARE(m_panel->table()->rowCount(), number);
        if (number == 2) {
            m_book->expectFileDialog(saveTitle, {elsewhere(QStringLiteral("out.corvelpro"))});
            m_book->expectInformation(remind, saveSucceeded);
            clickRow(name, QStringLiteral("Save as"));
            waitForAnswers();
        }
    }
    // Each import emitted its end once.
    QCOMPARE(m_book->seen().size(), 10);
}

void TstImporting::the_panel_keeps_one_watcher_per_kind()
{
    list(QStringLiteral("show"));
    settle();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const ObjectCensus census;
    const auto watchers = [&census] {
        settle();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return census.living("QFutureWatcherBase").count();
    };
    for (int round = 0; round < 3; ++round) {
        const QString copy = elsewhere(QStringLiteral("copy%1.corvelpro").arg(round));
        m_book->expectFileDialog(saveTitle, {copy});
        m_book->expectInformation(remind, saveSucceeded);
        clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
        waitForAnswers();
        QCOMPARE(watchers(), round == 0 ? 1 : 2);
        m_book->expectFileDialog(chooserTitle, {copy});
        m_book->expectInformation(remind, importSucceeded);
        click(m_panel->importProject());
        waitForAnswers();
        QCOMPARE(watchers(), 2);
    }
    m_panel.reset();
    QCOMPARE(watchers(), 0);
}

void TstImporting::import_watchers_are_deleted_with_the_panel()
{
    const ObjectCensus census;
    for (int round = 0; round < 3; ++round) {
        const QString file = elsewhere(QStringLiteral("show%1.corvelpro").arg(round));
        QVERIFY(writePackage(file, QString()));
        m_book->expectFileDialog(chooserTitle, {file});
        m_book->expectInformation(remind, importSucceeded);
        click(m_panel->importProject());
        waitForAnswers();
    }
    settle();
    m_panel.reset();
    settle();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(census.living("QFutureWatcherBase").count(), 0);
}

void TstImporting::deleting_the_panel_during_an_import_is_quiet()
{
    const QString first = elsewhere(QStringLiteral("first.corvelpro"));
    const QString second = elsewhere(QStringLiteral("second.corvelpro"));
    QVERIFY(writePackage(first, QString()) && writePackage(second, QString()));
    HeldFile held(first);
    m_book->expectFileDialog(chooserTitle, {first, second});
    click(m_panel->importProject());
    QVERIFY(held.waitForReader());
    m_panel.reset();
    QVERIFY(!WaitingDialog::instance()->isVisible());
    held.release();
    settle();
    VERIFY_BOOK();
    m_panel.emplace();
}

void TstImporting::the_panel_may_be_deleted_behind_the_result()
{
    const QString file = elsewhere(QStringLiteral("show.corvelpro"));
    QVERIFY(writePackage(file, QString()));
    m_book->expectFileDialog(chooserTitle, {file});
    m_book->expectDialog(QStringLiteral("HX::Widgets::FramelessMessageBox"), [this](QDialog *) { m_panel.reset(); });
    click(m_panel->importProject());
    waitForAnswers();
    QVERIFY(!m_panel);
    settle();
    QCOMPARE(readFile(projectFile(QStringLiteral("show"))), readFile(file));
    m_panel.emplace();
}

TEST_MAIN(TstImporting)
#include "tst_importing.moc"
