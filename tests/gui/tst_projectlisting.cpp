// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/paneltesting.h>
#include <unit/packagetesting.h>

#include <support/heldfile.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <QEvent>
#include <QFileSystemWatcher>
#include <QFutureWatcher>
#include <QPointer>
#include <QTimer>

#include <sys/stat.h>

using namespace PackageTesting;
using namespace PanelTesting;
using namespace TestSupport;

namespace {

const QString one = QStringLiteral("One");
const QString two = QStringLiteral("Two");

/// Holds a scan halfway: it has listed the directory and is about to open a file that is no package. The scan blocks a
/// pool thread, so the pool gets more meanwhile.
class HeldScan
{
public:
    HeldScan()
        : m_threads(QThreadPool::globalInstance()->maxThreadCount())
    {
        QThreadPool::globalInstance()->setMaxThreadCount(16);
        if (!writeFile(projectFile(QStringLiteral("held")), "no package"))
            qFatal("No file to be held");
    }
    ~HeldScan()
    {
        letGo();
        QThreadPool::globalInstance()->setMaxThreadCount(m_threads);
    }
    Q_DISABLE_COPY(HeldScan)

    bool isReached() { return m_file.waitForReader(); }
    /// Returns once the pool is idle.
    void letGo()
    {
        m_file.release();
        QThreadPool::globalInstance()->waitForDone();
    }

private:
    const int m_threads;
    HeldFile m_file{projectFile(QStringLiteral("held"))};
};

} // namespace

class TstProjectListing : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void first_start_creates_the_directory_and_lists_nothing();
    void a_first_start_does_not_watch_the_directory();
    void a_copied_file_is_listed_by_its_time();
    void a_deleted_file_leaves_the_list();
    void files_are_listed_newest_first();
    void invalid_packages_are_never_listed_data();
    void invalid_packages_are_never_listed();
    void a_failed_mkdir_leaves_list_and_table_alone();
    void uncreatable_directory_lists_nothing();
    void an_edit_outside_without_renaming_keeps_the_comment();
    void a_renamed_package_is_read_again();
    void building_the_panel_waits_for_no_scan();
    void a_link_to_a_pipe_never_blocks();
    void an_earlier_scan_never_replaces_a_later_list();
    void scans_release_their_watchers();
    void the_panel_may_be_deleted_before_a_scan();
    void the_panel_may_be_deleted_during_a_scan();
    void a_package_is_listed_once_completely_written();
    void a_file_at_rest_is_not_reread();
    void closed_panel_scans_no_more();
};

void TstProjectListing::init()
{
    WarningGuard::clear();
    QVERIFY(clearProjectFilesDirectory());
}

void TstProjectListing::cleanup()
{
    // A regular file may have the directory's name.
    QFile::remove(QDir(projectFilesPath() + QStringLiteral("../..")).path());
}

void TstProjectListing::first_start_creates_the_directory_and_lists_nothing()
{
    const TestSite site;
    QVERIFY(removeProjectFilesDirectory());
    const Panel panel;
    settle();
    QVERIFY(QDir(projectFilesPath()).exists());
    QCOMPARE(panel.table()->rowCount(), 0);
    QVERIFY(!panel.allDelete()->isEnabled());
}

void TstProjectListing::a_first_start_does_not_watch_the_directory()
{
    const TestSite site;
    QVERIFY(removeProjectFilesDirectory());
    {
        const Panel panel;
        settle();
        // A second watcher on the directory is notified together with the panel's.
        QFileSystemWatcher other({projectFilesPath()});
        const SignalRecorder<QString> reports(&other, &QFileSystemWatcher::directoryChanged);
        QVERIFY(writePackage(projectFile(one), QString()));
        QTRY_VERIFY(!reports.isEmpty());
        settle();
        QCOMPARE(panel.names(), QStringList());
    }
    const Panel panel;
    settle();
    QCOMPARE(panel.names(), QStringList(one));
    QVERIFY(writePackage(projectFile(two), QString(), 5));
    QTRY_COMPARE(panel.names(), QStringList({one, two}));
}

