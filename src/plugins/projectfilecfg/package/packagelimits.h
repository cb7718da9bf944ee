// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

namespace ProjectFileCfg {
namespace Internal {

/// The limits of a package. Packing, reading and applying share them, so that whatever is saved can be applied.
namespace PackageLimits {

constexpr qint64 mebibyte = 1024 * 1024;

/// Bytes of an archive without its comment, and number of its entries. Beyond these the format needs its 64-bit
/// extension, with which QuaZip does not find the comment, nor, beyond maxEntries, the entries.
constexpr qint64 maxArchiveSize = 0xFFFFFFFE;
constexpr int maxPackedEntries = 0xFFFE;
constexpr int maxEntries = 0xFFFF;

/// Bytes of a comment. With a longer one, QuaZip does not find the end of the archive.
constexpr int maxArchiveCommentSize = 65513;

/// Bytes of all entries together, unpacked. The package itself is smaller than that, and its pictures are not
/// compressed further: one that claims more was made to fill the disk.
constexpr qint64 maxContentSize = 4096 * mebibyte;

/// Bytes of all names together, which are kept in memory: 256 for each possible entry.
constexpr int maxNamesLength = 16 * 1024 * 1024;

/// Levels of a name, including the file's own. Extraction creates and checks each folder, one by one.
constexpr int maxDepth = 64;

/// Bytes of one extracted file: a picture, a preset, or any other file of the host.
constexpr qint64 maxEntrySize = 1024 * mebibyte;

/// Descriptions (".json"): bytes of each one and of all together, and their number. They are extracted on the
/// user-interface thread.
constexpr qint64 maxDescriptionSize = 64 * mebibyte;
constexpr int maxDescriptions = 1000;

/// The first description, which is parsed: its bytes, and its members, elements and brackets, each of which takes some
/// eighty bytes of memory when parsed.
constexpr qint64 maxParsedDescriptionSize = 16 * mebibyte;
constexpr int maxDescriptionParts = 1024 * 1024;

/// Pictures (".png"): bytes of the file; bytes of its texts, profiles and the like; how many of those may be
/// compressed, since each may expand to 8 MB, and twice that as text.
constexpr qint64 maxPictureFileSize = 256 * mebibyte;
constexpr qint64 maxPictureTextSize = 4 * mebibyte;
constexpr int maxPackedPictureTexts = 4;

/// A picture's width and height in pixels: the maximum of the PNG library.
constexpr qint64 maxPictureSide = 1000000;

/// Bytes of memory for a picture's pixels, as read and when converted to 32 bits: 50 million pixels of 8 bits per
/// channel.
constexpr qint64 maxPictureMemory = 192 * mebibyte;

/// Pixels of all backgrounds and logos of a package together: decoding more would take an apply minutes.
constexpr qint64 maxPixels = 4294967296;

} // namespace PackageLimits

} // namespace Internal
} // namespace ProjectFileCfg
