// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QBuffer>
#include <QTemporaryFile>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <limits>
#include <set>

namespace StreamTesting {

constexpr int KiB = 1024;
constexpr int MiB = 1024 * KiB;
constexpr qint64 unlimited = std::numeric_limits<qint64>::max();

/// Bytes of which no two blocks are alike.
inline QByteArray content(int size)
{
    static const QByteArray longest = [] {
        QByteArray bytes;
        for (int line = 0; bytes.size() < 16 * MiB; ++line)
            bytes += QByteArray::number(line) + '\n';
        return bytes;
    }();
    return longest.left(size);
}

/// An open file whose bytes are in memory. It can be slow or fail, and records how it is read.
class ScriptedFile : public QTemporaryFile
{
public:
    explicit ScriptedFile(const QByteArray &content)
        : bytes(content)
    {
        QTemporaryFile::open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    }

    qint64 size() const override { return bytes.size(); }

    QByteArray bytes;
    int atOnce = std::numeric_limits<int>::max();
    /// The first read at or beyond this byte fails, later ones do not.
    qint64 failsAt = unlimited;
    int hesitation = 0;
    int pauseMs = 0;
    std::atomic<qint64> given{0};
    std::atomic<int> reads{0};
    std::atomic<int> readers{0};
    std::atomic<bool> isReadAtOnceByTwo{false};
    // To look at when no other thread reads any more.
    std::set<Qt::HANDLE> threads;
    qint64 largestRequest = 0;

protected:
    qint64 readData(char *data, qint64 size) override
    {
        if (++readers > 1)
            isReadAtOnceByTwo = true;
        ++reads;
        threads.insert(QThread::currentThreadId());
        largestRequest = std::max(largestRequest, size);
        for (int turn = 0; turn < hesitation; ++turn)
            QThread::yieldCurrentThread();
        QThread::msleep(ulong(pauseMs));
        const qint64 count = take(data, size);
        --readers;
        return count;
    }

private:
    qint64 take(char *data, qint64 size)
    {
        if (given >= failsAt) {
            failsAt = unlimited;
            setErrorString(QStringLiteral("worn out"));
            return -1;
        }
        const qint64 count = std::min<qint64>({size, atOnce, bytes.size() - given});
        std::copy_n(bytes.constData() + given, count, data);
        given += count;
        return count;
    }
};

/// Takes a number of bytes, then refuses.
class FullBuffer : public QBuffer
{
public:
    explicit FullBuffer(qint64 room = unlimited)
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
    const qint64 m_room;
};

} // namespace StreamTesting
