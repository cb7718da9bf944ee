// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace TestSupport {

/// While it exists, leaks of this thread are not reported if they are expected, which means a library's.
class LeaksOfLibrary
{
public:
    explicit LeaksOfLibrary(bool areExpected)
        : m_areExpected(areExpected)
    {
#if defined(__SANITIZE_ADDRESS__)
        if (m_areExpected)
            __lsan_disable();
#endif
    }
    ~LeaksOfLibrary()
    {
#if defined(__SANITIZE_ADDRESS__)
        if (m_areExpected)
            __lsan_enable();
#endif
    }
    Q_DISABLE_COPY(LeaksOfLibrary)

private:
    [[maybe_unused]] const bool m_areExpected;
};

} // namespace TestSupport
