#include <gui/paneltesting.h>
#include <unit/packagetesting.h>

#include <support/answerbook.h>
#include <support/freespace.h>
#include <support/heldfile.h>
#include <support/objectcensus.h>
#include <support/testmain.h>
#include <zippackagehandle.h>

#include <simulation/journal.h>
#include <widgets/fixedbitlineeditex.h>
#include <widgets/waitingdialog.h>

#include <QFileSystemWatcher>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QMutex>
#include <QPointer>
#include <QSet>
#include <QTextEdit>

#include <thread>

using namespace PackageTesting;
using namespace PanelTesting;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ZipPackageHandle;
using Simulation::Journal;

static const QString remind = QStringLiteral("Remind");
static const QString warning = QStringLiteral("Warning");
static const QString chooserTitle = QStringLiteral("Project file");
static const QString saveTitle = QStringLiteral("choose Des Directory");
static const QString deleteQuestion = QStringLiteral("Confirm to delete the selected project file?");
static const QString deleteAllQuestion = QStringLiteral("Confirm to delete all project file?");
static const QString saveSucceeded = QStringLiteral("save as success");
static const QString importSucceeded = QStringLiteral("Import as success");
static const QString saveWaiting = QStringLiteral("save as project file,please wait...");
static const QString importWaiting = QStringLiteral("Import project files,please wait...");

namespace {

QStringList waitingTexts()
{
    QStringList texts;
    for (const auto &entry : Journal::instance()->entries(showWaitingDialog))
        texts.append(entry.arguments.value(QStringLiteral("text")).toString());
    return texts;
}

/// Tells when the system has reported a change of the project-files directory, as it does to the panel.
class DirectoryObserver
{
public:
    DirectoryObserver()
        : m_watcher(QStringList{projectFilesPath()})
    {
        QObject::connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_watcher, [this] { ++m_changes; });
    }
    int changes() const { return m_changes; }

private:
    int m_changes = 0;
    QFileSystemWatcher m_watcher;
};

/// A way to the panel's list, which is its own business, for a test that must see it locked. An explicit instantiation
/// may name private members.
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

/// Counts the scans, copies and imports of which the user interface was told.
class FutureCalls : public QObject
{
public:
    FutureCalls() { qApp->installEventFilter(this); }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::FutureCallOut && !m_seen.contains(object))
            m_seen.insert(object);
        return false;
    }
    int count() const { return m_seen.count(); }

private:
    QSet<QObject *> m_seen;
};

/// Fills the property dialog and presses OK.
void answerProperties(QDialog *dialog, const QString &name, const QString &comment)
{
    dialog->findChild<Corvel::Widgets::FixedBitLineEditEx *>()->setText(name);
    dialog->findChild<QTextEdit *>()->setPlainText(comment);
    click(dialog, QStringLiteral("OK"));
}

} // namespace

