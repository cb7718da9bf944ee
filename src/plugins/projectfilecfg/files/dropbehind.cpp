// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "dropbehind.h"

#include "filesystem.h"

#include <algorithm>
#include <cstdlib>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr qint64 distance = 8 * 1024 * 1024;
/// More than the system reads ahead: twice 8 MiB on large disks. To drop that would be to read it twice.
constexpr qint64 readAhead = 32 * 1024 * 1024;

} // namespace

DropBehind::DropBehind(int handle)
    : m_nHandle(handle)
{
    const qint64 size = FileSystem::size(handle);
    if (size < PageCache::smallFileSize)
        return;
    m_ranges = PageCache::uncachedRanges(handle, size);
    PageCache::expectSequentialReads(handle);
}

DropBehind::~DropBehind()
{
    for (const PageCache::Range &range : m_ranges)
        PageCache::drop(m_nHandle, range);
}

void DropBehind::advance(qint64 position)
{
    if (std::abs(position - m_nPosition) < distance)
        return;
    // Begins before the last position: a large page that reached beyond it was kept.
    dropBetween(std::min(m_nPosition, position) - distance, position);
    if (position < m_nPosition)
        dropBetween(position + readAhead, m_nPosition + readAhead + distance);
    m_nPosition = position;
}

/// Looks only at the ranges there: there may be thousands, if others have read parts of the file.
void DropBehind::dropBetween(qint64 begin, qint64 end)
{
    const auto isBefore = [](const PageCache::Range &range, qint64 position) { return range.nEnd <= position; };
    for (auto range = std::lower_bound(m_ranges.begin(), m_ranges.end(), begin, isBefore);
         range != m_ranges.end() && range->nBegin < end; ++range)
        PageCache::drop(m_nHandle, {std::max(range->nBegin, begin), std::min(range->nEnd, end)});
}

} // namespace Internal
} // namespace ProjectFileCfg
