// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Copies packages into a directory, and verifies each copy by reading it back.
ExitCode runCopy(const Arguments &arguments, Output &output);

} // namespace Corvelpro
