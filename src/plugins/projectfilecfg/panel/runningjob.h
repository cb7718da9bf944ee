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

/// What the panel does at the start and the end of a job. User-interface thread.
namespace RunningJob {

/// Tells the host which operation runs on a device from now on.
void announce(Core::ICore::OperatorDeviceType type);

/// At the end of a save, which may be null: true if the package at the path `next` waits to be applied, and the save
/// succeeded and left a valid package. A save may succeed without leaving one; the device could not be restored then,
/// so the answer is false, and logged.
bool isApplyDue(const EngineerDocBackup *backup, const QString &next);

/// Call after the thread of `job` was started. True if it runs. If the system has no thread for the job, which then
/// never finishes, has the job fail, calls `end` in place of the signal, and returns false.
template<typename Job>
bool hasStarted(Job &job, const std::function<void()> &end)
{
    if (job.isRunning() || job.isFinished())
        return true;
    job.failToStart();
    end();
    return false;
}

/// Starts the thread of `job`, calls `connectAll`, and only then lets the thread begin its work. Otherwise nobody would
/// be told of the end of a job that fails at once.
void startThenConnect(QThread &job, const std::function<void()> &connectAll);

/// At the end of a load, which may be null: frees the channel of its device, unless that is the selected one. The host
/// may have activated another device since the load began, and so changed the selection.
void freeChannelOfLoad(const EngineerDocLoad *load, const QString &selectedAddress);

/// For a load whose panel is deleted while it runs. Once the job has been destroyed, and so its thread has ended, frees
/// the device's channel and, unless another job was announced meanwhile, tells the host that nothing runs: until then
/// the job may have named one more picture to it.
void endAfterPanel(const EngineerDocLoad &load);

} // namespace RunningJob

} // namespace Internal
} // namespace ProjectFileCfg
