// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Writes a package's entries, or one of them, into a new directory.
ExitCode runExtract(const Arguments &arguments, Output &output);

} // namespace Corvelpro
