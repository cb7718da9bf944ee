// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagetesting.h"
#include "writebehinddevice.h"

#include <support/testmain.h>
#include <support/threadcensus.h>
#include <support/warningguard.h>

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <quazip.h>
#include <quazipfile.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <set>

using namespace PackageTesting;
using ProjectFileCfg::Internal::WriteBehindDevice;

namespace {

constexpr int KiB = 1024;
constexpr qint64 blockSize = 256 * KiB;

/// A file that records how it is written.
class ObservedFile : public QFile
{
public:
    using QFile::QFile;

    qint64 room = std::numeric_limits<qint64>::max();
    int pauseMs = 0;
    std::atomic<qint64> given{0};
    /// The maximum of bytes accepted and not yet written.
    qint64 longestWay = 0;
    std::atomic<int> writers{0};
    bool isWrittenAtOnceByTwo = false;
    std::set<Qt::HANDLE> threads;
    std::atomic<bool> hasRefused{false};

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
        if (count < size)
            hasRefused = true;
        --writers;
        return count;
    }

private:
    qint64 m_written = 0;
};

/// An in-memory file that fails from a given byte or call on.
class MemoryFile : public QFile
{
public:
    using QFile::QFile;

    void restart(int writesUntilRefusal, bool takesPartOfIt, int hesitation)
    {
        content.clear();
        hasRefused = false;
        m_writesLeft = writesUntilRefusal;
        m_takesPartOfIt = takesPartOfIt;
        m_hesitation = hesitation;
    }
    /// The error disappears, as after another program removed a file.
    void takeAgain() { m_writesLeft = std::numeric_limits<int>::max(); }

    bool seek(qint64 position) override { return QIODevice::seek(position); }

    QByteArray content;
    std::atomic<bool> hasRefused{false};

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        for (int turn = 0; turn < m_hesitation; ++turn)
            QThread::yieldCurrentThread();
        const bool isTaken = m_writesLeft-- > 0;
        const qint64 count = isTaken ? size : m_takesPartOfIt ? size / 2 : -1;
        if (!isTaken)
            hasRefused = true;
        put(content, pos(), data, count);
        return count;
    }

public:
    static void put(QByteArray &content, qint64 position, const char *data, qint64 size)
    {
        if (size <= 0)
            return;
        if (content.size() < position + size)
            content.append(int(position + size) - content.size(), '\0');
        std::copy_n(data, size, content.begin() + position);
    }

private:
    std::atomic<int> m_writesLeft{0};
    bool m_takesPartOfIt = false;
    int m_hesitation = 0;
};

/// A random sequence of all operations on a device, mirrored on a byte array.
class Sequence
{
public:
    Sequence(MemoryFile &file, quint32 seed)
        : m_file(file)
        , m_random(seed)
    {
        const bool refuses = m_random.bounded(2) == 0;
        m_file.restart(refuses ? m_random.bounded(12) : std::numeric_limits<int>::max(), m_random.bounded(2) == 0,
                       m_random.bounded(3) * m_random.bounded(4));
        m_blockSize = m_random.bounded(1, 40);
        m_device.reset(new WriteBehindDevice(m_file, m_blockSize));
    }

    /// The first difference; empty if there is none.
    QString run()
    {
        for (int step = m_random.bounded(1, 30); step > 0 && m_fault.isEmpty(); --step) {
            switch (m_random.bounded(8)) {
            case 0:
            case 1:
                seek();
                break;
            case 2:
                if (m_random.bounded(3) == 0)
                    flush();
                break;
            case 3:
                if (m_random.bounded(8) == 0)
                    m_file.takeAgain();
                break;
            default:
                write();
            }
            expect(m_device->pos() == m_position, "position");
            expect(m_device->size() == m_expected.size(), "size");
        }
        if (m_random.bounded(3) > 0)
            flush();
        m_device.reset();
        expect(m_file.content.size() <= m_expected.size(), "more than was written");
        return m_fault;
    }

private:
    void expect(bool isTrue, const char *what)
    {
        if (!isTrue && m_fault.isEmpty())
            m_fault = QString::fromLatin1(what);
    }