void TstProjectListing::a_copied_file_is_listed_by_its_time()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(one), QStringLiteral("new"), 10));
    QVERIFY(writePackage(projectFile(two), QStringLiteral("old"), 30));
    const Panel panel;
    settle();
    QVERIFY(writePackage(projectFile(QStringLiteral("Between")), QStringLiteral("by hand"), 20));
    QTRY_COMPARE(panel.names(), QStringList({one, QStringLiteral("Between"), two}));
    QCOMPARE(panel.comments(), QStringList({QStringLiteral("new"), QStringLiteral("by hand"), QStringLiteral("old")}));
    QVERIFY(writePackage(projectFile(QStringLiteral("Newest")), QString()));
    QTRY_COMPARE(panel.names().value(0), QStringLiteral("Newest"));
}

void TstProjectListing::a_deleted_file_leaves_the_list()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(one), QString(), 10));
    QVERIFY(writePackage(projectFile(two), QString(), 30));
    const Panel panel;
    settle();
    QVERIFY(QFile::remove(projectFile(one)));
    QTRY_COMPARE(panel.names(), QStringList(two));
    QVERIFY(QFile::remove(projectFile(two)));
    QTRY_COMPARE(panel.names(), QStringList());
    QTRY_VERIFY(!panel.allSaveAs()->isEnabled());
}

void TstProjectListing::files_are_listed_newest_first()
{
    const TestSite site;
    QStringList expected;
    for (int i = 0; i < 12; ++i)
        expected.append(QStringLiteral("Project%1").arg(i));
    // Written in an order that is neither by name nor by time.
    for (int i = 0; i < 12; ++i)
        QVERIFY(writePackage(projectFile(expected.at(i * 5 % 12)), QString(), i * 5 % 12 + 1));
    const Panel panel;
    settle();
    QCOMPARE(panel.names(), expected);
}

void TstProjectListing::invalid_packages_are_never_listed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    const auto package = [] { return PackageBuilder().file("device.json", "{}"); };
    const QByteArray good = package().record(one, QString()).build();
    QTest::newRow("text") << "bad.corvelpro" << QByteArray("not an archive");
    QTest::newRow("empty") << "bad.corvelpro" << QByteArray();
    QTest::newRow("cut") << "bad.corvelpro" << good.left(good.size() - 60);
    QTest::newRow("without record") << "bad.corvelpro" << package().build();
    QTest::newRow("two keys") << "bad.corvelpro"
                              << package().archiveComment("{\"Checksum\":\"x\",\"comment\":\"\"}").build();
    QTest::newRow("other checksum") << "bad.corvelpro"
                                    << package().recordWithChecksum(QString(32, QLatin1Char('0')), one, one).build();
    QTest::newRow("other extension") << "good.zip" << good;
    QTest::newRow("extension in the middle") << "good.corvelpro.bak" << good;
}

void TstProjectListing::invalid_packages_are_never_listed()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    const TestSite site;
    QVERIFY(writePackage(projectFile(one), QString()));
    QFile bad(projectFilesPath() + name);
    QVERIFY(bad.open(QIODevice::WriteOnly));
    QCOMPARE(bad.write(bytes), qint64(bytes.size()));
    bad.close();
    QVERIFY(QDir(projectFilesPath()).mkdir(QStringLiteral("folder.corvelpro")));
    QVERIFY(QFile::link(QStringLiteral("nowhere"), projectFile(QStringLiteral("dangling"))));
    const Panel panel;
    settle();
    QCOMPARE(panel.names(), QStringList(one));
    panel.rescan();
    QCOMPARE(panel.names(), QStringList(one));
}

