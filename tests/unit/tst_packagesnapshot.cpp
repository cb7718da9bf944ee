// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "filesystem.h"
#include "packagesnapshot.h"
#include "packagetesting.h"
#include "refusedreader.h"

#include <support/testmain.h>

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;

class TstPackageSnapshot : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_copy_holds_what_the_package_held();
    void a_copy_belongs_to_no_thread();
    void a_copy_waits_for_a_running_edit();
    void waiting_for_a_writer_is_bounded();
    void the_package_can_be_edited_after_the_copy();
    void a_copy_without_room_is_dropped();
    void another_file_with_the_copys_name_is_kept();

private:
    QString path(const QString &name) const { return m_temp->filePath(name); }
    /// Empty if there is no copy.
    QByteArray copied();

    QScopedPointer<QTemporaryDir> m_temp;
};

void TstPackageSnapshot::init()
{
    m_temp.reset(new QTemporaryDir);
    QVERIFY(m_temp->isValid());
}

void TstPackageSnapshot::cleanup()
{
    RefusedReader::s_onRefusal = nullptr;
}

QByteArray TstPackageSnapshot::copied()
{
    PackageSnapshot snapshot;
    const PackageSnapshot::Outcome outcome = snapshot.take(path("show.corvelpro"), {m_temp->path()});
    const std::unique_ptr<QFile> copy = snapshot.release();
    return outcome == PackageSnapshot::Outcome::Taken && copy->seek(0) ? copy->readAll() : QByteArray();
}

void TstPackageSnapshot::a_copy_holds_what_the_package_held()
{
    QVERIFY(writeFile(path("show.corvelpro"), noise(3 * MiB)));
    QCOMPARE(copied(), noise(3 * MiB));
}

void TstPackageSnapshot::a_copy_belongs_to_no_thread()
{
    // A check makes it, and the thread of the job removes it.
    QVERIFY(writeFile(path("package"), "content"));
    PackageSnapshot snapshot;
    QVERIFY(snapshot.take(path("package"), {m_temp->path()}) == PackageSnapshot::Outcome::Taken);
    QVERIFY(!snapshot.release()->thread());
}

void TstPackageSnapshot::a_copy_waits_for_a_running_edit()
{
    const QByteArray before = noise(100000) + "old end";
    const QByteArray after = noise(100000) + "the new end, which is longer";
    QVERIFY(writeFile(path("show.corvelpro"), before));
    QFile writer(path("show.corvelpro"));
    QVERIFY(writer.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    QVERIFY(FileSystem::lock(writer.handle()));
    QVERIFY(writer.seek(100000));
    QCOMPARE(writer.write("the new"), qint64(7));
    RefusedReader::s_onRefusal = [&] {
        writer.write(", which is longer");
        writer.seek(100000);
        writer.write("the new end, which is longer");
        FileSystem::unlock(writer.handle());
    };
    QCOMPARE(copied(), after);
}

void TstPackageSnapshot::waiting_for_a_writer_is_bounded()
{
    QVERIFY(writeFile(path("show.corvelpro"), noise(100000)));
    QFile writer(path("show.corvelpro"));
    QVERIFY(writer.open(QIODevice::ReadWrite));
    QVERIFY(FileSystem::lock(writer.handle()));
    int refused = 0;
    RefusedReader::s_onRefusal = [&refused] { ++refused; };
    QCOMPARE(copied(), noise(100000));
    QVERIFY(refused > 1);
}

void TstPackageSnapshot::the_package_can_be_edited_after_the_copy()
{
    QVERIFY(writeFile(path("show.corvelpro"), noise(100000)));
    QFile other(path("show.corvelpro"));
    QVERIFY(other.open(QIODevice::ReadWrite));
    PackageSnapshot snapshot;
    QCOMPARE(snapshot.take(path("show.corvelpro"), {m_temp->path()}), PackageSnapshot::Outcome::Taken);
    QVERIFY(FileSystem::lock(other.handle()));
    QCOMPARE(snapshot.take(path("missing"), {m_temp->path()}), PackageSnapshot::Outcome::Unreadable);
}

void TstPackageSnapshot::a_copy_without_room_is_dropped()
{
    QVERIFY(writeFile(path("show.corvelpro"), noise(100000)));
    PackageSnapshot snapshot;
    PackageSnapshot::Outcome outcome = PackageSnapshot::Outcome::Taken;
    {
        const FullDisk disk(1000);
        outcome = snapshot.take(path("show.corvelpro"), {m_temp->path()});
    }
    QCOMPARE(outcome, PackageSnapshot::Outcome::NoRoom);
    // It would take up the room that there is not.
    QVERIFY(!snapshot.release());
}

void TstPackageSnapshot::another_file_with_the_copys_name_is_kept()
{
    QVERIFY(writeFile(path("show.corvelpro"), "package"));
    PackageSnapshot snapshot;
    QCOMPARE(snapshot.take(path("show.corvelpro"), {m_temp->path()}), PackageSnapshot::Outcome::Taken);
    std::unique_ptr<QFile> copy = snapshot.release();
    QCOMPARE(contents(m_temp->path()), QStringList{"show.corvelpro"});
    const QString name = copy->fileName();
    // Hidden, and recognizable if it ever stays.
    QVERIFY2(QFileInfo(name).fileName().startsWith('.') && name.endsWith(".part"), qPrintable(name));
    QVERIFY(writeFile(name, "of another program"));
    copy.reset();
    QCOMPARE(readFile(name), QByteArray("of another program"));
}

TEST_MAIN_CORE(TstPackageSnapshot)
#include "tst_packagesnapshot.moc"
