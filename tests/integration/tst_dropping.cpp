// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/freespace.h>
#include <support/heldfile.h>
#include <support/panelfixture.h>
#include <support/paneltexts.h>
#include <support/testmain.h>
#include <unit/packagetesting.h>

#include <widgets/waitingdialog.h>

#include <QHeaderView>
#include <QMimeData>
#include <QWindow>

using namespace PackageTesting;
using namespace PanelTesting;
using namespace PanelTexts;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
using Simulation::Journal;

namespace {

/// What a file manager drags.
class Dragged
{
public:
    explicit Dragged(const QStringList &paths, QList<QUrl> urls = {})
    {
        for (const QString &path : paths)
            urls.append(QUrl::fromLocalFile(path));
        m_data.setUrls(urls);
    }

    QMimeData *data() { return &m_data; }

private:
    QMimeData m_data;
};

/// The system's part: sends the events of a drag to the window, which finds the widget at that point. The drag leaves
/// the window at the end if nothing was dropped.
class Pointer
{
public:
    Pointer(QWidget *widget, Dragged &dragged, Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction,
            Qt::KeyboardModifiers modifiers = Qt::NoModifier)
        : m_window(widget->window()->windowHandle())
        , m_point(widget->mapTo(widget->window(), widget->rect().center()))
        , m_data(dragged.data())
        , m_offered(offered)
        , m_modifiers(modifiers)
    {}
    ~Pointer()
    {
        QDragLeaveEvent leave;
        if (m_window)
            QCoreApplication::sendEvent(m_window, &leave);
    }
    Q_DISABLE_COPY(Pointer)

    /// What the cursor shows when it enters.
    Qt::DropAction enter() const { return actionAfter<QDragEnterEvent>(); }
    /// What the cursor shows when it moves on.
    Qt::DropAction move() const { return actionAfter<QDragMoveEvent>(); }
    Qt::DropAction drop() const
    {
        QDropEvent event(m_point, m_offered, m_data, Qt::LeftButton, m_modifiers);
        QCoreApplication::sendEvent(m_window, &event);
        return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
    }
    /// A whole drag. The system drops only where the cursor said that it may.
    bool drag() const { return enter() != Qt::IgnoreAction && move() != Qt::IgnoreAction && drop() == Qt::CopyAction; }

private:
    template<typename Event>
    Qt::DropAction actionAfter() const
    {
        Event event(m_point, m_offered, m_data, Qt::LeftButton, m_modifiers);
        QCoreApplication::sendEvent(m_window, &event);
        return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
    }

    const QPointer<QWindow> m_window;
    const QPoint m_point;
    QMimeData *const m_data;
    const Qt::DropActions m_offered;
    const Qt::KeyboardModifiers m_modifiers;
};

} // namespace

/// Files dropped on the table.
class TstDropping : public QObject, protected PanelOnSite<TestSite>
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void dropped_packages_are_imported_in_their_order();
    void every_part_of_the_table_accepts_drops_data();
    void every_part_of_the_table_accepts_drops();
    void a_drop_is_a_copy_for_its_source();
    void non_package_file_is_refused_data();
    void non_package_file_is_refused();
    void one_other_file_refuses_the_whole_drop();
    void rest_of_the_panel_refuses_drops();
    void a_dropped_file_that_is_gone_is_reported();
    void a_dropped_package_from_the_list_is_reported();
    void a_drop_needs_more_space_than_its_files();
    void drops_are_refused_while_a_dialog_is_open();
    void simultaneous_drops_are_not_imported_concurrently();
    void drop_source_never_waits_for_a_box();
    void a_thousand_files_are_imported_at_once();
    void the_panel_may_be_deleted_after_a_drop();

private:
    QString package(const QString &fileName) const
    {
        if (!writePackage(elsewhere(fileName), QStringLiteral("dropped")))
            qFatal("The package could not be written");
        return elsewhere(fileName);
    }
    QWidget *table() const { return m_panel->table()->viewport(); }
};

