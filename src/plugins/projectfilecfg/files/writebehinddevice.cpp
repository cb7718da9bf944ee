#include "writebehinddevice.h"

#include <QFileDevice>
#include <QtConcurrentRun>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

/// Large enough that handing over does not count, small enough that a picture is worth it.
static const int blockSize = 256 * 1024;

WriteBehindDevice::WriteBehindDevice(QFileDevice &file)
    : m_file(file)
{
    // One thread takes the blocks in the order in which they come.
    m_pool.setMaxThreadCount(1);
    constexpr int largestPortion = 64 * 1024;
    for (Block &block : m_blocks)
        block.bytes.reserve(blockSize + largestPortion);
    QIODevice::open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

WriteBehindDevice::~WriteBehindDevice()
{
    m_pool.waitForDone();
}

bool WriteBehindDevice::isSequential() const
{
    return false;
}

qint64 WriteBehindDevice::size() const
{
    return m_nSize;
}

bool WriteBehindDevice::seek(qint64 position)
{
    if (position < block().position || position > block().position + block().bytes.size())
        beginBlock(position);
    return QIODevice::seek(position);
}

void WriteBehindDevice::writeToFile(const Block &block)
{
    if (!m_file.seek(block.position) || m_file.write(block.bytes) != block.bytes.size())
        m_bFailed = true;
}

void WriteBehindDevice::beginBlock(qint64 position)
{
    if (!block().bytes.isEmpty()) {
        // Nobody waits for the task itself: who does takes it over where it has not begun, and would write beside the
        // thread of the pool.
        QtConcurrent::run(&m_pool, [this, &full = block()] {
            writeToFile(full);
            m_free.release();
        });
        m_free.acquire();
        m_nCurrent = (m_nCurrent + 1) % m_blocks.size();
        block().bytes.resize(0);
    }
    block().position = position;
}

bool WriteBehindDevice::flush()
{
    m_pool.waitForDone();
    if (!block().bytes.isEmpty())
        writeToFile(block());
    block().bytes.resize(0);
    block().position = pos();
    return !m_bFailed && m_file.flush();
}

qint64 WriteBehindDevice::readData(char *, qint64)
{
    return -1;
}

qint64 WriteBehindDevice::writeData(const char *data, qint64 size)
{
    block().bytes.replace(int(pos() - block().position), int(size), data, int(size));
    m_nSize = std::max(m_nSize, pos() + size);
    if (block().bytes.size() >= blockSize)
        beginBlock(pos() + size);
    return m_bFailed ? -1 : size;
}

} // namespace Internal
} // namespace ProjectFileCfg
