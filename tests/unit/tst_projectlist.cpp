// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagetesting.h"
#include "projectlist.h"

#include <support/packagebuilder.h>
#include <support/testmain.h>

#include <QSemaphore>
#include <QtConcurrentRun>

#include <functional>
#include <thread>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using TestSupport::PackageBuilder;

Q_DECLARE_METATYPE(std::function<bool(ProjectList &)>)

class TstProjectList : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void a_missing_directory_is_created_and_lists_nothing();
    void uncreatable_directory_leaves_the_list();
    void packages_are_listed_newest_first_with_their_records();
    void packages_of_one_time_are_listed_by_name();
    void name_comes_from_the_file_not_the_record();
    void the_name_ends_at_the_first_dot();
    void a_known_package_is_not_read_again();
    void a_known_package_moves_with_its_time();
    void a_renamed_package_is_read_again();
    void a_deleted_package_leaves_the_list();
    void invalid_packages_are_skipped_data();
    void invalid_packages_are_skipped();
    void an_extension_in_capitals_is_listed();
    void other_files_and_sub_directories_are_left_out();

    void earlier_scan_never_replaces_a_later_list();
    void scans_that_end_in_order_replace_each_other();
    void a_scan_never_overwrites_a_newer_list();
    void a_change_tells_whether_scans_are_running_data();
    void a_change_tells_whether_scans_are_running();
    void parallel_scans_leave_the_last_ones_list();

    void a_snapshot_stays_as_it_was_taken();
    void packages_are_found_by_their_path();
    void removing_takes_the_one_package();
    void renaming_changes_the_one_record_in_its_place();
    void renaming_what_is_not_listed_changes_nothing();
    void clearing_removes_every_file_that_it_can();

    void held_list_does_not_block_scans();
    void a_list_held_during_a_scan_stays();
    void list_held_twice_is_free_after_both();
    void scan_waits_for_a_briefly_locked_list();

    void an_unfinished_file_is_looked_at_again_data();
    void an_unfinished_file_is_looked_at_again();
    void only_young_invalid_files_ask_for_another_scan();

private:
    /// Writes a valid package last modified `age` seconds ago.
    bool addPackage(const QString &fileName, const QString &comment, int age = 0);
    void scan() { m_list->scanProjectFiles(m_path, m_list->beginScan()); }
    QStringList names() const;
    QStringList comments() const;

    QScopedPointer<QTemporaryDir> m_temp;
    QScopedPointer<ProjectList> m_list;
    QString m_path;
    QDateTime m_now;
};

void TstProjectList::init()
{
    m_temp.reset(new QTemporaryDir);
    QVERIFY(m_temp->isValid());
    m_path = m_temp->path() + "/ProjectFiles/";
    QVERIFY(QDir().mkpath(m_path));
    m_list.reset(new ProjectList);
    m_now = QDateTime::currentDateTime();
}

bool TstProjectList::addPackage(const QString &fileName, const QString &comment, int age)
{
    PackageBuilder package;
    package.file("device.json", "{}").record("recorded name", comment);
    if (!package.write(m_path + fileName))
        return false;
    QFile file(m_path + fileName);
    return file.open(QIODevice::ReadWrite) && file.setFileTime(m_now.addSecs(-age), QFileDevice::FileModificationTime);
}

QStringList TstProjectList::names() const
{
    QStringList names;
    for (const EngineerPacketInfo &info : m_list->listProjects)
        names.append(info.strProjectName);
    return names;
}

QStringList TstProjectList::comments() const
{
    QStringList comments;
    for (const EngineerPacketInfo &info : m_list->listProjects)
        comments.append(info.strComment);
    return comments;
}

void TstProjectList::a_missing_directory_is_created_and_lists_nothing()
{
    m_path = m_temp->path() + "/a/b/ProjectFiles/";
    scan();
    QVERIFY(QDir(m_path).exists());
    QVERIFY(m_list->listProjects.isEmpty());
}

void TstProjectList::uncreatable_directory_leaves_the_list()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    scan();
    QCOMPARE(names(), QStringList{"A"});
    QVERIFY(writeFile(m_temp->path() + "/file", "in the way"));
    QCOMPARE(m_list->scanProjectFiles(m_temp->path() + "/file/ProjectFiles/", m_list->beginScan()), -1);
    QCOMPARE(names(), QStringList{"A"});
}

