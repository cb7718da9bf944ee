#include "packagecopy.h"

#include "packagereader.h"
#include "packagesnapshot.h"

#include <core/icore.h>

#include <QDebug>
#include <QDir>
#include <QFile>

namespace ProjectFileCfg {
namespace Internal {

LoadResultCode openPackageCopy(const QString &path, std::unique_ptr<PackageReader> &package)
{
    const QString folder = Core::ICore::ExtractJsonPath();
    QDir().mkpath(folder);
    PackageSnapshot snapshot;
    package.reset();
    switch (snapshot.take(path, {folder, QDir::tempPath()})) {
    case PackageSnapshot::Taken:
        package = std::make_unique<PackageReader>(snapshot.release());
        break;
    case PackageSnapshot::Unreadable:
        break;
    case PackageSnapshot::NoRoom:
        qDebug() << "No room to copy the package:" << path;
        return LoadDecompressFailed;
    }
    return LoadSuccess;
}

} // namespace Internal
} // namespace ProjectFileCfg
