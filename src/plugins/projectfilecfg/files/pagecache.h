// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

#include <vector>

namespace ProjectFileCfg {
namespace Internal {

/// The system's cache of file contents, for callers that move gigabytes and must not push everything else out of
/// memory. Offsets and sizes are in bytes, handles are those of open files. Any thread.
///
/// Where the system or the file system lacks a call, it does nothing, and pages simply stay. A caller never needs to
/// know.
namespace PageCache {

/// In bytes. Below this, the calls cost more than the pages are worth.
constexpr qint64 smallFileSize = 256 * 1024;

/// A part of a file.
struct Range
{
    qint64 nBegin = 0;
    qint64 nEnd = 0;
};

/// The parts of the first `size` bytes that are not cached, in ascending order, rounded inwards to 64 KiB, except for
/// the end of the file. Empty if the system does not tell: then everything may be cached.
std::vector<Range> uncachedRanges(int handle, qint64 size);

/// The system reads ahead further while the file is read from beginning to end.
void expectSequentialReads(int handle);

/// Has the system forget the cached pages that lie within the range and need no writing. An end of 0 is the file's; an
/// empty range drops nothing.
void drop(int handle, const Range &range);

/// Starts writing all changed pages of the file to the disk. Returns before they are there.
void beginWriting(int handle);

/// Waits until the changed pages of the range are on the disk. Of metadata, nothing is flushed. An end of 0 is the
/// file's; for an empty range it does nothing.
///
/// False if the disk refused them (`errno` tells why). The system reports such a failure once only, so a later flush of
/// the same handle does not repeat it.
bool finishWriting(int handle, const Range &range);

} // namespace PageCache

} // namespace Internal
} // namespace ProjectFileCfg