void TstProjectList::packages_are_listed_newest_first_with_their_records()
{
    QVERIFY(addPackage("Middle.corvelpro", "second", 60));
    QVERIFY(addPackage("Oldest.corvelpro", "third", 3600));
    QVERIFY(addPackage("Newest.corvelpro", "first", 1));
    scan();
    QCOMPARE(names(), QStringList({"Newest", "Middle", "Oldest"}));
    QCOMPARE(comments(), QStringList({"first", "second", "third"}));
    QCOMPARE(m_list->listProjects.first().strFilePath, m_path + "Newest.corvelpro");
    QCOMPARE(m_list->listProjects.first().strChecksum.size(), 32);
}

void TstProjectList::packages_of_one_time_are_listed_by_name()
{
    const QStringList byName{"B", "C", "Z", "a", "b 1", "b 10", "b 2", QString::fromUtf8("ä")};
    for (const QString &name : {byName[6], byName[1], byName[7], byName[0], byName[3], byName[5], byName[2], byName[4]})
        QVERIFY(addPackage(name + ".corvelpro", QString(), 60));
    QVERIFY(addPackage("older.corvelpro", QString(), 61));
    QVERIFY(addPackage("newer.corvelpro", QString(), 59));
    scan();
    QCOMPARE(names(), QStringList("newer") + byName + QStringList("older"));
    // The order of the system's own listing by time.
    QStringList expected;
    for (const QFileInfo &file : QDir(m_path).entryInfoList(QDir::Files, QDir::Time))
        expected.append(file.baseName());
    QCOMPARE(names(), expected);
}

void TstProjectList::name_comes_from_the_file_not_the_record()
{
    QVERIFY(addPackage("From the file.corvelpro", QString()));
    scan();
    QCOMPARE(names(), QStringList{"From the file"});
}

void TstProjectList::the_name_ends_at_the_first_dot()
{
    QVERIFY(addPackage("Show v1.2.corvelpro", QString()));
    scan();
    QCOMPARE(names(), QStringList{"Show v1"});
}

void TstProjectList::a_known_package_is_not_read_again()
{
    QVERIFY(addPackage("A.corvelpro", "before"));
    scan();
    const QString checksum = m_list->listProjects.first().strChecksum;
    QVERIFY(addPackage("A.corvelpro", "after"));
    scan();
    QCOMPARE(comments(), QStringList{"before"});
    // Even a broken one is not noticed.
    QVERIFY(writeFile(m_path + "A.corvelpro", "no package"));
    scan();
    QCOMPARE(comments(), QStringList{"before"});
    QCOMPARE(m_list->listProjects.first().strChecksum, checksum);
}

void TstProjectList::a_known_package_moves_with_its_time()
{
    QVERIFY(addPackage("A.corvelpro", "a", 10));
    QVERIFY(addPackage("B.corvelpro", "b", 20));
    scan();
    QCOMPARE(names(), QStringList({"A", "B"}));
    QVERIFY(addPackage("B.corvelpro", "b", 5));
    scan();
    QCOMPARE(names(), QStringList({"B", "A"}));
}

void TstProjectList::a_renamed_package_is_read_again()
{
    QVERIFY(addPackage("A.corvelpro", "before"));
    scan();
    QVERIFY(addPackage("A.corvelpro", "after"));
    QVERIFY(QFile::rename(m_path + "A.corvelpro", m_path + "B.corvelpro"));
    scan();
    QCOMPARE(names(), QStringList{"B"});
    QCOMPARE(comments(), QStringList{"after"});
}

void TstProjectList::a_deleted_package_leaves_the_list()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    QVERIFY(addPackage("B.corvelpro", "b", 5));
    scan();
    QVERIFY(QFile::remove(m_path + "A.corvelpro"));
    scan();
    QCOMPARE(names(), QStringList{"B"});
}

void TstProjectList::invalid_packages_are_skipped_data()
{
    QTest::addColumn<QByteArray>("bytes");
    PackageBuilder good;
    good.file("device.json", noise(2000));
    const QByteArray archive = good.build();
    const QByteArray package = PackageBuilder(good).record("name", "comment").build();
    QByteArray damaged = package;
    damaged[2] = damaged.at(2) ^ 1;

    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("text") << QByteArray("no package");
    QTest::newRow("zip without a record") << archive;
    QTest::newRow("truncated in the record") << package.left(package.size() - 10);
    QTest::newRow("truncated in the archive") << package.left(1000);
    QTest::newRow("one bit flipped at its start") << damaged;
    QTest::newRow("wrong checksum")
        << PackageBuilder(good).recordWithChecksum(QString(32, 'a'), "name", "comment").build();
    QTest::newRow("record of two keys") << PackageBuilder(good)
                                               .archiveComment("{\"Checksum\":\"" +
                                                               PackageBuilder::checksum(archive, 0) +
                                                               "\",\"projectName\":\"name\"}")
                                               .build();
    QTest::newRow("record that is no JSON")
        << PackageBuilder(good).archiveComment("Checksum projectName comment").build();
}

