// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "freespace.h"

#include <QtGlobal>

#include <atomic>

#include <dlfcn.h>
#include <sys/statvfs.h>

namespace {

constexpr qint64 asItIs = -1;
std::atomic<qint64> s_bytes{asItIs};

} // namespace

// Hooks the C library's function used by Qt.
extern "C" Q_DECL_EXPORT int statvfs64(const char *path, struct statvfs64 *volume) noexcept
{
    using Function = int (*)(const char *, struct statvfs64 *);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "statvfs64"));
    const int result = original(path, volume);
    const qint64 bytes = s_bytes;
    if (result == 0 && bytes != asItIs) {
        volume->f_bsize = volume->f_frsize = 1;
        volume->f_bavail = volume->f_bfree = volume->f_blocks = static_cast<fsblkcnt64_t>(bytes);
    }
    return result;
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
