// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Tells whether the panel would list the files. Only compares the record's checksum with the package.
ExitCode runCheck(const Arguments &arguments, Output &output);

} // namespace Corvelpro
