// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "threadcensus.h"

#include "libraryhook.h"

#include <QtGlobal>

#include <atomic>
#include <pthread.h>

namespace {

std::atomic<int> s_started{0};
std::atomic<int> s_toRefuse{0};

} // namespace

int TestSupport::startedThreads()
{
    return s_started;
}

void TestSupport::refuseThreads(int count)
{
    s_toRefuse = count;
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// Stands before the function of the C library.
extern "C" Q_DECL_EXPORT int pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*begin)(void *),
                                            void *argument) noexcept
{
    static const auto original = TestSupport::original<decltype(pthread_create)>("pthread_create");
    for (int toRefuse = s_toRefuse; toRefuse > 0;) {
        if (s_toRefuse.compare_exchange_weak(toRefuse, toRefuse - 1))
            return EAGAIN;
    }
    ++s_started;
    return original(thread, attributes, begin, argument);
}
#endif
