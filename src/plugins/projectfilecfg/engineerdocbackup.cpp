#include "engineerdocbackup.h"

#include "devicelookup.h"
#include "durablefile.h"
#include "encodedpictures.h"
#include "packagelayout.h"
#include "picturewriter.h"
#include "projectfilefacts.h"
#include "replacingfile.h"
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

#include <exception>

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

static void emptyStageFolders(const QString &stagingDirectory)
{
    emptyFolder(stagingDirectory + PackageLayout::backgroundFolder);
    emptyFolder(stagingDirectory + PackageLayout::logoFolder);
    emptyFolder(stagingDirectory + PackageLayout::presetFolder);
}

namespace {

/// The files that the save of an online device stages: only the package keeps them, however the save ends.
class StagedFiles
{
public:
    explicit StagedFiles(const QString &stagingDirectory)
        : m_stagingDirectory(stagingDirectory)
    {
        emptyStageFolders(m_stagingDirectory);
    }
    ~StagedFiles() { emptyStageFolders(m_stagingDirectory); }

private:
    Q_DISABLE_COPY(StagedFiles)

    const QString m_stagingDirectory;
};

} // namespace

static QImage loadPicture(const QString &imageKey, QImage::Format format)
{
    const ImageStorager *store = ImageStorager::instance();
    return store ? store->load(imageKey, format).toImage() : QImage();
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
    m_strSavedPackagePath.clear();
    try {
        save();
    } catch (const std::exception &exception) {
        qCritical() << "The save ended with an exception:" << exception.what();
        m_nResultCode = BackupEncryptFailed;
    } catch (...) {
        qCritical() << "The save ended with an exception";
        m_nResultCode = BackupEncryptFailed;
    }
}

void EngineerDocBackup::save()
{
    const QString packagePath = m_strProjectPath + m_strProjectName + ProjectFileFacts::packageExtension;
    const DurableFile::FileIdentity previous(ReplacingFile::targetBehind(packagePath));

    if (!Model::Serailizer(ICore::deviceConfigFilePath()).serailize()) {
        qDebug() << "Fail to serailize model data.";
        m_nResultCode = BackupSaveJsonFailed;
        return;
    }

    const std::shared_ptr<Model::Device> device = findDevice();
    if (!device)
        return;

    std::unique_ptr<StagedFiles> stagedFiles;
    if (device->getDeviceOnlineFlag()) {
        stagedFiles = std::make_unique<StagedFiles>(stagingDirectory());
        if (!exportPictures())
            return;
    } else if (!offlineResourcesComplete()) {
        m_nResultCode = BackupOfflineResourceIncomplete;
        return;
    }

    if (m_bCancel || !LoadPreset())
        return;
    pack(packagePath, previous);
}

void EngineerDocBackup::pack(const QString &packagePath, const DurableFile::FileIdentity &previous)
{
    // This one folder alone: a name that leads into another one may be mistyped.
    if (!DurableFile::makeFolder(m_strProjectPath)) {
        fail(QStringLiteral("%1 cannot be made").arg(m_strProjectPath));
        return;
    }
    EngineerPacketInfo info;
    info.strFilePath = packagePath;
    info.strProjectName = m_strProjectName;
    info.strComment = m_strComment;
    QString reason;
    if (!ZipPackageHandle::compressEngineerPacket(deviceDirectory(), info, {m_hashStaged, previous}, &reason))
        fail(reason);
    else if (ZipPackageHandle::isValidEngineerPacket(packagePath))
        m_strSavedPackagePath = packagePath;
}

bool EngineerDocBackup::fail(const QString &reason)
{
    qDebug().noquote() << "Save failed:" << reason;
    m_nResultCode = BackupEncryptFailed;
    return false;
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

QString EngineerDocBackup::presetDirectory() const
{
    return deviceDirectory() + QDir::separator() + PackageLayout::presetFolder + QLatin1Char('/');
}

bool EngineerDocBackup::stopIfCanceled()
{
    if (m_bCancel)
        m_nResultCode = BackupUserCanceled;
    return m_bCancel;
}

bool EngineerDocBackup::exportPictures()
{
    // A picture that cannot be written does not end the save, so fetching the next one need not wait for it.
    PictureWriter writer(m_pEncodedPictures);
    if (!exportBackgrounds(writer) || !exportLogos(writer))
        return false;

    const bool hasPictures = writer.hasPictures();
    const bool areWhole = writer.waitForDone();
    // Pressed before the last one was written.
    if (hasPictures && stopIfCanceled())
        return false;
    if (!areWhole)
        return fail(QStringLiteral("a picture in %1 is cut").arg(stagingDirectory()));
    const QHash<QString, qint64> written = writer.written();
    for (auto picture = written.begin(); picture != written.end(); ++picture)
        m_hashStaged.insert(picture.key().mid(stagingDirectory().size()), picture.value());
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
        const std::map<Materail::ParameterType, std::any> request{{Materail::Picture, QImage()}};
        if (!ModelControl::MaterialControl(background).queryMaterailData(request)) {
            m_nResultCode = m_bCancel ? BackupUserCanceled : BackupExportBkgFailed;
            return false;
        }
        writer.write(loadPicture(background->imageKey(), QImage::Format_RGB32),
                     stagingDirectory() + PackageLayout::backgroundEntry(background->getKeyNo()));
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
                         stagingDirectory() + PackageLayout::logoEntry(logo->getKeyNo()));
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
        if (background && !QFile::exists(stagingDirectory() + PackageLayout::backgroundEntry(background->getKeyNo())))
            return false;
    }
    for (const Talvik::weak_refrence<Materail> &reference : device->getLogos()) {
        const std::shared_ptr<Materail> logo = reference.lock();
        if (logo && !QFile::exists(stagingDirectory() + PackageLayout::logoEntry(logo->getKeyNo())))
            return false;
    }
    return true;
}

bool EngineerDocBackup::LoadPreset()
{
    const std::shared_ptr<Model::Device> device = findDevice();
    if (!device)
        return false;

    QDir(presetDirectory()).removeRecursively();
    if (!QDir().mkpath(presetDirectory()))
        return fail(QStringLiteral("%1 cannot be made").arg(presetDirectory()));

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
    QFile file(deviceDirectory() + QDir::separator() + entry);
    const auto open = [&file] { return file.open(QIODevice::WriteOnly | QIODevice::Truncate); };
    if (!open()) {
        const QString reason = file.errorString();
        // Another program that saves this device removes the folder, and makes it anew.
        if (!QDir(presetDirectory()).exists())
            return fail(QStringLiteral("%1 was removed").arg(presetDirectory()));
        if (!open()) {
            qDebug().noquote() << QStringLiteral("Device [%1] serailize error,reason: %2").arg(deviceName, reason);
            return false;
        }
    }
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    // A null array would be streamed as the length 0xffffffff.
    stream << (detail.isNull() ? QByteArray("") : detail);
    if (!writeWhole(file, content))
        return fail(QStringLiteral("%1 is cut").arg(file.fileName()));
    m_hashStaged.insert(entry, content.size());
    return true;
}

} // namespace Internal
} // namespace ProjectFileCfg
