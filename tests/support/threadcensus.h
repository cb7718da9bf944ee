// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

namespace TestSupport {

// Sanitizers interpose the same function.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool canCountThreads = false;
#else
constexpr bool canCountThreads = true;
#endif

/// How many threads this process has started, those of Qt and those that have ended included. 0 if they cannot be
/// counted.
int startedThreads();

} // namespace TestSupport