    void seek()
    {
        switch (m_random.bounded(4)) {
        case 0:
            m_position = m_random.bounded(qMax(1, m_expected.size()));
            break;
        case 1:
            m_position = m_expected.size();
            break;
        case 2:
            m_position = m_expected.size() + m_random.bounded(3 * m_blockSize);
            break;
        default:
            m_position = qMax<qint64>(0, m_position + m_random.bounded(-m_blockSize, m_blockSize + 1));
        }
        expect(m_device->seek(m_position), "seek");
    }

    void write()
    {
        const int sizes[] = {
            0, 1, m_blockSize - 1, m_blockSize, m_blockSize + 1, 5 * m_blockSize, m_random.bounded(1, 3 * m_blockSize)};
        QByteArray bytes(sizes[m_random.bounded(7)], '\0');
        for (char &byte : bytes)
            byte = char(m_random.bounded(1, 256));
        const qint64 count = m_device->write(bytes);
        if (count == bytes.size()) {
            expect(!m_mustRefuse, "taken after a refusal");
            MemoryFile::put(m_expected, m_position, bytes.constData(), count);
            m_position += count;
        } else {
            expect(count == -1, "taken in part");
            expect(m_file.hasRefused, "refused without a reason");
            m_mustRefuse = true;
        }
    }

    void flush()
    {
        if (m_device->flush()) {
            expect(!m_mustRefuse && !m_file.hasRefused, "flushed after a refusal");
            expect(m_file.content == m_expected, "content");
        } else {
            expect(m_file.hasRefused, "not flushed without a reason");
            m_mustRefuse = true;
        }
    }

    MemoryFile &m_file;
    QRandomGenerator m_random;
    int m_blockSize = 1;
    QScopedPointer<WriteBehindDevice> m_device;
    QByteArray m_expected;
    qint64 m_position = 0;
    bool m_mustRefuse = false;
    QString m_fault;
};

} // namespace

class TstWriteBehindDevice : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void file_holds_every_write_at_its_position_data();
    void file_holds_every_write_at_its_position();
    void position_and_size_run_ahead_of_the_file();
    void a_gap_holds_zero_bytes();
    void without_a_write_the_file_stays_empty();
    void writing_can_go_on_after_a_flush();
    void blocks_are_written_by_one_other_thread();
    void single_block_is_written_by_its_owner();
    void bytes_in_flight_are_bounded();
    void flush_reports_a_full_disk_data();
    void flush_reports_a_full_disk();
    void writing_to_a_full_file_ends();
    void a_refused_write_changes_nothing();
    void the_zip_library_may_write_after_a_refusal_data();
    void the_zip_library_may_write_after_a_refusal();
    void random_sequences_end_as_in_a_plain_file();
    void flush_reports_what_the_file_refused();
    void nothing_can_be_read();
    void destruction_waits_for_running_writes();
    void a_refused_thread_leaves_writing_to_the_owner_data();
    void a_refused_thread_leaves_writing_to_the_owner();

private:
    QString path() const { return m_dir->filePath("file"); }

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstWriteBehindDevice::init()
{
    m_dir.reset(new QTemporaryDir);
    TestSupport::refuseThreads(0);
}

void TstWriteBehindDevice::file_holds_every_write_at_its_position_data()
{
    QTest::addColumn<int>("largestPortion");
    QTest::addColumn<int>("farthestStep");
    QTest::newRow("small portions, small steps") << 100 << 200;
    QTest::newRow("small portions, steps across blocks") << 2000 << 1024 * KiB;
    QTest::newRow("large portions, small steps") << 70 * KiB << 100 * KiB;
    QTest::newRow("large portions, steps across blocks") << 70 * KiB << 1024 * KiB;
    QTest::newRow("portions above a block") << 600 * KiB << 1024 * KiB;
}

void TstWriteBehindDevice::file_holds_every_write_at_its_position()
{
    QFETCH(int, largestPortion);
    QFETCH(int, farthestStep);
    QRandomGenerator random(20);
    const QByteArray bytes = noise(700 * KiB);
    for (int round = 0; round < 20; ++round) {
        QByteArray expected;
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
        WriteBehindDevice device(file, blockSize);
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

void TstWriteBehindDevice::position_and_size_run_ahead_of_the_file()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    WriteBehindDevice device(file, blockSize);
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
    WriteBehindDevice device(file, blockSize);
    device.write("a");
    QVERIFY(device.seek(4));
    device.write("b");
    QVERIFY(device.flush());
    QCOMPARE(readFile(path()), QByteArray("a\0\0\0b", 5));
}

void TstWriteBehindDevice::without_a_write_the_file_stays_empty()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    WriteBehindDevice device(file, blockSize);
    QVERIFY(device.flush());
    QCOMPARE(file.size(), qint64(0));
}

