// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/heldfile.h>
#include <support/panelfixture.h>
#include <support/paneltexts.h>
#include <support/testmain.h>
#include <unit/packagetesting.h>
#include <zippackagehandle.h>

#include <QMutex>
#include <QPointer>

#include <thread>

using namespace PackageTesting;
using namespace PanelTesting;
using namespace PanelTexts;
using namespace TestSupport;
using namespace Simulation::Operations;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ZipPackageHandle;

namespace {

/// Access to the panel's private list, for a test that must see it locked: an explicit instantiation may name private
/// members.
struct PanelsProjects
{
    using Member = const std::shared_ptr<ProjectFileCfg::Internal::ProjectList> EngineerDocOperWidget::*;
    friend Member projectsOf(PanelsProjects);
};
template<PanelsProjects::Member member>
struct OpenedPanel
{
    friend PanelsProjects::Member projectsOf(PanelsProjects) { return member; }
};
template struct OpenedPanel<&EngineerDocOperWidget::m_pProjects>;

} // namespace

/// Editing name and comment of a project.
class TstEditing : public QObject, protected PanelOnSite<TestSite>
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

    void editing_without_renaming_rewrites_only_the_comment();
    void editing_with_a_new_name_renames_the_file();
    void a_renamed_row_still_works();
    void names_in_every_script_survive_editing_data();
    void names_in_every_script_survive_editing();
    void cancelling_the_dialog_changes_nothing();
    void the_dialog_shows_name_and_comment();
    void renaming_to_a_taken_name_warns();
    void an_unwritable_record_ends_silently();
    void an_edit_updates_the_list_entry();
    void an_edited_row_keeps_its_place();
    void an_edit_updates_its_senders_path();
    void the_dialog_stays_a_child_of_the_panel();
    void an_edit_locks_the_list();
    void scans_during_an_edit_occupy_no_thread();
    void a_scan_during_an_edit_runs_afterwards();
    void a_package_deleted_during_its_edit_stays_deleted();
    void the_table_may_change_during_an_edit();
    void row_slots_do_nothing_without_their_button();
    void deleting_the_panel_drops_a_postponed_scan();
};

void TstEditing::editing_without_renaming_rewrites_only_the_comment()
{
    list(QStringLiteral("show"), QStringLiteral("before"));
    const QString path = projectFile(QStringLiteral("show"));
    const QByteArray before = readFile(path);
    EngineerPacketInfo old;
    old.strFilePath = path;
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(old));

    expectProperties(QStringLiteral("show"), QStringLiteral("after"));
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(m_panel->comments(), QStringList{QStringLiteral("after")});
    settle();
    QCOMPARE(m_panel->comments(), QStringList{QStringLiteral("after")});
    QCOMPARE(contents(projectFilesPath()), QStringList{QStringLiteral("show.corvelpro")});

    // Everything except the comment and its length, which end the file.
    const QByteArray record =
        PackageBuilder::infoRecord(old.strChecksum, QStringLiteral("show"), QStringLiteral("after"));
    const QByteArray oldRecord = PackageBuilder::infoRecord(old.strChecksum, QStringLiteral("a name that nobody sees"),
                                                            QStringLiteral("before"));
    const QByteArray after = readFile(path);
    QVERIFY(before.endsWith(oldRecord));
    QVERIFY(after.endsWith(record));
    QCOMPARE(after.left(after.size() - record.size() - 2), before.left(before.size() - oldRecord.size() - 2));
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(path));
}

void TstEditing::editing_with_a_new_name_renames_the_file()
{
    list(QStringLiteral("before"));
    expectProperties(QStringLiteral("  after "), QStringLiteral("new comment"));
    clickRow(QStringLiteral("before"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("after")});
    QCOMPARE(m_panel->comments(), QStringList{QStringLiteral("new comment")});
    QCOMPARE(contents(projectFilesPath()), QStringList{QStringLiteral("after.corvelpro")});
    EngineerPacketInfo info;
    info.strFilePath = projectFile(QStringLiteral("after"));
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QStringLiteral("after"));
    settle();
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("after")});
}

void TstEditing::a_renamed_row_still_works()
{
    list(QStringLiteral("before"));
    const QPointer<QWidget> sameRow = row(QStringLiteral("before"));
    expectProperties(QStringLiteral("after"), QString());
    clickRow(QStringLiteral("before"), QStringLiteral("Edit"));
    settle();
    QCOMPARE(row(QStringLiteral("after")), sameRow.data());
    for (QToolButton *button : m_panel->rowButtons(0))
        QCOMPARE(button->property("FilePath").toString(), projectFile(QStringLiteral("after")));
    expectProperties(QStringLiteral("again"), QStringLiteral("x"));
    clickRow(QStringLiteral("after"), QStringLiteral("Edit"));
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("again")});
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    clickRow(QStringLiteral("again"), QStringLiteral("Delete"));
    VERIFY_BOOK();
    QVERIFY(contents(projectFilesPath()).isEmpty());
}

