// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

namespace ProjectFileCfg {
namespace Internal {

/// Sizes in the zip format, in bytes.
namespace ZipFormat {

/// An entry's two headers, without its name, which both contain.
constexpr int localHeaderSize = 30;
constexpr int centralHeaderSize = 46;

/// The end record without the comment, and the locator before it in a zip64 archive.
constexpr int endRecordSize = 22;
constexpr int locatorSize = 20;

/// The longest name of an entry and the longest comment.
constexpr int maxTextSize = 0xFFFF;

} // namespace ZipFormat

} // namespace Internal
} // namespace ProjectFileCfg
