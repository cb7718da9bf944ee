// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

class QString;

namespace ProjectFileCfg {
namespace Internal {

/// The minimum size of an entry in a package, in bytes: its headers, and its content if that is stored. With it, a tree
/// that is much too large for a package is refused before 4 GiB are written.
qint64 leastPackedSize(const QString &entryName, qint64 size);

} // namespace Internal
} // namespace ProjectFileCfg
