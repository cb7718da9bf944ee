// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "dropbehind.h"

#include <QSemaphore>

#include <array>
#include <atomic>
#include <memory>
#include <thread>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// Reads a file once, ahead of its owner and on its own thread, so that the zip library need not wait for the file
/// system. If the system refuses a thread, the owner reads. Leaves nothing in the page cache that was not there before
/// (see DropBehind).
///
/// Use it only on the thread that created it.
class ReadAhead
{
public:
    /// What next() returns.
    struct Portion
    {
        const char *pData;
        /// In bytes; 0 at the end of the file, -1 if reading failed.
        qint64 nSize;
    };

    /// Begins at the position of `file`, which is open for reading. Nothing else may use it while this object lives,
    /// except for its errorString() after a failed read. `blockSize`, in bytes, is the size of a full portion; four
    /// blocks are in memory.
    explicit ReadAhead(QFile &file, qint64 blockSize = 1024 * 1024);
    /// Stops after the block that is being read. Leaves the file at an undefined position.
    ~ReadAhead();

    /// Waits for the next portion, whose data is valid until the next call. After the end or a failed read, reads
    /// nothing more and returns the same again.
    Portion next();

private:
    Q_DISABLE_COPY(ReadAhead)

    struct Block
    {
        std::unique_ptr<char[]> bytes;
        qint64 nSize = 0;
    };

    Block &current() { return m_blocks[m_nCurrent]; }
    void readInto(Block &block);
    void readAll();

    QFile &m_file;
    DropBehind m_dropBehind;
    const qint64 m_nBlockSize;
    /// The current one is its owner's; the others are free, being read into, or ready.
    std::array<Block, 4> m_blocks;
    std::size_t m_nCurrent = m_blocks.size() - 1;
    QSemaphore m_free{int(m_blocks.size()) - 1};
    QSemaphore m_ready;
    std::atomic<bool> m_bStopped{false};
    std::thread m_thread;
};

} // namespace Internal
} // namespace ProjectFileCfg
