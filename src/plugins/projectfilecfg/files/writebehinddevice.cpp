#include "writebehinddevice.h"

#include <QFileDevice>
#include <QtConcurrentRun>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

WriteBehindDevice::WriteBehindDevice(QFileDevice &file, qint64 blockSize)
    : m_file(file)
    , m_nBlockSize(blockSize)
{
    // One thread takes the blocks in the order in which they come, so that the one after the current one is free first.
    m_pool.setMaxThreadCount(1);
    for (Block &block : m_blocks)
        block.bytes.reset(new char[std::size_t(m_nBlockSize)]);
    QIODevice::open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

WriteBehindDevice::~WriteBehindDevice()
{
    m_pool.waitForDone();
}

void WriteBehindDevice::writeToFile(const Block &block)
{
    if (!m_bFailed && (!m_file.seek(block.nPosition) || m_file.write(block.bytes.get(), block.nSize) != block.nSize))
        m_bFailed = true;
}

/// The current block is empty afterwards.
void WriteBehindDevice::handOver()
{
    if (block().nSize == 0)
        return;
    // Nobody waits for the task itself: who does takes it over where it has not begun, and would write beside the
    // thread of the pool.
    QtConcurrent::run(&m_pool, [this, &full = block()] {
        writeToFile(full);
        m_free.release();
    });
    m_free.acquire();
    m_nCurrent = (m_nCurrent + 1) % m_blocks.size();
    block().nSize = 0;
}

bool WriteBehindDevice::flush()
{
    m_pool.waitForDone();
    if (block().nSize > 0)
        writeToFile(block());
    block().nSize = 0;
    if (!m_bFailed && !m_file.flush())
        m_bFailed = true;
    return !m_bFailed;
}

// Where a portion goes is found anew from the device's position, whatever was called before.
qint64 WriteBehindDevice::writeData(const char *data, qint64 size)
{
    if (m_bFailed)
        return -1;
    for (qint64 taken = 0; taken < size;) {
        const qint64 position = pos() + taken;
        if (position < block().nPosition || position > block().nPosition + block().nSize)
            handOver();
        if (block().nSize == 0)
            block().nPosition = position;
        const qint64 offset = position - block().nPosition;
        const qint64 portion = std::min(size - taken, m_nBlockSize - offset);
        std::copy_n(data + taken, portion, block().bytes.get() + offset);
        block().nSize = std::max(block().nSize, offset + portion);
        taken += portion;
        m_nSize = std::max(m_nSize, position + portion);
        if (block().nSize == m_nBlockSize)
            handOver();
    }
    return size;
}

} // namespace Internal
} // namespace ProjectFileCfg