void TstWriteBehindDevice::writing_can_go_on_after_a_flush()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    WriteBehindDevice device(file, blockSize);
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
    WriteBehindDevice device(file, blockSize);
    const QByteArray portion = noise(256 * KiB);
    for (int block = 0; block < 40; ++block)
        QVERIFY(device.write(portion) > 0);
    QVERIFY(device.flush());
    QVERIFY(!file.isWrittenAtOnceByTwo);
    QCOMPARE(file.threads.size(), std::size_t(1));
    QVERIFY(*file.threads.begin() != QThread::currentThreadId());
    QVERIFY(readFile(path()) == portion.repeated(40));
}

void TstWriteBehindDevice::single_block_is_written_by_its_owner()
{
    ObservedFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    WriteBehindDevice device(file, blockSize);
    device.write(QByteArray(1000, 'a'));
    QVERIFY(device.seek(500));
    device.write("b");
    QVERIFY(device.seek(1000));
    device.write("c");
    QVERIFY(device.flush());
    QCOMPARE(file.threads, std::set<Qt::HANDLE>{QThread::currentThreadId()});
    QCOMPARE(QFileInfo(path()).size(), 1001);
}

void TstWriteBehindDevice::bytes_in_flight_are_bounded()
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
    QVERIFY2(file.longestWay <= 4096 * KiB, qPrintable(QString::number(file.longestWay)));
}

void TstWriteBehindDevice::flush_reports_a_full_disk_data()
{
    QTest::addColumn<qint64>("room");
    QTest::newRow("at once") << qint64(0);
    QTest::newRow("in the third block") << qint64(600 * KiB);
    QTest::newRow("with the last byte") << qint64(1024 * KiB);
}

void TstWriteBehindDevice::flush_reports_a_full_disk()
{
    QFETCH(qint64, room);
    ObservedFile file(path());
    file.room = room;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    WriteBehindDevice device(file, blockSize);
    device.write(noise(256 * KiB));
    device.write(noise(256 * KiB));
    device.write(noise(256 * KiB));
    device.write(noise(256 * KiB) + '!');
    QVERIFY(!device.flush());
    // The error stays even if nothing is left to write.
    QVERIFY(!device.flush());
}

void TstWriteBehindDevice::writing_to_a_full_file_ends()
{
    ObservedFile file(path());
    file.room = 300 * KiB;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    WriteBehindDevice device(file, blockSize);
    const QByteArray portion(64 * KiB, 'x');
    int written = 0;
    while (written < 1000 && device.write(portion) > 0)
        ++written;
    // The second block does not fit; at most a mebibyte can follow it.
    QVERIFY2(written < 4 + 4 + 16, qPrintable(QString::number(written)));
    QVERIFY(!device.flush());
}

void TstWriteBehindDevice::a_refused_write_changes_nothing()
{
    ObservedFile file(path());
    file.room = 600 * KiB;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    WriteBehindDevice device(file, blockSize);
    const QByteArray block = noise(256 * KiB);
    while (!file.hasRefused)
        device.write(block);
    const qint64 position = device.pos();
    const qint64 size = device.size();
    // The library resumes writing without a seek, a few bytes or many, and seeks back to a header.
    for (const QByteArray &portion : {block, QByteArray("PK"), block, block.repeated(5), QByteArray()}) {
        QCOMPARE(device.write(portion), -1);
        QCOMPARE(device.pos(), position);
        QCOMPARE(device.size(), size);
    }
    QVERIFY(device.seek(10));
    QCOMPARE(device.write("PK"), -1);
    QCOMPARE(device.pos(), 10);
    QVERIFY(!device.flush());
    QCOMPARE(device.write("PK"), -1);
    QCOMPARE(device.size(), size);
}

void TstWriteBehindDevice::the_zip_library_may_write_after_a_refusal_data()
{
    QTest::addColumn<int>("blocks");
    for (int blocks = 0; blocks < 13; ++blocks)
        QTest::newRow(qPrintable(QStringLiteral("room for %1 blocks").arg(blocks))) << blocks;
}

