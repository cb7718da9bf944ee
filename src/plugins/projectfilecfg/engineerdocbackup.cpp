// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "engineerdocbackup.h"

#include "devicedescription.h"
#include "devicelookup.h"
#include "encodedpictures.h"
#include "exceptionguard.h"
#include "filesystem.h"
#include "packagelayout.h"
#include "picturewriter.h"
#include "presetfile.h"
#include "projectpaths.h"
#include "replacingfile.h"
#include "stagingdirectory.h"
#include "zippackagehandle.h"

#include <host/devicecontrol.h>
#include <host/devices.h>
#include <host/images.h>

#include <QDebug>

using Model::Materail;

namespace ProjectFileCfg {
namespace Internal {

namespace {

QImage loadPicture(const QString &imageKey, QImage::Format format)
{
    const ImageStorager *store = ImageStorager::instance();
    return store ? store->load(imageKey, format).toImage() : QImage();
}

} // namespace

EngineerDocBackup::EngineerDocBackup(QObject *parent, const QString &ip)
    : QThread(parent)
    , m_strDeviceIp(ip)
    , m_strProjectPath(ProjectPaths::projectFilesPath())
    , m_pEncodedPictures(std::make_shared<EncodedPictures>())
{}

EngineerDocBackup::~EngineerDocBackup() = default;

void EngineerDocBackup::setProjectInfo(const QString &name, const QString &comment)
{
    m_strProjectName = name;
    m_strComment = comment;
}

std::shared_ptr<const FileSystem::FileIdentity> EngineerDocBackup::fileAt(const QString &directory, const QString &name)
{
    const QString path = directory + name + PackageLayout::packageExtension;
    return std::make_shared<const FileSystem::FileIdentity>(ReplacingFile::resolvedTarget(path));
}

void EngineerDocBackup::run()
{
    m_bCancel = false;
    m_strSavedPackagePath.clear();
    if (!runGuarded("The save ended with an exception", [this] { save(); }))
        m_nResultCode = BackupEncryptFailed;
}

void EngineerDocBackup::failToStart()
{
    fail(QStringLiteral("the system has no thread for it"));
}

void EngineerDocBackup::save()
{
    const std::shared_ptr<const FileSystem::FileIdentity> replaceable =
        m_pReplaceable ? m_pReplaceable : fileAt(m_strProjectPath, m_strProjectName);

    if (!writeDeviceDescriptions()) {
        m_nResultCode = BackupSaveJsonFailed;
        return;
    }

    const std::shared_ptr<Model::Device> device = findDevice();
    if (!device)
        return;

    std::unique_ptr<StagedFiles> stagedFiles;
    if (device->getDeviceOnlineFlag()) {
        stagedFiles = std::make_unique<StagedFiles>(directory());
        if (!exportPictures())
            return;
    } else if (!offlineResourcesComplete()) {
        fail(QStringLiteral("pictures are missing in %1").arg(directory().path()), BackupOfflineResourceIncomplete);
        return;
    }

    if (m_bCancel || !LoadPreset())
        return;
    pack(*replaceable);
}

void EngineerDocBackup::pack(const FileSystem::FileIdentity &replaceable)
{
    // Creates this folder only: a separator in the project's name may be a typing error.
    QString reason;
    if (!FileSystem::makeFolder(m_strProjectPath, &reason)) {
        fail(reason);
        return;
    }
    EngineerPacketInfo info;
    info.strFilePath = m_strProjectPath + m_strProjectName + PackageLayout::packageExtension;
    info.strProjectName = m_strProjectName;
    info.strComment = m_strComment;
    if (!ZipPackageHandle::compressEngineerPacket(directory().path(), info, {m_staged, replaceable}, &reason))
        fail(reason);
    else if (ZipPackageHandle::isValidEngineerPacket(info.strFilePath, &reason))
        m_strSavedPackagePath = info.strFilePath;
    else
        qDebug().noquote() << "The package was changed or removed right after the save:" << reason;
}

bool EngineerDocBackup::fail(const QString &reason, BackupResultCode code)
{
    qDebug().noquote() << "Save failed:" << reason;
    m_nResultCode = code;
    return false;
}

// Each step looks the device up again, four times in a save of an online device: in between, the host may remove it or
// replace it by another one with the same address. So do not keep a device from one step to the next. A step that finds
// none ends the save.
std::shared_ptr<Model::Device> EngineerDocBackup::findDevice()
{
    std::shared_ptr<Model::Device> device = findDeviceByAddress(m_strDeviceIp);
    if (!device)
        fail(QStringLiteral("there is no device %1").arg(m_strDeviceIp), BackupGetDeviceFailed);
    return device;
}

StagingDirectory EngineerDocBackup::directory() const
{
    return StagingDirectory(m_strDeviceIp);
}

bool EngineerDocBackup::stopIfCanceled()
{
    if (m_bCancel)
        m_nResultCode = BackupUserCanceled;
    return m_bCancel;
}

bool EngineerDocBackup::exportPictures()
{
    // A picture whose file cannot be opened does not end the save, so the next fetch need not wait for the write.
    PictureWriter writer(m_pEncodedPictures);
    if (!exportBackgrounds(writer) || !exportLogos(writer))
        return false;

    const bool hasPictures = writer.hasPictures();
    QString reason;
    const bool areWhole = writer.waitForDone(&reason);
    // Cancelled before the last picture was written.
    if (hasPictures && stopIfCanceled())
        return false;
    if (!areWhole)
        return fail(reason);
    const QHash<QString, qint64> written = writer.written();
    for (auto picture = written.begin(); picture != written.end(); ++picture)
        m_staged.insert(directory().pictureEntry(picture.key()), picture.value());
    return true;
}

bool EngineerDocBackup::exportBackgrounds(PictureWriter &writer)
{
    const std::shared_ptr<Model::Device> device = findDevice();
    if (!device)
        return false;

    for (const Talvik::weak_refrence<Materail> &reference : device->getBKGs()) {
        if (stopIfCanceled())
            return false;
        const std::shared_ptr<Materail> background = reference.lock();
        if (!background)
            continue;

        emit signal_operatoerChanged(tr("Saving the gallery [%1]...").arg(tr("BKG:") + background->getName()));
        const std::map<Materail::ParameterType, std::any> request{{HostNumbers::picture, QImage()}};
        if (!ModelControl::MaterialControl(background).queryMaterailData(request)) {
            if (stopIfCanceled())
                return false;
            return fail(QStringLiteral("the device did not send the background %1").arg(background->getName()),
                        BackupExportBkgFailed);
        }
        writer.write(loadPicture(background->imageKey(), QImage::Format_RGB32),
                     directory().picturePath(PackageLayout::backgroundEntry(background->getKeyNo())));
    }
    return true;
}

// Logos are small and already in the image store, unlike backgrounds: no query, no progress text.
bool EngineerDocBackup::exportLogos(PictureWriter &writer)
{
    const std::shared_ptr<Model::Device> device = findDevice();
    if (!device)
        return false;

    for (const Talvik::weak_refrence<Materail> &reference : device->getLogos()) {
        if (stopIfCanceled())
            return false;
        if (const std::shared_ptr<Materail> logo = reference.lock())
            writer.write(loadPicture(logo->imageKey(), QImage::Format_ARGB32),
                         directory().picturePath(PackageLayout::logoEntry(logo->getKeyNo())));
    }
    return true;
}

bool EngineerDocBackup::offlineResourcesComplete() const
{
    const std::shared_ptr<Model::Device> device = findDeviceByAddress(m_strDeviceIp);
    return device && directory().hasPicturesOf(*device);
}

bool EngineerDocBackup::LoadPreset()
{
    const std::shared_ptr<Model::Device> device = findDevice();
    if (!device)
        return false;
    if (!directory().renewPresetFolder())
        return fail(QStringLiteral("%1 cannot be created").arg(directory().presetPath()));

    // A copy, since the host may change its list during the loop.
    const std::vector<std::shared_ptr<Model::Preset>> presets = device->getPresets();
    for (const std::shared_ptr<Model::Preset> &preset : presets) {
        if (stopIfCanceled())
            return false;
        if (!preset)
            continue;
        QByteArray detail;
        if (!ModelControl::PresetControl(preset).presetFullDetail2Binary(detail))
            return fail(QStringLiteral("preset %1 of %2 could not be serialised")
                            .arg(QString::number(preset->getNumber()), device->getName()));
        if (!writePreset(PackageLayout::presetEntry(preset->getNumber()), detail, device->getName()))
            return false;
    }
    return true;
}

bool EngineerDocBackup::writePreset(const QString &entry, const QByteArray &detail, const QString &deviceName)
{
    const QString path = directory().presetPath(entry);
    PresetFile file(path);
    switch (file.write(detail)) {
    case PresetFile::Outcome::Written:
        m_staged.insert(entry, file.size());
        return true;
    case PresetFile::Outcome::FolderGone:
        return fail(QStringLiteral("%1 was removed").arg(directory().presetPath()));
    case PresetFile::Outcome::Cut:
        return fail(file.errorString());
    case PresetFile::Outcome::NotOpened:
        break;
    }
    // Sets no code: the panel shows nothing, and savedPackagePath() stays empty.
    qDebug().noquote() << QStringLiteral("Device [%1] serailize error,reason: %2").arg(deviceName, file.errorString());
    return false;
}

} // namespace Internal
} // namespace ProjectFileCfg
