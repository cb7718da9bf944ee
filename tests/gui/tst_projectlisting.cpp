#include "paneltesting.h"

#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <QEvent>
#include <QFileSystemWatcher>
#include <QFutureWatcher>
#include <QPointer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace PanelTesting;
using namespace TestSupport;

namespace {

const QString one = QStringLiteral("One");
const QString two = QStringLiteral("Two");

/// Holds scans in the middle: two files of the directory are links to pipes, and opening a pipe waits until somebody
/// writes to it. The first one to be opened tells that a scan has listed the directory, the other one keeps it.
/// Scans that are held occupy threads of the pool, so the pool gets more of them meanwhile.
class HeldScan
{
public:
    HeldScan()
        : m_threads(QThreadPool::globalInstance()->maxThreadCount())
    {
        QThreadPool::globalInstance()->setMaxThreadCount(16);
        for (const QString &name : {QStringLiteral("held-1"), QStringLiteral("held-2")}) {
            const QString pipe = QDir::homePath() + QLatin1Char('/') + name;
            QFile::remove(pipe);
            m_made = ::mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0 && QFile::link(pipe, projectFile(name)) &&
                     m_made;
            m_pipes.append(pipe);
        }
    }
    ~HeldScan()
    {
        letGo();
        QThreadPool::globalInstance()->setMaxThreadCount(m_threads);
    }
    Q_DISABLE_COPY(HeldScan)

    bool isMade() const { return m_made; }
    /// True once a scan has listed the directory. It waits at the other pipe then, unless the files are hidden
    /// before it gets there.
    bool isReached()
    {
        for (int i = 0; i < m_pipes.count() && m_writer < 0; ++i) {
            m_writer = openForWriting(m_pipes.at(i));
            m_otherPipe = m_pipes.at(1 - i);
        }
        return m_writer >= 0;
    }
    /// Lets go the scans that were held all the time; false when there were none.
    bool letGoHeld()
    {
        const int writer = openForWriting(m_otherPipe);
        if (writer >= 0)
            ::close(writer);
        letGo();
        return writer >= 0;
    }
    /// The files go, so that later scans are not held.
    bool hideFromLaterScans()
    {
        return QFile::remove(projectFile(QStringLiteral("held-1"))) &&
               QFile::remove(projectFile(QStringLiteral("held-2")));
    }
    /// The files turn out to be no packages. Returns when the pool is idle.
    void letGo()
    {
        hideFromLaterScans();
        while (!QThreadPool::globalInstance()->waitForDone(1)) {
            for (const QString &pipe : qAsConst(m_pipes)) {
                const int writer = openForWriting(pipe);
                if (writer >= 0)
                    ::close(writer);
            }
        }
        if (m_writer >= 0)
            ::close(m_writer);
        m_writer = -1;
    }

private:
    /// Lets those pass who wait for somebody to write. Fails when there are none.
    static int openForWriting(const QString &pipe)
    {
        return ::open(QFile::encodeName(pipe).constData(), O_WRONLY | O_NONBLOCK);
    }

    const int m_threads;
    QStringList m_pipes;
    QString m_otherPipe;
    bool m_made = true;
    int m_writer = -1;
};

/// Knows every future watcher that was told something since it was made.
class FutureWatchers : public QObject
{
public:
    FutureWatchers() { qApp->installEventFilter(this); }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::FutureCallOut && !m_seen.contains(object))
            m_seen.append(object);
        return false;
    }

    int seen() const { return m_seen.count(); }
    int alive() const
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return int(std::count_if(m_seen.begin(), m_seen.end(),
                                 [](const QPointer<QObject> &watcher) { return !watcher.isNull(); }));
    }

private:
    QVector<QPointer<QObject>> m_seen;
};

} // namespace

