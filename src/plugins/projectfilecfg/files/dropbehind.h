// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "pagecache.h"

namespace ProjectFileCfg {
namespace Internal {

/// Reads a large file without filling the page cache with it: what was not cached before is dropped again behind the
/// reader, what was cached stays. A package is read once, and other programs need the memory. Not thread-safe.
class DropBehind
{
public:
    /// Finds out which pages are cached. The file is open for reading, and stays open while this object lives. Does
    /// nothing for a small file (see PageCache).
    explicit DropBehind(int handle);
    /// Drops what is left.
    ~DropBehind();

    /// To call after each read of at most 8 MiB, with the position behind it. Positions may go back and forth. Up to 8
    /// MiB of what was read stay cached for the time being, and up to 32 MiB of what the system has read ahead.
    void advance(qint64 position);

private:
    Q_DISABLE_COPY(DropBehind)

    void dropBetween(qint64 begin, qint64 end);

    const int m_nHandle;
    /// What was not cached at the beginning.
    std::vector<PageCache::Range> m_ranges;
    qint64 m_nPosition = 0;
};

} // namespace Internal
} // namespace ProjectFileCfg
