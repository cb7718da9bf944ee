// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <QFutureWatcher>
#include <QMutex>
#include <QSemaphore>
#include <QThread>
#include <QtConcurrent>

using namespace TestSupport;

/// Hands plain data from thread to thread in each way the product uses. A ThreadSanitizer report here means that one of
/// Qt's guarantees is not annotated.
class TstSynchronisation : public QObject
{
    Q_OBJECT

private slots:
    void thread_results_are_visible_after_finished();
    void joined_thread_no_longer_touches_its_object();
    void signals_carry_strings_across_threads();
    void posted_calls_see_what_was_done_before();
    void contended_mutexes_order_what_they_guard();
    void semaphores_order_what_was_done_before_a_release();
    void pool_results_are_visible_to_their_watcher();
};

namespace {

class Job : public QThread
{
    Q_OBJECT

public:
    QString name;
    int result = 0;

signals:
    void progress(const QString &text);

protected:
    void run() override
    {
        for (int i = 0; i < 50; ++i) {
            emit progress(QStringLiteral("%1 %2").arg(name, QString::number(i)));
            result += i;
        }
    }
};

} // namespace

void TstSynchronisation::thread_results_are_visible_after_finished()
{
    for (int round = 0; round < 50; ++round) {
        Job job;
        int seen = -1;
        connect(&job, &QThread::finished, this, [&]() { seen = job.result; });
        job.start();
        QTRY_COMPARE(seen, 1225);
        QVERIFY(job.wait());
    }
}

void TstSynchronisation::joined_thread_no_longer_touches_its_object()
{
    // Each job is constructed at the address of the previous one.
    for (int round = 0; round < 200; ++round) {
        Job job;
        const SignalRecorder<> finished(&job, &QThread::finished);
        job.start();
        QVERIFY(job.wait());
        QCOMPARE(job.result, 1225);
    }
}

void TstSynchronisation::signals_carry_strings_across_threads()
{
    Job job;
    job.name = QStringLiteral("step");
    SignalRecorder<QString> progress(&job, &Job::progress);
    job.start();
    QTRY_COMPARE(progress.count(), 50);
    QCOMPARE(progress.values().last(), QStringLiteral("step 49"));
    QVERIFY(job.wait());
}

void TstSynchronisation::posted_calls_see_what_was_done_before()
{
    QObject receiver;
    const int calls = 2000;
    int seen = 0;
    QFuture<void> other = QtConcurrent::run([&]() {
        for (int number = 0; number < calls; ++number) {
            const auto text = std::make_shared<QString>(QString::number(number));
            QMetaObject::invokeMethod(
                &receiver, [text, &seen]() { seen += int(!text->isEmpty()); }, Qt::QueuedConnection);
        }
    });
    // Mostly awake, so that waking up does not order anything by itself.
    while (seen < calls)
        QCoreApplication::processEvents();
    other.waitForFinished();
    QCOMPARE(seen, calls);
}

void TstSynchronisation::contended_mutexes_order_what_they_guard()
{
    QMutex plain;
    QMutex recursive(QMutex::Recursive);
    QStringList guarded;
    int counter = 0;
    const auto work = [&]() {
        for (int i = 0; i < 500; ++i) {
            {
                const QMutexLocker locker(&plain);
                guarded.append(QString::number(i));
            }
            const QMutexLocker outer(&recursive);
            const QMutexLocker inner(&recursive);
            ++counter;
        }
    };
    QFuture<void> one = QtConcurrent::run(work);
    QFuture<void> two = QtConcurrent::run(work);
    work();
    one.waitForFinished();
    two.waitForFinished();
    QCOMPARE(guarded.size(), 1500);
    QCOMPARE(counter, 1500);
}

void TstSynchronisation::semaphores_order_what_was_done_before_a_release()
{
    for (int round = 0; round < 50; ++round) {
        QSemaphore asked;
        QSemaphore answered;
        QString text;
        QFuture<void> other = QtConcurrent::run([&]() {
            asked.acquire();
            text += QLatin1Char('b');
            answered.release();
        });
        text = QString::number(round) + QLatin1Char('a');
        asked.release();
        if (round % 2 == 0)
            answered.acquire();
        else
            QVERIFY(answered.tryAcquire(1, patience));
        QCOMPARE(text, QString::number(round) + QStringLiteral("ab"));
        other.waitForFinished();
    }
}

void TstSynchronisation::pool_results_are_visible_to_their_watcher()
{
    for (int round = 0; round < 50; ++round) {
        QStringList input{QStringLiteral("a"), QString::number(round)};
        auto shared = std::make_shared<QStringList>();
        QFutureWatcher<QString> watcher;
        QString result;
        connect(&watcher, &QFutureWatcher<QString>::finished, this,
                [&]() { result = watcher.result() + shared->first(); });
        watcher.setFuture(QtConcurrent::run([input, shared]() {
            shared->append(QStringLiteral("!"));
            return input.join(QString());
        }));
        QTRY_COMPARE(result, QStringLiteral("a%1!").arg(round));
    }
}

TEST_MAIN_CORE(TstSynchronisation)

#include "tst_synchronisation.moc"
