// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QIODevice>

#include <memory>

class QString;

namespace Corvelpro {

/// Temporary storage for `size` bytes, empty and open for reading and writing: in memory, or above `mostInMemory` a
/// nameless file in the temporary folder. Null if that file cannot be created; `reason` is set then (see reason.h).
std::unique_ptr<QIODevice> openScratch(qint64 size, qint64 mostInMemory, QString *reason);

} // namespace Corvelpro
