#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QSemaphore>
#include <QThreadPool>

#include <array>
#include <atomic>

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
    /// the next write on, nobody else may touch it.
    explicit WriteBehindDevice(QFileDevice &file);
    /// Waits for what is being written. What was not flushed may be missing in the file.
    ~WriteBehindDevice() override;

    bool isSequential() const override;
    qint64 size() const override;
    bool seek(qint64 position) override;

    /// Waits until the file has everything. False when it did not take all of it, now or before.
    bool flush();

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    /// Waits while a mebibyte is on its way. -1 once it is known that the file did not take something.
    qint64 writeData(const char *data, qint64 size) override;

private:
    struct Block
    {
        qint64 position = 0;
        QByteArray bytes;
    };

    Block &block() { return m_blocks[m_nCurrent]; }
    void writeToFile(const Block &block);
    void beginBlock(qint64 position);

    QFileDevice &m_file;
    std::atomic<bool> m_bFailed{false};
    /// One is being filled, the others are on their way or free.
    std::array<Block, 4> m_blocks;
    std::size_t m_nCurrent = 0;
    QSemaphore m_free{int(m_blocks.size()) - 1};
    qint64 m_nSize = 0;
    QThreadPool m_pool;
};

} // namespace Internal
} // namespace ProjectFileCfg
