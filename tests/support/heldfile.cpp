// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "heldfile.h"

#include <QFile>
#include <QSemaphore>

#include <mutex>

using TestSupport::HeldFile;

struct HeldFile::State
{
    QByteArray path;
    QSemaphore arrived;
    QSemaphore released;
};

namespace {

std::mutex s_mutex;
/// One file at a time is enough.
std::shared_ptr<HeldFile::State> s_held;

} // namespace

void HeldFile::waitIfHeld(const char *path)
{
    std::shared_ptr<State> held;
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        if (!s_held || s_held->path != path)
            return;
        held.swap(s_held);
    }
    held->arrived.release();
    held->released.acquire();
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
    // A thread still waits until it is released: later calls return the same.
    m_state->arrived.release();
    return true;
}

void HeldFile::release()
{
    m_state->released.release();
}
