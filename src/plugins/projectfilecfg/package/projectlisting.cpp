// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectlisting.h"

#include "packagelayout.h"

#include <QDateTime>
#include <QDir>
#include <QVector>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {
namespace ProjectListing {

QFileInfoList packagesIn(const QString &dirPath)
{
    struct Package
    {
        qint64 nModified;
        QString strName;
        QFileInfo file;
    };
    QVector<Package> packages;
    const QFileInfoList entries = QDir(dirPath).entryInfoList({QLatin1Char('*') + PackageLayout::packageExtension},
                                                              QDir::Dirs | QDir::Files | QDir::Drives, QDir::Unsorted);
    for (const QFileInfo &entry : entries)
        packages.append({entry.lastModified().toMSecsSinceEpoch(), entry.fileName(), entry});
    std::sort(packages.begin(), packages.end(), [](const Package &one, const Package &other) {
        return one.nModified == other.nModified ? one.strName < other.strName : one.nModified > other.nModified;
    });
    QFileInfoList sorted;
    for (const Package &package : qAsConst(packages))
        sorted.append(package.file);
    return sorted;
}

QString nameOf(const QFileInfo &package)
{
    return package.baseName();
}

} // namespace ProjectListing
} // namespace Internal
} // namespace ProjectFileCfg