void TstDropping::dropped_packages_are_imported_in_their_order()
{
    // The second ends the import, so the third is not looked at.
    const QStringList files{package(QString::fromUtf8("第一 🎬.corvelpro")), elsewhere(QStringLiteral("bad.corvelpro")),
                            package(QStringLiteral("third.corvelpro"))};
    QVERIFY(writeFile(files.at(1), "no package"));
    Dragged dragged(files);
    m_book->expectWarning(warning, QStringLiteral("The file[%1] context is invalid.").arg(files.at(1)));
    QVERIFY(Pointer(table(), dragged).drag());
    waitForAnswers();
    QTRY_COMPARE(m_panel->names(), QStringList{QString::fromUtf8("第一 🎬")});
    QCOMPARE(waitingTexts(), QStringList{importWaiting});
    QVERIFY(!WaitingDialog::instance()->isVisible());
    QCOMPARE(Journal::instance()->count(setCanelVisible), 0);
    QVERIFY(isFollowingTheDirectory());

    Dragged again({files.at(2)});
    m_book->expectInformation(remind, importSucceeded);
    QVERIFY(Pointer(table(), again).drag());
    waitForAnswers();
    QTRY_COMPARE(m_panel->table()->rowCount(), 2);
    QVERIFY(QFile::exists(files.at(2)));
}

void TstDropping::every_part_of_the_table_accepts_drops_data()
{
    QTest::addColumn<QString>("part");
    for (const char *part : {"empty area", "row", "row's button", "header"})
        QTest::newRow(part) << QString::fromLatin1(part);
}

void TstDropping::every_part_of_the_table_accepts_drops()
{
    QFETCH(QString, part);
    list(QStringLiteral("listed"));
    QWidget *target = table();
    if (part == QStringLiteral("row"))
        target = row(QStringLiteral("listed"));
    else if (part == QStringLiteral("row's button"))
        target = row(QStringLiteral("listed"))->findChild<QToolButton *>();
    else if (part == QStringLiteral("header"))
        target = m_panel->table()->horizontalHeader()->viewport();
    Dragged dragged({package(QStringLiteral("dropped.corvelpro"))});
    m_book->expectInformation(remind, importSucceeded);
    QVERIFY(Pointer(target, dragged).drag());
    waitForAnswers();
    QTRY_VERIFY(m_panel->names().contains(QStringLiteral("dropped")));
}

void TstDropping::a_drop_is_a_copy_for_its_source()
{
    // A source that moves would delete its file.
    Dragged dragged({package(QStringLiteral("a.corvelpro"))});
    QCOMPARE(Pointer(table(), dragged, Qt::CopyAction | Qt::MoveAction | Qt::LinkAction).enter(), Qt::CopyAction);
    QCOMPARE(Pointer(table(), dragged, Qt::CopyAction | Qt::MoveAction | Qt::LinkAction).move(), Qt::CopyAction);
    for (const Qt::DropAction other : {Qt::MoveAction, Qt::LinkAction}) {
        const Pointer pointer(table(), dragged, other);
        QCOMPARE(pointer.enter(), Qt::IgnoreAction);
        QCOMPARE(pointer.move(), Qt::IgnoreAction);
    }
    settle();
    QVERIFY(m_panel->names().isEmpty());
    // With Shift held, a drag proposes to move.
    const Pointer moving(table(), dragged, Qt::CopyAction | Qt::MoveAction, Qt::ShiftModifier);
    QCOMPARE(moving.enter(), Qt::CopyAction);
    QCOMPARE(moving.move(), Qt::CopyAction);
    m_book->expectInformation(remind, importSucceeded);
    QCOMPARE(moving.drop(), Qt::CopyAction);
    waitForAnswers();
}

void TstDropping::non_package_file_is_refused_data()
{
    QTest::addColumn<QList<QUrl>>("urls");
    QTest::newRow("nothing") << QList<QUrl>();
    QTest::newRow("a picture") << QList<QUrl>{QUrl::fromLocalFile(QStringLiteral("/tmp/logo.png"))};
    QTest::newRow("a name that only begins alike")
        << QList<QUrl>{QUrl::fromLocalFile(QStringLiteral("/tmp/a.corvelpro.zip"))};
    QTest::newRow("no local file") << QList<QUrl>{QUrl(QStringLiteral("https://www.velmora.example/a.corvelpro"))};
    QTest::newRow("an empty address") << QList<QUrl>{QUrl()};
    // The test puts it there.
    QTest::newRow("a folder named like a package") << QList<QUrl>{QUrl(QStringLiteral("folder.corvelpro"))};
}

