// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "content/entryheader.h"

namespace Corvelpro {

/// Where an open package has the packed content of a file, and what it says about it.
struct PackedFile
{
    /// Of the open package, whose position it does not matter.
    int handle = -1;
    qint64 offset = 0;
    EntryHeader header;
};

/// True if both packages have the same packed bytes for a file, and the same method, sizes and CRC, which are those of
/// the content: then both files can be read, and are equal. Nothing is decoded, and nothing kept. False says nothing.
/// Any thread, also while others read the packages.
bool areSoundAndEqual(const PackedFile &one, const PackedFile &other);

} // namespace Corvelpro
