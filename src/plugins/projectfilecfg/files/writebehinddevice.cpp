// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

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
    // One thread, so that blocks are written, and become free, in the order in which they were handed over.
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

/// Queues the current block for writing, waits until the next one is free, and makes that the current block.
void WriteBehindDevice::handOver()
{
    if (block().nSize == 0)
        return;
    // A semaphore, not the future: waitForFinished() may run a task on this thread, concurrently with one on the pool's
    // thread.
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