void TstDropping::non_package_file_is_refused()
{
    QFETCH(QList<QUrl>, urls);
    if (urls.value(0).isRelative() && !urls.value(0).isEmpty()) {
        QVERIFY(QDir().mkpath(elsewhere(urls.first().path())));
        urls = {QUrl::fromLocalFile(elsewhere(urls.first().path()))};
    }
    Dragged dragged({}, urls);
    const Pointer pointer(table(), dragged);
    QCOMPARE(pointer.enter(), Qt::IgnoreAction);
    QCOMPARE(pointer.move(), Qt::IgnoreAction);
}

void TstDropping::one_other_file_refuses_the_whole_drop()
{
    QVERIFY(writeFile(elsewhere(QStringLiteral("notes.txt")), "notes"));
    const QString good = package(QStringLiteral("good.CORVELPRO"));
    Dragged mixed({good, elsewhere(QStringLiteral("notes.txt"))});
    QCOMPARE(Pointer(table(), mixed).enter(), Qt::IgnoreAction);
    QCOMPARE(Pointer(table(), mixed).move(), Qt::IgnoreAction);

    Dragged alone({good});
    m_book->expectInformation(remind, importSucceeded);
    QVERIFY(Pointer(table(), alone).drag());
    waitForAnswers();
    QCOMPARE(contents(projectFilesPath()), QStringList{QStringLiteral("good.CORVELPRO")});
}

void TstDropping::rest_of_the_panel_refuses_drops()
{
    Dragged dragged({package(QStringLiteral("a.corvelpro"))});
    for (QWidget *widget :
         {static_cast<QWidget *>(m_panel->deviceCombo()), static_cast<QWidget *>(m_panel->saveProject()),
          static_cast<QWidget *>(m_panel->applyOthers())})
        QCOMPARE(Pointer(widget, dragged).enter(), Qt::IgnoreAction);
}

void TstDropping::a_dropped_file_that_is_gone_is_reported()
{
    const QString gone = package(QStringLiteral("gone.corvelpro"));
    Dragged dragged({gone});
    const Pointer pointer(table(), dragged);
    QCOMPARE(pointer.enter(), Qt::CopyAction);
    QVERIFY(QFile::remove(gone));
    m_book->expectWarning(warning, QStringLiteral("The file[%1] context is invalid.").arg(gone));
    QCOMPARE(pointer.drop(), Qt::CopyAction);
    waitForAnswers();
    QVERIFY(contents(projectFilesPath()).isEmpty());
}

void TstDropping::a_dropped_package_from_the_list_is_reported()
{
    list(QStringLiteral("show"));
    Dragged dragged({projectFile(QStringLiteral("show"))});
    m_book->expectWarning(warning, QStringLiteral("Import project file [show] failed"));
    QVERIFY(Pointer(table(), dragged).drag());
    waitForAnswers();
    QCOMPARE(contents(projectFilesPath()), QStringList{QStringLiteral("show.corvelpro")});
}

void TstDropping::a_drop_needs_more_space_than_its_files()
{
    const QString file = elsewhere(QStringLiteral("large.corvelpro"));
    QVERIFY(writeFile(file, "no package") && QFile::resize(file, 6 * MiB));
    const FreeSpace free(6 * MiB);
    Dragged dragged({file});
    m_book->expectWarning(remind, QStringLiteral("Not enough space to import all selected files."));
    QVERIFY(Pointer(table(), dragged).drag());
    waitForAnswers();
    QVERIFY(waitingTexts().isEmpty());
}

