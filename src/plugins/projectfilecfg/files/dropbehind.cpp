// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "dropbehind.h"

#include "filesystem.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr qint64 distance = 8 * 1024 * 1024;
/// More than the system reads ahead: twice 8 MiB on large disks. To drop that would be to read it twice.
constexpr qint64 readAhead = 32 * 1024 * 1024;
/// At least the system's largest page.
constexpr qint64 largestPage = distance / 2;

bool isBefore(const PageCache::Range &range, qint64 position)
{
    return range.nEnd <= position;
}

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
    if (!m_ranges.empty())
        dropBetween(-largestPage, m_ranges.back().nEnd + largestPage);
}

void DropBehind::advance(qint64 position)
{
    if (std::abs(position - m_nPosition) < distance)
        return;
    // Begins before the last position: a large page that reached beyond it was kept.
    dropBetween(std::min(m_nPosition, position) - distance, position);
    dropBetween(position + readAhead, m_nPosition + readAhead + distance);
    m_nPosition = position;
}

/// Looks only at the ranges there: there may be thousands, if others have read parts of the file.
void DropBehind::dropBetween(qint64 begin, qint64 end)
{
    for (auto range = std::lower_bound(m_ranges.begin(), m_ranges.end(), begin, isBefore);
         range != m_ranges.end() && range->nBegin < end; ++range)
        PageCache::drop(m_nHandle, {std::max(range->nBegin, begin), std::min(range->nEnd, end)});
    forgetReplaced(begin, end - largestPage);
}

/// What was cached at the beginning may have been dropped by the system since, and read anew: then it is part of a
/// large page, which also covers what was not cached, and is kept as a whole. A scan reads 64 KiB of every 10 MiB, so
/// that 2 MiB of every 10 MiB would stay.
void DropBehind::forgetReplaced(qint64 begin, qint64 end)
{
    auto range = std::lower_bound(m_ranges.begin(), m_ranges.end(), begin, isBefore);
    while (range != m_ranges.end() && std::next(range) != m_ranges.end() && std::next(range)->nBegin < end) {
        const auto next = std::next(range);
        if (next->nBegin - range->nEnd < largestPage &&
            (PageCache::isCached(m_nHandle, range->nEnd - 1) || PageCache::isCached(m_nHandle, next->nBegin))) {
            PageCache::drop(m_nHandle, {std::max(range->nBegin, range->nEnd - largestPage),
                                        std::min(next->nEnd, next->nBegin + largestPage)});
            range->nEnd = next->nEnd;
            m_ranges.erase(next);
        } else {
            ++range;
        }
    }
}

} // namespace Internal
} // namespace ProjectFileCfg
