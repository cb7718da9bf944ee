// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;

/// True if the folder of an offline device will still fit into a package once the package's entries, except
/// descriptions, are extracted to it; otherwise the device could never be saved again. Counts existing and new files; a
/// file that is replaced counts once.
bool fitsPackageAfterwards(const PackageReader &package, const QString &deviceFolder);

} // namespace Internal
} // namespace ProjectFileCfg
