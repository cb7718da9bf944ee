#pragma once

#include <QString>

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;

/// True if the folder of an offline device still fits a package after the package's entries, except descriptions, were
/// extracted to it: otherwise the device could never be saved again. Counts existing and new files, and replaced ones
/// once.
bool fitsPackageAfterwards(const PackageReader &package, const QString &deviceFolder);

} // namespace Internal
} // namespace ProjectFileCfg