class TstProjectListing : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void first_start_creates_the_directory_and_lists_nothing();
    void first_start_follows_the_directory_only_once_the_panel_is_built_again();
    void a_file_copied_in_is_listed_by_its_time();
    void a_file_that_goes_is_not_listed_any_more();
    void files_are_listed_newest_first();
    void what_is_no_valid_package_is_never_listed_data();
    void what_is_no_valid_package_is_never_listed();
    void a_directory_that_cannot_be_created_leaves_list_and_table();
    void a_start_without_a_possible_directory_lists_nothing();
    void an_edit_outside_without_renaming_keeps_the_comment();
    void a_renamed_package_is_read_again();
    void building_the_panel_waits_for_no_scan();
    void a_scan_that_was_started_earlier_never_replaces_a_later_list();
    void scans_release_their_watchers();
    void the_panel_may_go_before_its_scans_begin();
    void the_panel_may_go_in_the_middle_of_a_scan();
};

void TstProjectListing::init()
{
    WarningGuard::clear();
    QVERIFY(clearProjectFilesDirectory());
}

void TstProjectListing::cleanup()
{
    // A plain file may stand where a directory should be.
    QFile::remove(QDir(projectFilesPath() + QStringLiteral("../..")).path());
}

void TstProjectListing::first_start_creates_the_directory_and_lists_nothing()
{
    const RunningSite site;
    QVERIFY(removeProjectFilesDirectory());
    const Panel panel;
    settle();
    QVERIFY(QDir(projectFilesPath()).exists());
    QCOMPARE(panel.table()->rowCount(), 0);
    QVERIFY(!panel.allDelete()->isEnabled());
}

