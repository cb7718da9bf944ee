#include "engineerdocload.h"

#include "devicedescription.h"
#include "devicelookup.h"
#include "durablefile.h"
#include "offlineroom.h"
#include "packagedpicture.h"
#include "packagelayout.h"
#include "packagereader.h"
#include "packagesnapshot.h"
#include "picturedecoder.h"
#include "picturereader.h"
#include "readinesscheck.h"
#include "zippackagehandle.h"

#include <core/icore.h>
#include <model/deviceconfigmanager.h>
#include <model/serailizer.h>
#include <modelcontrol/devicecontroler.h>

#include <QBuffer>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QHash>

#include <algorithm>
#include <cmath>
#include <exception>

using Core::ICore;
using Model::Materail;
using ModelControl::DeviceControler;

namespace ProjectFileCfg {
namespace Internal {

using namespace PackageLayout;

static const int defaultExchangePos = 8;

/// Slot types of the output card and of the exchange card that may take its place.
static const int outputCardType = 3;
static const int exchangeCardType = 5;

static const int smallThumbnailArea = 65536;
static const int largeThumbnailArea = 262144;

/// Pictures with larger files or more pixels are decoded at their turn only, since two are in memory otherwise.
static const qint64 maxSizeAhead = 32 * 1024 * 1024;
static const qint64 maxPixelsAhead = 16 * 1024 * 1024;

static bool slotsMatch(const Model::Slot &package, const Model::Slot &target, int exchangePos)
{
    const auto isOutputOrExchange = [](int type) { return type == outputCardType || type == exchangeCardType; };
    const bool typesAgree = package.getType() == target.getType() ||
                            (target.getPos() == exchangePos && isOutputOrExchange(package.getType()) &&
                             isOutputOrExchange(target.getType()));
    return typesAgree && package.getPos() == target.getPos() && package.getModelId() == target.getModelId();
}

static QImage thumbnailOf(const QImage &picture)
{
    // 32 bits, as the gallery has always computed it.
    const auto area =
        static_cast<qint32>(static_cast<quint32>(picture.width()) * static_cast<quint32>(picture.height()));
    if (area > smallThumbnailArea && area < largeThumbnailArea)
        return picture.scaled(picture.width() / 10, picture.height() / 10, Qt::IgnoreAspectRatio,
                              Qt::FastTransformation);
    if (area <= largeThumbnailArea)
        return picture;
    const double ratio = static_cast<double>(picture.width()) / picture.height();
    const float height = std::sqrt(static_cast<float>(largeThumbnailArea / ratio));
    return picture.scaled(static_cast<int>(height * ratio), static_cast<int>(height), Qt::IgnoreAspectRatio,
                          Qt::FastTransformation);
}

EngineerDocLoad::EngineerDocLoad(QObject *parent)
    : QThread(parent)
{}

EngineerDocLoad::~EngineerDocLoad() = default;

void EngineerDocLoad::setPackagePath(const QString &path)
{
    m_strPackagePath = path;
    releasePackage();
}

void EngineerDocLoad::setDeviceIp(const QString &ip)
{
    m_strDeviceIp = ip;
}

QString EngineerDocLoad::deviceIp() const
{
    return m_strDeviceIp;
}

void EngineerDocLoad::cancel()
{
    m_bCancel = true;
}

int EngineerDocLoad::resultCode() const
{
    return m_nResultCode;
}

bool EngineerDocLoad::fail(LoadResultCode code)
{
    m_nResultCode = code;
    return false;
}

bool EngineerDocLoad::stopIfCanceled()
{
    if (m_bCancel)
        m_nResultCode = LoadUserCanceled;
    return m_bCancel;
}

void EngineerDocLoad::releasePackage()
{
    m_package.reset();
}

template<typename Work>
bool EngineerDocLoad::guarded(const Work &work)
{
    try {
        return work();
    } catch (const std::exception &error) {
        qCritical().noquote() << "Import project file failed, exception:" << error.what();
    } catch (...) {
        qCritical() << "Import project file failed, unknown exception.";
    }
    return fail(LoadImportFailed);
}

bool EngineerDocLoad::checkPackageFile()
{
    const bool isRight = guarded([this] {
        if (m_strPackagePath.isEmpty() || !QFile::exists(m_strPackagePath))
            return fail(LoadFileContentError);
        // Asked of the file first, since what is no package is not worth a copy; what counts is the copy.
        return ZipPackageHandle::checkPacketChecksum(m_strPackagePath) && openPackage() &&
               ZipPackageHandle::checkPacketChecksum(*m_package);
    });
    if (!isRight)
        releasePackage();
    return isRight;
}

/// False without a code when there is no package any more.
bool EngineerDocLoad::openPackage()
{
    PackageSnapshot snapshot;
    QDir().mkpath(ICore::ExtractJsonPath());
    switch (snapshot.take(m_strPackagePath, {ICore::ExtractJsonPath(), QDir::tempPath()})) {
    case PackageSnapshot::Taken:
        m_package = std::make_unique<PackageReader>(snapshot.release());
        return true;
    case PackageSnapshot::Unreadable:
        return false;
    case PackageSnapshot::NoRoom:
        break;
    }
    qDebug() << "No room to copy the package:" << m_strPackagePath;
    return fail(LoadDecompressFailed);
}

bool EngineerDocLoad::checkDevice()
{
    const bool isFitting = guarded([this] { return isFittingDevice(); });
    if (!isFitting)
        releasePackage();
    return isFitting;
}

bool EngineerDocLoad::isFittingDevice()
{
    const std::shared_ptr<Model::Device> target = findDeviceByAddress(m_strDeviceIp);
    if (!target)
        return fail(LoadGetDeviceFailed);

    m_bCheckedOnline = target->getDeviceOnlineFlag();
    if (!readDescription())
        return false;

    if (target->getModelID() != m_pPackageDevice->getModelID())
        return fail(LoadDeviceTypeMismatch);
    ReadinessCheck readiness(*m_package, *m_pPackageDevice, ICore::ExtractJsonPath());
    if (!m_bCheckedOnline)
        return !readiness.hasTooManyPixels() || fail(LoadGalleryFileError);
    if (!cardsAgree(*target))
        return fail(LoadCardMismatch);
    if (m_pPackageDevice->getCommunicationProtocolNumber() * 10 > target->getCommunicationProtocolNumber() * 10)
        return fail(LoadProtocolVersionMismatch);
    const LoadResultCode code = readiness.run();
    return code == LoadSuccess || fail(code);
}

bool EngineerDocLoad::readDescription()
{
    if (!ProjectFileFacts::hasPackageExtension(m_strPackagePath))
        return fail(LoadJsonFileError);
    if (!m_package && !openPackage())
        return m_nResultCode == LoadSuccess ? fail(LoadJsonFileError) : false;
    const QStringList extracted = m_package->extractJsonFiles(ICore::ExtractJsonPath());
    if (extracted.isEmpty())
        return fail(LoadJsonFileError);
    const QStringList entries = m_package->entries();
    const QString entry = *std::find_if(entries.begin(), entries.end(), isDescription);
    QByteArray description =
        extracted.first().isEmpty() ? QByteArray() : m_package->read(entry, PackageReader::maxSizeOf(entry));
    QBuffer buffer(&description);
    QString error;
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    m_pPackageDevice = readDeviceDescription(buffer, error);
    return m_pPackageDevice || fail(LoadGetDeviceFailed);
}

bool EngineerDocLoad::cardsAgree(const Model::Device &target)
{
    const auto targetSlots = target.getSlots();
    const auto packageSlots = m_pPackageDevice->getSlots();
    if (targetSlots.size() != packageSlots.size())
        return false;

    const Model::s_DeviceConfig *config =
        Model::DeviceConfigManager::instance()->findDeviceConfigByID(m_pPackageDevice->getModelID());
    const int exchangePos = config ? config->exchangePos : defaultExchangePos;
    return std::all_of(targetSlots.begin(), targetSlots.end(), [&](const std::shared_ptr<Model::Slot> &targetSlot) {
        return std::any_of(packageSlots.begin(), packageSlots.end(),
                           [&](const std::shared_ptr<Model::Slot> &packageSlot) {
                               return packageSlot && targetSlot && slotsMatch(*packageSlot, *targetSlot, exchangePos);
                           });
    });
}

std::shared_ptr<Model::Device> EngineerDocLoad::unserailizeDevice(const QString &path)
{
    if (!QFile::exists(path))
        return nullptr;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug().noquote() << QStringLiteral("Open file [%1] failed").arg(path);
        return nullptr;
    }
    QString error;
    const std::shared_ptr<Model::Device> device = readDeviceDescription(file, error);
    if (!device) {
        // Shown to nobody: whoever asked reports a code of its own. It helps whoever stops here in a debugger.
        const QString reason = tr("read device infomation [%1] failed,reason:%2").arg(path, error);
        Q_UNUSED(reason)
    }
    return device;
}

void EngineerDocLoad::run()
{
    m_bCancel = false;
    guarded([this] {
        apply();
        return m_nResultCode == LoadSuccess;
    });
    // The job lives on, for its code.
    releasePackage();
}

void EngineerDocLoad::apply()
{
    const std::shared_ptr<Model::Device> target = findDeviceByAddress(m_strDeviceIp);
    if (!target || !m_pPackageDevice || !m_package) {
        fail(LoadGetDeviceFailed);
        return;
    }

    m_pPackageDevice->setIPAddress(m_strDeviceIp);
    m_pPackageDevice->setNetMask(target->getNetMask());
    m_pPackageDevice->setGateWay(target->getGateWay());
    m_pPackageDevice->setMAC(target->getMAC());
    m_pPackageDevice->setId(target->getId());
    m_pPackageDevice->setCommunicationProtocol(target->getCommunicationProtocolNumber());

    // What was checked and done before does not hold for the other kind of device: one that went offline has been reset
    // and would stay empty, one that came online has neither been compared nor reset.
    if (target->getDeviceOnlineFlag() != m_bCheckedOnline)
        fail(LoadImportFailed);
    else if (m_bCheckedOnline)
        applyOnline(target);
    else
        applyOffline(target);
}

// ---------------------------------------------------------------------------------------------------------------------
// Offline

void EngineerDocLoad::applyOffline(const std::shared_ptr<Model::Device> &target)
{
    const bool copied = offlineCopy();

    // The model is replaced even when files are missing; the code of the copy tells the operator.
    target->clearAll(true);
    target->clearMaterial();
    target->clearPreset();
    target->fromJson(m_pPackageDevice->toJson());
    if (!Model::Serailizer(ICore::deviceConfigFilePath()).serailize()) {
        qDebug() << "Fail to serailize model data.";
        if (copied)
            fail(LoadSerializeFailed);
        return;
    }

    QHash<QString, QImage> thumbnails;
    for (const auto &materails : {target->getBKGs(), target->getLogos()}) {
        for (const Talvik::weak_refrence<Materail> &reference : materails) {
            if (const std::shared_ptr<Materail> materail = reference.lock())
                refreshThumbnail(*materail, thumbnails);
        }
    }
    if (copied)
        stopIfCanceled();
}

bool EngineerDocLoad::offlineCopy()
{
    return copySourceToOfflineDevice() && !stopIfCanceled();
}

QString EngineerDocLoad::deviceFolder() const
{
    return QStringLiteral("%1/%2/").arg(ICore::deviceConfigFilePath(), m_strDeviceIp);
}

bool EngineerDocLoad::copySourceToOfflineDevice()
{
    if (!fitsPackageAfterwards(*m_package, deviceFolder())) {
        qDebug() << "More than a package holds would be in" << deviceFolder();
        return fail(LoadDecompressFailed);
    }
    QStringList entries = m_package->entries();
    entries.erase(std::remove_if(entries.begin(), entries.end(), isDescription), entries.end());
    const bool extracted = std::all_of(entries.begin(), entries.end(), [&](const QString &entry) {
        return !m_package->extractFile(entry, QStringLiteral("%1/%2").arg(deviceFolder(), entry)).isEmpty();
    });
    // On the disk before the description that names them, which the host writes next.
    if (!extracted || (!entries.isEmpty() && !DurableFile::flushTree(deviceFolder()))) {
        qDebug() << "Extract json file failed:" << m_strPackagePath;
        return fail(LoadDecompressFailed);
    }
    return true;
}

bool EngineerDocLoad::copyConfigFileToDevice()
{
    PackageReader package(m_strPackagePath);
    const QStringList entries = package.fileList();
    const auto description = std::find_if(entries.begin(), entries.end(), isDescription);
    if (description == entries.end())
        return true;
    const QString target = QStringLiteral("%1/%2.json").arg(deviceFolder(), m_strDeviceIp);
    QFile::remove(target);
    if (package.extractFile(*description, target).isEmpty()) {
        qDebug() << "Extract json file failed:" << m_strPackagePath;
        return fail(LoadDecompressFailed);
    }
    return true;
}

void EngineerDocLoad::refreshThumbnail(Materail &materail, QHash<QString, QImage> &known) const
{
    QString path;
    if (materail.getType() == Materail::Background)
        path = deviceFolder() + PackageLayout::backgroundEntry(materail.getKeyNo());
    else if (materail.getType() == Materail::Logo)
        path = deviceFolder() + PackageLayout::logoEntry(materail.getKeyNo());
    // Any number of them may have the same number, and so the same picture.
    auto thumbnail = known.find(path);
    if (thumbnail == known.end())
        thumbnail = known.insert(path, thumbnailOf(PictureReader(path).read()));
    materail.setThumb(*thumbnail);
}

// ---------------------------------------------------------------------------------------------------------------------
// Online

void EngineerDocLoad::applyOnline(const std::shared_ptr<Model::Device> &target)
{
    DeviceControler packageControler(m_pPackageDevice);
    DeviceControler targetControler(target);

    if (targetControler.canMVEEnable()) {
        QString errorText;
        if (!targetControler.enableMVR(m_pPackageDevice->getMVREnabled(), errorText)) {
            qWarning().noquote() << "enable(disable) MVR failed: " << errorText;
            fail(LoadImportFailed);
            return;
        }
    }
    if (!targetControler.copySlotDataToDevice(m_pPackageDevice)) {
        qWarning() << "set slot data failed.";
        fail(LoadImportFailed);
        return;
    }
    const bool sent = onlineSend(target);
    // Also after a failed send, whose code it replaces when it fails as well.
    if (m_pPackageDevice->getMVREnabled() && !packageControler.copyMVRItemDataToDevice()) {
        fail(LoadImportFailed);
        return;
    }
    if (sent)
        stopIfCanceled();
}

bool EngineerDocLoad::onlineSend(const std::shared_ptr<Model::Device> &target)
{
    if (!sendSourceToOnlineDevice(target) || stopIfCanceled())
        return false;
    emit signal_operatoerChanged(tr("Send Config to Device"));
    if (!DeviceControler(m_pPackageDevice).copyModelToDevice())
        return fail(LoadImportFailed);
    return true;
}

bool EngineerDocLoad::sendSourceToOnlineDevice(const std::shared_ptr<Model::Device> &target)
{
    const QStringList entries = m_package->entries();
    PictureDecoder decoder(1);
    auto ahead = entries.begin();
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        if (stopIfCanceled())
            return false;
        if (!isPicture(*entry))
            continue;
        if (ahead <= entry) {
            ahead = std::find_if(entry + 1, entries.end(), isPicture);
            if (ahead != entries.end())
                decodeAhead(*ahead, decoder);
        }
        if (!sendPicture(*entry, target, decoder))
            return false;
    }
    return true;
}

