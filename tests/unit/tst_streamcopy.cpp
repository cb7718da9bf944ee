// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "streamcopy.h"

#include <support/testmain.h>

#include <QBuffer>

#include <algorithm>
#include <limits>

using namespace ProjectFileCfg::Internal;

namespace {

constexpr int KiB = 1024;
constexpr qint64 unlimited = std::numeric_limits<qint64>::max();

/// Bytes of which no two blocks are alike.
QByteArray content(int size)
{
    static const QByteArray longest = [] {
        QByteArray bytes;
        for (int line = 0; bytes.size() < 1500 * KiB; ++line)
            bytes += QByteArray::number(line) + '\n';
        return bytes;
    }();
    return longest.left(size);
}

/// A source that returns at most `atOnce` bytes, fails at a given place, and records the largest request.
class Source : public QIODevice
{
public:
    explicit Source(const QByteArray &bytes, int atOnce = std::numeric_limits<int>::max(), int failsAt = -1)
        : m_bytes(bytes)
        , m_atOnce(atOnce)
        , m_failsAt(failsAt)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }
    qint64 largestRequest() const { return m_largestRequest; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        m_largestRequest = std::max(m_largestRequest, size);
        if (m_failsAt >= 0 && m_read >= m_failsAt) {
            setErrorString(QStringLiteral("worn out"));
            return -1;
        }
        const int count = int(std::min<qint64>({size, m_atOnce, m_bytes.size() - m_read}));
        std::copy_n(m_bytes.constData() + m_read, count, data);
        m_read += count;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const QByteArray m_bytes;
    const int m_atOnce;
    const int m_failsAt;
    int m_read = 0;
    qint64 m_largestRequest = 0;
};

/// Takes a number of bytes, then refuses.
class FullDisk : public QBuffer
{
public:
    explicit FullDisk(int room)
        : m_room(room)
    {
        open(QIODevice::WriteOnly);
    }

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        if (pos() + size <= m_room)
            return QBuffer::writeData(data, size);
        setErrorString(QStringLiteral("no room"));
        return -1;
    }

private:
    const int m_room;
};

} // namespace

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
    Source source(content(size), atOnce);
    QBuffer destination;
    destination.open(QIODevice::WriteOnly);
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
    Source source(content(size), atOnce);
    QBuffer destination;
    destination.open(QIODevice::WriteOnly);
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
    Source source(content(900 * KiB));
    QBuffer destination;
    destination.open(QIODevice::WriteOnly);
    qint64 copied = -1;
    QVERIFY(!copyStream(source, destination, 10, &copied));
    QCOMPARE(source.largestRequest(), qint64(11));
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
    Source source(content(900 * KiB));
    QBuffer destination;
    destination.open(QIODevice::WriteOnly);
    qint64 copied = -1;
    QVERIFY(!copyStream(source, destination, limit, &copied));
    QCOMPARE(source.largestRequest(), qint64(1));
    QVERIFY(destination.data().isEmpty());
}

void TstStreamCopy::memory_is_bounded_without_a_limit()
{
    Source source(content(900 * KiB));
    QBuffer destination;
    destination.open(QIODevice::WriteOnly);
    qint64 copied = -1;
    QVERIFY(copyStream(source, destination, unlimited, &copied));
    QCOMPARE(source.largestRequest(), qint64(256 * KiB));
}

void TstStreamCopy::each_portion_is_shown()
{
    Source source(content(700 * KiB), 7 * KiB);
    QBuffer destination;
    destination.open(QIODevice::WriteOnly);
    qint64 copied = -1;
    QByteArray shown;
    const auto look = [&shown](const char *data, qint64 size) { shown.append(data, int(size)); };
    QVERIFY(copyStream(source, destination, unlimited, &copied, look));
    QCOMPARE(shown, content(700 * KiB));
}

void TstStreamCopy::failed_reading_is_reported()
{
    Source source(content(700 * KiB), 300 * KiB, 512 * KiB);
    QBuffer destination;
    destination.open(QIODevice::WriteOnly);
    qint64 copied = -1;
    QString reason;
    QVERIFY(!copyStream(source, destination, unlimited, &copied, nullptr, &reason));
    QCOMPARE(reason, QStringLiteral("cannot read: worn out"));
    QCOMPARE(copied, qint64(512 * KiB));
}

void TstStreamCopy::failed_writing_is_reported()
{
    Source source(content(700 * KiB));
    FullDisk destination(300 * KiB);
    qint64 copied = -1;
    QString reason;
    QVERIFY(!copyStream(source, destination, unlimited, &copied, nullptr, &reason));
    QVERIFY2(reason.startsWith(QStringLiteral("cannot write: ")), qPrintable(reason));
    QCOMPARE(destination.data(), content(700 * KiB).left(256 * KiB));
}

TEST_MAIN_CORE(TstStreamCopy)
#include "tst_streamcopy.moc"
