// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectrow.h"

#include "archivedirectory.h"
#include "entrykind.h"
#include "findings.h"

#include "plainfile.h"
#include "projectlisting.h"
#include "zippackagehandle.h"

#include <QFile>
#include <QFileInfo>
#include <QFuture>
#include <QtConcurrentRun>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

void countEntries(ProjectRow &row)
{
    QFile file(row.file);
    if (!openPlainFile(file))
        return;
    Findings findings;
    const ArchiveDirectory directory(file, findings);
    for (const ArchiveDirectory::Entry &entry : directory.entries()) {
        const EntryKind kind = kindOf(entry.name);
        row.pictures += kind == EntryKind::GalleryPicture ? 1 : 0;
        row.presets += kind == EntryKind::Preset ? 1 : 0;
    }
}

/// A row without a file if the panel does not list it.
ProjectRow rowOf(const QFileInfo &package)
{
    EngineerPacketInfo info;
    info.strFilePath = package.filePath();
    if (!ZipPackageHandle::getZipFileEngineerInfo(info, nullptr))
        return {};
    ProjectRow row;
    row.file = info.strFilePath;
    row.name = ProjectListing::nameOf(package);
    row.comment = info.strComment;
    row.size = package.size();
    row.modified = package.lastModified();
    countEntries(row);
    return row;
}

} // namespace

QVector<ProjectRow> projectRows(const QString &directory)
{
    const QFileInfoList packages = ProjectListing::packagesIn(directory);
    QVector<QFuture<ProjectRow>> futures;
    for (const QFileInfo &package : packages)
        futures.append(QtConcurrent::run(rowOf, package));
    QVector<ProjectRow> rows;
    for (const QFuture<ProjectRow> &future : qAsConst(futures)) {
        const ProjectRow row = future.result();
        if (!row.file.isEmpty())
            rows.append(row);
    }
    return rows;
}

} // namespace Corvelpro
