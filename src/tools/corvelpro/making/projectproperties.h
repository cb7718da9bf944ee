// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QString;

namespace Corvelpro {

/// The names and comments that an operator can type in the control application. A package with any other name could be
/// listed there, but not edited. `reason` says what is wrong.
namespace ProjectProperties {

/// A name is a file's name without its extension, on every platform: 1 to 64 bytes of UTF-8 without blanks at its ends,
/// a leading dot, control characters and < > : " / \ | ? *
bool isName(const QString &name, QString *reason);

/// At most 100 UTF-16 units of any text.
bool isComment(const QString &comment, QString *reason);

} // namespace ProjectProperties

} // namespace Corvelpro
