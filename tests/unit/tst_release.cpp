// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "release.h"

#include <support/testmain.h>

#include <QPointer>
#include <QSemaphore>

using namespace ProjectFileCfg::Internal;

namespace {

/// Runs until it is let go or cancelled.
class Job : public QThread
{
public:
    ~Job() override
    {
        mayEnd.release();
        wait();
    }

    void cancel() { mayEnd.release(); }

    QSemaphore mayEnd;

protected:
    void run() override { mayEnd.acquire(); }
};

} // namespace

/// What the panel lets go of while it may still be at work.
class TstRelease : public QObject
{
    Q_OBJECT

private slots:
    void nothing_is_released_without_an_object();
    void released_object_is_deleted_and_disconnected();
    void idle_job_is_deleted_at_once();
    void running_job_is_deleted_after_it_finished();
    void an_abandoned_job_is_cancelled();

private:
    /// Deletes what is due. True if the object is gone then.
    static bool isGone(const QPointer<QObject> &object)
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return !object;
    }
};

void TstRelease::nothing_is_released_without_an_object()
{
    QObject panel;
    QObject *object = nullptr;
    Job *job = nullptr;
    release(object, &panel);
    releaseJob(job, &panel);
    abandonJob(job, &panel);
    QVERIFY(!object && !job);
}

void TstRelease::released_object_is_deleted_and_disconnected()
{
    QObject panel;
    int told = 0;
    auto *object = new QObject;
    const QPointer<QObject> kept(object);
    connect(object, &QObject::objectNameChanged, &panel, [&told] { ++told; });
    release(object, &panel);
    QVERIFY(!object);
    kept->setObjectName("late");
    QCOMPARE(told, 0);
    QVERIFY(isGone(kept));
}

void TstRelease::idle_job_is_deleted_at_once()
{
    QObject panel;
    auto *job = new Job;
    const QPointer<QObject> kept(job);
    releaseJob(job, &panel);
    QVERIFY(!job);
    QVERIFY(isGone(kept));
}

void TstRelease::running_job_is_deleted_after_it_finished()
{
    QObject panel;
    int told = 0;
    auto *job = new Job;
    const QPointer<Job> kept(job);
    connect(job, &QThread::finished, &panel, [&told] { ++told; });
    job->start();
    releaseJob(job, &panel);
    QVERIFY(!job);
    QVERIFY(!isGone(kept.data()));
    kept->mayEnd.release();
    QTRY_VERIFY(!kept);
    QCOMPARE(told, 0);
}

void TstRelease::an_abandoned_job_is_cancelled()
{
    QObject panel;
    auto *job = new Job;
    const QPointer<Job> kept(job);
    job->start();
    abandonJob(job, &panel);
    QVERIFY(!job);
    // Nobody else lets it go.
    QTRY_VERIFY(!kept);
}

TEST_MAIN_CORE(TstRelease)
#include "tst_release.moc"