void TstProjectListing::a_failed_mkdir_leaves_list_and_table_alone()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(one), QStringLiteral("kept")));
    const Panel panel;
    settle();

    QDir velmora(QDir::cleanPath(projectFilesPath() + QStringLiteral("../..")));
    QVERIFY(velmora.removeRecursively());
    QFile inItsPlace(velmora.path());
    QVERIFY(inItsPlace.open(QIODevice::WriteOnly));
    panel.rescan();
    QCOMPARE(panel.names(), QStringList(one));
    QCOMPARE(panel.comments(), QStringList(QStringLiteral("kept")));
    QVERIFY(panel.allDelete()->isEnabled());
    QVERIFY(inItsPlace.remove());
}

void TstProjectListing::uncreatable_directory_lists_nothing()
{
    const TestSite site;
    QDir velmora(QDir::cleanPath(projectFilesPath() + QStringLiteral("../..")));
    QVERIFY(velmora.removeRecursively());
    QFile inItsPlace(velmora.path());
    QVERIFY(inItsPlace.open(QIODevice::WriteOnly));
    const ExpectMessage noDirectory(QtCriticalMsg, QRegularExpression(QStringLiteral("^inotify_add_watch")),
                                    ExpectMessage::AnyNumber);
    const Panel panel;
    settle();
    QCOMPARE(panel.names(), QStringList());
    QVERIFY(!panel.allDelete()->isEnabled());
    QVERIFY(inItsPlace.remove());
}

void TstProjectListing::an_edit_outside_without_renaming_keeps_the_comment()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(one), QStringLiteral("first"), 10));
    QVERIFY(writePackage(projectFile(two), QStringLiteral("other"), 5));
    const Panel panel;
    settle();
    QCOMPARE(panel.comments(), QStringList({QStringLiteral("other"), QStringLiteral("first")}));

    QVERIFY(writePackage(projectFile(one), QStringLiteral("edited")));
    // It moves to its new time, which shows that the scan saw it.
    QTRY_COMPARE(panel.names(), QStringList({one, two}));
    QCOMPARE(panel.comments(), QStringList({QStringLiteral("first"), QStringLiteral("other")}));

    const Panel builtAgain;
    settle();
    QCOMPARE(builtAgain.comments(), QStringList({QStringLiteral("edited"), QStringLiteral("other")}));
}

void TstProjectListing::a_renamed_package_is_read_again()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(one), QStringLiteral("first")));
    const Panel panel;
    settle();
    QVERIFY(writePackage(projectFile(one), QStringLiteral("edited")));
    QVERIFY(QFile::rename(projectFile(one), projectFile(two)));
    QTRY_COMPARE(panel.names(), QStringList(two));
    QCOMPARE(panel.comments(), QStringList(QStringLiteral("edited")));
}

void TstProjectListing::building_the_panel_waits_for_no_scan()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(one), QString()));
    HeldScan held;
    const Panel panel;
    panel->show();
    QVERIFY(held.isReached());
    QCOMPARE(panel.names(), QStringList());
    QVERIFY(panel.saveProject()->isEnabled());
    held.letGo();
    settle();
    QCOMPARE(panel.names(), QStringList(one));
}

void TstProjectListing::a_link_to_a_pipe_never_blocks()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(one), QString()));
    // Links are listed whatever their target.
    const QString pipe = QDir::homePath() + QStringLiteral("/pipe");
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QVERIFY(QFile::link(pipe, projectFile(QStringLiteral("linked"))));
    const Panel panel;
    QTRY_COMPARE(panel.names(), QStringList(one));
    settle();
    QVERIFY(QFile::remove(pipe) && QFile::remove(projectFile(QStringLiteral("linked"))));
}

void TstProjectListing::an_earlier_scan_never_replaces_a_later_list()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(one), QString(), 10));
    HeldScan held;
    const Panel panel;
    QVERIFY(held.isReached());
    // From here on the listing of the held scan is out of date.
    QVERIFY(writePackage(projectFile(two), QString()));
    QTRY_COMPARE(panel.names(), QStringList({two, one}));
    held.letGo();
    settle();
    QCOMPARE(panel.names(), QStringList({two, one}));
}

