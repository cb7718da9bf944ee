// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QIODevice>
#include <QSemaphore>

#include <array>
#include <atomic>
#include <memory>
#include <thread>

class QFileDevice;

namespace ProjectFileCfg {
namespace Internal {

/// A buffered device that writes to a file on its own thread while its owner produces the next bytes: packing spends
/// most of its time in the zip library, and the disk need not wait for that. The device collects the library's small
/// writes in blocks; a header, to which the library seeks back when an entry is complete, is often still in memory. If
/// the system refuses a thread, the owner writes.
///
/// Use it only on the thread that created it.
class WriteBehindDevice : public QIODevice
{
public:
    /// Opens itself, for writing only. `file` is open for writing; nothing else may use it from a write until flush()
    /// returns. `blockSize`, in bytes, is large enough that the owner seldom waits while the file is flushed behind the
    /// writer, and small enough that a large picture fills several blocks.
    explicit WriteBehindDevice(QFileDevice &file, qint64 blockSize = 1024 * 1024);
    /// Waits for pending writes. Bytes that were not flushed may be missing in the file.
    ~WriteBehindDevice() override;

    bool isSequential() const override { return false; }
    qint64 size() const override { return m_nSize; }

    /// Waits until everything is written to the file. False after the first failed write; the file's errorString() is
    /// the reason.
    bool flush();

protected:
    qint64 readData(char *, qint64) override { return -1; }
    /// Accepts all bytes, and waits while no block is free. After a failed write, returns -1 and changes nothing.
    qint64 writeData(const char *data, qint64 size) override;

private:
    struct Block
    {
        std::unique_ptr<char[]> bytes;
        qint64 nPosition = 0;
        qint64 nSize = 0;
    };

    static constexpr int nOthers = 3;

    Block &block() { return m_blocks[m_nCurrent]; }
    void writeToFile(const Block &block);
    void handOver();
    bool ensureThread();
    void writeAll();

    QFileDevice &m_file;
    const qint64 m_nBlockSize;
    std::atomic<bool> m_bFailed{false};
    /// The current one has room for at least one byte; the others are free, being written, or full.
    std::array<Block, 1 + nOthers> m_blocks;
    std::size_t m_nCurrent = 0;
    QSemaphore m_free{nOthers};
    QSemaphore m_full;
    qint64 m_nSize = 0;
    std::thread m_thread;
};

} // namespace Internal
} // namespace ProjectFileCfg
