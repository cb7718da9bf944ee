// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// Real races between the user-interface thread, a QThread and pool tasks, among properly ordered accesses.
// ThreadSanitizer must report both, despite the annotations for Qt.

#include <QCoreApplication>
#include <QMutex>
#include <QThread>
#include <QtConcurrent>

namespace {

QMutex s_mutex;
int s_sharedWithThread = 0;
int s_sharedWithTask = 0;

void raceFor(int &value)
{
    for (int i = 0; i < 100; ++i) {
        s_mutex.lock();
        s_mutex.unlock();
        ++value;
        QThread::yieldCurrentThread();
    }
}

class Racer : public QThread
{
protected:
    void run() override { raceFor(s_sharedWithThread); }
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);

    Racer racer;
    racer.start();
    raceFor(s_sharedWithThread);
    racer.wait();

    QFuture<void> task = QtConcurrent::run([]() { raceFor(s_sharedWithTask); });
    raceFor(s_sharedWithTask);
    task.waitForFinished();
}
