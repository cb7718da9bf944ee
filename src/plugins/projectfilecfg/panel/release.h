// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QThread>

namespace ProjectFileCfg {
namespace Internal {

/// Deletes, from the event loop, an object that nobody else owns, and sets the pointer to null. `panel` receives no
/// more signals from it. Does nothing if the pointer is null.
template<typename T>
void release(T *&object, QObject *panel)
{
    if (!object)
        return;
    QObject::disconnect(object, nullptr, panel, nullptr);
    object->deleteLater();
    object = nullptr;
}

/// The same for a job, which must not be deleted while its thread runs: it is deleted when the thread has finished.
template<typename Job>
void releaseJob(Job *&job, QObject *panel)
{
    if (!job)
        return;
    QObject::disconnect(job, nullptr, panel, nullptr);
    QObject::connect(job, &QThread::finished, job, &QObject::deleteLater);
    if (!job->isRunning())
        job->deleteLater();
    job = nullptr;
}

/// The same for a job that may be running and must end early.
template<typename Job>
void abandonJob(Job *&job, QObject *panel)
{
    if (job)
        job->cancel();
    releaseJob(job, panel);
}

} // namespace Internal
} // namespace ProjectFileCfg
