#include "pagecache.h"

#ifdef Q_OS_LINUX
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <vector>
#endif

namespace Corvelpro {

#ifdef Q_OS_LINUX

namespace {

bool isPartInMemory(int handle, qint64 offset, qint64 size)
{
    void *part = mmap(nullptr, size_t(size), PROT_READ, MAP_SHARED, handle, offset);
    if (part == MAP_FAILED)
        return true;
    std::vector<unsigned char> pages(size_t(size / sysconf(_SC_PAGESIZE) + 1));
    const bool isKnown = mincore(part, size_t(size), pages.data()) == 0;
    munmap(part, size_t(size));
    constexpr unsigned char resident = 1;
    return !isKnown ||
           std::any_of(pages.begin(), pages.end(), [](unsigned char page) { return (page & resident) != 0; });
}

bool isInMemory(int handle, qint64 size)
{
    constexpr qint64 portion = 256 * 1024 * 1024;
    for (qint64 offset = 0; offset < size; offset += portion) {
        if (isPartInMemory(handle, offset, std::min(portion, size - offset)))
            return true;
    }
    return false;
}

} // namespace

bool dropFromMemory(int handle, qint64 size)
{
    // The system keeps a page that is in use at this moment.
    constexpr int attempts = 3;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (posix_fadvise(handle, 0, 0, POSIX_FADV_DONTNEED) == 0 && !isInMemory(handle, size))
            return true;
    }
    return false;
}

#else

bool dropFromMemory(int, qint64)
{
    return false;
}

#endif

} // namespace Corvelpro
