// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QObject>

#include <functional>
#include <memory>

namespace Races {

/// The points at which an operation can be disturbed: every call that the host receives, on any thread, and every
/// dialog that opens.
class Points
{
public:
    Points();
    ~Points();
    Q_DISABLE_COPY(Points)

    /// Restarts counting. User-interface thread.
    void start();
    /// Runs `act` on the user-interface thread at that point, counted from 1, and blocks the thread that reached it
    /// meanwhile. A call made by the user-interface thread itself is not blocked if `fromEventLoop` is true, since
    /// people and windows act through the event loop only: then `act` runs as the next event.
    void at(int point, bool fromEventLoop, std::function<void()> act);
    /// Points reached since start(). Actions at a point do not count.
    int passed() const;
    /// Drops a pending action.
    void forget();
    /// Called for dialogs.
    void pass();

private:
    struct State;
    const std::shared_ptr<State> m_state;
    QMetaObject::Connection m_connection;
};

} // namespace Races
