#pragma once

namespace ProjectFileCfg {
namespace Internal {

/// Sizes in the zip format, in bytes.
namespace ZipFormat {

/// Of an entry's two headers, without its name, which stands in both.
constexpr int localHeaderSize = 30;
constexpr int centralHeaderSize = 46;

/// Of the record that ends an archive, without the comment, and of the mark before it in a 64-bit archive.
constexpr int endRecordSize = 22;
constexpr int locatorSize = 20;

/// The longest name of an entry and the longest comment.
constexpr int maxTextSize = 0xFFFF;

} // namespace ZipFormat

} // namespace Internal
} // namespace ProjectFileCfg
