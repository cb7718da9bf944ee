// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "pagecache.h"

#ifdef Q_OS_LINUX
#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace ProjectFileCfg {
namespace Internal {
namespace PageCache {

#ifdef Q_OS_LINUX

namespace {

constexpr qint64 granularity = 64 * 1024;

/// To the system, a length of 0 reaches to the end of the file.
bool isEmpty(const Range &range)
{
    return range.nEnd != 0 && range.nEnd <= range.nBegin;
}

/// In bytes, 0 for up to the end of the file.
qint64 length(const Range &range)
{
    return range.nEnd == 0 ? 0 : range.nEnd - range.nBegin;
}

/// One byte for each page of the range, its lowest bit set if the page is cached. Empty if the system does not tell.
std::vector<unsigned char> cachedPages(int handle, const Range &range)
{
    const auto size = size_t(range.nEnd - range.nBegin);
    const auto pageSize = size_t(sysconf(_SC_PAGESIZE));
    void *const mapped = mmap(nullptr, size, PROT_READ, MAP_SHARED, handle, range.nBegin);
    if (mapped == MAP_FAILED)
        return {};
    std::vector<unsigned char> pages((size + pageSize - 1) / pageSize);
    if (mincore(mapped, size, pages.data()) != 0)
        pages.clear();
    munmap(mapped, size);
    return pages;
}

} // namespace

std::vector<Range> uncachedRanges(int handle, qint64 size)
{
    // A multiple of the granularity, and that of any page size.
    constexpr qint64 portion = 64 * 1024 * 1024;
    const auto pageSize = qint64(sysconf(_SC_PAGESIZE));
    const qint64 step = std::max(granularity, pageSize);
    std::vector<Range> found;
    for (qint64 offset = 0; offset < size; offset += portion) {
        const Range part{offset, std::min(offset + portion, size)};
        const std::vector<unsigned char> pages = cachedPages(handle, part);
        if (pages.empty())
            return {};
        for (qint64 begin = part.nBegin; begin < part.nEnd; begin += step) {
            const qint64 end = std::min(begin + step, part.nEnd);
            const auto first = pages.begin() + (begin - offset) / pageSize;
            const auto last = pages.begin() + (end - offset + pageSize - 1) / pageSize;
            if (std::any_of(first, last, [](unsigned char page) { return (page & 1) != 0; }))
                continue;
            if (!found.empty() && found.back().nEnd == begin)
                found.back().nEnd = end;
            else
                found.push_back({begin, end});
        }
    }
    return found;
}

void expectSequentialReads(int handle)
{
    posix_fadvise(handle, 0, 0, POSIX_FADV_SEQUENTIAL);
}

void drop(int handle, const Range &range)
{
    if (!isEmpty(range))
        posix_fadvise(handle, range.nBegin, length(range), POSIX_FADV_DONTNEED);
}

void beginWriting(int handle)
{
    // The system skips pages that it is writing already.
    sync_file_range(handle, 0, 0, SYNC_FILE_RANGE_WRITE);
}

bool finishWriting(int handle, const Range &range)
{
    constexpr unsigned int wait = SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    return isEmpty(range) || sync_file_range(handle, range.nBegin, length(range), wait) == 0 ||
           (errno != EIO && errno != ENOSPC && errno != EDQUOT);
}

#else

std::vector<Range> uncachedRanges(int, qint64)
{
    return {};
}

void expectSequentialReads(int) {}

void drop(int, const Range &) {}

void beginWriting(int) {}

bool finishWriting(int, const Range &)
{
    return true;
}

#endif

} // namespace PageCache
} // namespace Internal
} // namespace ProjectFileCfg
