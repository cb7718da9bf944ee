#include "engineerdocload.h"

#include "contentscan.h"
#include "devicelookup.h"
#include "durablefile.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "picturedecoder.h"
#include "picturereader.h"
#include "zippackagehandle.h"

#include <core/icore.h>
#include <model/deviceconfigmanager.h>
#include <model/serailizer.h>
#include <modelcontrol/devicecontroler.h>

#include <QDateTime>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>

using Core::ICore;
using Model::Materail;
using ModelControl::DeviceControler;

namespace ProjectFileCfg {
namespace Internal {

using namespace PackageLayout;

/// Id of a device that is in no list.
static const quint16 unlistedDeviceId = 65535;
static const int defaultExchangePos = 8;

/// Slot types of the output card and of the exchange card that may take its place.
static const int outputCardType = 3;
static const int exchangeCardType = 5;

static const int smallThumbnailArea = 65536;
static const int largeThumbnailArea = 262144;

/// Pictures with larger files or more pixels are decoded at their turn only, since two are in memory otherwise.
static const qint64 maxSizeAhead = 32 * 1024 * 1024;
static const qint64 maxPixelsAhead = 16 * 1024 * 1024;

/// Tells a package from another one that takes its place.
static QPair<qint64, QDateTime> stampOf(const QString &path)
{
    const QFileInfo file(path);
    return {file.size(), file.lastModified()};
}

static QJsonDocument parseDescription(QFile &file, QJsonParseError &error)
{
    if (file.size() > PackageLimits::maxParsedDescriptionSize)
        return QJsonDocument();
    const QByteArray json = QString::fromUtf8(file.readAll()).toUtf8();
    DescriptionScan scan;
    scan.feed(json.constData(), json.size());
    return scan.parts() <= PackageLimits::maxDescriptionParts ? QJsonDocument::fromJson(json, &error) : QJsonDocument();
}

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

bool EngineerDocLoad::checkPackageFile()
{
    if (m_strPackagePath.isEmpty() || !QFile::exists(m_strPackagePath))
        return fail(LoadFileContentError);
    return ZipPackageHandle::checkPacketChecksum(m_strPackagePath);
}

bool EngineerDocLoad::checkDevice()
{
    const std::shared_ptr<Model::Device> target = findDeviceByAddress(m_strDeviceIp);
    if (!target)
        return fail(LoadGetDeviceFailed);

    // Before the description is read: a package that is replaced from here on must not pass for the one that was
    // checked.
    m_checkedPackage = stampOf(m_strPackagePath);
    m_bCheckedOnline = target->getDeviceOnlineFlag();
    const QStringList descriptions = ZipPackageHandle::extractJsonFiles(m_strPackagePath, ICore::ExtractJsonPath());
    if (descriptions.isEmpty())
        return fail(LoadJsonFileError);
    m_pPackageDevice = unserailizeDevice(descriptions.first());
    if (!m_pPackageDevice)
        return fail(LoadGetDeviceFailed);

    if (target->getModelID() != m_pPackageDevice->getModelID())
        return fail(LoadDeviceTypeMismatch);
    if (!m_bCheckedOnline)
        return true;
    if (!cardsAgree(*target))
        return fail(LoadCardMismatch);
    if (m_pPackageDevice->getCommunicationProtocolNumber() * 10 > target->getCommunicationProtocolNumber() * 10)
        return fail(LoadProtocolVersionMismatch);
    return true;
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
    QJsonParseError error{};
    const QJsonDocument document = parseDescription(file, error);
    if (document.isNull() || document.isEmpty()) {
        // Shown to nobody: whoever asked reports a code of its own. It helps whoever stops here in a debugger.
        const QString reason = tr("read device infomation [%1] failed,reason:%2").arg(path, error.errorString());
        Q_UNUSED(reason)
        return nullptr;
    }
    auto device = std::make_shared<Model::Device>(unlistedDeviceId, nullptr);
    device->fromJson(document.object());
    return device;
}

void EngineerDocLoad::run()
{
    m_bCancel = false;
    const std::shared_ptr<Model::Device> target = findDeviceByAddress(m_strDeviceIp);
    if (!target || !m_pPackageDevice) {
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

bool EngineerDocLoad::isCheckedPackage(const PackageReader &package) const
{
    // Asked when the package is open: a later replacement does not change what is read.
    return package.isOpen() && stampOf(m_strPackagePath) == m_checkedPackage;
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
    PackageReader package(m_strPackagePath);
    QStringList entries = package.entries();
    entries.erase(std::remove_if(entries.begin(), entries.end(), isDescription), entries.end());
    const bool extracted =
        isCheckedPackage(package) && std::all_of(entries.begin(), entries.end(), [&](const QString &entry) {
            return !package.extractFile(entry, QStringLiteral("%1/%2").arg(deviceFolder(), entry)).isEmpty();
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
    PackageReader package(m_strPackagePath);
    if (!isCheckedPackage(package))
        return fail(LoadDecompressFailed);
    const QStringList entries = package.entries();
    PictureDecoder decoder;
    auto ahead = entries.begin();
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        if (stopIfCanceled())
            return false;
        if (!isPicture(*entry))
            continue;
        if (ahead <= entry) {
            ahead = std::find_if(entry + 1, entries.end(), isGalleryPicture);
            if (ahead != entries.end())
                decodeAhead(package, *ahead, decoder);
        }
        const QString path = QStringLiteral("%1/%2").arg(ICore::ExtractJsonPath(), *entry);
        if (package.extractFile(*entry, path).isEmpty()) {
            qDebug() << "Extract file failed:" << path;
            return fail(LoadDecompressFailed);
        }
        if (!sendPicture(*entry, path, target, decoder))
            return false;
    }
    return true;
}

/// Has a picture decoded while the one before it is sent. What is wrong with it comes to light at its own turn,
/// when it is extracted and read as if nothing had been done before.
void EngineerDocLoad::decodeAhead(PackageReader &package, const QString &entry, PictureDecoder &decoder) const
{
    const std::shared_ptr<Materail> materail = findMaterail(entry);
    if (materail && qint64(materail->size().width()) * materail->size().height() <= maxPixelsAhead)
        decoder.begin(entry, package.read(entry, maxSizeAhead), materail->size());
}

std::shared_ptr<Materail> EngineerDocLoad::findMaterail(const QString &entry) const
{
    // Key numbers have 8 bits.
    const auto keyNo = static_cast<quint8>(galleryNumber(entry));
    for (const auto &reference : isLogo(entry) ? m_pPackageDevice->getLogos() : m_pPackageDevice->getBKGs()) {
        const std::shared_ptr<Materail> candidate = reference.lock();
        if (candidate && candidate->getKeyNo() == keyNo)
            return candidate;
    }
    return nullptr;
}

bool EngineerDocLoad::sendPicture(const QString &entry, const QString &path,
                                  const std::shared_ptr<Model::Device> &target, PictureDecoder &decoder)
{
    PictureReader picture(path);
    const QSize size = picture.size();
    if (size.width() < 1 || size.height() < 1)
        return fail(LoadImageContentError);

    if (!isInGallery(entry))
        return true;
    const std::shared_ptr<Materail> materail = findMaterail(entry);
    if (!materail || materail->size() != size)
        return fail(LoadGalleryFileError);
    QImage image = decoder.take(entry);
    // A cut file still tells its size, and so does one that is too large to be read.
    if (image.isNull())
        image = picture.read();
    if (image.isNull())
        return fail(LoadGalleryFileError);

    const bool toLogos = isLogo(entry);
    ICore::setOperatorType(ICore::OperatorLoad, (toLogos ? tr("LOGO:") : tr("BKG:")) + materail->getName());
    if (!DeviceControler(target).createMaterailFromImage(
            image, toLogos ? Materail::Logo : Materail::Background, QString(), 0, QSize(0, 0),
            galleryFolder(entry) + QLatin1Char('_') + QString::number(galleryNumber(entry))))
        return fail(LoadApplyGalleryFailed);
    if (!QFile::remove(path))
        qDebug() << "Remove file failed:" << path;
    return true;
}

} // namespace Internal
} // namespace ProjectFileCfg
