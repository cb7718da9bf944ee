#include "engineerdocload.h"

#include "compatibility.h"
#include "devicedescription.h"
#include "devicelookup.h"
#include "exceptionguard.h"
#include "offlineapply.h"
#include "onlineapply.h"
#include "packagecopy.h"
#include "packagereader.h"
#include "projectfilefacts.h"
#include "readinesscheck.h"
#include "zippackagehandle.h"

#include <core/icore.h>

#include <QFile>

using Core::ICore;

namespace ProjectFileCfg {
namespace Internal {

EngineerDocLoad::EngineerDocLoad(QObject *parent)
    : QThread(parent)
{}

EngineerDocLoad::~EngineerDocLoad() = default;

void EngineerDocLoad::setPackagePath(const QString &path)
{
    m_strPackagePath = path;
    releasePackage();
}

void EngineerDocLoad::releasePackage()
{
    m_package.reset();
}

bool EngineerDocLoad::fail(LoadResultCode code)
{
    m_nResultCode = code;
    return false;
}

bool EngineerDocLoad::stopIfCanceled()
{
    return m_bCancel && !fail(LoadUserCanceled);
}

bool EngineerDocLoad::guarded(const std::function<bool()> &work)
{
    bool isDone = false;
    const bool hasEnded = runGuarded("Import project file failed, exception", [&] { isDone = work(); });
    return hasEnded ? isDone : fail(LoadImportFailed);
}

bool EngineerDocLoad::check(const std::function<bool()> &work)
{
    const bool isPassed = guarded(work);
    if (!isPassed)
        releasePackage();
    return isPassed;
}

bool EngineerDocLoad::checkPackageFile()
{
    return check([this] {
        if (m_strPackagePath.isEmpty() || !QFile::exists(m_strPackagePath))
            return fail(LoadFileContentError);
        // Asked of the file first, since what is no package is not worth a copy; what counts is the copy.
        return ZipPackageHandle::checkPacketChecksum(m_strPackagePath) && openPackage() &&
               ZipPackageHandle::checkPacketChecksum(*m_package);
    });
}

bool EngineerDocLoad::checkDevice()
{
    return check([this] {
        const std::shared_ptr<Model::Device> target = findDeviceByAddress(m_strDeviceIp);
        if (!target)
            return fail(LoadGetDeviceFailed);
        m_bCheckedOnline = target->getDeviceOnlineFlag();
        if (!readDescription() || !passes(compareDevices(*m_pPackageDevice, *target, m_bCheckedOnline)))
            return false;
        ReadinessCheck readiness(*m_package, *m_pPackageDevice, ICore::ExtractJsonPath());
        return passes(m_bCheckedOnline ? readiness.run() : readiness.runOffline());
    });
}

bool EngineerDocLoad::openPackage()
{
    return passes(openPackageCopy(m_strPackagePath, m_package)) && m_package;
}

bool EngineerDocLoad::readDescription()
{
    if (!ProjectFileFacts::hasPackageExtension(m_strPackagePath))
        return fail(LoadJsonFileError);
    if (!m_package && !openPackage())
        return m_nResultCode == LoadSuccess ? fail(LoadJsonFileError) : false;
    return passes(readDeviceDescription(*m_package, ICore::ExtractJsonPath(), m_pPackageDevice));
}

std::shared_ptr<Model::Device> EngineerDocLoad::unserailizeDevice(const QString &path)
{
    QString error;
    std::shared_ptr<Model::Device> device = readDeviceDescription(path, error);
    if (!device && !error.isEmpty()) {
        // Shown to nobody: whoever asked reports a code of its own. It helps whoever stops here in a debugger.
        const QString reason = tr("read device infomation [%1] failed,reason:%2").arg(path, error);
        Q_UNUSED(reason)
    }
    return device;
}

void EngineerDocLoad::run()
{
    m_bCancel = false;
    guarded([this] { return apply(); });
    // The job lives on, for its code.
    releasePackage();
}

bool EngineerDocLoad::apply()
{
    const std::shared_ptr<Model::Device> target = findDeviceByAddress(m_strDeviceIp);
    if (!target || !m_pPackageDevice || !m_package)
        return fail(LoadGetDeviceFailed);
    takeIdentity(*m_pPackageDevice, *target, m_strDeviceIp);

    // What was checked and done before does not hold for the other kind of device: one that went offline has been reset
    // and would stay empty, one that came online has neither been compared nor reset.
    if (target->getDeviceOnlineFlag() != m_bCheckedOnline)
        return fail(LoadImportFailed);
    return m_bCheckedOnline ? applyOnline(target) : applyOffline(*target);
}

bool EngineerDocLoad::applyOffline(Model::Device &target)
{
    const bool isCopied = copySourceToOfflineDevice() && !stopIfCanceled();

    // Also after a failed copy, whose code stays and tells the operator.
    replaceModel(target, *m_pPackageDevice);
    if (!writeDeviceDescriptions())
        return isCopied && fail(LoadSerializeFailed);
    refreshThumbnails(target, offlineFolder(m_strDeviceIp));
    return isCopied && !stopIfCanceled();
}

bool EngineerDocLoad::copySourceToOfflineDevice()
{
    return passes(extractContent(*m_package, m_strPackagePath, offlineFolder(m_strDeviceIp)));
}

bool EngineerDocLoad::copyConfigFileToDevice()
{
    return passes(extractDescription(m_strPackagePath, m_strDeviceIp));
}

bool EngineerDocLoad::applyOnline(const std::shared_ptr<Model::Device> &target)
{
    OnlineApply online(*m_package, m_pPackageDevice, target, {tr("LOGO:"), tr("BKG:")});
    if (!online.sendSlots())
        return fail(LoadImportFailed);
    const bool isSent = onlineSend(online);
    // Also after a failed send, whose code it replaces when it fails as well.
    if (!online.sendMvrItems())
        return fail(LoadImportFailed);
    return isSent && !stopIfCanceled();
}

bool EngineerDocLoad::onlineSend(OnlineApply &online)
{
    if (!sendSourceToOnlineDevice(online) || stopIfCanceled())
        return false;
    emit signal_operatoerChanged(tr("Send Config to Device"));
    return online.sendConfiguration() || fail(LoadImportFailed);
}

bool EngineerDocLoad::sendSourceToOnlineDevice(OnlineApply &online)
{
    while (online.hasPicture()) {
        if (stopIfCanceled() || !passes(online.sendPicture()))
            return false;
    }
    return true;
}

} // namespace Internal
} // namespace ProjectFileCfg
