// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "interrupt.h"

#include <csignal>
#include <cstdio>

namespace Corvelpro {

namespace {

constexpr int signalsToCatch[] = {
    SIGINT,
    SIGTERM,
#ifdef SIGHUP
    SIGHUP,
#endif
};

volatile std::sig_atomic_t s_signal = 0;

extern "C" void remember(int signal)
{
    s_signal = signal;
    std::signal(signal, SIG_DFL);
}

} // namespace

Interrupt::Interrupt()
{
    s_signal = 0;
    for (const int signal : signalsToCatch) {
        // A process in the background ignores Ctrl-C, and goes on doing so.
        if (std::signal(signal, remember) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}

Interrupt::~Interrupt()
{
    if (came()) {
        std::fflush(stdout);
        std::raise(s_signal);
    }
    for (const int signal : signalsToCatch) {
        if (std::signal(signal, SIG_DFL) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}

bool Interrupt::came()
{
    return s_signal != 0;
}

} // namespace Corvelpro
