// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>

namespace Corvelpro {

/// What makes a shell complete the tool's commands, options and files, made from its table of commands.
QByteArray bashCompletions();
QByteArray zshCompletions();
QByteArray fishCompletions();

} // namespace Corvelpro
