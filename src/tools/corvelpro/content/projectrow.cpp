// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectrow.h"

#include "entrykind.h"
#include "oneachcore.h"

#include "packagereader.h"
#include "projectlisting.h"
#include "zippackagehandle.h"

#include <QFileInfo>

#include <algorithm>
#include <vector>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

/// A row without a file if the panel does not list it.
ProjectRow rowOf(const QFileInfo &file)
{
    const PackageReader package(file.filePath());
    EngineerPacketInfo info;
    if (!ZipPackageHandle::getZipFileEngineerInfo(package, info))
        return {};
    ProjectRow row;
    row.file = file.filePath();
    row.name = ProjectListing::nameOf(file);
    row.comment = info.strComment;
    row.size = file.size();
    row.modified = file.lastModified();
    for (const QString &entry : package.fileList()) {
        const EntryKind kind = kindOf(entry);
        row.pictures += kind == EntryKind::GalleryPicture ? 1 : 0;
        row.presets += kind == EntryKind::Preset ? 1 : 0;
    }
    return row;
}

} // namespace

QVector<ProjectRow> projectRows(const QString &directory)
{
    const QFileInfoList packages = ProjectListing::packagesIn(directory);
    std::vector<ProjectRow> found(std::size_t(packages.size()));
    onEachCore(packages.size(), [&](int number) { found[std::size_t(number)] = rowOf(packages.at(number)); });
    QVector<ProjectRow> rows;
    std::copy_if(found.begin(), found.end(), std::back_inserter(rows),
                 [](const ProjectRow &row) { return !row.file.isEmpty(); });
    return rows;
}

} // namespace Corvelpro
