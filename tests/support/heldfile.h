#pragma once

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace TestSupport {

/// A named pipe in a file's place: whoever opens it to read waits until it is let go, and finds it empty then. So work
/// of other threads can be held in the middle.
class HeldFile
{
public:
    /// Replaces what is at `path`.
    explicit HeldFile(const QString &path)
        : m_path(QFile::encodeName(path))
    {
        QFile::remove(path);
        if (mkfifo(m_path.constData(), 0600) != 0)
            qFatal("No named pipe");
    }
    ~HeldFile()
    {
        // Frees whoever waits; who comes later finds nothing.
        const int end = open(m_path.constData(), O_RDWR | O_NONBLOCK);
        unlink(m_path.constData());
        close(end);
        if (m_writer >= 0)
            close(m_writer);
    }
    Q_DISABLE_COPY(HeldFile)

    /// Returns when somebody has opened it, who goes on waiting. False when nobody comes within a minute.
    bool waitForReader()
    {
        const QDeadlineTimer deadline(60000);
        while (m_writer < 0 && !deadline.hasExpired()) {
            QThread::yieldCurrentThread();
            m_writer = open(m_path.constData(), O_WRONLY | O_NONBLOCK);
        }
        return m_writer >= 0;
    }
    /// Whoever waits, or comes next, finds an empty file. Waits itself until somebody comes.
    void release()
    {
        if (!waitForReader())
            qFatal("Nobody reads what is held");
        close(m_writer);
        m_writer = -1;
    }

private:
    const QByteArray m_path;
    int m_writer = -1;
};

} // namespace TestSupport
