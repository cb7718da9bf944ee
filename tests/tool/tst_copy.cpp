// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "childprocess.h"
#include "devicefiles.h"

#include "commandline/interrupt.h"
#include "copying/dropfrommemory.h"
#include "copying/verifiedcopy.h"
#include "replacingfile.h"

#include <unit/cachetesting.h>

#include <QJsonArray>
#include <QTemporaryDir>

#include <csignal>

using namespace ToolTesting;
using Corvelpro::Interrupt;
using Corvelpro::VerifiedCopy;
using ProjectFileCfg::Internal::ReplacingFile;

class TstCopy : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void copies_are_equal_and_say_what_is_proved();
    void existing_target_is_kept();
    void each_file_is_judged_by_itself();
    void target_must_be_a_directory();
    void what_does_not_read_back_is_no_copy();
    void interrupt_at_each_step_leaves_nothing();
    void kill_at_each_step_leaves_no_copy();
    void full_disk_leaves_nothing();
    void memory_is_not_taken_for_the_disk();
    void copied_files_leave_the_page_cache();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    /// The hidden file of a copy that is being made.
    QString fragment() const
    {
        const QStringList names = namesIn(m_stick);
        return names.size() == 1 && ReplacingFile::isFragment(names.first()) ? m_stick + '/' + names.first()
                                                                             : QString();
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QString m_package;
    QString m_stick;
};

void TstCopy::init()
{
    m_dir.reset(new QTemporaryDir);
    m_package = path("a.corvelpro");
    m_stick = path("stick");
    QVERIFY(QDir().mkpath(m_stick));
    // Several portions of copying.
    QVERIFY(writePackage(m_package, {{"10.0.0.1.json", "{}"}, {"x.bin", PackageTesting::noise(1000000)}}));
}

void TstCopy::copies_are_equal_and_say_what_is_proved()
{
    QVERIFY(writePackage(path("b.corvelpro"), {{"10.0.0.2.json", "{}"}}));
    const Outcome two = runTool({"copy", m_package, path("b.corvelpro"), m_stick});
    QCOMPARE(two.code, yes);
    QCOMPARE(two.messages, QByteArray());
    const QList<QByteArray> lines = two.out.split('\n');
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines[0] == m_stick.toUtf8() + "/a.corvelpro: copied and read back from the disk" ||
                 lines[0] == m_stick.toUtf8() +
                                 "/a.corvelpro: copied and read back, perhaps from memory: this system cannot tell",
             two.out);
    QCOMPARE(namesIn(m_stick), QStringList({"a.corvelpro", "b.corvelpro"}));
    QVERIFY(readFile(m_stick + "/a.corvelpro") == readFile(m_package));

    QVERIFY(QDir().mkpath(path("other")));
    const Outcome one = runTool({"copy", "--json", m_package, path("other")});
    QCOMPARE(one.code, yes);
    const QJsonObject copy = one.json()["files"].toArray().first().toObject();
    QCOMPARE(copy["copy"].toString(), path("other/a.corvelpro"));
    QCOMPARE(copy["result"].toString(), QString("done"));
    QVERIFY(copy["readBackFrom"] == "disk" || copy["readBackFrom"] == "memory");
}

void TstCopy::existing_target_is_kept()
{
    QVERIFY(writeFile(m_stick + "/a.corvelpro", "old"));
    const Outcome outcome = runTool({"copy", m_package, m_stick});
    QCOMPARE(outcome.code, no);
    QCOMPARE(outcome.messages, ("corvelpro: " + m_stick + "/a.corvelpro: already exists\n").toUtf8());
    QCOMPARE(readFile(m_stick + "/a.corvelpro"), QByteArray("old"));
    // Onto itself.
    QCOMPARE(runTool({"copy", m_package, m_dir->path()}).code, no);
}

void TstCopy::each_file_is_judged_by_itself()
{
    QVERIFY(packed({{"x.json", "{}"}}).recordWithChecksum(QString(32, '0'), "", "").write(path("bad.corvelpro")));
    const Outcome outcome =
        runTool({"copy", "--json", path("gone.corvelpro"), path("bad.corvelpro"), m_package, m_package, m_stick});
    QCOMPARE(outcome.code, unknown);
    QStringList results;
    for (const QJsonValue &file : outcome.json()["files"].toArray())
        results.append(file.toObject()["result"].toString());
    QCOMPARE(results, QStringList({"failed", "refused", "done", "refused"}));
    QCOMPARE(outcome.messages.count('\n'), 3);
    QVERIFY2(outcome.messages.contains("not a valid project file: " + path("bad.corvelpro").toUtf8()),
             outcome.messages);
    QCOMPARE(namesIn(m_stick), QStringList{"a.corvelpro"});
}

