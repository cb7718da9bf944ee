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

/// Drops the part of the range that lies between `begin` and `end`.
void dropWithin(int handle, const PageCache::Range &range, qint64 begin, qint64 end)
{
    const PageCache::Range part{std::max(range.nBegin, begin), std::min(range.nEnd, end)};
    if (part.nBegin < part.nEnd)
        PageCache::drop(handle, part);
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
    for (const PageCache::Range &range : m_ranges)
        PageCache::drop(m_nHandle, range);
}

void DropBehind::advance(qint64 position)
{
    if (std::abs(position - m_nPosition) < distance)
        return;
    m_nPosition = position;
    // From the beginning each time, which costs nothing: a large page that reaches beyond a range's end stays cached
    // until a range contains all of it.
    for (const PageCache::Range &range : m_ranges) {
        dropWithin(m_nHandle, range, 0, position);
        dropWithin(m_nHandle, range, position + readAhead, range.nEnd);
    }
}

} // namespace Internal
} // namespace ProjectFileCfg
