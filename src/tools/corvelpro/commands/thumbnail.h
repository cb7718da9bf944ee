// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Draws a package's first background as a small picture.
ExitCode runThumbnail(const Arguments &arguments, Output &output);

} // namespace Corvelpro
