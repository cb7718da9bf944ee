// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "writebehinddevice.h"

#include <QFileDevice>

#include <algorithm>
#include <system_error>

namespace ProjectFileCfg {
namespace Internal {

WriteBehindDevice::WriteBehindDevice(QFileDevice &file, qint64 blockSize)
    : m_file(file)
    , m_nBlockSize(blockSize)
{
    for (Block &block : m_blocks)
        block.bytes.reset(new char[std::size_t(m_nBlockSize)]);
    QIODevice::open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

WriteBehindDevice::~WriteBehindDevice()
{
    if (!m_thread.joinable())
        return;
    block().nSize = 0;
    m_full.release();
    m_thread.join();
}

void WriteBehindDevice::writeToFile(const Block &block)
{
    if (!m_bFailed && (!m_file.seek(block.nPosition) || m_file.write(block.bytes.get(), block.nSize) != block.nSize))
        m_bFailed = true;
}

/// Starts the thread with the first block that is handed over, since a small package needs none. False if the system
/// refuses it.
bool WriteBehindDevice::ensureThread()
{
    if (m_thread.joinable())
        return true;
    try {
        // Not a QThreadPool, which does not report that the system refused a thread.
        m_thread = std::thread(&WriteBehindDevice::writeAll, this);
        return true;
    } catch (const std::system_error &) {
        return false;
    }
}

/// Writes the blocks in the order in which they are handed over. An empty one is the last.
void WriteBehindDevice::writeAll()
{
    for (std::size_t next = 0;; next = (next + 1) % m_blocks.size()) {
        m_full.acquire();
        if (m_blocks[next].nSize == 0)
            return;
        writeToFile(m_blocks[next]);
        m_free.release();
    }
}

/// Queues the current block for writing, waits until the next one is free, and makes that the current block.
void WriteBehindDevice::handOver()
{
    if (block().nSize == 0)
        return;
    if (ensureThread()) {
        m_full.release();
        m_free.acquire();
        m_nCurrent = (m_nCurrent + 1) % m_blocks.size();
    } else {
        writeToFile(block());
    }
    block().nSize = 0;
}

bool WriteBehindDevice::flush()
{
    m_free.acquire(nOthers);
    m_free.release(nOthers);
    if (block().nSize > 0)
        writeToFile(block());
    block().nSize = 0;
    if (!m_bFailed && !m_file.flush())
        m_bFailed = true;
    return !m_bFailed;
}

// Derives the place of each portion from pos(), so that seek() needs no override.
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
