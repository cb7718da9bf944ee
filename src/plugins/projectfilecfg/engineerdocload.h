// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "loadoutcome.h"
#include "operationresultcodes.h"

#include <host/fwd.h>

#include <QString>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>

namespace ProjectFileCfg {
namespace Internal {

class OnlineApply;
class PackageReader;

/// The job that applies a project file to one device, online or offline.
///
/// The two checks run on the caller's thread, before start(); the job changes the device on its own thread. Every
/// failure sets a LoadResultCode, an exception from the host LoadImportFailed. Use one object for one run.
///
/// The package is copied before the first check (see PackageSnapshot), and the copy is kept until the end of the run,
/// so that what was checked is what is applied. Descriptions and pictures are also extracted to the host's extraction
/// folder, where other software expects them, but never applied from there.
///
/// The caller resets an online device between checkDevice() and the run. So the check fails, with the same code, for
/// everything that would make the run refuse the package. During the run, a failed extraction is no reason to stop: the
/// device gets the picture as long as its content can be read.
class EngineerDocLoad : public QThread
{
    Q_OBJECT

public:
    explicit EngineerDocLoad(QObject *parent);
    ~EngineerDocLoad() override;

    void setPackagePath(const QString &path);
    void setDeviceIp(const QString &ip) { m_strDeviceIp = ip; }
    QString deviceIp() const { return m_strDeviceIp; }

    /// True if the package exists and its checksum is right. A wrong checksum leaves the result code at LoadSuccess, so
    /// that nothing is shown: the list does not offer such a package. LoadDecompressFailed if there is no room for the
    /// copy.
    bool checkPackageFile();
    /// True if the package's device description, which run() uses, fits the target device, and its pictures do not have
    /// too many pixels in total. For an online device, also only if every picture has a place there and can be
    /// extracted, read to its end and decoded (see ReadinessCheck).
    bool checkDevice();
    /// After it: true if it found the device online or offline, as the caller did before. A device that dropped out or
    /// came meanwhile would be reset without having been checked for that, or changed without a reset.
    bool confirmOnline(bool online);

    /// Releases the copy of the package and its disk space. Call it if there will be no run, not during a run.
    void releasePackage();
    /// Instead of a run, for which the system has no thread: ends with LoadImportFailed.
    void failToStart();

    /// Asks the job to end before the next picture, or to report the cancellation once the transfer is over. Any
    /// thread; a request before the thread has started is lost.
    void cancel() { m_bCancel = true; }

    /// The LoadResultCode; valid after a check returned false, or once QThread::finished was emitted.
    int resultCode() const { return m_outcome.code(); }

    /// Reads a device description that the host has written. Null if the file cannot be read, is not a JSON document
    /// with content, or is too large (see readDeviceDescription()). Caller's thread.
    std::shared_ptr<Model::Device> unserailizeDevice(const QString &path);

    /// Extracts the device description to the target's directory under the target's address. Also true if the package
    /// has none. run() does not use it: an offline device gets its description from its model.
    bool copyConfigFileToDevice();

signals:
    /// Progress for the waiting dialog, emitted from the job's thread (the name is part of the interface).
    void signal_operatoerChanged(const QString &strOperType);

protected:
    void run() override;

private:
    /// Runs a check. One that fails releases the package, since no run will follow.
    bool check(const std::function<bool()> &work);
    /// False, without a code, if the package no longer exists.
    bool openPackage();
    bool readDescription();
    bool apply();
    bool applyOffline(Model::Device &target);
    bool applyOnline(const std::shared_ptr<Model::Device> &target);
    bool onlineSend(OnlineApply &online);
    bool sendSourceToOnlineDevice(OnlineApply &online);
    bool fail(LoadResultCode code, const QString &reason = QString()) { return m_outcome.fail(code, reason); }
    bool passes(LoadResultCode code, const QString &reason) { return m_outcome.passes(code, reason); }
    bool failWithoutDevice();
    bool stopIfCanceled() { return m_bCancel && !fail(LoadUserCanceled); }

    std::atomic<bool> m_bCancel{false};
    QString m_strPackagePath;
    QString m_strDeviceIp;
    std::shared_ptr<Model::Device> m_pPackageDevice;
    /// The copy; null before the first check and after the run.
    std::unique_ptr<PackageReader> m_pPackage;
    /// Whether the device was online at the check.
    bool m_bCheckedOnline = false;
    /// Of the last check or of the run.
    LoadOutcome m_outcome;
};

} // namespace Internal
} // namespace ProjectFileCfg
