// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "threadcensus.h"

#include <QtGlobal>

#include <atomic>
#include <dlfcn.h>
#include <pthread.h>

namespace {

std::atomic<int> s_started{0};

} // namespace

int TestSupport::startedThreads()
{
    return s_started;
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// Stands before the function of the C library. Weak, since a test may have its own, which refuses.
extern "C" Q_DECL_EXPORT __attribute__((weak)) int pthread_create(pthread_t *thread, const pthread_attr_t *attributes,
                                                                  void *(*start)(void *), void *argument) noexcept
{
    static const auto original =
        reinterpret_cast<int (*)(pthread_t *, const pthread_attr_t *, void *(*)(void *), void *)>(
            dlsym(RTLD_NEXT, "pthread_create"));
    ++s_started;
    return original(thread, attributes, start, argument);
}
#endif
