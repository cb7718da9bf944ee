// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "offlineapply.h"

#include "filesystem.h"
#include "offlineroom.h"
#include "packagelayout.h"
#include "packagereader.h"
#include "parseddescription.h"
#include "picturereader.h"
#include "reason.h"
#include "stagingdirectory.h"
#include "thumbnail.h"

#include <host/devices.h>

#include <QDebug>
#include <QFile>
#include <QHash>
#include <QImage>

#include <algorithm>

using Model::Materail;

namespace ProjectFileCfg {
namespace Internal {

QString offlineFolder(const QString &ip)
{
    return StagingDirectory(ip).path() + QLatin1Char('/');
}

namespace {

/// The same text for both callers, since people search logs for it.
LoadResultCode extractionFailed(const QString &path)
{
    qDebug() << "Extract json file failed:" << path;
    return LoadDecompressFailed;
}

} // namespace

LoadResultCode extractContent(PackageReader &package, const QString &path, const QString &folder, QString *reason)
{
    if (!fitsPackageAfterwards(package, folder)) {
        failBecause(reason, QStringLiteral("%1 would no longer fit into a package").arg(folder));
        return LoadDecompressFailed;
    }
    QStringList entries = package.entries();
    entries.erase(std::remove_if(entries.begin(), entries.end(), PackageLayout::isDescription), entries.end());
    const bool areExtracted = std::all_of(entries.begin(), entries.end(), [&](const QString &entry) {
        return !package.extractFile(entry, QStringLiteral("%1/%2").arg(folder, entry), reason).isEmpty();
    });
    const bool areOnDisk = areExtracted && (entries.isEmpty() || FileSystem::flushTree(folder, reason));
    return areOnDisk ? LoadSuccess : extractionFailed(path);
}

LoadResultCode extractDescription(const QString &path, const QString &ip)
{
    PackageReader package(path);
    const QString description = findDescription(package.fileList());
    if (description.isEmpty())
        return LoadSuccess;
    const QString target = offlineFolder(ip) + PackageLayout::descriptionEntry(ip);
    QFile::remove(target);
    return package.extractFile(description, target).isEmpty() ? extractionFailed(path) : LoadSuccess;
}

void replaceModel(Model::Device &target, const Model::Device &description)
{
    target.clearAll(true);
    target.clearMaterial();
    target.clearPreset();
    target.fromJson(description.toJson());
}

namespace {

QString picturePath(const QString &folder, const Materail &materail)
{
    if (materail.getType() == HostNumbers::background)
        return folder + PackageLayout::backgroundEntry(materail.getKeyNo());
    if (materail.getType() == HostNumbers::logo)
        return folder + PackageLayout::logoEntry(materail.getKeyNo());
    return QString();
}

} // namespace

void refreshThumbnails(const Model::Device &device, const QString &folder)
{
    // Several may have the same key number, and so the same picture.
    QHash<QString, QImage> thumbnails;
    for (const auto &materails : {device.getBKGs(), device.getLogos()}) {
        for (const Talvik::weak_refrence<Materail> &reference : materails) {
            const std::shared_ptr<Materail> materail = reference.lock();
            if (!materail)
                continue;
            const QString path = picturePath(folder, *materail);
            auto thumbnail = thumbnails.find(path);
            if (thumbnail == thumbnails.end())
                thumbnail = thumbnails.insert(path, thumbnailOf(PictureReader(path).read()));
            materail->setThumb(*thumbnail);
        }
    }
}

} // namespace Internal
} // namespace ProjectFileCfg