/// Has a picture decoded while the one before it is sent. What is wrong with it comes to light at its own turn,
/// when it is read as if nothing had been done before.
void EngineerDocLoad::decodeAhead(const QString &entry, PictureDecoder &decoder)
{
    PackagedPicture picture(entry, *m_pPackageDevice);
    const QSize size = picture.materail() ? picture.materail()->size() : QSize();
    const bool isSmall =
        qint64(size.width()) * size.height() <= maxPixelsAhead && m_package->entrySize(entry) <= maxSizeAhead;
    if (picture.materail() && isSmall && picture.open(*m_package, ICore::ExtractJsonPath()) == LoadSuccess)
        decoder.begin(entry, picture.content(), size);
}

bool EngineerDocLoad::sendPicture(const QString &entry, const std::shared_ptr<Model::Device> &target,
                                  PictureDecoder &decoder)
{
    const QString path = QStringLiteral("%1/%2").arg(ICore::ExtractJsonPath(), entry);
    const bool isExtracted = !m_package->extractFile(entry, path).isEmpty();
    if (!isExtracted)
        qDebug() << "Extract file failed:" << path;
    PackagedPicture picture(entry, *m_pPackageDevice);
    QImage image = decoder.take(entry);
    if (image.isNull()) {
        const LoadResultCode code = picture.open(*m_package, ICore::ExtractJsonPath());
        if (code != LoadSuccess)
            return fail(code);
        if (!picture.isOfGallery())
            return true;
        image = PictureReader(picture.content().get()).read();
    }
    // A cut file still tells its size, and so does one that is too large to be read.
    if (image.isNull())
        return fail(LoadGalleryFileError);

    ICore::setOperatorType(ICore::OperatorLoad,
                           (picture.isLogo() ? tr("LOGO:") : tr("BKG:")) + picture.materail()->getName());
    if (!DeviceControler(target).createMaterailFromImage(
            image, picture.isLogo() ? Materail::Logo : Materail::Background, QString(), 0, QSize(0, 0), picture.name()))
        return fail(LoadApplyGalleryFailed);
    if (isExtracted && !QFile::remove(path))
        qDebug() << "Remove file failed:" << path;
    return true;
}

} // namespace Internal
} // namespace ProjectFileCfg
