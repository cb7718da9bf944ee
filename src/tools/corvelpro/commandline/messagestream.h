// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <cstdio>

namespace Corvelpro {

/// Where the tool's messages go: stderr, as it was at the start.
FILE *messageStream();

/// Silences Qt's log, and, with the GNU C library, the lines that the PNG library prints to stderr about each odd chunk
/// of a picture: neither is meant for the user. Call it before starting threads.
void silenceLibraries();

} // namespace Corvelpro
