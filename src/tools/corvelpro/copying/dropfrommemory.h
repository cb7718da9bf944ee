// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

namespace Corvelpro {

/// Has the system drop the content of an open, flushed file from its page cache, so that it is read from the disk next
/// time. True only if the system confirms that nothing of it is in memory any more; only Linux does, for the usual file
/// systems of local disks and sticks.
bool dropFromMemory(int handle, qint64 size);

} // namespace Corvelpro
