// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

#include <optional>

namespace Corvelpro {

class Arguments;
class Output;

/// The optional DIR of a command, by default that of the project files. None, with a message, if it is no folder that
/// can be read; the default may be missing, as before the first save.
std::optional<QString> directoryArgument(const Arguments &arguments, Output &output);

} // namespace Corvelpro
