// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"

#include <QString>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;

/// Copies a package to the host's extraction folder, or to the folder of temporary files (see PackageSnapshot), and
/// opens the copy. LoadDecompressFailed if neither has room. Otherwise LoadSuccess, but with a null `package` if there
/// is no package at `path` any more. `reason` is set in both cases.
LoadResultCode openPackageCopy(const QString &path, std::unique_ptr<PackageReader> &package, QString *reason);

} // namespace Internal
} // namespace ProjectFileCfg
