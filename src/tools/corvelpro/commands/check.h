// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Tells whether the panel would list the files: a record whose checksum is the package's, nothing else.
ExitCode runCheck(const Arguments &arguments, Output &output);

} // namespace Corvelpro