void TstEditing::names_in_every_script_survive_editing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("comment");
    QTest::newRow("Chinese") << QString::fromUtf8("晚会 第二场") << QString::fromUtf8("灯光：蓝色\n第二行");
    QTest::newRow("emoji") << QString::fromUtf8("show 🎬🎤") << QString::fromUtf8("🎉🎉🎉");
    QTest::newRow("Arabic") << QString::fromUtf8("عرض المساء") << QString::fromUtf8("تعليق");
    QTest::newRow("combining marks") << QString::fromUtf8("e\xcc\x81t\xc3\xa9")
                                     << QString::fromUtf8("\xc3\xa9 e\xcc\x81");
    QTest::newRow("quotes and percent") << QStringLiteral("50%3off 'now'") << QStringLiteral("\\ \" {\"a\":1} %1");
    QTest::newRow("looks like HTML") << QStringLiteral("&lt;b&gt;bold") << QStringLiteral("<b>bold</b> &amp;");
    QTest::newRow("empty comment") << QStringLiteral("empty") << QString();
}

void TstEditing::names_in_every_script_survive_editing()
{
    QFETCH(QString, name);
    QFETCH(QString, comment);
    list(QStringLiteral("before"));
    expectProperties(name, comment);
    clickRow(QStringLiteral("before"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    EngineerPacketInfo info;
    info.strFilePath = projectFile(name);
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, name);
    QCOMPARE(info.strComment, comment);
    m_panel->rescan();
    QCOMPARE(m_panel->names(), QStringList{name});
    QCOMPARE(m_panel->comments(), QStringList{comment});
}

void TstEditing::cancelling_the_dialog_changes_nothing()
{
    list(QStringLiteral("show"));
    const QByteArray before = readFile(projectFile(QStringLiteral("show")));
    m_book->expectDialog(propertyDialog, [](QDialog *dialog) {
        enterProperties(dialog, QStringLiteral("show"), QStringLiteral("other"));
        click(dialog, QStringLiteral("Cancel"));
    });
    const FutureWatchers scans;
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(readFile(projectFile(QStringLiteral("show"))), before);
    QCOMPARE(m_panel->comments(), QStringList{QStringLiteral("a comment")});
    settle();
    QCOMPARE(scans.seen(), 0);
}

void TstEditing::the_dialog_shows_name_and_comment()
{
    list(QStringLiteral("show"), QString::fromUtf8("蓝色 <b>"));
    Properties shown;
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        shown = propertiesIn(dialog);
        dialog->reject();
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(shown.name, QStringLiteral("show"));
    QCOMPARE(shown.comment, QString::fromUtf8("蓝色 <b>"));
}

void TstEditing::renaming_to_a_taken_name_warns()
{
    list(QStringLiteral("taken"), QStringLiteral("other"));
    const QByteArray other = readFile(projectFile(QStringLiteral("taken")));
    list(QStringLiteral("show"), QStringLiteral("before"));
    // With the blank the dialog does not find the existing name itself.
    expectProperties(QStringLiteral("taken "), QStringLiteral("after"));
    m_book->expectWarning(remind, QStringLiteral("File rename failed"));
    {
        const ExpectMessage logged(QtWarningMsg, QStringLiteral("File rename failed."), 1);
        clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    }
    VERIFY_BOOK();
    QCOMPARE(contents(projectFilesPath()),
             (QStringList{QStringLiteral("show.corvelpro"), QStringLiteral("taken.corvelpro")}));
    QCOMPARE(readFile(projectFile(QStringLiteral("taken"))), other);
    EngineerPacketInfo info;
    info.strFilePath = projectFile(QStringLiteral("show"));
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QStringLiteral("taken"));
    QCOMPARE(info.strComment, QStringLiteral("after"));
    const int at = m_panel->names().indexOf(QStringLiteral("show"));
    QVERIFY(at >= 0);
    QCOMPARE(m_panel->comments().at(at), QStringLiteral("before"));
    QCOMPARE(m_panel->rowButtons(at).first()->property("FilePath").toString(), projectFile(QStringLiteral("show")));
}

