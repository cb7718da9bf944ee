#include "packagetesting.h"
#include "writebehinddevice.h"

#include <support/testmain.h>
#include <support/warningguard.h>

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <set>

using namespace PackageTesting;
using ProjectFileCfg::Internal::WriteBehindDevice;

namespace {

constexpr int KiB = 1024;

/// A file that tells how it is written.
class ObservedFile : public QFile
{
public:
    using QFile::QFile;

    qint64 room = std::numeric_limits<qint64>::max();
    int pauseMs = 0;
    std::atomic<qint64> given{0};
    /// Given and not written, at most.
    qint64 longestWay = 0;
    std::atomic<int> writers{0};
    bool isWrittenAtOnceByTwo = false;
    std::set<Qt::HANDLE> threads;

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        if (++writers > 1)
            isWrittenAtOnceByTwo = true;
        threads.insert(QThread::currentThreadId());
        longestWay = qMax(longestWay, given - m_written);
        QThread::msleep(ulong(pauseMs));
        const qint64 count = m_written + size > room ? -1 : QFile::writeData(data, size);
        m_written += qMax<qint64>(count, 0);
        --writers;
        return count;
    }

private:
    qint64 m_written = 0;
};

} // namespace

class TstWriteBehindDevice : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void the_file_holds_what_was_written_wherever_it_was_written_data();
    void the_file_holds_what_was_written_wherever_it_was_written();
    void position_and_size_are_known_before_the_file_has_them();
    void a_gap_holds_zero_bytes();
    void writing_can_go_on_after_a_flush();
    void blocks_are_written_by_one_other_thread();
    void what_fits_in_a_block_is_written_by_its_owner();
    void what_is_on_its_way_is_bounded();
    void a_file_that_is_full_is_told_by_flush_data();
    void a_file_that_is_full_is_told_by_flush();
    void writing_to_a_full_file_ends();
    void what_the_file_cannot_pass_on_is_told_by_flush();
    void nothing_can_be_read();
    void its_end_waits_for_what_is_being_written();

private:
    QString path() const { return m_dir->filePath("file"); }

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstWriteBehindDevice::init()
{
    m_dir.reset(new QTemporaryDir);
}

void TstWriteBehindDevice::the_file_holds_what_was_written_wherever_it_was_written_data()
{
    QTest::addColumn<int>("largestPortion");
    QTest::addColumn<int>("farthestStep");
    QTest::newRow("small portions, small steps") << 100 << 200;
    QTest::newRow("small portions, steps across blocks") << 2000 << 1024 * KiB;
    QTest::newRow("large portions, small steps") << 70 * KiB << 100 * KiB;
    QTest::newRow("large portions, steps across blocks") << 70 * KiB << 1024 * KiB;
    QTest::newRow("portions above a block") << 600 * KiB << 1024 * KiB;
}

void TstWriteBehindDevice::the_file_holds_what_was_written_wherever_it_was_written()
{
    QFETCH(int, largestPortion);
    QFETCH(int, farthestStep);
    QRandomGenerator random(20);
    const QByteArray bytes = noise(700 * KiB);
    for (int round = 0; round < 20; ++round) {
        QByteArray expected;
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
        WriteBehindDevice device(file);
        for (int step = 0; step < 60; ++step) {
            const int size = random.bounded(1, largestPortion + 1);
            const QByteArray portion = bytes.mid(random.bounded(bytes.size() - size), size);
            if (step % 3 == 2) {
                const int back = random.bounded(qMin(farthestStep, expected.size()) + 1);
                QVERIFY(device.seek(expected.size() - back));
            } else {
                QVERIFY(device.seek(expected.size()));
            }
            expected.replace(int(device.pos()), portion.size(), portion);
            QCOMPARE(device.write(portion), qint64(portion.size()));
        }
        QVERIFY(device.flush());
        QVERIFY(readFile(path()) == expected);
    }
}

void TstWriteBehindDevice::position_and_size_are_known_before_the_file_has_them()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    WriteBehindDevice device(file);
    QVERIFY(!device.isSequential());
    QVERIFY(device.isOpen());
    QCOMPARE(device.size(), 0);
    device.write(QByteArray(1000, 'a'));
    QCOMPARE(device.pos(), 1000);
    QCOMPARE(device.size(), 1000);
    QVERIFY(device.seek(10));
    device.write("b");
    QCOMPARE(device.pos(), 11);
    QCOMPARE(device.size(), 1000);
    QCOMPARE(QFileInfo(path()).size(), 0);
}

void TstWriteBehindDevice::a_gap_holds_zero_bytes()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    WriteBehindDevice device(file);
    device.write("a");
    QVERIFY(device.seek(4));
    device.write("b");
    QVERIFY(device.flush());
    QCOMPARE(readFile(path()), QByteArray("a\0\0\0b", 5));
}

