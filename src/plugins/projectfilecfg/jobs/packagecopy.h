#pragma once

#include "operationresultcodes.h"

#include <QString>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;

/// Copies a package to the host's extraction folder, or to the folder of temporary files (see PackageSnapshot), and
/// opens the copy. LoadDecompressFailed if neither has room. Otherwise LoadSuccess; `package` is null then if there is
/// no package any more. `reason` is set in both cases.
LoadResultCode openPackageCopy(const QString &path, std::unique_ptr<PackageReader> &package, QString *reason);

} // namespace Internal
} // namespace ProjectFileCfg