/// Deleting, editing, copying out and importing project files with the real panel.
class TstProjectManagement : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    // Deleting
    void deleting_one_removes_file_and_row();
    void deleting_the_last_one_disables_the_buttons_for_all();
    void answering_no_deletes_nothing_data();
    void answering_no_deletes_nothing();
    void deleting_a_missing_file_logs_and_keeps_the_row();
    void a_failing_delete_is_reported_and_ends_following_the_directory();
    void a_successful_delete_goes_on_following_the_directory();
    void deleting_all_removes_listed_files_alone();
    void answering_no_deletes_none_of_all();
    void deleting_all_ignores_what_cannot_be_removed();
    void a_scan_that_a_change_overtakes_is_done_again_data();
    void a_scan_that_a_change_overtakes_is_done_again();

    // Editing
    void editing_without_renaming_rewrites_only_the_comment();
    void editing_with_a_new_name_renames_the_file();
    void a_renamed_row_goes_on_working();
    void editing_keeps_every_script_data();
    void editing_keeps_every_script();
    void cancelling_the_dialog_changes_nothing();
    void the_dialog_shows_name_and_comment();
    void renaming_onto_another_file_keeps_the_name_and_reports();
    void an_unwritable_record_ends_silently();
    void an_edit_updates_name_path_and_comment_of_the_entry();
    void an_edit_keeps_the_row_where_it_is();
    void an_edit_names_the_new_path_on_its_sender();
    void the_edit_dialog_stays_a_child_of_the_panel();
    void an_edit_holds_the_list();
    void scans_of_an_edit_leave_the_pool_free();
    void a_scan_that_meets_an_edit_gives_way_to_one_after_it();
    void a_package_deleted_under_its_edit_stays_deleted();
    void the_table_may_be_rebuilt_while_the_dialog_is_open();

    // Saving one elsewhere
    void saving_one_elsewhere_copies_it();
    void saving_one_elsewhere_suggests_the_documents_folder();
    void cancelling_the_save_dialog_copies_nothing();
    void saving_one_onto_an_existing_file_is_refused();
    void saving_a_missing_file_is_reported();
    void a_failing_copy_of_one_names_it();
    void a_package_that_became_a_pipe_holds_nobody();

    // Saving all elsewhere
    void saving_all_copies_every_listed_file();
    void saving_all_reports_what_exists_and_copies_the_rest();
    void saving_all_into_the_documents_folder_does_nothing();
    void cancelling_the_folder_dialog_copies_nothing();
    void saving_all_needs_more_space_than_their_size_data();
    void saving_all_needs_more_space_than_their_size();

    // Importing
    void importing_copies_and_lists();
    void the_chooser_of_an_import_takes_many_files();
    void cancelling_the_chooser_imports_nothing();
    void an_invalid_package_ends_an_import();
    void an_existing_name_is_reported_and_the_rest_imported();
    void importing_from_the_directory_of_projects_itself_fails();
    void importing_needs_more_space_than_the_files_data();
    void importing_needs_more_space_than_the_files();
    void an_import_does_not_follow_the_directory_until_its_end();
    void what_was_imported_is_listed_while_its_end_is_shown();
    void what_others_bring_while_the_end_of_an_import_is_shown_is_listed();
    void importing_again_works_before_and_after_a_save();

    // Closing
    void the_waiting_dialog_goes_before_the_result_is_shown();
    void one_watcher_of_each_kind_stays_until_the_panel_goes();
    void watchers_of_imports_alone_go_with_the_panel();
    void file_dialogs_go_when_they_were_used();
    void the_chooser_shows_details_whatever_the_last_one_showed();
    void slots_of_a_row_do_nothing_without_its_button();
    void deleting_the_panel_during_an_import_is_quiet();
    void deleting_the_panel_while_the_end_of_an_import_is_shown_is_quiet();
    void deleting_the_panel_during_a_save_is_quiet();
    void deleting_the_panel_under_an_edit_that_kept_a_scan_waiting_is_quiet();
    void deleting_the_panel_while_its_dialog_is_open_starts_nothing_data();
    void deleting_the_panel_while_its_dialog_is_open_starts_nothing();

private:
    void list(const QString &name, const QString &comment = QStringLiteral("a comment"));
    QString elsewhere(const QString &fileName) const { return m_elsewhere->filePath(fileName); }
    QWidget *row(const QString &name) const;
    void clickRow(const QString &name, const QString &button);
    void expectProperties(const QString &name, const QString &comment);
    bool isFollowingTheDirectory();
    void waitForAnswers() { QTRY_VERIFY2(m_book->isSatisfied(), qPrintable(m_book->report())); }

    std::optional<RunningSite> m_site;
    std::optional<Panel> m_panel;
    std::optional<AnswerBook> m_book;
    std::optional<QTemporaryDir> m_elsewhere;
};

#define VERIFY_BOOK() QVERIFY2(m_book->isSatisfied(), qPrintable(m_book->report()))

void TstProjectManagement::initTestCase()
{
    // Importing and scanning at once must not depend on the number of processors.
    QThreadPool::globalInstance()->setMaxThreadCount(4);
}

void TstProjectManagement::init()
{
    QVERIFY(clearProjectFilesDirectory());
    m_elsewhere.emplace();
    m_site.emplace();
    m_panel.emplace();
    (*m_panel)->resize(1200, 700);
    (*m_panel)->show();
    settle();
    m_book.emplace();
    WarningGuard::clear();
    Journal::instance()->clear();
}

void TstProjectManagement::cleanup()
{
    settle();
    m_book.reset();
    m_panel.reset();
    settle();
    m_site.reset();
    m_elsewhere.reset();
}

void TstProjectManagement::list(const QString &name, const QString &comment)
{
    QVERIFY(writePackage(projectFile(name), comment));
    m_panel->rescan();
    QVERIFY2(m_panel->names().contains(name), qPrintable(m_panel->names().join(QLatin1Char(' '))));
}