void TstProjectList::invalid_packages_are_skipped()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(addPackage("Good.corvelpro", "good"));
    QVERIFY(writeFile(m_path + "Bad.corvelpro", bytes));
    scan();
    QCOMPARE(names(), QStringList{"Good"});
}

void TstProjectList::an_extension_in_capitals_is_listed()
{
    QVERIFY(addPackage("LOUD.CORVELPRO", "loud"));
    scan();
    QCOMPARE(names(), QStringList{"LOUD"});
    QCOMPARE(comments(), QStringList{"loud"});
}

void TstProjectList::other_files_and_sub_directories_are_left_out()
{
    QVERIFY(addPackage("Show.zip", "another extension"));
    QVERIFY(addPackage("Show.corvelpro.part", "another extension"));
    QVERIFY(addPackage(".Hidden.corvelpro", "hidden"));
    QVERIFY(QDir().mkpath(m_path + "Folder.corvelpro"));
    QVERIFY(QDir().mkpath(m_path + "sub"));
    QVERIFY(addPackage("sub/Show.corvelpro", "further down"));
    scan();
    QCOMPARE(names(), QStringList());
}

void TstProjectList::earlier_scan_never_replaces_a_later_list()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    const quint64 earlier = m_list->beginScan();
    const quint64 later = m_list->beginScan();
    m_list->scanProjectFiles(m_path, later);
    QCOMPARE(names(), QStringList{"A"});
    QVERIFY(addPackage("B.corvelpro", "b"));
    m_list->scanProjectFiles(m_path, earlier);
    QCOMPARE(names(), QStringList{"A"});
}

void TstProjectList::scans_that_end_in_order_replace_each_other()
{
    const quint64 first = m_list->beginScan();
    const quint64 second = m_list->beginScan();
    QVERIFY(addPackage("A.corvelpro", "a", 5));
    m_list->scanProjectFiles(m_path, first);
    QCOMPARE(names(), QStringList{"A"});
    QVERIFY(addPackage("B.corvelpro", "b"));
    m_list->scanProjectFiles(m_path, second);
    QCOMPARE(names(), QStringList({"B", "A"}));
}

void TstProjectList::a_scan_never_overwrites_a_newer_list()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    scan();
    const quint64 running = m_list->beginScan();
    QVERIFY(m_list->remove(m_path + "A.corvelpro"));
    m_list->scanProjectFiles(m_path, running);
    QCOMPARE(names(), QStringList());
    scan();
    QCOMPARE(names(), QStringList{"A"});
}

void TstProjectList::a_change_tells_whether_scans_are_running_data()
{
    QTest::addColumn<std::function<bool(ProjectList &)>>("change");
    const auto row = [](const char *name, const std::function<bool(ProjectList &)> &change) {
        QTest::newRow(name) << change;
    };
    row("remove", [](ProjectList &list) { return list.remove(QString()); });
    row("rename", [](ProjectList &list) { return list.rename(QString(), EngineerPacketInfo()); });
    row("clear", [](ProjectList &list) { return list.clear(); });
}

void TstProjectList::a_change_tells_whether_scans_are_running()
{
    QFETCH(std::function<bool(ProjectList &)>, change);
    QVERIFY(!change(*m_list));
    const quint64 running = m_list->beginScan();
    QVERIFY(change(*m_list));
    QVERIFY(!change(*m_list));
    m_list->scanProjectFiles(m_path, running);
    QVERIFY(!change(*m_list));
    scan();
    QVERIFY(!change(*m_list));
}

void TstProjectList::parallel_scans_leave_the_last_ones_list()
{
    const int scans = 50;
    QVERIFY(addPackage("A.corvelpro", "a", 100));
    QVector<QFuture<void>> running;
    for (int i = 0; i < scans; ++i) {
        if (i == scans / 2)
            QVERIFY(addPackage("B.corvelpro", "b"));
        const quint64 number = m_list->beginScan();
        running.append(QtConcurrent::run([this, number] { m_list->scanProjectFiles(m_path, number); }));
        const QMutexLocker locker(&m_list->mutex);
        QVERIFY(m_list->listProjects.size() <= 2);
    }
    for (QFuture<void> &one : running)
        one.waitForFinished();
    QCOMPARE(names(), QStringList({"B", "A"}));
    QCOMPARE(comments(), QStringList({"b", "a"}));
}

