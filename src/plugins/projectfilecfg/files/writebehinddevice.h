#pragma once

#include <QIODevice>
#include <QSemaphore>
#include <QThreadPool>

#include <array>
#include <atomic>
#include <memory>

class QFileDevice;

namespace ProjectFileCfg {
namespace Internal {

/// What is written to it goes to a file on a thread of its own, while its owner makes what comes next: the zip library
/// works longest on what it packs, and the disk need not wait for that. It gathers what the library writes in small
/// portions, so that a header, to which the library steps back when an entry is complete, is often still in memory.
///
/// All operations on the thread that made it.
class WriteBehindDevice : public QIODevice
{
public:
    /// Open from the beginning, for writing only. `file` is open for writing, and until flush() returns, and again from
    /// the next write on, nobody else may touch it. `blockSize`, in bytes: large enough that handing over does not
    /// count, small enough that a picture is worth it.
    explicit WriteBehindDevice(QFileDevice &file, qint64 blockSize = 256 * 1024);
    /// Waits for what is being written. What was not flushed may be missing in the file.
    ~WriteBehindDevice() override;

    bool isSequential() const override { return false; }
    qint64 size() const override { return m_nSize; }

    /// Waits until the file has everything. False for ever once the file did not take something.
    bool flush();

protected:
    qint64 readData(char *, qint64) override { return -1; }
    /// Takes all of it, and waits while four blocks are under way; or, once the file did not take something, -1 and
    /// nothing is changed.
    qint64 writeData(const char *data, qint64 size) override;

private:
    struct Block
    {
        std::unique_ptr<char[]> bytes;
        qint64 position = 0;
        qint64 size = 0;
    };

    Block &block() { return m_blocks[m_nCurrent]; }
    void writeToFile(const Block &block);
    void handOver();

    QFileDevice &m_file;
    const qint64 m_nBlockSize;
    std::atomic<bool> m_bFailed{false};
    /// One is being filled and has room for at least a byte; the others are on their way or free.
    std::array<Block, 4> m_blocks;
    std::size_t m_nCurrent = 0;
    QSemaphore m_free{int(m_blocks.size()) - 1};
    qint64 m_nSize = 0;
    QThreadPool m_pool;
};

} // namespace Internal
} // namespace ProjectFileCfg
