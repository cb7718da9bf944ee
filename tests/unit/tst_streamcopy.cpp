// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "streamcopy.h"
#include "streamtesting.h"

#include <support/testmain.h>

#include <QTemporaryDir>
#include <QtTest>

#include <limits>

using namespace ProjectFileCfg::Internal;
using namespace StreamTesting;

class TstStreamCopy : public QObject
{
    Q_OBJECT

private slots:
    void copies_up_to_the_limit_data();
    void copies_up_to_the_limit();
    void more_than_the_limit_is_refused_data();
    void more_than_the_limit_is_refused();
    void small_limit_takes_a_small_block();
    void negative_limit_copies_nothing_data();
    void negative_limit_copies_nothing();
    void memory_is_bounded_without_a_limit();
    void each_portion_is_shown();
    void failed_reading_is_reported();
    void failed_writing_is_reported();

    // Files
    void a_large_file_is_copied_whole_data();
    void a_large_file_is_copied_whole();
    void a_file_that_shrinks_is_copied_up_to_its_end();
    void reading_ahead_copies_no_more_than_the_limit();
    void failed_writing_stops_reading_ahead();
    void a_failed_read_ahead_is_reported();
};

void TstStreamCopy::copies_up_to_the_limit_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("atOnce");
    QTest::addColumn<qint64>("limit");
    for (const int size : {0, 1, 2, 4095, 256 * KiB - 1, 256 * KiB, 256 * KiB + 1, 700 * KiB}) {
        for (const int atOnce : {7 * KiB + 1, 1000 * KiB}) {
            QTest::addRow("%d bytes, %d at once, no more allowed", size, atOnce) << size << atOnce << qint64(size);
            QTest::addRow("%d bytes, %d at once, unlimited", size, atOnce) << size << atOnce << unlimited;
        }
    }
}

void TstStreamCopy::copies_up_to_the_limit()
{
    QFETCH(int, size);
    QFETCH(int, atOnce);
    QFETCH(qint64, limit);
    ScriptedFile source(content(size));
    source.atOnce = atOnce;
    FullBuffer destination;
    qint64 copied = -1;
    QVERIFY(copyStream(source, destination, limit, &copied));
    QCOMPARE(copied, qint64(size));
    QCOMPARE(destination.data(), content(size));
}

void TstStreamCopy::more_than_the_limit_is_refused_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("atOnce");
    QTest::addColumn<int>("limit");
    for (const int limit : {0, 1, 4095, 256 * KiB - 1, 256 * KiB, 500 * KiB}) {
        for (const int atOnce : {7 * KiB + 1, 1000 * KiB}) {
            QTest::addRow("%d bytes, one more, %d at once", limit, atOnce) << limit + 1 << atOnce << limit;
            QTest::addRow("%d bytes, many more, %d at once", limit, atOnce) << limit + 900 * KiB << atOnce << limit;
        }
    }
}

void TstStreamCopy::more_than_the_limit_is_refused()
{
    QFETCH(int, size);
    QFETCH(int, atOnce);
    QFETCH(int, limit);
    ScriptedFile source(content(size));
    source.atOnce = atOnce;
    FullBuffer destination;
    qint64 copied = -1;
    QString reason;
    QVERIFY(!copyStream(source, destination, limit, &copied, nullptr, &reason));
    QCOMPARE(reason, QStringLiteral("there are more than %1 bytes").arg(limit));
    QVERIFY(copied > limit);
    QVERIFY(destination.size() <= limit);
    QVERIFY(content(size).startsWith(destination.data()));
}

void TstStreamCopy::small_limit_takes_a_small_block()
{
    ScriptedFile source(content(900 * KiB));
    FullBuffer destination;
    qint64 copied = -1;
    QVERIFY(!copyStream(source, destination, 10, &copied));
    QCOMPARE(source.largestRequest, qint64(11));
}

void TstStreamCopy::negative_limit_copies_nothing_data()
{
    QTest::addColumn<qint64>("limit");
    QTest::newRow("-1") << qint64(-1);
    QTest::newRow("lowest") << std::numeric_limits<qint64>::min();
    // An archive may state any 64 bits; the lower half of these is the largest int.
    QTest::newRow("large in its lower half") << std::numeric_limits<qint64>::min() + std::numeric_limits<int>::max();
}

void TstStreamCopy::negative_limit_copies_nothing()
{
    QFETCH(qint64, limit);
    ScriptedFile source(content(900 * KiB));
    FullBuffer destination;
    qint64 copied = -1;
    QVERIFY(!copyStream(source, destination, limit, &copied));
    QCOMPARE(source.largestRequest, qint64(1));
    QVERIFY(destination.data().isEmpty());
}

void TstStreamCopy::memory_is_bounded_without_a_limit()
{
    ScriptedFile source(content(900 * KiB));
    FullBuffer destination;
    qint64 copied = -1;
    QVERIFY(copyStream(source, destination, unlimited, &copied));
    QCOMPARE(source.largestRequest, qint64(256 * KiB));
}