QWidget *TstProjectManagement::row(const QString &name) const
{
    const int number = m_panel->names().indexOf(name);
    return number < 0 ? nullptr : m_panel->table()->cellWidget(number, 2);
}

void TstProjectManagement::clickRow(const QString &name, const QString &button)
{
    QVERIFY2(row(name), qPrintable(name));
    click(row(name), button);
}

void TstProjectManagement::expectProperties(const QString &name, const QString &comment)
{
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"),
                         [=](QDialog *dialog) { answerProperties(dialog, name, comment); });
}

bool TstProjectManagement::isFollowingTheDirectory()
{
    const DirectoryObserver observer;
    const QString path = projectFile(QStringLiteral("copied by hand"));
    if (!writePackage(path, QString()) || !QTest::qWaitFor([&] { return observer.changes() > 0; }, patience))
        qFatal("The change of the directory was not reported");
    settle();
    const bool isListed = m_panel->names().contains(QStringLiteral("copied by hand"));
    QFile::remove(path);
    m_panel->rescan();
    return isListed;
}

// ---------------------------------------------------------------------------------------------------------------------
// Deleting

void TstProjectManagement::deleting_one_removes_file_and_row()
{
    list(QStringLiteral("first"));
    list(QStringLiteral("second"));
    list(QStringLiteral("third"));
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    clickRow(QStringLiteral("second"), QStringLiteral("Delete"));
    VERIFY_BOOK();
    QCOMPARE(m_book->seen().first().buttons, QMessageBox::Yes | QMessageBox::No);
    // At once, not after a scan.
    QVERIFY(!m_panel->names().contains(QStringLiteral("second")));
    QCOMPARE(m_panel->table()->rowCount(), 2);
    QVERIFY(!QFile::exists(projectFile(QStringLiteral("second"))));
    QVERIFY(QFile::exists(projectFile(QStringLiteral("first"))));
    settle();
    QCOMPARE(m_panel->table()->rowCount(), 2);
    QVERIFY(m_panel->allDelete()->isEnabled());
}

void TstProjectManagement::deleting_the_last_one_disables_the_buttons_for_all()
{
    list(QStringLiteral("only"));
    QVERIFY(m_panel->allDelete()->isEnabled());
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    clickRow(QStringLiteral("only"), QStringLiteral("Delete"));
    QCOMPARE(m_panel->table()->rowCount(), 0);
    QVERIFY(!m_panel->allDelete()->isEnabled());
    QVERIFY(!m_panel->allSaveAs()->isEnabled());
}

void TstProjectManagement::answering_no_deletes_nothing_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("No") << int(QMessageBox::No);
    QTest::newRow("Escape") << int(QMessageBox::NoButton);
}

void TstProjectManagement::answering_no_deletes_nothing()
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

void TstProjectManagement::deleting_a_missing_file_logs_and_keeps_the_row()
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

