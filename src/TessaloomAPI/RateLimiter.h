// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>
#include <QList>

#include <chrono>
#include <functional>
#include <stop_token>

// Holds a caller back until a sliding window has room: at most `maxRequests` calls of
// waitForSlot() within any `interval` seconds, for one caller at a time. Each adapter owns
// one, with the limits of its service.
//
// It sleeps once and does not look again: after the sleep it neither prunes nor rechecks.
// Two callers that enter while it sleeps see the same state and wake about together, so
// concurrent callers of one limiter can exceed the window; adapters make their requests
// one after another, which is what keeps the limit true.
//
// The clock and the sleep are injected so that tests and benchmarks can run minute-long
// windows in simulated time; by default they are the system clock and a precise timer.
class RateLimiter
{
public:
    using TimePoint = std::chrono::system_clock::time_point;
    using Now = std::function<TimePoint()>;
    // Sleeps `duration`, ending early, without failing, when `stopToken` is stopped.
    using Sleep = std::function<QCoro::Task<>(std::chrono::milliseconds duration, std::stop_token stopToken)>;

    // `maxRequests` must be at least 1; no service has a smaller limit.
    RateLimiter(int maxRequests, double interval);
    RateLimiter(int maxRequests, double interval, Now now, Sleep sleep);

    int maxRequests() const { return m_maxRequests; }
    double interval() const { return m_interval; }
    // The times of the calls still in the window as of the last call, oldest first. Right
    // after a wait it may hold maxRequests + 1 entries, since nothing is pruned after a sleep.
    const QList<TimePoint> &timestamps() const { return m_timestamps; }

    // Returns once a slot is free and takes it. Never fails: a stop request during the sleep
    // ends the sleep at once and the slot is taken all the same; the cancellation shows at
    // the caller's next network request.
    QCoro::Task<> waitForSlot(std::stop_token stopToken = {});

    // How long a computed wait of `seconds` sleeps: whole milliseconds, the fraction cut
    // toward zero (0.0004 s sleeps 0 ms).
    static std::chrono::milliseconds sleepDuration(double seconds);

    // The default sleep: a single-shot precise timer on the calling thread's event loop.
    static QCoro::Task<> sleepOnPreciseTimer(std::chrono::milliseconds duration, std::stop_token stopToken);

private:
    int m_maxRequests;
    double m_interval;
    QList<TimePoint> m_timestamps;
    Now m_now;
    Sleep m_sleep;
};