void TstProjectListing::first_start_follows_the_directory_only_once_the_panel_is_built_again()
{
    const RunningSite site;
    QVERIFY(removeProjectFilesDirectory());
    {
        const Panel panel;
        settle();
        // Another watcher tells when the panel's would have been told too.
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

void TstProjectListing::a_file_copied_in_is_listed_by_its_time()
{
    const RunningSite site;
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

void TstProjectListing::a_file_that_goes_is_not_listed_any_more()
{
    const RunningSite site;
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
    const RunningSite site;
    QStringList expected;
    for (int i = 0; i < 12; ++i)
        expected.append(QStringLiteral("Project%1").arg(i));
    // Written in an order that is neither that of the names nor that of the times.
    for (int i = 0; i < 12; ++i)
        QVERIFY(writePackage(projectFile(expected.at(i * 5 % 12)), QString(), i * 5 % 12 + 1));
    const Panel panel;
    settle();
    QCOMPARE(panel.names(), expected);
}

void TstProjectListing::what_is_no_valid_package_is_never_listed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    const auto package = [] { return PackageBuilder().file("device.json", "{}"); };
    const QByteArray good = package().record(one, QString()).build();
    QTest::newRow("text") << "bad.corvelpro" << QByteArray("not an archive");
    QTest::newRow("empty") << "bad.corvelpro" << QByteArray();
    QTest::newRow("cut") << "bad.corvelpro" << good.left(good.size() - 60);
    QTest::newRow("without record") << "bad.corvelpro" << package().build();
    QTest::newRow("two keys") << "bad.corvelpro" << package().comment("{\"Checksum\":\"x\",\"comment\":\"\"}").build();
    QTest::newRow("other checksum") << "bad.corvelpro"
                                    << package().recordWithChecksum(QString(32, QLatin1Char('0')), one, one).build();
    QTest::newRow("other extension") << "good.zip" << good;
    QTest::newRow("extension in the middle") << "good.corvelpro.bak" << good;
}

void TstProjectListing::what_is_no_valid_package_is_never_listed()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    const RunningSite site;
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

void TstProjectListing::a_directory_that_cannot_be_created_leaves_list_and_table()
{
    const RunningSite site;
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

void TstProjectListing::a_start_without_a_possible_directory_lists_nothing()
{
    const RunningSite site;
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
    const RunningSite site;
    QVERIFY(writePackage(projectFile(one), QStringLiteral("first"), 10));
    QVERIFY(writePackage(projectFile(two), QStringLiteral("other"), 5));
    const Panel panel;
    settle();
    QCOMPARE(panel.comments(), QStringList({QStringLiteral("other"), QStringLiteral("first")}));

    QVERIFY(writePackage(projectFile(one), QStringLiteral("edited")));
    // It moves to its new time, which tells that it was seen.
    QTRY_COMPARE(panel.names(), QStringList({one, two}));
    QCOMPARE(panel.comments(), QStringList({QStringLiteral("first"), QStringLiteral("other")}));

    const Panel builtAgain;
    settle();
    QCOMPARE(builtAgain.comments(), QStringList({QStringLiteral("edited"), QStringLiteral("other")}));
}

void TstProjectListing::a_renamed_package_is_read_again()
{
    const RunningSite site;
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
    const RunningSite site;
    QVERIFY(writePackage(projectFile(one), QString()));
    const ExpectMessage unreadable(QtWarningMsg, QRegularExpression(QStringLiteral("sequential")),
                                   ExpectMessage::AnyNumber);
    HeldScan held;
    QVERIFY(held.isMade());
    const Panel panel;
    panel->show();
    QTRY_VERIFY(held.isReached());
    QCOMPARE(panel.names(), QStringList());
    QVERIFY(panel.saveProject()->isEnabled());
    held.letGo();
    settle();
    QCOMPARE(panel.names(), QStringList(one));
}

void TstProjectListing::a_scan_that_was_started_earlier_never_replaces_a_later_list()
{
    const RunningSite site;
    const ExpectMessage unreadable(QtWarningMsg, QRegularExpression(QStringLiteral("sequential")),
                                   ExpectMessage::AnyNumber);
    // A scan that slips through before the files are hidden proves nothing, so it is tried again.
    bool wasHeld = false;
    for (int attempt = 0; attempt < 200 && !wasHeld; ++attempt) {
        QVERIFY(clearProjectFilesDirectory());
        QVERIFY(writePackage(projectFile(one), QString(), 10));
        HeldScan held;
        QVERIFY(held.isMade());
        const Panel panel;
        QTRY_VERIFY(held.isReached());
        // What the held scan has listed is out of date from here on.
        QVERIFY(writePackage(projectFile(two), QString()));
        QVERIFY(held.hideFromLaterScans());
        QTRY_COMPARE(panel.names(), QStringList({two, one}));
        wasHeld = held.letGoHeld();
        settle();
        QCOMPARE(panel.names(), QStringList({two, one}));
    }
    QVERIFY(wasHeld);
}

void TstProjectListing::scans_release_their_watchers()
{
    const RunningSite site;
    const FutureWatchers watchers;
    const Panel panel;
    settle();
    for (int i = 0; i < 20; ++i)
        panel.rescan();
    QVERIFY(watchers.seen() >= 20);
    QCOMPARE(watchers.alive(), 0);
}

void TstProjectListing::the_panel_may_go_before_its_scans_begin()
{
    const RunningSite site;
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

void TstProjectListing::the_panel_may_go_in_the_middle_of_a_scan()
{
    const RunningSite site;
    for (int i = 0; i < 20; ++i)
        QVERIFY(writePackage(projectFile(QStringLiteral("Project%1").arg(i)), QString(), i));
    const ExpectMessage unreadable(QtWarningMsg, QRegularExpression(QStringLiteral("sequential")),
                                   ExpectMessage::AnyNumber);
    const FutureWatchers watchers;
    HeldScan held;
    QVERIFY(held.isMade());
    auto panel = std::make_unique<Panel>();
    panel->widget->show();
    QTRY_VERIFY(held.isReached());
    panel.reset();
    held.letGo();
    settle();
    QVERIFY(watchers.seen() >= 2);
    QCOMPARE(watchers.alive(), 0);
}

TEST_MAIN(TstProjectListing)
#include "tst_projectlisting.moc"