void TstWriteBehindDevice::writing_can_go_on_after_a_flush()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    WriteBehindDevice device(file);
    device.write("one");
    QVERIFY(device.flush());
    QCOMPARE(readFile(path()), QByteArray("one"));
    device.write("two");
    QVERIFY(device.seek(1));
    device.write("N");
    QVERIFY(device.flush());
    QCOMPARE(readFile(path()), QByteArray("oNetwo"));
    QVERIFY(device.flush());
    QCOMPARE(readFile(path()), QByteArray("oNetwo"));
}

void TstWriteBehindDevice::blocks_are_written_by_one_other_thread()
{
    ObservedFile file(path());
    file.pauseMs = 1;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    WriteBehindDevice device(file);
    const QByteArray portion = noise(256 * KiB);
    for (int block = 0; block < 40; ++block) {
        QVERIFY(device.write(portion) > 0);
    }
    QVERIFY(device.flush());
    QVERIFY(!file.isWrittenAtOnceByTwo);
    QCOMPARE(file.threads.size(), std::size_t(1));
    QVERIFY(*file.threads.begin() != QThread::currentThreadId());
    QVERIFY(readFile(path()) == portion.repeated(40));
}

void TstWriteBehindDevice::what_fits_in_a_block_is_written_by_its_owner()
{
    ObservedFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    WriteBehindDevice device(file);
    device.write(QByteArray(1000, 'a'));
    QVERIFY(device.seek(500));
    device.write("b");
    QVERIFY(device.seek(1000));
    device.write("c");
    QVERIFY(device.flush());
    QCOMPARE(file.threads, std::set<Qt::HANDLE>{QThread::currentThreadId()});
    QCOMPARE(QFileInfo(path()).size(), 1001);
}

void TstWriteBehindDevice::what_is_on_its_way_is_bounded()
{
    ObservedFile file(path());
    file.pauseMs = 2;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    WriteBehindDevice device(file);
    const QByteArray portion(64 * KiB, 'x');
    for (int count = 0; count < 200; ++count) {
        file.given += portion.size();
        QVERIFY(device.write(portion) > 0);
    }
    QVERIFY(device.flush());
    QVERIFY2(file.longestWay <= 1024 * KiB, qPrintable(QString::number(file.longestWay)));
}

void TstWriteBehindDevice::a_file_that_is_full_is_told_by_flush_data()
{
    QTest::addColumn<qint64>("room");
    QTest::newRow("at once") << qint64(0);
    QTest::newRow("in the third block") << qint64(600 * KiB);
    QTest::newRow("with the last byte") << qint64(1024 * KiB);
}

void TstWriteBehindDevice::a_file_that_is_full_is_told_by_flush()
{
    QFETCH(qint64, room);
    ObservedFile file(path());
    file.room = room;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    WriteBehindDevice device(file);
    device.write(noise(256 * KiB));
    device.write(noise(256 * KiB));
    device.write(noise(256 * KiB));
    device.write(noise(256 * KiB) + '!');
    QVERIFY(!device.flush());
    // It does not become true because there is nothing left to write.
    QVERIFY(!device.flush());
}

void TstWriteBehindDevice::writing_to_a_full_file_ends()
{
    ObservedFile file(path());
    file.room = 300 * KiB;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    WriteBehindDevice device(file);
    const QByteArray portion(64 * KiB, 'x');
    int written = 0;
    while (written < 1000 && device.write(portion) > 0)
        ++written;
    // The second block does not fit; not more than a mebibyte can be on its way behind it.
    QVERIFY2(written < 4 + 4 + 16, qPrintable(QString::number(written)));
    QVERIFY(!device.flush());
}

void TstWriteBehindDevice::what_the_file_cannot_pass_on_is_told_by_flush()
{
    // Stays in the file's own buffer, and is refused by the system when that is flushed.
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    WriteBehindDevice device(file);
    device.write("more than a file may have");
    const FullDisk disk(10);
    QVERIFY(!device.flush());
}

void TstWriteBehindDevice::nothing_can_be_read()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::ReadWrite));
    WriteBehindDevice device(file);
    device.write("x");
    device.seek(0);
    const TestSupport::ExpectMessage complaint(QtWarningMsg, QRegularExpression(QStringLiteral("WriteOnly device")));
    QVERIFY(device.read(1).isEmpty());
}

void TstWriteBehindDevice::its_end_waits_for_what_is_being_written()
{
    ObservedFile file(path());
    file.pauseMs = 20;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    {
        WriteBehindDevice device(file);
        device.write(noise(256 * KiB));
        device.write(noise(256 * KiB));
    }
    QCOMPARE(file.writers.load(), 0);
    QCOMPARE(QFileInfo(path()).size(), 512 * KiB);
}

TEST_MAIN(TstWriteBehindDevice)
#include "tst_writebehinddevice.moc"
