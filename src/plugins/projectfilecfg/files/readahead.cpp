// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "readahead.h"

#include <QFile>

#include <system_error>

namespace ProjectFileCfg {
namespace Internal {

ReadAhead::ReadAhead(QFile &file, qint64 blockSize)
    : m_file(file)
    , m_dropBehind(file.handle())
    , m_nBlockSize(blockSize)
{
    for (Block &block : m_blocks)
        block.bytes.reset(new char[std::size_t(m_nBlockSize)]);
    // As if it had been returned: next() goes on to the first block.
    current().nSize = 1;
    try {
        // Not a QThread or QThreadPool: neither reports that the system refused a thread.
        m_thread = std::thread(&ReadAhead::readAll, this);
    } catch (const std::system_error &) {
    }
}

ReadAhead::~ReadAhead()
{
    if (!m_thread.joinable())
        return;
    m_bStopped = true;
    m_free.release();
    m_thread.join();
}

void ReadAhead::readInto(Block &block)
{
    block.nSize = m_file.read(block.bytes.get(), m_nBlockSize);
    m_dropBehind.advance(m_file.pos());
}

void ReadAhead::readAll()
{
    for (std::size_t next = 0;; next = (next + 1) % m_blocks.size()) {
        m_free.acquire();
        if (m_bStopped)
            return;
        readInto(m_blocks[next]);
        const bool isLast = m_blocks[next].nSize <= 0;
        m_ready.release();
        if (isLast)
            return;
    }
}

ReadAhead::Portion ReadAhead::next()
{
    if (current().nSize > 0) {
        m_nCurrent = (m_nCurrent + 1) % m_blocks.size();
        if (m_thread.joinable()) {
            m_free.release();
            m_ready.acquire();
        } else {
            readInto(current());
        }
    }
    return {current().bytes.get(), current().nSize};
}

} // namespace Internal
} // namespace ProjectFileCfg
