#include "heldfile.h"

#include <QFile>
#include <QSemaphore>

#include <cstdarg>
#include <mutex>

#include <dlfcn.h>
#include <fcntl.h>

using TestSupport::HeldFile;

struct HeldFile::State
{
    QByteArray path;
    QSemaphore arrived;
    QSemaphore released;
};

namespace {

std::mutex s_mutex;
/// One file at a time is all that is asked for.
std::shared_ptr<HeldFile::State> s_held;

void waitIfHeld(const char *path)
{
    std::shared_ptr<HeldFile::State> held;
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        if (!s_held || s_held->path != path)
            return;
        held.swap(s_held);
    }
    held->arrived.release();
    held->released.acquire();
}

} // namespace

// These stand before the C library's: Qt opens files through the one, the product's own opening through the other.
extern "C" Q_DECL_EXPORT int open64(const char *path, int flags, ...)
{
    using Function = int (*)(const char *, int, mode_t);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "open64"));
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if ((flags & O_ACCMODE) == O_RDONLY)
        waitIfHeld(path);
    return original(path, flags, mode);
}
extern "C" Q_DECL_EXPORT int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return open64(path, flags, mode);
}

HeldFile::HeldFile(const QString &path)
    : m_state(std::make_shared<State>())
{
    m_state->path = QFile::encodeName(path);
    const std::lock_guard<std::mutex> lock(s_mutex);
    if (s_held)
        qFatal("Another file is held");
    s_held = m_state;
}

HeldFile::~HeldFile()
{
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        if (s_held == m_state)
            s_held.reset();
    }
    release();
}

bool HeldFile::waitForReader()
{
    if (!m_state->arrived.tryAcquire(1, 60000))
        return false;
    // It waits until it is released: whoever asks again is told the same.
    m_state->arrived.release();
    return true;
}

void HeldFile::release()
{
    m_state->released.release();
}
