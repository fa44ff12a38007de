// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RateLimiter.h"

#include <QList>

#include <chrono>

// A clock for RateLimiter that moves only when told to or when the limiter sleeps, so a
// minute-long window runs in microseconds. Every sleep is recorded and moves the clock on
// by exactly its length.
class SimulatedClock
{
public:
    RateLimiter::TimePoint now() const { return m_now; }
    void advance(std::chrono::nanoseconds duration) { m_now += duration; }
    const QList<std::chrono::milliseconds> &sleeps() const { return m_sleeps; }

    // A limiter on this clock; the clock must outlive it.
    RateLimiter::Now nowFunction();
    RateLimiter::Sleep sleepFunction();

private:
    static QCoro::Task<> finished();

    RateLimiter::TimePoint m_now{std::chrono::hours(24 * 365 * 50)};
    QList<std::chrono::milliseconds> m_sleeps;
};
