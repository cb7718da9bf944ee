// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <support/libraryhook.h>

#include <QtGlobal>

#include <functional>
#include <sys/file.h>

namespace RefusedReader {

/// Called when a read lock was refused, before the caller learns of it. On the test's thread only.
inline std::function<void()> s_onRefusal;

} // namespace RefusedReader

// Stands before the function of the C library. So only one source of a program may include this.
extern "C" Q_DECL_EXPORT int flock(int handle, int operation) noexcept
{
    static const auto original = TestSupport::original<int(int, int)>("flock");
    const int result = original(handle, operation);
    const int error = errno;
    if (result != 0 && (operation & LOCK_SH) && RefusedReader::s_onRefusal)
        RefusedReader::s_onRefusal();
    errno = error;
    return result;
}