void TstDropping::drops_are_refused_while_a_dialog_is_open()
{
    Dragged dragged({package(QStringLiteral("second.corvelpro"))});
    const Pointer pointer(table(), dragged);
    const QString first = package(QStringLiteral("first.corvelpro"));
    {
        HeldFile held(first);
        Dragged running({first});
        QVERIFY(Pointer(table(), running).drag());
        QTRY_VERIFY(WaitingDialog::instance()->isVisible());
        QVERIFY(held.waitForReader());
        QCOMPARE(pointer.enter(), Qt::IgnoreAction);
        QCOMPARE(pointer.move(), Qt::IgnoreAction);
        m_book->expectInformation(remind, importSucceeded);
        held.release();
    }
    waitForAnswers();
    settle();
    QCOMPARE(contents(projectFilesPath()), QStringList{QStringLiteral("first.corvelpro")});

    // One that opens while the file is dragged over the table.
    QCOMPARE(pointer.enter(), Qt::CopyAction);
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        QCOMPARE(pointer.move(), Qt::IgnoreAction);
        QCOMPARE(pointer.drop(), Qt::IgnoreAction);
        dialog->reject();
    });
    clickRow(QStringLiteral("first"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    settle();
    QCOMPARE(waitingTexts(), QStringList{importWaiting});
}

void TstDropping::simultaneous_drops_are_not_imported_concurrently()
{
    Dragged first({package(QStringLiteral("first.corvelpro"))});
    Dragged second({package(QStringLiteral("second.corvelpro"))});
    // Both before the event loop runs.
    QVERIFY(Pointer(table(), first).drag());
    QVERIFY(Pointer(table(), second).drag());
    m_book->expectInformation(remind, importSucceeded);
    waitForAnswers();
    settle();
    QCOMPARE(waitingTexts(), QStringList{importWaiting});
    QCOMPARE(contents(projectFilesPath()), QStringList{QStringLiteral("first.corvelpro")});
}

void TstDropping::drop_source_never_waits_for_a_box()
{
    // Until the drop returns, the program from which it comes may stand still.
    const QString file = elsewhere(QStringLiteral("large.corvelpro"));
    QVERIFY(writeFile(file, "no package") && QFile::resize(file, 6 * MiB));
    const FreeSpace free(MiB);
    Dragged dragged({file});
    m_book->expectWarning(remind, QStringLiteral("Not enough space to import all selected files."));
    QVERIFY(Pointer(table(), dragged).drag());
    QVERIFY(m_book->seen().isEmpty());
    waitForAnswers();
}

void TstDropping::a_thousand_files_are_imported_at_once()
{
    QStringList files{package(QStringLiteral("Project1.corvelpro"))};
    for (int number = 2; number <= 1000; ++number) {
        files.append(elsewhere(QStringLiteral("Project%1.corvelpro").arg(number)));
        QVERIFY(QFile::copy(files.first(), files.last()));
    }
    Dragged dragged(files);
    m_book->expectInformation(remind, importSucceeded);
    QVERIFY(Pointer(table(), dragged).drag());
    waitForAnswers();
    QTRY_COMPARE(m_panel->table()->rowCount(), 1000);
    QCOMPARE(waitingTexts(), QStringList{importWaiting});

    // All of them are there already.
    m_book->expectDialog(QStringLiteral("HX::Widgets::FramelessMessageBox"), [](QDialog *dialog) {
        auto *box = qobject_cast<HX::Widgets::FramelessMessageBox *>(dialog);
        QVERIFY(box->text().startsWith(QStringLiteral("Import project file [Project1, Project2, ")));
        click(box->button(QMessageBox::Ok));
    });
    QVERIFY(Pointer(table(), dragged).drag());
    waitForAnswers();
    QCOMPARE(waitingTexts().count(), 2);
}

void TstDropping::the_panel_may_be_deleted_after_a_drop()
{
    Dragged dragged({package(QStringLiteral("a.corvelpro"))});
    QVERIFY(Pointer(table(), dragged).drag());
    m_panel.reset();
    settle();
    QVERIFY(contents(projectFilesPath()).isEmpty());
    m_panel.emplace();
}

TEST_MAIN(TstDropping)
#include "tst_dropping.moc"