void TstProjectListing::scans_release_their_watchers()
{
    const TestSite site;
    const FutureWatchers watchers;
    const Panel panel;
    settle();
    for (int i = 0; i < 20; ++i)
        panel.rescan();
    QVERIFY(watchers.seen() >= 20);
    QCOMPARE(watchers.alive(), 0);
}

void TstProjectListing::the_panel_may_be_deleted_before_a_scan()
{
    const TestSite site;
    QVERIFY(removeProjectFilesDirectory());
    const FutureWatchers watchers;
    {
        const HeldThreadPool held;
        auto panel = std::make_unique<Panel>();
        QMetaObject::invokeMethod(panel->widget.get(), "slot_projectFilesChanged");
        panel.reset();
        QVERIFY(!QDir(projectFilesPath()).exists());
    }
    settle();
    QVERIFY2(QDir(projectFilesPath()).exists(), "the scans did run");
    QVERIFY(watchers.seen() >= 3);
    QCOMPARE(watchers.alive(), 0);
}

void TstProjectListing::the_panel_may_be_deleted_during_a_scan()
{
    const TestSite site;
    for (int i = 0; i < 20; ++i)
        QVERIFY(writePackage(projectFile(QStringLiteral("Project%1").arg(i)), QString(), i));
    const FutureWatchers watchers;
    HeldScan held;
    auto panel = std::make_unique<Panel>();
    panel->widget->show();
    QVERIFY(held.isReached());
    panel.reset();
    held.letGo();
    settle();
    QVERIFY(watchers.seen() >= 2);
    QCOMPARE(watchers.alive(), 0);
}

void TstProjectListing::a_package_is_listed_once_completely_written()
{
    const TestSite site;
    const QByteArray package = PackageBuilder()
                                   .file("BKG/BKG_1.png", noise(100000), PackageBuilder::Stored)
                                   .record(one, QStringLiteral("by hand"))
                                   .build();
    const Panel panel;
    settle();
    QFileSystemWatcher other({projectFilesPath()});
    const SignalRecorder<QString> reports(&other, &QFileSystemWatcher::directoryChanged);
    QFile copy(projectFile(one));
    QVERIFY(copy.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QCOMPARE(copy.write(package.left(60000)), qint64(60000));
    // The only change report arrives while the file is half written.
    QTRY_VERIFY(!reports.isEmpty());
    settle();
    QCOMPARE(panel.names(), QStringList());
    QCOMPARE(copy.write(package.mid(60000)), qint64(package.size() - 60000));
    QTRY_COMPARE(panel.names(), QStringList(one));
    QCOMPARE(panel.comments(), QStringList(QStringLiteral("by hand")));
}

void TstProjectListing::a_file_at_rest_is_not_reread()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(one), QString()));
    QVERIFY(writeFile(projectFile(two), "no package"));
    QVERIFY(makeOld(projectFile(two), 1));
    const Panel panel;
    settle();
    auto *timer = panel->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(timer);
    QVERIFY(!timer->isActive());
    QVERIFY(writeFile(projectFile(two), "still no package"));
    panel.rescan();
    QVERIFY(timer->isActive());
    QVERIFY(timer->isSingleShot());
    // It was complete, or became a package, before the next scan.
    QVERIFY(makeOld(projectFile(two), 1));
    QTRY_VERIFY(!timer->isActive());
    settle();
    QVERIFY(!timer->isActive());
}

void TstProjectListing::closed_panel_scans_no_more()
{
    const TestSite site;
    QPointer<QTimer> timer;
    {
        const Panel panel;
        QVERIFY(writeFile(projectFile(two), "no package"));
        panel.rescan();
        timer = panel->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(timer && timer->isActive());
    }
    QVERIFY(!timer);
}

TEST_MAIN(TstProjectListing)
#include "tst_projectlisting.moc"
