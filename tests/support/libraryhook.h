// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <cerrno>
#include <dlfcn.h>

/// For tests that define a function of the C library themselves, so that theirs is called.
namespace TestSupport {

/// The library's own function.
template<typename Function>
Function *original(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

/// Sets `errno`. True if that is an error.
inline bool failsWith(int error)
{
    errno = error;
    return error != 0;
}

} // namespace TestSupport
