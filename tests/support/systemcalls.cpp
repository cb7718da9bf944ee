// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "systemcalls.h"

#include "heldfile.h"
#include "libraryhook.h"

#include <QtGlobal>

#include <cerrno>
#include <cstdarg>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using TestSupport::original;

namespace {

// Files are opened before static construction: an empty function does nothing.
TestSupport::SystemCalls s_calls;

} // namespace

namespace TestSupport {

SystemCalls &systemCalls()
{
    return s_calls;
}

} // namespace TestSupport

// Take precedence over the C library's: Qt opens files with the first, the product's own code with the second.
extern "C" Q_DECL_EXPORT int open64(const char *path, int flags, ...)
{
    static const auto next = original<int(const char *, int, mode_t)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if ((flags & O_ACCMODE) == O_RDONLY)
        TestSupport::HeldFile::waitIfHeld(path);
    const int error = s_calls.onOpen ? s_calls.onOpen(path, flags) : 0;
    if (error != 0) {
        errno = error;
        return -1;
    }
    return next(path, flags, mode);
}
extern "C" Q_DECL_EXPORT int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return open64(path, flags, mode);
}

extern "C" Q_DECL_EXPORT int mkdir(const char *path, mode_t mode) noexcept
{
    static const auto next = original<int(const char *, mode_t)>("mkdir");
    if (s_calls.beforeMkdir)
        s_calls.beforeMkdir(path);
    return next(path, mode);
}

extern "C" Q_DECL_EXPORT int unlink(const char *path) noexcept
{
    static const auto next = original<int(const char *)>("unlink");
    if (s_calls.beforeUnlink)
        s_calls.beforeUnlink(path);
    return next(path);
}
