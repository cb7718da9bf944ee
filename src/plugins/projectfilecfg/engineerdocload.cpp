// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "engineerdocload.h"

#include "compatibility.h"
#include "devicedescription.h"
#include "devicelookup.h"
#include "offlineapply.h"
#include "onlineapply.h"
#include "packagecopy.h"
#include "packagelayout.h"
#include "packagereader.h"
#include "readinesscheck.h"
#include "zippackagehandle.h"

#include <host/core.h>

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
    m_pPackage.reset();
}

void EngineerDocLoad::failToStart()
{
    check([this] { return fail(LoadImportFailed, QStringLiteral("the system has no thread for it")); });
}

bool EngineerDocLoad::check(const std::function<bool()> &work)
{
    const bool isPassed = m_outcome.guarded(m_strPackagePath, m_bCancel, work);
    if (!isPassed)
        releasePackage();
    return isPassed;
}

bool EngineerDocLoad::checkPackageFile()
{
    return check([this] {
        if (m_strPackagePath.isEmpty() || !QFile::exists(m_strPackagePath))
            return fail(LoadFileContentError, QStringLiteral("there is no such file"));
        // The file first, so that nothing but a package is copied. Then the copy, since that is what is applied.
        return ZipPackageHandle::checkPacketChecksum(m_strPackagePath, m_outcome.reason()) && openPackage() &&
               ZipPackageHandle::checkPacketChecksum(*m_pPackage, m_outcome.reason());
    });
}

bool EngineerDocLoad::checkDevice()
{
    return check([this] {
        const std::shared_ptr<Model::Device> target = findDeviceByAddress(m_strDeviceIp);
        if (!target)
            return failWithoutDevice();
        m_bCheckedOnline = target->getDeviceOnlineFlag();
        QString reason;
        if (!readDescription() ||
            !passes(compareDevices(*m_pPackageDevice, *target, m_bCheckedOnline, &reason), reason))
            return false;
        ReadinessCheck readiness(*m_pPackage, *m_pPackageDevice, ICore::ExtractJsonPath());
        return passes(m_bCheckedOnline ? readiness.run(&reason) : readiness.runOffline(&reason), reason);
    });
}

bool EngineerDocLoad::confirmOnline(bool online)
{
    return check([this, online] {
        return m_bCheckedOnline == online ||
               fail(LoadImportFailed, QStringLiteral("the device went offline or came online before it was checked"));
    });
}

bool EngineerDocLoad::failWithoutDevice()
{
    return fail(LoadGetDeviceFailed, QStringLiteral("there is no device %1").arg(m_strDeviceIp));
}

bool EngineerDocLoad::openPackage()
{
    m_outcome.reason()->clear();
    return passes(openPackageCopy(m_strPackagePath, m_pPackage, m_outcome.reason()), *m_outcome.reason()) && m_pPackage;
}

bool EngineerDocLoad::readDescription()
{
    if (!PackageLayout::hasPackageExtension(m_strPackagePath))
        return fail(LoadJsonFileError, QStringLiteral("it does not have the extension of a package"));
    if (!m_pPackage && !openPackage())
        return m_outcome.code() == LoadSuccess ? fail(LoadJsonFileError, *m_outcome.reason()) : false;
    QString reason;
    return passes(readDeviceDescription(*m_pPackage, ICore::ExtractJsonPath(), m_pPackageDevice, &reason), reason);
}

std::shared_ptr<Model::Device> EngineerDocLoad::unserailizeDevice(const QString &path)
{
    QString error;
    std::shared_ptr<Model::Device> device = readDeviceDescription(path, error);
    if (!device && !error.isEmpty()) {
        // Not shown, since callers report their own code; kept for the debugger.
        const QString reason = tr("read device infomation [%1] failed,reason:%2").arg(path, error);
        Q_UNUSED(reason)
    }
    return device;
}

void EngineerDocLoad::run()
{
    m_bCancel = false;
    m_outcome.guarded(m_strPackagePath, m_bCancel, [this] { return apply(); });
    // The panel keeps the job for its result code; the copy must not take up disk space that long.
    releasePackage();
}

bool EngineerDocLoad::apply()
{
    const std::shared_ptr<Model::Device> target = findDeviceByAddress(m_strDeviceIp);
    if (!target || !m_pPackageDevice || !m_pPackage)
        return failWithoutDevice();
    takeIdentity(*m_pPackageDevice, *target, m_strDeviceIp);

    // The checks no longer hold: a device that went offline has been reset, and its hardware would stay empty; one that
    // came online was neither compared nor reset.
    if (target->getDeviceOnlineFlag() != m_bCheckedOnline)
        return fail(LoadImportFailed, QStringLiteral("the device went offline or came online after it was checked"));
    return m_bCheckedOnline ? applyOnline(target) : applyOffline(*target);
}

bool EngineerDocLoad::applyOffline(Model::Device &target)
{
    QString reason;
    const bool isCopied =
        passes(extractContent(*m_pPackage, m_strPackagePath, offlineFolder(m_strDeviceIp), &reason), reason) &&
        !stopIfCanceled();

    // Even after a failed copy, whose code stays.
    replaceModel(target, *m_pPackageDevice);
    if (!writeDeviceDescriptions())
        return isCopied && fail(LoadSerializeFailed, QStringLiteral("the host cannot write the description"));
    refreshThumbnails(target, offlineFolder(m_strDeviceIp));
    return isCopied && !stopIfCanceled();
}

bool EngineerDocLoad::copyConfigFileToDevice()
{
    // extractDescription() has logged the reason.
    return passes(extractDescription(m_strPackagePath, m_strDeviceIp), QString());
}

bool EngineerDocLoad::applyOnline(const std::shared_ptr<Model::Device> &target)
{
    OnlineApply online(*m_pPackage, m_pPackageDevice, target);
    if (!online.sendSlots())
        return fail(LoadImportFailed, QStringLiteral("the device did not accept MVR or the slots"));
    const bool isSent = onlineSend(online);
    // Even after a failed send. If this fails too, its code replaces the first one.
    if (!online.sendMvrItems())
        return fail(LoadImportFailed, QStringLiteral("the device did not accept the MVR items"));
    return isSent && !stopIfCanceled();
}

bool EngineerDocLoad::onlineSend(OnlineApply &online)
{
    if (!sendSourceToOnlineDevice(online) || stopIfCanceled())
        return false;
    emit signal_operatoerChanged(tr("Send Config to Device"));
    return online.sendConfiguration() ||
           fail(LoadImportFailed, QStringLiteral("the device did not accept the configuration"));
}

bool EngineerDocLoad::sendSourceToOnlineDevice(OnlineApply &online)
{
    while (online.hasPicture()) {
        QString reason;
        if (stopIfCanceled() || !passes(online.sendPicture({tr("LOGO:"), tr("BKG:")}, &reason), reason))
            return false;
    }
    return true;
}

} // namespace Internal
} // namespace ProjectFileCfg
