#pragma once

#include "operationresultcodes.h"

#include <QString>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;

/// Copies a package to the host's extraction folder, or to the folder of temporary files (see PackageSnapshot), and
/// opens the copy. LoadDecompressFailed, with a line in the log, if neither has room. LoadSuccess otherwise, but with a
/// null `package` if there is none at `path` any more.
LoadResultCode openPackageCopy(const QString &path, std::unique_ptr<PackageReader> &package);

} // namespace Internal
} // namespace ProjectFileCfg
