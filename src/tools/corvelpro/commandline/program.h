// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

namespace Corvelpro {

/// Runs one command line, from its words to the exit code. main() does what has to be set up once per process.
int runProgram(int count, const char *const *values);

} // namespace Corvelpro
