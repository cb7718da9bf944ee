// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QIODevice>

#include <memory>

class QString;

namespace Corvelpro {

/// An empty place for a content of `size` bytes, open for reading and writing: in memory, or above `mostInMemory` a
/// file without a name in the folder for temporary files. Null if that file cannot be made; `reason` is set then (see
/// reason.h).
std::unique_ptr<QIODevice> openScratch(qint64 size, qint64 mostInMemory, QString *reason);

} // namespace Corvelpro
