// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QDebug>
#include <QFile>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

/// What the fuzzers share.
namespace Fuzzing {

/// Aborts if the invariant does not hold, which the fuzzer reports as a finding.
#define FUZZ_VERIFY(condition)                                                                                         \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition);                        \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)

/// An in-memory file and the path under which the product opens it.
class MemoryFile
{
public:
    MemoryFile()
        : m_handle(memfd_create("fuzz", MFD_CLOEXEC))
    {
        FUZZ_VERIFY(m_handle >= 0);
    }
    ~MemoryFile() { close(m_handle); }
    Q_DISABLE_COPY(MemoryFile)

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_handle); }

    void setContent(const void *bytes, std::size_t size)
    {
        FUZZ_VERIFY(ftruncate(m_handle, 0) == 0);
        FUZZ_VERIFY(pwrite(m_handle, bytes, size, 0) == ssize_t(size));
    }

private:
    const int m_handle;
};

/// The product's log is discarded: it would drown everything else.
inline void beQuiet()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type == QtFatalMsg) {
            std::fprintf(stderr, "%s\n", qPrintable(text));
            std::abort();
        }
    });
}

} // namespace Fuzzing

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
