// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>

namespace Corvelpro {

/// The tool's manual page, made from its table of commands, for `man` (roff, macros "man").
QByteArray manualPage();

} // namespace Corvelpro
