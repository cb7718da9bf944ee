#include "engineerdocbackup.h"

#include "devicelookup.h"
#include "encodedpictures.h"
#include "picturewriter.h"
#include "projectfilefacts.h"
#include "stagedfile.h"
#include "zippackagehandle.h"

#include <core/icore.h>
#include <imagestorager/imagestorager.h>
#include <model/device.h>
#include <model/serailizer.h>
#include <modelcontrol/materialcontrol.h>
#include <modelcontrol/presetcontrol.h>

#include <QDataStream>
#include <QDebug>
#include <QDir>
#include <QFile>

using Core::ICore;
using Model::Materail;

namespace ProjectFileCfg {
namespace Internal {

static void emptyFolder(const QString &path)
{
    QDir folder(path);
    if (!folder.exists()) {
        folder.mkpath(QStringLiteral("."));
        return;
    }
    const QFileInfoList entries =
        folder.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            QFile::remove(entry.filePath());
    }
}

static QImage loadPicture(const QString &imageKey, QImage::Format format)
{
    return ImageStorager::instance()->load(imageKey, format).toImage();
}

EngineerDocBackup::EngineerDocBackup(QObject *parent, const QString &ip)
    : QThread(parent)
    , m_strDeviceIp(ip)
    , m_strProjectPath(ProjectFileFacts::projectFilesPath())
    , m_pEncodedPictures(std::make_shared<EncodedPictures>())
{}

EngineerDocBackup::~EngineerDocBackup() = default;

void EngineerDocBackup::setDeviceIp(const QString &ip)
{
    m_strDeviceIp = ip;
}

void EngineerDocBackup::setProjectInfo(const QString &name, const QString &comment)
{
    m_strProjectName = name;
    m_strComment = comment;
}

void EngineerDocBackup::setProjectPath(const QString &directory)
{
    m_strProjectPath = directory;
}

void EngineerDocBackup::setEncodedPictures(const std::shared_ptr<EncodedPictures> &pictures)
{
    m_pEncodedPictures = pictures;
}

void EngineerDocBackup::cancel()
{
    m_bCancel = true;
}

int EngineerDocBackup::resultCode() const
{
    return m_nResultCode;
}

QString EngineerDocBackup::savedPackagePath() const
{
    return m_strSavedPackagePath;
}

void EngineerDocBackup::run()
{
    m_bCancel = false;

    if (!Model::Serailizer(ICore::deviceConfigFilePath()).serailize()) {
        qDebug() << "Fail to serailize model data.";
        m_nResultCode = BackupSaveJsonFailed;
        return;
    }

    const std::shared_ptr<Model::Device> device = findDevice();
    if (!device)
        return;

    const bool online = device->getDeviceOnlineFlag();
    if (online) {
        prepareStageFolders();
        // A picture that cannot be written does not end the save, so fetching the next one need not wait for it.
        PictureWriter writer(m_pEncodedPictures);
        if (!exportBackgrounds(writer) || !exportLogos(writer))
            return;
        if (!writer.waitForDone()) {
            m_nResultCode = BackupEncryptFailed;
            return;
        }
    } else if (!offlineResourcesComplete()) {
        m_nResultCode = BackupOfflineResourceIncomplete;
        return;
    }

    if (m_bCancel || !LoadPreset())
        return;

    EngineerPacketInfo info;
    info.strFilePath = m_strProjectPath + m_strProjectName + ProjectFileFacts::packageExtension;
    info.strProjectName = m_strProjectName;
    info.strComment = m_strComment;
    if (ZipPackageHandle::compressEngineerPacket(deviceDirectory(), info))
        m_strSavedPackagePath = info.strFilePath;
    else
        m_nResultCode = BackupEncryptFailed;

    if (online)
        prepareStageFolders();
}

std::shared_ptr<Model::Device> EngineerDocBackup::findDevice()
{
    std::shared_ptr<Model::Device> device = findDeviceByAddress(m_strDeviceIp);
    if (!device)
        m_nResultCode = BackupGetDeviceFailed;
    return device;
}

QString EngineerDocBackup::deviceDirectory() const
{
    return ICore::deviceConfigFilePath() + QDir::separator() + m_strDeviceIp;
}

QString EngineerDocBackup::stagingDirectory() const
{
    return deviceDirectory() + QDir::separator() + QLatin1Char('/');
}

void EngineerDocBackup::prepareStageFolders() const
{
    emptyFolder(stagingDirectory() + ProjectFileFacts::backgroundFolder);
    emptyFolder(stagingDirectory() + ProjectFileFacts::logoFolder);
    emptyFolder(stagingDirectory() + ProjectFileFacts::presetFolder);
}

bool EngineerDocBackup::stopIfCanceled()
{
    if (m_bCancel)
        m_nResultCode = BackupUserCanceled;
    return m_bCancel;
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
        const std::map<Materail::ParameterType, std::any> request{{Materail::Picture, QImage()}};
        if (!ModelControl::MaterialControl(background).queryMaterailData(request)) {
            m_nResultCode = m_bCancel ? BackupUserCanceled : BackupExportBkgFailed;
            return false;
        }
        writer.write(loadPicture(background->imageKey(), QImage::Format_RGB32),
                     stagingDirectory() + ProjectFileFacts::backgroundEntry(background->getKeyNo()));
    }
    return true;
}

