// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "points.h"

#include <simulation/journal.h>

#include <QCoreApplication>
#include <QSemaphore>
#include <QThread>

#include <algorithm>
#include <mutex>
#include <vector>

using Simulation::Journal;

namespace Races {

struct Points::State
{
    struct Planned
    {
        int point;
        bool fromEventLoop;
        std::function<void()> act;
    };

    std::mutex mutex;
    std::vector<Planned> planned;
    int passed = 0;
    bool isActing = false;

    void pass(const std::shared_ptr<State> &self)
    {
        Planned due{};
        {
            const std::lock_guard<std::mutex> locker(mutex);
            if (isActing)
                return;
            ++passed;
            const auto found =
                std::find_if(planned.begin(), planned.end(), [this](const Planned &p) { return p.point == passed; });
            if (found == planned.end())
                return;
            due = *found;
            planned.erase(found);
        }
        const auto run = [self, act = due.act] {
            self->setActing(true);
            act();
            self->setActing(false);
        };
        if (QThread::currentThread() != QCoreApplication::instance()->thread()) {
            const auto done = std::make_shared<QSemaphore>();
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [run, done] {
                    run();
                    done->release();
                },
                Qt::QueuedConnection);
            done->acquire();
        } else if (due.fromEventLoop) {
            QMetaObject::invokeMethod(QCoreApplication::instance(), run, Qt::QueuedConnection);
        } else {
            run();
        }
    }

    void setActing(bool acting)
    {
        const std::lock_guard<std::mutex> locker(mutex);
        isActing = acting;
    }
};

Points::Points()
    : m_state(std::make_shared<State>())
{
    m_connection = QObject::connect(
        Journal::instance(), &Journal::recorded, Journal::instance(), [state = m_state] { state->pass(state); },
        Qt::DirectConnection);
}

Points::~Points()
{
    forget();
    QObject::disconnect(m_connection);
}

void Points::start()
{
    const std::lock_guard<std::mutex> locker(m_state->mutex);
    m_state->passed = 0;
    m_state->planned.clear();
}

void Points::at(int point, bool fromEventLoop, std::function<void()> act)
{
    const std::lock_guard<std::mutex> locker(m_state->mutex);
    m_state->planned.push_back({point, fromEventLoop, std::move(act)});
}

int Points::passed() const
{
    const std::lock_guard<std::mutex> locker(m_state->mutex);
    return m_state->passed;
}

void Points::forget()
{
    const std::lock_guard<std::mutex> locker(m_state->mutex);
    m_state->planned.clear();
}

void Points::pass()
{
    m_state->pass(m_state);
}

} // namespace Races
