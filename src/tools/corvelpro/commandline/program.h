// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

namespace Corvelpro {

/// Runs one command line, from its words to the exit code. What is set up once for the process is main()'s business.
int runProgram(int count, const char *const *values);

} // namespace Corvelpro
