// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <cstdio>

namespace Corvelpro {

/// Where the tool's messages go: stderr, as it was at the start.
FILE *messageStream();

/// From now on libraries print nothing: neither what Qt logs, nor the PNG library's own lines on stderr about each odd
/// chunk of a picture, which are no messages to the user. The latter needs the GNU C library. Call it before there are
/// threads.
void silenceLibraries();

} // namespace Corvelpro
