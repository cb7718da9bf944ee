#pragma once

#include <QtGlobal>

namespace ProjectFileCfg {
namespace Internal {

/// How much a package may hold. Who packs, who reads and who applies ask here, so that what is saved can be applied.
namespace PackageLimits {

constexpr qint64 mebibyte = 1024 * 1024;

/// Bytes of an archive without its comment, and its entries. Above these the format needs its 64-bit extension, in
/// which QuaZip no longer finds the comment. An archive of one entry more is still read.
constexpr qint64 maxArchiveSize = 0xFFFFFFFE;
constexpr int maxPackedEntries = 0xFFFE;
constexpr int maxEntries = 0xFFFF;

/// Bytes of a comment. Beyond these QuaZip no longer finds the end of the archive.
constexpr int maxCommentSize = 65513;

/// Bytes of what all entries hold together, unpacked. A package itself is smaller than this, and its pictures are as
/// large outside as inside: what claims more was made to fill the disk.
constexpr qint64 maxContentSize = 4096 * mebibyte;

/// Bytes of all names together: 256 for each of as many entries as there can be. They are held in memory.
constexpr int maxNamesLength = 16 * 1024 * 1024;

/// Levels of a name, the file's own included: each folder of it is made, and looked at, one by one.
constexpr int maxDepth = 64;

/// Bytes of one file that is taken out: a picture, a preset, whatever the host keeps there.
constexpr qint64 maxEntrySize = 1024 * mebibyte;

/// Descriptions (".json"): bytes of each and of all of them, and how many. The user interface waits while they are
/// taken out.
constexpr qint64 maxDescriptionSize = 64 * mebibyte;
constexpr int maxDescriptions = 1000;

/// The one that counts is parsed: its bytes, and its members, elements and brackets, each of which takes some eighty
/// bytes of memory then.
constexpr qint64 maxParsedDescriptionSize = 16 * mebibyte;
constexpr int maxDescriptionParts = 1024 * 1024;

/// Pictures (".png"): bytes of the file; bytes of the texts, profiles and the like that it carries besides its pixels;
/// how many of those may be packed, since each may become 8 MB, and twice that as text.
constexpr qint64 maxPictureFileSize = 256 * mebibyte;
constexpr qint64 maxPictureTextSize = 4 * mebibyte;
constexpr int maxPackedPictureTexts = 4;

/// Pixels of a picture's width, and of its height: more the PNG library does not take.
constexpr qint64 maxPictureSide = 1000000;

/// Bytes of memory that a picture's pixels take as they are read and as they become 32 bits: 50 million pixels of 8
/// bits per channel.
constexpr qint64 maxPictureMemory = 192 * mebibyte;

/// Pixels of all the backgrounds and logos of a package together: decoding more keeps an apply busy for minutes.
constexpr qint64 maxPixels = 4294967296;

} // namespace PackageLimits

} // namespace Internal
} // namespace ProjectFileCfg