void TstStreamCopy::each_portion_is_shown()
{
    ScriptedFile source(content(700 * KiB));
    source.atOnce = 7 * KiB;
    FullBuffer destination;
    qint64 copied = -1;
    QByteArray shown;
    const auto look = [&shown](const char *data, qint64 size) { shown.append(data, int(size)); };
    QVERIFY(copyStream(source, destination, unlimited, &copied, look));
    QCOMPARE(shown, content(700 * KiB));
}

void TstStreamCopy::failed_reading_is_reported()
{
    ScriptedFile source(content(700 * KiB));
    source.atOnce = 300 * KiB;
    source.failsAt = 512 * KiB;
    FullBuffer destination;
    qint64 copied = -1;
    QString reason;
    QVERIFY(!copyStream(source, destination, unlimited, &copied, nullptr, &reason));
    QCOMPARE(reason, QStringLiteral("cannot read: worn out"));
    QCOMPARE(copied, qint64(512 * KiB));
}

void TstStreamCopy::failed_writing_is_reported()
{
    ScriptedFile source(content(700 * KiB));
    FullBuffer destination(300 * KiB);
    qint64 copied = -1;
    QString reason;
    QVERIFY(!copyStream(source, destination, unlimited, &copied, nullptr, &reason));
    QVERIFY2(reason.startsWith(QStringLiteral("cannot write: ")), qPrintable(reason));
    QCOMPARE(destination.data(), content(700 * KiB).left(256 * KiB));
}

void TstStreamCopy::a_large_file_is_copied_whole_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("isReadAhead");
    QTest::newRow("empty") << 0 << false;
    QTest::newRow("a byte less than is read ahead") << 4 * MiB - 1 << false;
    QTest::newRow("the least that is read ahead") << 4 * MiB << true;
    QTest::newRow("many blocks and a byte") << 9 * MiB + 1 << true;
}

void TstStreamCopy::a_large_file_is_copied_whole()
{
    QFETCH(int, size);
    QFETCH(bool, isReadAhead);
    ScriptedFile source(content(size));
    FullBuffer destination;
    qint64 copied = -1;
    QByteArray shown;
    std::set<Qt::HANDLE> lookers;
    const auto look = [&](const char *data, qint64 count) {
        shown.append(data, int(count));
        lookers.insert(QThread::currentThreadId());
    };
    QVERIFY(copyFile(source, destination, size, &copied, look));
    QCOMPARE(copied, qint64(size));
    QVERIFY(destination.data() == source.bytes);
    QVERIFY(shown == source.bytes);
    QVERIFY(lookers.size() <= 1 && lookers.count(QThread::currentThreadId()) == lookers.size());
    QCOMPARE(source.threads.count(QThread::currentThreadId()) == 0, isReadAhead);
}

void TstStreamCopy::a_file_that_shrinks_is_copied_up_to_its_end()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("file");
    QFile source(path);
    QVERIFY(source.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    QVERIFY(source.write(content(6 * MiB)) == 6 * MiB && source.seek(0));
    FullBuffer destination;
    qint64 copied = -1;
    const auto shrink = [&path, isShrunk = false](const char *, qint64) mutable {
        if (!isShrunk)
            isShrunk = QFile(path).resize(5 * MiB);
    };
    QVERIFY(copyFile(source, destination, unlimited, &copied, shrink));
    QCOMPARE(copied, qint64(5 * MiB));
    QVERIFY(destination.data() == content(5 * MiB));
}

void TstStreamCopy::reading_ahead_copies_no_more_than_the_limit()
{
    ScriptedFile source(content(8 * MiB));
    FullBuffer destination;
    qint64 copied = -1;
    QString reason;
    QVERIFY(!copyFile(source, destination, 3 * MiB, &copied, nullptr, &reason));
    QCOMPARE(reason, QStringLiteral("there are more than %1 bytes").arg(3 * MiB));
    QVERIFY(copied > 3 * MiB);
    QVERIFY(destination.data() == source.bytes.left(3 * MiB));
}

void TstStreamCopy::failed_writing_stops_reading_ahead()
{
    ScriptedFile source(content(16 * MiB));
    FullBuffer destination(1 * MiB);
    qint64 copied = -1;
    QString reason;
    QVERIFY(!copyFile(source, destination, unlimited, &copied, nullptr, &reason));
    QVERIFY2(reason.startsWith(QStringLiteral("cannot write: ")), qPrintable(reason));
    QCOMPARE(source.readers.load(), 0);
    QVERIFY2(source.given <= 5 * MiB, qPrintable(QString::number(source.given)));
    QVERIFY(destination.data() == source.bytes.left(1 * MiB));
}

void TstStreamCopy::a_failed_read_ahead_is_reported()
{
    ScriptedFile source(content(8 * MiB));
    source.failsAt = 5 * MiB;
    FullBuffer destination;
    qint64 copied = -1;
    QString reason;
    QVERIFY(!copyFile(source, destination, unlimited, &copied, nullptr, &reason));
    QCOMPARE(reason, QStringLiteral("cannot read: worn out"));
    QCOMPARE(copied, qint64(5 * MiB));
    QVERIFY(destination.data() == source.bytes.left(5 * MiB));
}

TEST_MAIN_CORE(TstStreamCopy)
#include "tst_streamcopy.moc"