void TstCopy::target_must_be_a_directory()
{
    for (const QStringList &arguments : {QStringList{m_package, path("gone")}, QStringList{m_package, m_package},
                                         QStringList{m_package, ""}, QStringList{m_package}}) {
        const Outcome outcome = runTool(QStringList{"copy"} + arguments);
        QCOMPARE(outcome.code, unknown);
        QCOMPARE(outcome.out, QByteArray());
        QVERIFY(!outcome.messages.isEmpty());
    }
    QCOMPARE(namesIn(m_dir->path()), QStringList({"a.corvelpro", "stick"}));
}

void TstCopy::what_does_not_read_back_is_no_copy()
{
    const qint64 size = QFileInfo(m_package).size();
    qint64 done = 0;
    VerifiedCopy copy(m_package, m_stick + "/a.corvelpro", [&](qint64 bytes) {
        done += bytes;
        // All is written, and the first portion was read back: a bit of the last one turns.
        if (done > size) {
            QFile file(fragment());
            const bool isTurned = file.open(QIODevice::ReadWrite) && file.seek(size - 100) && file.write("?") == 1;
            return isTurned;
        }
        return true;
    });
    const Corvelpro::Outcome outcome = copy.run();
    QCOMPARE(int(outcome.code), unknown);
    QVERIFY2(outcome.reason.endsWith("does not read back: the disk or its connection is bad"),
             qPrintable(outcome.reason));
    QCOMPARE(namesIn(m_stick), QStringList());
}

void TstCopy::interrupt_at_each_step_leaves_nothing()
{
#if defined(__SANITIZE_THREAD__)
    QSKIP("ThreadSanitizer delivers a signal later");
#endif
    int step = 0;
    int end = -SIGINT;
    for (; end == -SIGINT; ++step) {
        end = inChild([&] {
            const Interrupt interrupt;
            int steps = 0;
            VerifiedCopy copy(m_package, m_stick + "/a.corvelpro", [&](qint64) {
                if (steps++ == step)
                    std::raise(SIGINT);
                return !Interrupt::came();
            });
            return int(copy.run().code);
        });
        QCOMPARE(namesIn(m_stick), end == 0 ? QStringList{"a.corvelpro"} : QStringList());
    }
    QCOMPARE(end, 0);
    // Four portions are written, and four are read back.
    QCOMPARE(step, 9);
}

void TstCopy::kill_at_each_step_leaves_no_copy()
{
    int end = -SIGKILL;
    for (int step = 0; end == -SIGKILL; ++step) {
        end = inChild([&] {
            int steps = 0;
            VerifiedCopy copy(m_package, m_stick + "/a.corvelpro", [&](qint64) {
                if (steps++ == step)
                    std::raise(SIGKILL);
                return true;
            });
            return int(copy.run().code);
        });
        if (end == 0)
            break;
        QVERIFY2(!fragment().isEmpty(), qPrintable(namesIn(m_stick).join(' ')));
        QVERIFY(QFile::remove(fragment()));
    }
    QCOMPARE(end, 0);
    QCOMPARE(namesIn(m_stick), QStringList{"a.corvelpro"});
}

void TstCopy::full_disk_leaves_nothing()
{
    const FullDisk disk(500000);
    const Outcome outcome = runTool({"copy", m_package, m_stick});
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages.count('\n'), 1);
    QCOMPARE(namesIn(m_stick), QStringList());
}

void TstCopy::memory_is_not_taken_for_the_disk()
{
    QFile file(m_package);
    QVERIFY(file.open(QIODevice::ReadOnly));
    // The system keeps what a process has mapped and used.
    const uchar *content = file.map(0, file.size());
    QVERIFY(content && content[0] == 'P');
    QVERIFY(!Corvelpro::dropFromMemory(file.handle(), file.size()));
}

void TstCopy::copied_files_leave_the_page_cache()
{
    const std::unique_ptr<QTemporaryDir> disk = CacheTesting::folderOnDisk();
    if (!disk)
        QSKIP("this file system does not drop pages");
    const QString package = disk->filePath("a.corvelpro");
    const QString stick = disk->filePath("stick");
    QVERIFY(QDir().mkdir(stick) && QFile::copy(m_package, package) && CacheTesting::uncache(package));
    QCOMPARE(runTool({"copy", package, stick}).code, yes);
    // All but the ends, which the checks before and after read.
    for (const QString &file : {package, stick + "/a.corvelpro"})
        QVERIFY(CacheTesting::cached(file) < QFileInfo(file).size() / 2);
}

TEST_MAIN_CORE(TstCopy)
#include "tst_copy.moc"