void TstWriteBehindDevice::the_zip_library_may_write_after_a_refusal()
{
    QFETCH(int, blocks);
    const QByteArray picture = noise(700 * KiB);
    ObservedFile file(path());
    file.room = qint64(blocks) * 256 * KiB;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    WriteBehindDevice device(file, blockSize);
    {
        // Finishing entry and archive writes again.
        QuaZip zip(&device);
        zip.setAutoClose(false);
        QVERIFY(zip.open(QuaZip::mdCreate));
        bool isTaken = true;
        for (int number = 0; number < 5 && isTaken; ++number) {
            QuaZipFile entry(&zip);
            isTaken = entry.open(QIODevice::WriteOnly, QuaZipNewInfo(QString::number(number)), nullptr, 0, 0) &&
                      entry.write(picture) == picture.size();
        }
    }
    QVERIFY(!device.flush());
    QCOMPARE(device.write("x"), -1);
}

void TstWriteBehindDevice::random_sequences_end_as_in_a_plain_file()
{
    const int sequences = qEnvironmentVariableIsSet("WRITE_BEHIND_SEQUENCES")
                              ? qEnvironmentVariableIntValue("WRITE_BEHIND_SEQUENCES")
                              : 20000;
    MemoryFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    for (int seed = 1; seed <= sequences; ++seed) {
        const QString fault = Sequence(file, quint32(seed)).run();
        QVERIFY2(fault.isEmpty(), qPrintable(QStringLiteral("sequence %1: %2").arg(QString::number(seed), fault)));
    }
}

void TstWriteBehindDevice::flush_reports_what_the_file_refused()
{
    // Fits into the file's own buffer; the system refuses it on flush.
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    WriteBehindDevice device(file, blockSize);
    device.write("more than a file may have");
    const FullDisk disk(10);
    QVERIFY(!device.flush());
}

void TstWriteBehindDevice::nothing_can_be_read()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::ReadWrite));
    WriteBehindDevice device(file, blockSize);
    device.write("x");
    device.seek(0);
    const TestSupport::ExpectMessage complaint(QtWarningMsg, QRegularExpression(QStringLiteral("WriteOnly device")));
    QVERIFY(device.read(1).isEmpty());
}

void TstWriteBehindDevice::destruction_waits_for_running_writes()
{
    ObservedFile file(path());
    file.pauseMs = 20;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    {
        WriteBehindDevice device(file, blockSize);
        device.write(noise(256 * KiB));
        device.write(noise(256 * KiB));
    }
    QCOMPARE(file.writers.load(), 0);
    QCOMPARE(QFileInfo(path()).size(), 512 * KiB);
}

void TstWriteBehindDevice::a_refused_thread_leaves_writing_to_the_owner_data()
{
    QTest::addColumn<int>("refusals");
    QTest::addColumn<qint64>("room");
    QTest::addColumn<std::size_t>("writers");
    const qint64 enough = std::numeric_limits<qint64>::max();
    QTest::newRow("always") << 100 << enough << std::size_t(1);
    QTest::newRow("always, and the disk is full") << 100 << qint64(600 * KiB) << std::size_t(1);
    QTest::newRow("twice") << 2 << enough << std::size_t(2);
}

void TstWriteBehindDevice::a_refused_thread_leaves_writing_to_the_owner()
{
    if (!TestSupport::canWatchThreads)
        QSKIP("the sanitizers start the threads");
    QFETCH(int, refusals);
    QFETCH(qint64, room);
    QFETCH(std::size_t, writers);
    ObservedFile file(path());
    file.room = room;
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const QByteArray bytes = noise(2000 * KiB);
    TestSupport::refuseThreads(refusals);
    bool isWritten = true;
    {
        WriteBehindDevice device(file, blockSize);
        isWritten =
            device.write(bytes.left(1000 * KiB)) > 0 && device.flush() && device.write(bytes.mid(1000 * KiB)) > 0;
        QCOMPARE(device.flush(), isWritten);
    }
    QCOMPARE(isWritten, room > bytes.size());
    QVERIFY(file.threads.count(QThread::currentThreadId()) == 1);
    QCOMPARE(file.threads.size(), writers);
    if (isWritten)
        QVERIFY(readFile(path()) == bytes);
}

TEST_MAIN(TstWriteBehindDevice)
#include "tst_writebehinddevice.moc"
