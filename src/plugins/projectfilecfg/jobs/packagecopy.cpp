// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagecopy.h"

#include "packagereader.h"
#include "packagesnapshot.h"

#include <host/core.h>

#include <QDir>
#include <QFile>

namespace ProjectFileCfg {
namespace Internal {

LoadResultCode openPackageCopy(const QString &path, std::unique_ptr<PackageReader> &package, QString *reason)
{
    const QString folder = Core::ICore::ExtractJsonPath();
    QDir().mkpath(folder);
    PackageSnapshot snapshot;
    package.reset();
    switch (snapshot.take(path, {folder, QDir::tempPath()}, reason)) {
    case PackageSnapshot::Outcome::Taken:
        package = std::make_unique<PackageReader>(snapshot.release());
        break;
    case PackageSnapshot::Outcome::Unreadable:
        break;
    case PackageSnapshot::Outcome::NoRoom:
        return LoadDecompressFailed;
    }
    return LoadSuccess;
}

} // namespace Internal
} // namespace ProjectFileCfg
