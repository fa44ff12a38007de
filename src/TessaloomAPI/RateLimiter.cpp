// SPDX-License-Identifier: GPL-3.0-or-later
#include "RateLimiter.h"

#include <QCoroSignal>
#include <QTimer>

#include <cmath>

namespace {

double secondsBetween(RateLimiter::TimePoint earlier, RateLimiter::TimePoint later)
{
    return std::chrono::duration<double>(later - earlier).count();
}

} // namespace

RateLimiter::RateLimiter(int maxRequests, double interval)
    : RateLimiter(maxRequests, interval, [] { return std::chrono::system_clock::now(); }, &sleepOnPreciseTimer)
{
}

RateLimiter::RateLimiter(int maxRequests, double interval, Now now, Sleep sleep)
    : m_maxRequests(maxRequests)
    , m_interval(interval)
    , m_now(std::move(now))
    , m_sleep(std::move(sleep))
{
}

std::chrono::milliseconds RateLimiter::sleepDuration(double seconds)
{
    return std::chrono::milliseconds(static_cast<qint64>(std::trunc(seconds * 1000.0)));
}

QCoro::Task<> RateLimiter::waitForSlot(std::stop_token stopToken)
{
    const TimePoint now = m_now();
    // Strictly less: an entry exactly `interval` old no longer counts.
    m_timestamps.removeIf([&](const TimePoint &entry) { return !(secondsBetween(entry, now) < m_interval); });

    if (m_timestamps.size() >= m_maxRequests) {
        if (m_timestamps.isEmpty())
            qFatal("RateLimiter: maxRequests is %d; a limiter needs at least 1", m_maxRequests);
        const double wait = m_interval - secondsBetween(m_timestamps.first(), now);
        if (wait > 0)
            co_await m_sleep(sleepDuration(wait), stopToken);
    }

    // Taken anew: the sleep moved the clock on.
    m_timestamps.append(m_now());
}

QCoro::Task<> RateLimiter::sleepOnPreciseTimer(std::chrono::milliseconds duration, std::stop_token stopToken)
{
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.setSingleShot(true);
    timer.setInterval(duration);
    // A stop turns the rest of the sleep into an immediate timeout. Queued, since the stop
    // may come from another thread; a call still queued when the timer goes is dropped with it.
    const std::stop_callback endEarly(stopToken, [&timer] {
        QMetaObject::invokeMethod(&timer, [&timer] { timer.start(0); }, Qt::QueuedConnection);
    });
    timer.start();
    co_await qCoro(&timer, &QTimer::timeout);
}