void TstEditing::an_unwritable_record_ends_silently()
{
    list(QStringLiteral("show"));
    const QString path = projectFile(QStringLiteral("show"));
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        QVERIFY(QFile::remove(path) && writeFile(path, "no archive any more"));
        answerProperties(dialog, QStringLiteral("other"), QStringLiteral("other"));
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(readFile(path), QByteArray("no archive any more"));
    QCOMPARE(contents(projectFilesPath()), QStringList{QStringLiteral("show.corvelpro")});
}

void TstEditing::an_edit_updates_the_list_entry()
{
    list(QStringLiteral("before"), QStringLiteral("old"));
    // Without a scan, which would read them again.
    const HeldThreadPool held;
    expectProperties(QStringLiteral("after"), QStringLiteral("new"));
    clickRow(QStringLiteral("before"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("after")});
    QCOMPARE(m_panel->comments(), QStringList{QStringLiteral("new")});
    Properties shown;
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        shown = propertiesIn(dialog);
        dialog->reject();
    });
    clickRow(QStringLiteral("after"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(shown.name, QStringLiteral("after"));
    QCOMPARE(shown.comment, QStringLiteral("new"));
}

void TstEditing::an_edited_row_keeps_its_place()
{
    QVERIFY(writePackage(projectFile(QStringLiteral("newest")), QString(), 10));
    QVERIFY(writePackage(projectFile(QStringLiteral("middle")), QString(), 20));
    QVERIFY(writePackage(projectFile(QStringLiteral("oldest")), QString(), 30));
    m_panel->rescan();
    expectProperties(QStringLiteral("oldest, edited"), QStringLiteral("new"));
    clickRow(QStringLiteral("oldest"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    const QStringList expected{QStringLiteral("newest"), QStringLiteral("middle"), QStringLiteral("oldest, edited")};
    QCOMPARE(m_panel->names(), expected);
    m_panel->rescan();
    QCOMPARE(m_panel->names(), expected);
}

void TstEditing::an_edit_updates_its_senders_path()
{
    list(QStringLiteral("before"));
    QToolButton elsewhere;
    elsewhere.setProperty("FilePath", projectFile(QStringLiteral("before")));
    QObject::connect(&elsewhere, SIGNAL(clicked()), m_panel->widget.get(), SLOT(slot_editProjectInfo()));
    expectProperties(QStringLiteral("after"), QString());
    elsewhere.click();
    VERIFY_BOOK();
    QCOMPARE(elsewhere.property("FilePath").toString(), projectFile(QStringLiteral("after")));
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("after")});
    for (QToolButton *button : m_panel->rowButtons(0))
        QCOMPARE(button->property("FilePath").toString(), projectFile(QStringLiteral("after")));
}

void TstEditing::the_dialog_stays_a_child_of_the_panel()
{
    list(QStringLiteral("show"));
    const auto dialogs = [this] { return (*m_panel)->findChildren<QDialog *>(QString(), Qt::FindDirectChildrenOnly); };
    const int before = dialogs().count();
    expectProperties(QStringLiteral("show"), QStringLiteral("edited"));
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    m_book->expectDialog(propertyDialog, [](QDialog *dialog) { dialog->reject(); });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    settle();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(dialogs().count(), before + 2);
    const QPointer<QDialog> last = dialogs().last();
    QVERIFY(!last->isVisible());
    m_panel.reset();
    QVERIFY(!last);
}

void TstEditing::an_edit_locks_the_list()
{
    list(QStringLiteral("show"));
    QMutex &mutex = ((*m_panel->widget).*projectsOf(PanelsProjects())).get()->mutex;
    // Not in the pool: waitForFinished() may run a task on this thread, which may lock the list again.
    const auto isFree = [&mutex] {
        bool isLocked = false;
        std::thread other([&] {
            isLocked = mutex.tryLock();
            if (isLocked)
                mutex.unlock();
        });
        other.join();
        return isLocked;
    };
    QVERIFY(isFree());
    bool isFreeMeanwhile = true;
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        isFreeMeanwhile = isFree();
        answerProperties(dialog, QStringLiteral("renamed"), QString());
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QVERIFY(!isFreeMeanwhile);
    settle();
    QVERIFY(isFree());
}

void TstEditing::scans_during_an_edit_occupy_no_thread()
{
    list(QStringLiteral("show"));
    int threadsMeanwhile = -1;
    int scansMeanwhile = -1;
    bool isPoolFree = false;
    const FutureWatchers scans;
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        const int before = scans.seen();
        const DirectoryObserver observer;
        for (int number = 0; number < 30; ++number) {
            const int changes = observer.changes();
            QVERIFY(writePackage(projectFile(QStringLiteral("copied %1").arg(number)), QString()));
            QVERIFY(QTest::qWaitFor([&] { return observer.changes() > changes; }, patience));
            QMetaObject::invokeMethod(m_panel->widget.get(), "slot_projectFilesChanged");
        }
        threadsMeanwhile = QThreadPool::globalInstance()->activeThreadCount();
        scansMeanwhile = scans.seen() - before;
        // As many other tasks as the pool has threads run at the same time.
        const int threads = QThreadPool::globalInstance()->maxThreadCount();
        QSemaphore arrived;
        QSemaphore released;
        for (int thread = 0; thread < threads; ++thread)
            QtConcurrent::run([&] {
                arrived.release();
                released.acquire();
            });
        isPoolFree = arrived.tryAcquire(threads, patience);
        released.release(threads);
        QThreadPool::globalInstance()->waitForDone();
        dialog->reject();
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(threadsMeanwhile, 0);
    QCOMPARE(scansMeanwhile, 0);
    QVERIFY(isPoolFree);
    const int before = scans.seen();
    QThreadPool::globalInstance()->waitForDone();
    QTRY_COMPARE(m_panel->table()->rowCount(), 31);
    QVERIFY2(scans.seen() - before <= 1, "one scan for all that was missed");
}

void TstEditing::a_scan_during_an_edit_runs_afterwards()
{
    list(QStringLiteral("show"));
    HeldFile held(projectFile(QStringLiteral("held")));
    QVERIFY(writeFile(projectFile(QStringLiteral("held")), "no package"));
    QMetaObject::invokeMethod(m_panel->widget.get(), "slot_projectFilesChanged");
    QVERIFY(held.waitForReader());
    bool isPoolFree = false;
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        QVERIFY(writePackage(projectFile(QStringLiteral("late")), QString()));
        held.release();
        isPoolFree = QThreadPool::globalInstance()->waitForDone(patience);
        dialog->reject();
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QVERIFY(isPoolFree);
    QTRY_VERIFY(m_panel->names().contains(QStringLiteral("late")));
}

void TstEditing::a_package_deleted_during_its_edit_stays_deleted()
{
    list(QStringLiteral("show"));
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        QVERIFY(QFile::remove(projectFile(QStringLiteral("show"))));
        answerProperties(dialog, QStringLiteral("renamed"), QStringLiteral("after"));
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QVERIFY(contents(projectFilesPath()).isEmpty());
    QTRY_COMPARE(m_panel->table()->rowCount(), 0);
}

void TstEditing::the_table_may_change_during_an_edit()
{
    list(QStringLiteral("first"));
    list(QStringLiteral("show"));
    const QPointer<QWidget> oldRow = row(QStringLiteral("show"));
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        // Like a scan whose list no longer contains these rows.
        m_panel->table()->setRowCount(0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        answerProperties(dialog, QStringLiteral("renamed"), QStringLiteral("after"));
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QVERIFY(!oldRow);
    QVERIFY(QFile::exists(projectFile(QStringLiteral("renamed"))));
    QVERIFY(row(QStringLiteral("renamed")));
    QVERIFY(row(QStringLiteral("first")));
    settle();
    QCOMPARE(m_panel->table()->rowCount(), 2);
}

void TstEditing::row_slots_do_nothing_without_their_button()
{
    list(QStringLiteral("show"));
    for (const char *slot : {"slot_applyPoject", "slot_singleFileSaveas", "slot_deleteProject", "slot_editProjectInfo"})
        QVERIFY(QMetaObject::invokeMethod(m_panel->widget.get(), slot));
    settle();
    VERIFY_BOOK();
    QVERIFY(m_book->seen().isEmpty());
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("show")});
}

void TstEditing::deleting_the_panel_drops_a_postponed_scan()
{
    list(QStringLiteral("show"));
    m_book->expectDialog(propertyDialog, [this](QDialog *) {
        m_panel->rescan();
        m_panel.reset();
    });
    for (QAbstractButton *one : row(QStringLiteral("show"))->findChildren<QAbstractButton *>()) {
        if (one->text() == QStringLiteral("Edit"))
            QMetaObject::invokeMethod(one, "click", Qt::QueuedConnection);
    }
    const FutureWatchers scans;
    waitForAnswers();
    settle();
    QVERIFY(!m_panel);
    QCOMPARE(scans.seen(), 0);
    m_panel.emplace();
}

TEST_MAIN(TstEditing)
#include "tst_editing.moc"
