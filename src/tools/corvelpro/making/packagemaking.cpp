// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagemaking.h"

#include "projectproperties.h"

#include "filesystem.h"
#include "packagelayout.h"
#include "replacingfile.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>

namespace Corvelpro {
namespace PackageMaking {

using namespace ProjectFileCfg::Internal;

namespace {

Outcome wantProperties(const EngineerPacketInfo &record)
{
    QString reason;
    return ProjectProperties::isName(record.strProjectName, &reason) &&
                   ProjectProperties::isComment(record.strComment, &reason)
               ? Outcome()
               : Outcome::failed(reason);
}

} // namespace

Outcome create(const QString &directory, EngineerPacketInfo &record)
{
    const QString &path = record.strFilePath;
    if (!PackageLayout::hasPackageExtension(path))
        return Outcome::failed(QStringLiteral("%1: a project file's name ends in \"%2\"")
                                   .arg(path, QString(PackageLayout::packageExtension)));
    if (!QFileInfo(directory).isDir())
        return Outcome::failed(QStringLiteral("%1: not a directory").arg(directory));
    if (record.strProjectName.isEmpty())
        record.strProjectName = PackageLayout::withoutPackageExtension(QFileInfo(path).fileName());
    Outcome properties = wantProperties(record);
    if (!properties.isDone())
        return properties;
    // Taken before the check: a file that comes later is another one than this, and stays.
    const FileSystem::FileIdentity nothing(ReplacingFile::resolvedTarget(path));
    Outcome name = wantFreeName(path);
    if (!name.isDone())
        return name;
    QString reason;
    return ZipPackageHandle::compressEngineerPacket(directory, record, {{}, nothing}, &reason)
               ? Outcome()
               : Outcome::failed(reason);
}

Outcome edit(EngineerPacketInfo &record, const std::optional<QString> &name, const std::optional<QString> &comment)
{
    const QString path = record.strFilePath;
    QString reason;
    if (!ZipPackageHandle::getZipFileEngineerInfo(record, &reason))
        return Outcome::refused(reason);
    record.strProjectName = name.value_or(record.strProjectName);
    record.strComment = comment.value_or(record.strComment);
    if (name && !ProjectProperties::isName(*name, &reason))
        return Outcome::failed(reason);
    if (comment && !ProjectProperties::isComment(*comment, &reason))
        return Outcome::failed(reason);

    const QString renamed =
        name ? QDir::cleanPath(QFileInfo(path).path() + QLatin1Char('/') + *name + PackageLayout::packageExtension)
             : path;
    const bool isRenamed = QFileInfo(renamed).fileName() != QFileInfo(path).fileName();
    Outcome free = isRenamed ? wantFreeName(renamed) : Outcome();
    if (!free.isDone())
        return free;
    if (!ZipPackageHandle::setEngineerInfo(record, &reason))
        return Outcome::failed(reason);
    if (isRenamed && !FileSystem::renameDurably(path, renamed, &reason))
        return Outcome::failed(QStringLiteral("%1 (its record has the new name already)").arg(reason));
    if (isRenamed)
        record.strFilePath = renamed;
    return {};
}

QJsonObject toJson(const EngineerPacketInfo &record)
{
    return {{QStringLiteral("file"), record.strFilePath},
            {QStringLiteral("name"), record.strProjectName},
            {QStringLiteral("comment"), record.strComment},
            {QStringLiteral("checksum"), record.strChecksum}};
}

} // namespace PackageMaking
} // namespace Corvelpro
