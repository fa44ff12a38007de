// SPDX-License-Identifier: GPL-3.0-or-later
#include "SimulatedClock.h"

RateLimiter::Now SimulatedClock::nowFunction()
{
    return [this] { return m_now; };
}

RateLimiter::Sleep SimulatedClock::sleepFunction()
{
    // Not a coroutine itself: a lambda coroutine would keep a reference to a closure that
    // std::function may move.
    return [this](std::chrono::milliseconds duration, std::stop_token) {
        m_sleeps.append(duration);
        m_now += duration;
        return finished();
    };
}

QCoro::Task<> SimulatedClock::finished()
{
    co_return;
}