void TstProjectList::a_snapshot_stays_as_it_was_taken()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    QVERIFY(addPackage("B.corvelpro", "b", 5));
    scan();
    const QList<EngineerPacketInfo> before = m_list->snapshot();
    m_list->remove(m_path + "A.corvelpro");
    QCOMPARE(before.size(), 2);
    QCOMPARE(before.first().strComment, QString("a"));
    QCOMPARE(m_list->snapshot().size(), 1);
    QCOMPARE(m_list->snapshot().first().strComment, QString("b"));
}

void TstProjectList::packages_are_found_by_their_path()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    QVERIFY(addPackage("B.corvelpro", "b", 5));
    scan();
    QCOMPARE(m_list->paths(), QStringList({m_path + "A.corvelpro", m_path + "B.corvelpro"}));
    QVERIFY(m_list->find(m_path + "B.corvelpro"));
    QCOMPARE(m_list->find(m_path + "B.corvelpro")->strComment, QString("b"));
    QVERIFY(!m_list->find(m_path + "b.corvelpro"));
}

void TstProjectList::removing_takes_the_one_package()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    QVERIFY(addPackage("B.corvelpro", "b", 5));
    QVERIFY(addPackage("C.corvelpro", "c", 10));
    scan();
    m_list->remove(m_path + "B.corvelpro");
    QCOMPARE(names(), QStringList({"A", "C"}));
    m_list->remove(m_path + "B.corvelpro");
    QCOMPARE(names(), QStringList({"A", "C"}));
    QVERIFY2(QFile::exists(m_path + "B.corvelpro"), "the file is the caller's business");
}

void TstProjectList::renaming_changes_the_one_record_in_its_place()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    QVERIFY(addPackage("B.corvelpro", "b", 5));
    QVERIFY(addPackage("C.corvelpro", "c", 10));
    scan();
    EngineerPacketInfo edited = *m_list->find(m_path + "B.corvelpro");
    edited.strFilePath = m_path + "New.corvelpro";
    edited.strProjectName = "New";
    edited.strComment = "new";
    m_list->rename(m_path + "B.corvelpro", edited);
    QCOMPARE(names(), QStringList({"A", "New", "C"}));
    QCOMPARE(comments(), QStringList({"a", "new", "c"}));
    QCOMPARE(m_list->paths().at(1), m_path + "New.corvelpro");
}

void TstProjectList::renaming_what_is_not_listed_changes_nothing()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    scan();
    EngineerPacketInfo edited = *m_list->find(m_path + "A.corvelpro");
    edited.strProjectName = "New";
    m_list->rename(m_path + "B.corvelpro", edited);
    QCOMPARE(names(), QStringList{"A"});
}

void TstProjectList::clearing_removes_every_file_that_it_can()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    QVERIFY(addPackage("B.corvelpro", "b", 5));
    QVERIFY(addPackage("C.corvelpro", "c", 10));
    scan();
    QVERIFY(addPackage("Unlisted.corvelpro", "unlisted"));
    // A folder of that name cannot be removed like a file.
    QVERIFY(QFile::remove(m_path + "B.corvelpro"));
    QVERIFY(QDir().mkdir(m_path + "B.corvelpro"));
    m_list->clear();
    QCOMPARE(names(), QStringList());
    QCOMPARE(QDir(m_path).entryList({"*.corvelpro"}, QDir::NoFilter, QDir::Name),
             QStringList({"B.corvelpro", "Unlisted.corvelpro"}));
}

void TstProjectList::held_list_does_not_block_scans()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    QVERIFY(!m_list->isHeldAgainstScan());
    QVERIFY(!m_list->takeMissedScan());
    {
        const ProjectList::Hold hold(*m_list);
        // On another thread: this one may lock the list again.
        int next = 0;
        std::thread([&] { next = m_list->scanProjectFiles(m_path, m_list->beginScan()); }).join();
        QCOMPARE(next, -1);
        QVERIFY(m_list->listProjects.isEmpty());
        QVERIFY(!m_list->takeMissedScan());
    }
    QVERIFY(m_list->takeMissedScan());
    QVERIFY(!m_list->takeMissedScan());
    scan();
    QCOMPARE(names(), QStringList{"A"});
    QVERIFY(!m_list->takeMissedScan());
}

