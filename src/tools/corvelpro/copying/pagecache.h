// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

namespace Corvelpro {

/// Has the system forget the content of an open file that was flushed, so that the next reading is one of the disk.
/// True only if the system confirms that it holds none of it in memory any more: on Linux alone, and only on the usual
/// file systems of local disks and sticks.
bool dropFromMemory(int handle, qint64 size);

} // namespace Corvelpro
