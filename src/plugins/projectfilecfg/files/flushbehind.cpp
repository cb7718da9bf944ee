// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "flushbehind.h"

#include "filesystem.h"
#include "pagecache.h"

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

FlushBehind::FlushBehind(Begin begin, qint64 distance)
    : m_begin(begin)
    , m_nDistance(distance)
{}

FlushBehind::~FlushBehind()
{
    for (const Finished &file : m_finished)
        FileSystem::close(file.nHandle);
}

bool FlushBehind::wrote(int handle, qint64 size)
{
    m_nWritten += size;
    if (m_nWritten < m_nDistance / 4)
        return true;
    m_nWritten = 0;
    // From the beginning, since the zip library goes back to complete its headers. What is on the disk already costs
    // nothing.
    const PageCache::Range behind{0, FileSystem::size(handle) - m_nDistance};
    if (m_begin == Begin::AtOnce || behind.nEnd > 0)
        PageCache::beginWriting(handle);
    if (behind.nEnd <= 0)
        return true;
    const bool isWritten = PageCache::finishWriting(handle, behind);
    PageCache::drop(handle, behind);
    return isWritten;
}

bool FlushBehind::finish(int handle)
{
    m_nWritten = 0;
    const qint64 size = std::min(FileSystem::size(handle), m_nDistance);
    const int kept = size < PageCache::smallFileSize ? -1 : FileSystem::duplicate(handle);
    if (kept < 0)
        return true;
    m_nFinishedSize += size;
    if (m_nFinishedSize > m_nDistance / 2)
        beginWritingFinished();
    m_finished.push_back({kept, size, false});
    bool isWritten = true;
    if (m_nFinishedSize > m_nDistance) {
        while (m_nFinishedSize > m_nDistance / 2)
            isWritten = settleOldest() && isWritten;
    }
    return isWritten;
}

/// Called half a distance before the first of them is waited for, so that the disk is done by then; and when the next
/// file is complete, since each may be removed before.
void FlushBehind::beginWritingFinished()
{
    for (Finished &file : m_finished) {
        if (!file.bBegun && !FileSystem::isRemoved(file.nHandle))
            PageCache::beginWriting(file.nHandle);
        file.bBegun = true;
    }
}

bool FlushBehind::settleOldest()
{
    const Finished oldest = m_finished.front();
    m_finished.pop_front();
    m_nFinishedSize -= oldest.nSize;
    const bool isWritten =
        FileSystem::isRemoved(oldest.nHandle) || PageCache::finishWriting(oldest.nHandle, PageCache::Range());
    PageCache::drop(oldest.nHandle, PageCache::Range());
    FileSystem::close(oldest.nHandle);
    return isWritten;
}

} // namespace Internal
} // namespace ProjectFileCfg