void TstProjectList::a_list_held_during_a_scan_stays()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    scan();
    QVERIFY(addPackage("B.corvelpro", "b"));
    QVERIFY(writeFile(m_path + "No package.corvelpro", "text"));
    // The scan says why it skips the file after it has looked at the list, and before it replaces it.
    static QSemaphore isHalfway;
    static QSemaphore isHeld;
    const QtMessageHandler old = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {
        isHalfway.release();
        isHeld.acquire();
    });
    std::thread scanning([this] { scan(); });
    isHalfway.acquire();
    {
        const ProjectList::Hold hold(*m_list);
        isHeld.release();
        scanning.join();
        qInstallMessageHandler(old);
        QCOMPARE(names(), QStringList{"A"});
    }
    QVERIFY(m_list->takeMissedScan());
    scan();
    QCOMPARE(m_list->listProjects.size(), 2);
}

void TstProjectList::list_held_twice_is_free_after_both()
{
    {
        const ProjectList::Hold outer(*m_list);
        {
            const ProjectList::Hold inner(*m_list);
            QVERIFY(m_list->isHeldAgainstScan());
        }
        QVERIFY(!m_list->takeMissedScan());
        QVERIFY(m_list->isHeldAgainstScan());
    }
    QVERIFY(!m_list->isHeldAgainstScan());
    QVERIFY(m_list->takeMissedScan());
}

void TstProjectList::scan_waits_for_a_briefly_locked_list()
{
    QVERIFY(addPackage("A.corvelpro", "a"));
    m_list->mutex.lock();
    std::thread scanning([this] { scan(); });
    QVERIFY(m_list->listProjects.isEmpty());
    m_list->mutex.unlock();
    scanning.join();
    QCOMPARE(names(), QStringList{"A"});
    QVERIFY(!m_list->takeMissedScan());
}

void TstProjectList::an_unfinished_file_is_looked_at_again_data()
{
    QTest::addColumn<int>("age");
    QTest::addColumn<int>("next");
    QTest::newRow("changed now") << 0 << 1000;
    QTest::newRow("changed just before") << 1 << 999;
    QTest::newRow("nearly a second ago") << 999 << 1;
    QTest::newRow("a second ago") << 1000 << 1000;
    QTest::newRow("some seconds ago") << 4500 << 1000;
    QTest::newRow("nearly at rest") << 9999 << 1000;
    QTest::newRow("at rest") << 10000 << -1;
    QTest::newRow("long ago") << 1000000 << -1;
    QTest::newRow("by a clock that is ahead") << -500 << 1500;
    QTest::newRow("by a clock that is far ahead") << -10000 << -1;
}

void TstProjectList::an_unfinished_file_is_looked_at_again()
{
    QFETCH(int, age);
    QFETCH(int, next);
    const qint64 now = 1700000000000;
    QCOMPARE(ProjectList::nextLook(now - age, now), next);
}

void TstProjectList::only_young_invalid_files_ask_for_another_scan()
{
    const auto next = [this] { return m_list->scanProjectFiles(m_path, m_list->beginScan()); };
    QCOMPARE(next(), -1);
    QVERIFY(addPackage("A.corvelpro", "a"));
    QCOMPARE(next(), -1);
    QVERIFY(writeFile(m_path + "B.corvelpro", "no package"));
    QVERIFY(QDir().mkdir(m_path + "folder.corvelpro"));
    const auto setAge = [this](int seconds) {
        QFile file(m_path + "B.corvelpro");
        return file.open(QIODevice::ReadWrite) &&
               file.setFileTime(QDateTime::currentDateTime().addSecs(-seconds), QFileDevice::FileModificationTime);
    };
    QVERIFY(setAge(3600));
    QCOMPARE(next(), -1);
    // Nine seconds in the future stays recent long enough, even on a slow machine.
    QVERIFY(setAge(-9));
    QVERIFY(next() > 0);
    const int later = next();
    QVERIFY(writeFile(m_path + "C.corvelpro", "no package"));
    // The earlier of two looks, whichever file is first.
    for (const int seconds : {-5, -9}) {
        QVERIFY(setAge(seconds));
        QFile file(m_path + "C.corvelpro");
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(
            file.setFileTime(QDateTime::currentDateTime().addSecs(14 + seconds), QFileDevice::FileModificationTime));
        const int earlier = next();
        QVERIFY2(earlier > 0 && earlier < later - 2000, qPrintable(QString::number(earlier)));
    }
    // A file at rest next to it does not hide it.
    QVERIFY(writeFile(m_path + "C.corvelpro", "no package"));
    QVERIFY(next() > 0);
    QVERIFY(addPackage("B.corvelpro", "complete"));
    QVERIFY(QFile::remove(m_path + "C.corvelpro"));
    QCOMPARE(next(), -1);
    QCOMPARE(names().size(), 2);
}

TEST_MAIN_CORE(TstProjectList)
#include "tst_projectlist.moc"
