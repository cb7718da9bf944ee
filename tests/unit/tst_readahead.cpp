// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "readahead.h"
#include "streamtesting.h"

#include <support/testmain.h>
#include <support/threadcensus.h>

#include <QRandomGenerator>
#include <QTemporaryFile>
#include <QtTest>

#include <limits>

using namespace ProjectFileCfg::Internal;
using namespace StreamTesting;
using TestSupport::canWatchThreads;
using TestSupport::refuseThreads;

namespace {

/// One portion after the other until the end, a failure, or `most` portions. Returns the size of the last one.
qint64 readOn(ReadAhead &reader, QByteArray *bytes, int most = std::numeric_limits<int>::max())
{
    ReadAhead::Portion portion{nullptr, 1};
    while (portion.nSize > 0 && most-- > 0) {
        portion = reader.next();
        if (portion.nSize > 0)
            bytes->append(portion.pData, int(portion.nSize));
    }
    return portion.nSize;
}

} // namespace

class TstReadAhead : public QObject
{
    Q_OBJECT

private slots:
    void every_byte_is_read_in_order_data();
    void every_byte_is_read_in_order();
    void reading_begins_at_the_position();
    void one_other_thread_reads();
    void blocks_in_memory_are_bounded();
    void the_end_is_returned_again();
    void a_failed_read_is_returned_again();
    void a_stopped_reader_leaves_the_rest_unread();
    void an_unused_reader_ends();
    void random_sequences_match_plain_reading();
    void a_refused_thread_leaves_reading_to_the_owner();
};

void TstReadAhead::every_byte_is_read_in_order_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, 1, 999, 1000, 1001, 3999, 4000, 4001, 5000, 123456})
        QTest::addRow("%d bytes", size) << size;
}

void TstReadAhead::every_byte_is_read_in_order()
{
    QFETCH(int, size);
    ScriptedFile file(content(size));
    ReadAhead reader(file, 1000);
    QByteArray read;
    QCOMPARE(readOn(reader, &read), qint64(0));
    QVERIFY(read == file.bytes);
}

void TstReadAhead::reading_begins_at_the_position()
{
    QTemporaryFile file;
    QVERIFY(file.open() && file.write("not this|but this") > 0 && file.seek(9));
    ReadAhead reader(file, 4);
    QByteArray read;
    QCOMPARE(readOn(reader, &read), qint64(0));
    QCOMPARE(read, QByteArray("but this"));
}

void TstReadAhead::one_other_thread_reads()
{
    ScriptedFile file(content(1 * MiB));
    file.hesitation = 3;
    {
        ReadAhead reader(file, 1000);
        QByteArray read;
        QCOMPARE(readOn(reader, &read), qint64(0));
        QVERIFY(read == file.bytes);
    }
    QVERIFY(!file.isReadAtOnceByTwo);
    QCOMPARE(file.threads.size(), std::size_t(1));
    QVERIFY(*file.threads.begin() != QThread::currentThreadId());
}

void TstReadAhead::blocks_in_memory_are_bounded()
{
    ScriptedFile file(content(8 * MiB));
    ReadAhead reader(file);
    // Three are read before the owner asks for the first. A fourth would follow at once.
    QTRY_COMPARE(file.given.load(), qint64(3 * MiB));
    QTest::qWait(20);
    QCOMPARE(file.given.load(), qint64(3 * MiB));
    // The owner holds the first: nothing is read into it.
    const ReadAhead::Portion first = reader.next();
    QTRY_COMPARE(file.given.load(), qint64(4 * MiB));
    QTest::qWait(20);
    QCOMPARE(file.given.load(), qint64(4 * MiB));
    QVERIFY(QByteArray::fromRawData(first.pData, int(first.nSize)) == file.bytes.left(int(first.nSize)));
}

void TstReadAhead::the_end_is_returned_again()
{
    ScriptedFile file(content(2500));
    ReadAhead reader(file, 1000);
    QByteArray read;
    QCOMPARE(readOn(reader, &read), qint64(0));
    for (int again = 0; again < 10; ++again)
        QCOMPARE(reader.next().nSize, qint64(0));
    // Time enough to read what may have come to the file since.
    QTest::qWait(20);
    QCOMPARE(file.reads.load(), 4);
}

