// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <host/core.h>

#include <functional>

class QThread;

namespace ProjectFileCfg {
namespace Internal {

class EngineerDocBackup;
class EngineerDocLoad;

/// What goes with the start and the end of a job. User-interface thread.
namespace RunningJob {

/// Tells the host which operation runs on a device from now on.
void announce(Core::ICore::OperatorDeviceType type);

/// At the end of a save, which may be null: true if the package at the path `next` waits to be applied, and the save
/// succeeded and left a valid package. A save may succeed without leaving one; then there is nothing to come back to,
/// and a line in the log says so.
bool isApplyDue(const EngineerDocBackup *backup, const QString &next);

/// After QThread::start(): false if the system has no thread for the job, which then never finishes.
bool hasStarted(const QThread &job);

/// Starts the thread of `job`, calls `connectAll`, and only then lets the thread begin its work. Otherwise the end of a
/// job that fails at once would be reported to nobody.
void startThenConnect(QThread &job, const std::function<void()> &connectAll);

/// For a load whose panel goes while it runs: when the job has been destroyed, and so its thread has ended, others may
/// use the device again. Then frees the device's channel and, unless another job was announced meanwhile, tells the
/// host that nothing runs: until then the job may have told it of one more picture.
void endAfterPanel(const EngineerDocLoad &load);

} // namespace RunningJob

} // namespace Internal
} // namespace ProjectFileCfg
