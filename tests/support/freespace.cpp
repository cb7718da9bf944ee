// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "freespace.h"

#include "libraryhook.h"

#include <QtGlobal>

#include <atomic>

#include <sys/statvfs.h>

namespace {

constexpr qint64 asItIs = -1;
std::atomic<qint64> s_bytes{asItIs};

template<typename Volume>
int withFreeSpace(int result, Volume *volume)
{
    const qint64 bytes = s_bytes;
    if (result == 0 && bytes != asItIs) {
        volume->f_bsize = volume->f_frsize = 1;
        volume->f_bavail = volume->f_bfree = volume->f_blocks = static_cast<fsblkcnt64_t>(bytes);
    }
    return result;
}

} // namespace

// Qt uses the first, the C++ library the second. That is given by its symbol, since with large file support the header
// maps it to the first.
extern "C" Q_DECL_EXPORT int statvfs64(const char *path, struct statvfs64 *volume) noexcept
{
    static const auto function = TestSupport::original<int(const char *, struct statvfs64 *)>("statvfs64");
    return withFreeSpace(function(path, volume), volume);
}
extern "C" Q_DECL_EXPORT int statvfsOfTheLibrary(const char *path, struct statvfs *volume) noexcept __asm__("statvfs");
int statvfsOfTheLibrary(const char *path, struct statvfs *volume) noexcept
{
    static const auto function = TestSupport::original<int(const char *, struct statvfs *)>("statvfs");
    return withFreeSpace(function(path, volume), volume);
}

namespace TestSupport {

FreeSpace::FreeSpace(qint64 bytes)
{
    s_bytes = bytes;
}

FreeSpace::~FreeSpace()
{
    s_bytes = asItIs;
}

} // namespace TestSupport
