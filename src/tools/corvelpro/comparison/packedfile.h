// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "content/entryheader.h"

namespace Corvelpro {

/// Where an open package has the packed content of a file, and what it says about it.
struct PackedFile
{
    /// Of the open package. Its file position is neither used nor changed.
    int handle = -1;
    qint64 offset = 0;
    EntryHeader header;
};

/// True if both packages have the same packed bytes for a file, with the same method, sizes and CRC, and the content
/// matches these: then both files are readable and equal. Decodes no picture and stores nothing. False does not mean
/// that they differ. Any thread, also while others read the packages.
bool areSoundAndEqual(const PackedFile &one, const PackedFile &other);

} // namespace Corvelpro
