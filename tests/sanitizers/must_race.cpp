// Real races between the user-interface thread, a QThread and pool tasks, among properly ordered accesses.
// ThreadSanitizer must report both, despite the annotations for Qt.

#include <QCoreApplication>
#include <QMutex>
#include <QThread>
#include <QtConcurrent>

namespace {

QMutex mutex;
int sharedWithThread = 0;
int sharedWithTask = 0;

void raceFor(int &value)
{
    for (int i = 0; i < 100; ++i) {
        mutex.lock();
        mutex.unlock();
        ++value;
        QThread::yieldCurrentThread();
    }
}

class Racer : public QThread
{
protected:
    void run() override { raceFor(sharedWithThread); }
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);

    Racer racer;
    racer.start();
    raceFor(sharedWithThread);
    racer.wait();

    QFuture<void> task = QtConcurrent::run([]() { raceFor(sharedWithTask); });
    raceFor(sharedWithTask);
    task.waitForFinished();
}