// Unlike backgrounds, logos are in the image store already and are small: no query, no progress text.
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
                         stagingDirectory() + ProjectFileFacts::logoEntry(logo->getKeyNo()));
    }
    return true;
}

bool EngineerDocBackup::offlineResourcesComplete() const
{
    const std::shared_ptr<Model::Device> device = findDeviceByAddress(m_strDeviceIp);
    if (!device)
        return false;

    for (const Talvik::weak_refrence<Materail> &reference : device->getBKGs()) {
        const std::shared_ptr<Materail> background = reference.lock();
        if (background &&
            !QFile::exists(stagingDirectory() + ProjectFileFacts::backgroundEntry(background->getKeyNo())))
            return false;
    }
    for (const Talvik::weak_refrence<Materail> &reference : device->getLogos()) {
        const std::shared_ptr<Materail> logo = reference.lock();
        if (logo && !QFile::exists(stagingDirectory() + ProjectFileFacts::logoEntry(logo->getKeyNo())))
            return false;
    }
    return true;
}

bool EngineerDocBackup::LoadPreset()
{
    const std::shared_ptr<Model::Device> device = findDevice();
    if (!device)
        return false;

    const QString presetFolder =
        deviceDirectory() + QDir::separator() + ProjectFileFacts::presetFolder + QLatin1Char('/');
    QDir(presetFolder).removeRecursively();
    QDir().mkpath(presetFolder);

    for (const std::shared_ptr<Model::Preset> &preset : device->getPresets()) {
        if (stopIfCanceled())
            return false;
        QByteArray detail;
        if (!ModelControl::PresetControl(preset).presetFullDetail2Binary(detail)) {
            qDebug().nospace() << "Device [" << device->getName() << "] preset " << preset->getNumber()
                               << " could not be serialised";
            return false;
        }
        const QString path =
            presetFolder + QDir::separator() + QString::number(preset->getNumber()) + QStringLiteral(".RPst");
        if (!writePreset(path, detail, device->getName()))
            return false;
    }
    return true;
}

bool EngineerDocBackup::writePreset(const QString &path, const QByteArray &detail, const QString &deviceName)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qDebug().noquote()
            << QStringLiteral("Device [%1] serailize error,reason: %2").arg(deviceName, file.errorString());
        return false;
    }
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    // A null array would be streamed as the length 0xffffffff.
    stream << (detail.isNull() ? QByteArray("") : detail);
    if (!writeWhole(file, content)) {
        m_nResultCode = BackupEncryptFailed;
        return false;
    }
    return true;
}

} // namespace Internal
} // namespace ProjectFileCfg
