#pragma once

#include <QString>

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;

/// True when the folder of an offline device still fits a package once the package's entries, descriptions apart, are
/// extracted to it: else the device could never be saved again. Counts what is there and what comes, and once what is
/// replaced.
bool fitsPackageAfterwards(const PackageReader &package, const QString &deviceFolder);

} // namespace Internal
} // namespace ProjectFileCfg