void TstReadAhead::a_failed_read_is_returned_again()
{
    ScriptedFile file(content(5000));
    file.failsAt = 2000;
    ReadAhead reader(file, 1000);
    QByteArray read;
    QCOMPARE(readOn(reader, &read), qint64(-1));
    QVERIFY(read == file.bytes.left(2000));
    QCOMPARE(file.errorString(), QStringLiteral("worn out"));
    // The file could be read again: what is missing must not be skipped.
    for (int again = 0; again < 10; ++again)
        QCOMPARE(reader.next().nSize, qint64(-1));
    QTest::qWait(20);
    QCOMPARE(file.reads.load(), 3);
}

void TstReadAhead::a_stopped_reader_leaves_the_rest_unread()
{
    ScriptedFile file(content(100 * 1000));
    file.pauseMs = 5;
    {
        ReadAhead reader(file, 1000);
        QByteArray read;
        readOn(reader, &read, 10);
    }
    QCOMPARE(file.readers.load(), 0);
    // Ten were returned, and the last of these is still the owner's.
    QVERIFY2(file.given <= 13 * 1000, qPrintable(QString::number(file.given)));
}

void TstReadAhead::an_unused_reader_ends()
{
    ScriptedFile file(content(100 * 1000));
    for (int round = 0; round < 100; ++round)
        ReadAhead(file, 10);
    QCOMPARE(file.readers.load(), 0);
}

void TstReadAhead::random_sequences_match_plain_reading()
{
    const int sequences =
        qEnvironmentVariableIsSet("READ_AHEAD_SEQUENCES") ? qEnvironmentVariableIntValue("READ_AHEAD_SEQUENCES") : 1000;
    ScriptedFile file(content(400));
    const QByteArray all = content(400);
    for (int seed = 1; seed <= sequences; ++seed) {
        QRandomGenerator random{quint32(seed)};
        const int size = random.bounded(all.size());
        file.bytes = all.left(size);
        file.given = 0;
        file.failsAt = random.bounded(3) == 0 ? random.bounded(size + 1) : unlimited;
        file.atOnce = random.bounded(1, 60);
        file.hesitation = random.bounded(3) * random.bounded(4);
        const bool fails = file.failsAt < unlimited;
        const qint64 failsAt = file.failsAt;
        const int portions = random.bounded(2) == 0 ? random.bounded(10) : 1000;
        QByteArray read;
        qint64 last = 1;
        {
            ReadAhead reader(file, random.bounded(1, 40));
            for (int number = 0; number < portions; ++number) {
                if (random.bounded(4) == 0)
                    QThread::yieldCurrentThread();
                last = readOn(reader, &read, 1);
            }
        }
        const QByteArray where = "sequence " + QByteArray::number(seed);
        QVERIFY2(all.startsWith(read), where);
        QVERIFY2(last > 0 || portions == 0 || last == (fails ? -1 : 0), where);
        QVERIFY2(last != 0 || read.size() == size, where);
        QVERIFY2(last != -1 || (read.size() >= failsAt && read.size() < failsAt + 40), where);
        QVERIFY2(portions < 1000 || last <= 0, where);
    }
    QVERIFY(!file.isReadAtOnceByTwo);
}

void TstReadAhead::a_refused_thread_leaves_reading_to_the_owner()
{
    if (!canWatchThreads)
        QSKIP("the sanitizers start the threads");
    for (const qint64 failsAt : {unlimited, qint64(2000)}) {
        ScriptedFile file(content(5500));
        file.failsAt = failsAt;
        refuseThreads(1);
        ReadAhead reader(file, 1000);
        QByteArray read;
        const qint64 last = failsAt == unlimited ? 0 : -1;
        QCOMPARE(readOn(reader, &read), last);
        QVERIFY(read == file.bytes.left(last == 0 ? 5500 : 2000));
        QCOMPARE(reader.next().nSize, last);
        QVERIFY(file.threads == std::set<Qt::HANDLE>{QThread::currentThreadId()});
    }
}

TEST_MAIN(TstReadAhead)
#include "tst_readahead.moc"
