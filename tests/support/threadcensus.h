// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

namespace TestSupport {

// Sanitizers interpose the same function.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool canWatchThreads = false;
#else
constexpr bool canWatchThreads = true;
#endif

/// How many threads this process has started, those of Qt and those that have ended included. 0 if they cannot be
/// watched.
int startedThreads();

/// The system refuses the next `count` threads that this process starts. Has no effect if they cannot be watched.
void refuseThreads(int count);

} // namespace TestSupport
