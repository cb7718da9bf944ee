// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QFile>
#include <QTest>

#include <malloc.h>
#include <sys/resource.h>

namespace TestSupport {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool costsCount = false;
#else
constexpr bool costsCount = true;
#endif

/// At the beginning of a test function that handles tens of thousands of files or entries, and little else that others
/// do not: under a sanitizer it takes many times as long.
#define SKIP_WHERE_COSTS_DO_NOT_COUNT()                                                                                \
    do {                                                                                                               \
        if (!TestSupport::costsCount)                                                                                  \
            QSKIP("takes too long under a sanitizer");                                                                 \
    } while (false)

/// The process's time and memory since construction. Sanitizers add costs of their own: their builds rely on the test
/// program's time limit instead.
class Costs
{
public:
    Costs()
        : m_time(processorTime())
    {
        if (!costsCount)
            return;
        // Memory freed by earlier operations must not hide new allocations.
        malloc_trim(0);
        QFile reset(QStringLiteral("/proc/self/clear_refs"));
        if (!reset.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || reset.write("5") != 1)
            qFatal("The peak of the memory cannot be reset: %s", qPrintable(reset.errorString()));
        m_memory = kibibytes("VmRSS:");
    }

    void stop()
    {
        seconds = processorTime() - m_time;
        mebibytes = costsCount ? (kibibytes("VmHWM:") - m_memory) / 1024 : 0;
    }

    /// Processor time in user mode: system time (creating 65,000 files, for example) multiplies while other tests
    /// create theirs, and wall-clock time says even less.
    double seconds = 0;
    /// The peak above the memory in use at the start.
    qint64 mebibytes = 0;

private:
    static double processorTime()
    {
        rusage usage;
        getrusage(RUSAGE_SELF, &usage);
        return double(usage.ru_utime.tv_sec) + double(usage.ru_utime.tv_usec) / 1e6;
    }
    static qint64 kibibytes(const QByteArray &key)
    {
        QFile status(QStringLiteral("/proc/self/status"));
        if (!status.open(QIODevice::ReadOnly))
            qFatal("No /proc/self/status");
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith(key))
                return line.mid(key.size()).simplified().split(' ').first().toLongLong();
        }
        qFatal("%s is not told", key.constData());
        return 0;
    }

    double m_time;
    qint64 m_memory = 0;
};

} // namespace TestSupport