void TstProjectManagement::a_failing_delete_is_reported_and_ends_following_the_directory()
{
    list(QStringLiteral("show"));
    const QString path = projectFile(QStringLiteral("show"));
    {
        // A folder in its place cannot be removed as a file. No scan may see the moment without either.
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
    QVERIFY(!isFollowingTheDirectory());

    // The panel's own operations take it up again.
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    clickRow(QStringLiteral("other"), QStringLiteral("Delete"));
    VERIFY_BOOK();
    QVERIFY(isFollowingTheDirectory());
    QVERIFY(QDir(path).removeRecursively());
}

void TstProjectManagement::a_successful_delete_goes_on_following_the_directory()
{
    list(QStringLiteral("show"));
    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    clickRow(QStringLiteral("show"), QStringLiteral("Delete"));
    QVERIFY(isFollowingTheDirectory());
}

void TstProjectManagement::deleting_all_removes_listed_files_alone()
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

void TstProjectManagement::answering_no_deletes_none_of_all()
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

void TstProjectManagement::deleting_all_ignores_what_cannot_be_removed()
{
    list(QStringLiteral("first"));
    list(QStringLiteral("second"));
    // In a folder that cannot be written, files cannot be removed.
    const QFile::Permissions readable =
        QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    const QFile::Permissions home = QFile::permissions(QDir::homePath());
    QVERIFY(QFile::setPermissions(QDir::homePath(), readable | QFile::WriteOwner));
    QVERIFY(QFile::setPermissions(projectFilesPath(), readable));
    // The directory's change brings a scan, which would find the files again at any moment.
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

void TstProjectManagement::a_scan_that_a_change_overtakes_is_done_again_data()
{
    QTest::addColumn<QString>("change");
    for (const char *change : {"Delete", "All Delete", "Edit"})
        QTest::newRow(change) << QString::fromLatin1(change);
}

void TstProjectManagement::a_scan_that_a_change_overtakes_is_done_again()
{
    QFETCH(QString, change);
    // On a first start nobody reports changes: the directory was not there to be watched.
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

// ---------------------------------------------------------------------------------------------------------------------
// Editing

void TstProjectManagement::editing_without_renaming_rewrites_only_the_comment()
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

    // All but the comment and its length, which are the last bytes.
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

void TstProjectManagement::editing_with_a_new_name_renames_the_file()
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

void TstProjectManagement::a_renamed_row_goes_on_working()
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

void TstProjectManagement::editing_keeps_every_script_data()
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

void TstProjectManagement::editing_keeps_every_script()
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

void TstProjectManagement::cancelling_the_dialog_changes_nothing()
{
    list(QStringLiteral("show"));
    const QByteArray before = readFile(projectFile(QStringLiteral("show")));
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [](QDialog *dialog) {
        dialog->findChild<QTextEdit *>()->setPlainText(QStringLiteral("other"));
        click(dialog, QStringLiteral("Cancel"));
    });
    const FutureCalls scans;
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(readFile(projectFile(QStringLiteral("show"))), before);
    QCOMPARE(m_panel->comments(), QStringList{QStringLiteral("a comment")});
    settle();
    QCOMPARE(scans.count(), 0);
}

void TstProjectManagement::the_dialog_shows_name_and_comment()
{
    list(QStringLiteral("show"), QString::fromUtf8("蓝色 <b>"));
    QString name;
    QString comment;
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [&](QDialog *dialog) {
        name = dialog->findChild<Corvel::Widgets::FixedBitLineEditEx *>()->text();
        comment = dialog->findChild<QTextEdit *>()->toPlainText();
        dialog->reject();
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(name, QStringLiteral("show"));
    QCOMPARE(comment, QString::fromUtf8("蓝色 <b>"));
}

void TstProjectManagement::renaming_onto_another_file_keeps_the_name_and_reports()
{
    list(QStringLiteral("taken"), QStringLiteral("other"));
    const QByteArray other = readFile(projectFile(QStringLiteral("taken")));
    list(QStringLiteral("show"), QStringLiteral("before"));
    // The blank keeps the dialog from refusing the name itself.
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

void TstProjectManagement::an_unwritable_record_ends_silently()
{
    list(QStringLiteral("show"));
    const QString path = projectFile(QStringLiteral("show"));
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [&](QDialog *dialog) {
        QVERIFY(QFile::remove(path) && writeFile(path, "no archive any more"));
        answerProperties(dialog, QStringLiteral("other"), QStringLiteral("other"));
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(readFile(path), QByteArray("no archive any more"));
    QCOMPARE(contents(projectFilesPath()), QStringList{QStringLiteral("show.corvelpro")});
}

void TstProjectManagement::an_edit_updates_name_path_and_comment_of_the_entry()
{
    list(QStringLiteral("before"), QStringLiteral("old"));
    // Without a scan, which would read them anew.
    const HeldThreadPool held;
    expectProperties(QStringLiteral("after"), QStringLiteral("new"));
    clickRow(QStringLiteral("before"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("after")});
    QCOMPARE(m_panel->comments(), QStringList{QStringLiteral("new")});
    QString name;
    QString comment;
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [&](QDialog *dialog) {
        name = dialog->findChild<Corvel::Widgets::FixedBitLineEditEx *>()->text();
        comment = dialog->findChild<QTextEdit *>()->toPlainText();
        dialog->reject();
    });
    clickRow(QStringLiteral("after"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QCOMPARE(name, QStringLiteral("after"));
    QCOMPARE(comment, QStringLiteral("new"));
}

void TstProjectManagement::an_edit_keeps_the_row_where_it_is()
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

void TstProjectManagement::an_edit_names_the_new_path_on_its_sender()
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

void TstProjectManagement::the_edit_dialog_stays_a_child_of_the_panel()
{
    list(QStringLiteral("show"));
    const auto dialogs = [this] { return (*m_panel)->findChildren<QDialog *>(QString(), Qt::FindDirectChildrenOnly); };
    const int before = dialogs().count();
    expectProperties(QStringLiteral("show"), QStringLiteral("edited"));
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [](QDialog *dialog) { dialog->reject(); });
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

void TstProjectManagement::an_edit_holds_the_list()
{
    list(QStringLiteral("show"));
    QMutex &mutex = ((*m_panel->widget).*projectsOf(PanelsProjects())).get()->mutex;
    // Not in the pool: who waits for its work may get to do it, and this thread may lock the list again.
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
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [&](QDialog *dialog) {
        isFreeMeanwhile = isFree();
        answerProperties(dialog, QStringLiteral("renamed"), QString());
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QVERIFY(!isFreeMeanwhile);
    settle();
    QVERIFY(isFree());
}

void TstProjectManagement::scans_of_an_edit_leave_the_pool_free()
{
    list(QStringLiteral("show"));
    int threadsMeanwhile = -1;
    int scansMeanwhile = -1;
    bool isPoolFree = false;
    const FutureCalls scans;
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [&](QDialog *dialog) {
        const int before = scans.count();
        const DirectoryObserver observer;
        for (int number = 0; number < 30; ++number) {
            const int changes = observer.changes();
            QVERIFY(writePackage(projectFile(QStringLiteral("copied %1").arg(number)), QString()));
            QVERIFY(QTest::qWaitFor([&] { return observer.changes() > changes; }, patience));
            QMetaObject::invokeMethod(m_panel->widget.get(), "slot_projectFilesChanged");
        }
        threadsMeanwhile = QThreadPool::globalInstance()->activeThreadCount();
        scansMeanwhile = scans.count() - before;
        // As much other work as the pool has threads goes on at once.
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
    const int before = scans.count();
    QThreadPool::globalInstance()->waitForDone();
    QTRY_COMPARE(m_panel->table()->rowCount(), 31);
    QVERIFY2(scans.count() - before <= 1, "one scan for all that was missed");
}

void TstProjectManagement::a_scan_that_meets_an_edit_gives_way_to_one_after_it()
{
    list(QStringLiteral("show"));
    HeldFile held(projectFile(QStringLiteral("held")));
    QVERIFY(writeFile(projectFile(QStringLiteral("held")), "no package"));
    QMetaObject::invokeMethod(m_panel->widget.get(), "slot_projectFilesChanged");
    QVERIFY(held.waitForReader());
    bool isPoolFree = false;
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [&](QDialog *dialog) {
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

void TstProjectManagement::a_package_deleted_under_its_edit_stays_deleted()
{
    list(QStringLiteral("show"));
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [&](QDialog *dialog) {
        QVERIFY(QFile::remove(projectFile(QStringLiteral("show"))));
        answerProperties(dialog, QStringLiteral("renamed"), QStringLiteral("after"));
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    QVERIFY(contents(projectFilesPath()).isEmpty());
    QTRY_COMPARE(m_panel->table()->rowCount(), 0);
}

void TstProjectManagement::the_table_may_be_rebuilt_while_the_dialog_is_open()
{
    list(QStringLiteral("first"));
    list(QStringLiteral("show"));
    const QPointer<QWidget> oldRow = row(QStringLiteral("show"));
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [&](QDialog *dialog) {
        // As a scan does whose list no longer has these rows.
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

// ---------------------------------------------------------------------------------------------------------------------
// Saving one elsewhere

void TstProjectManagement::saving_one_elsewhere_copies_it()
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

void TstProjectManagement::saving_one_elsewhere_suggests_the_documents_folder()
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

void TstProjectManagement::cancelling_the_save_dialog_copies_nothing()
{
    list(QStringLiteral("show"));
    m_book->expectFileDialog(saveTitle, {});
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    VERIFY_BOOK();
    settle();
    QVERIFY(waitingTexts().isEmpty());
}

void TstProjectManagement::saving_one_onto_an_existing_file_is_refused()
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

void TstProjectManagement::saving_a_missing_file_is_reported()
{
    list(QStringLiteral("show"));
    const HeldThreadPool held;
    QVERIFY(QFile::remove(projectFile(QStringLiteral("show"))));
    m_book->expectWarning(remind, QStringLiteral("The file does not exist."));
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    VERIFY_BOOK();
    QVERIFY(waitingTexts().isEmpty());
}

void TstProjectManagement::a_failing_copy_of_one_names_it()
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

void TstProjectManagement::a_package_that_became_a_pipe_holds_nobody()
{
    // Listed through a link, so that no change of the directory takes the row away.
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

// ---------------------------------------------------------------------------------------------------------------------
// Saving all elsewhere

void TstProjectManagement::saving_all_copies_every_listed_file()
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

void TstProjectManagement::saving_all_reports_what_exists_and_copies_the_rest()
{
    // Listed newest first, and so reported.
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

void TstProjectManagement::saving_all_into_the_documents_folder_does_nothing()
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

void TstProjectManagement::cancelling_the_folder_dialog_copies_nothing()
{
    list(QStringLiteral("show"));
    m_book->expectFileDialog(saveTitle, {});
    click(m_panel->allSaveAs());
    VERIFY_BOOK();
    settle();
    QVERIFY(waitingTexts().isEmpty());
}

void TstProjectManagement::saving_all_needs_more_space_than_their_size_data()
{
    QTest::addColumn<int>("difference");
    QTest::addColumn<bool>("isEnough");
    QTest::newRow("one byte more than is free") << 1 << false;
    QTest::newRow("exactly the space that is free") << 0 << false;
    QTest::newRow("one byte less") << -1 << true;
}

void TstProjectManagement::saving_all_needs_more_space_than_their_size()
{
    QFETCH(int, difference);
    QFETCH(bool, isEnough);
    list(QStringLiteral("show"));
    list(QStringLiteral("another"));
    Journal::instance()->clear();
    {
        // As large as that since they were listed.
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

// ---------------------------------------------------------------------------------------------------------------------
// Importing

void TstProjectManagement::importing_copies_and_lists()
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

void TstProjectManagement::the_chooser_of_an_import_takes_many_files()
{
    // Where the user was the last time does not matter.
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

void TstProjectManagement::cancelling_the_chooser_imports_nothing()
{
    m_book->expectFileDialog(chooserTitle, {});
    click(m_panel->importProject());
    VERIFY_BOOK();
    settle();
    QVERIFY(waitingTexts().isEmpty());
    QVERIFY(isFollowingTheDirectory());
}

void TstProjectManagement::an_invalid_package_ends_an_import()
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

void TstProjectManagement::an_existing_name_is_reported_and_the_rest_imported()
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

void TstProjectManagement::importing_from_the_directory_of_projects_itself_fails()
{
    list(QStringLiteral("show"));
    const QByteArray before = readFile(projectFile(QStringLiteral("show")));
    m_book->expectFileDialog(chooserTitle, {projectFile(QStringLiteral("show"))});
    m_book->expectWarning(warning, QStringLiteral("Import project file [show] failed"));
    click(m_panel->importProject());
    waitForAnswers();
    QCOMPARE(readFile(projectFile(QStringLiteral("show"))), before);
}

void TstProjectManagement::importing_needs_more_space_than_the_files_data()
{
    QTest::addColumn<int>("difference");
    QTest::addColumn<bool>("isEnough");
    QTest::newRow("one byte more than is free") << 1 << false;
    QTest::newRow("exactly the space that is free") << 0 << false;
    QTest::newRow("one byte less") << -1 << true;
}

void TstProjectManagement::importing_needs_more_space_than_the_files()
{
    QFETCH(int, difference);
    QFETCH(bool, isEnough);
    const QString first = elsewhere(QStringLiteral("first.corvelpro"));
    const QString second = elsewhere(QStringLiteral("second.corvelpro"));
    QVERIFY(writeFile(first, "no package") && QFile::resize(first, 4 * MiB));
    QVERIFY(writeFile(second, "no package") && QFile::resize(second, 2 * MiB + difference));
    const FreeSpace free(6 * MiB);
    m_book->expectFileDialog(chooserTitle, {first, second});
    // What has room goes on to the next check.
    if (isEnough)
        m_book->expectWarning(warning, QStringLiteral("The file[%1] context is invalid.").arg(first));
    else
        m_book->expectWarning(remind, QStringLiteral("Not enough space to import all selected files."));
    click(m_panel->importProject());
    waitForAnswers();
    QCOMPARE(waitingTexts().count(), isEnough ? 1 : 0);
    QVERIFY(contents(projectFilesPath()).isEmpty());
}

void TstProjectManagement::an_import_does_not_follow_the_directory_until_its_end()
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
    // A scan would be waiting in the pool or have run beside the import.
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

void TstProjectManagement::what_was_imported_is_listed_while_its_end_is_shown()
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

void TstProjectManagement::what_others_bring_while_the_end_of_an_import_is_shown_is_listed()
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

void TstProjectManagement::importing_again_works_before_and_after_a_save()
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
    // Each import told its end once.
    QCOMPARE(m_book->seen().size(), 10);
}

// ---------------------------------------------------------------------------------------------------------------------
// Closing

void TstProjectManagement::the_waiting_dialog_goes_before_the_result_is_shown()
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

void TstProjectManagement::one_watcher_of_each_kind_stays_until_the_panel_goes()
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

void TstProjectManagement::watchers_of_imports_alone_go_with_the_panel()
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

void TstProjectManagement::file_dialogs_go_when_they_were_used()
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

void TstProjectManagement::the_chooser_shows_details_whatever_the_last_one_showed()
{
    {
        // Qt keeps what the user chose in the last one.
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

void TstProjectManagement::slots_of_a_row_do_nothing_without_its_button()
{
    list(QStringLiteral("show"));
    for (const char *slot : {"slot_applyPoject", "slot_singleFileSaveas", "slot_deleteProject", "slot_editProjectInfo"})
        QVERIFY(QMetaObject::invokeMethod(m_panel->widget.get(), slot));
    settle();
    VERIFY_BOOK();
    QVERIFY(m_book->seen().isEmpty());
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("show")});
}

void TstProjectManagement::deleting_the_panel_during_an_import_is_quiet()
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

void TstProjectManagement::deleting_the_panel_while_the_end_of_an_import_is_shown_is_quiet()
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

void TstProjectManagement::deleting_the_panel_under_an_edit_that_kept_a_scan_waiting_is_quiet()
{
    list(QStringLiteral("show"));
    m_book->expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [this](QDialog *) {
        m_panel->rescan();
        m_panel.reset();
    });
    for (QAbstractButton *one : row(QStringLiteral("show"))->findChildren<QAbstractButton *>()) {
        if (one->text() == QStringLiteral("Edit"))
            QMetaObject::invokeMethod(one, "click", Qt::QueuedConnection);
    }
    const FutureCalls scans;
    waitForAnswers();
    settle();
    QVERIFY(!m_panel);
    QCOMPARE(scans.count(), 0);
    m_panel.emplace();
}

void TstProjectManagement::deleting_the_panel_during_a_save_is_quiet()
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
    // What had been asked for is done to its end.
    QCOMPARE(readFile(target), readFile(projectFile(QStringLiteral("show"))));
    m_panel.emplace();
}

void TstProjectManagement::deleting_the_panel_while_its_dialog_is_open_starts_nothing_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("dialog");
    const QString properties = QStringLiteral("EngineerPropertySettingWidget");
    const QString files = QStringLiteral("QFileDialog");
    const QString box = QStringLiteral("HX::Widgets::FramelessMessageBox");
    QTest::newRow("saving") << QStringLiteral("Save Project") << properties;
    QTest::newRow("editing") << QStringLiteral("Edit") << properties;
    QTest::newRow("applying") << QStringLiteral("Apply") << box;
    QTest::newRow("applying from elsewhere") << QStringLiteral("Apply Others") << files;
    QTest::newRow("importing") << QStringLiteral("Import Project") << files;
    QTest::newRow("saving one elsewhere") << QStringLiteral("Save as") << files;
    QTest::newRow("saving all elsewhere") << QStringLiteral("ALL Save as") << files;
    QTest::newRow("deleting") << QStringLiteral("Delete") << box;
    QTest::newRow("deleting all") << QStringLiteral("All Delete") << box;
}

void TstProjectManagement::deleting_the_panel_while_its_dialog_is_open_starts_nothing()
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
    // Not by a mouse click, after which the deleted button would still be touched by the event's sender.
    QMetaObject::invokeMethod(pressed, "click", Qt::QueuedConnection);
    waitForAnswers();
    QVERIFY(!m_panel);
    settle();
    QCOMPARE(readFile(projectFile(QStringLiteral("show"))), before);
    QCOMPARE(Journal::instance()->count(setOperatorType), 0);
    QVERIFY(!WaitingDialog::instance()->isVisible());
    m_panel.emplace();
}

TEST_MAIN(TstProjectManagement)
#include "tst_projectmanagement.moc"
