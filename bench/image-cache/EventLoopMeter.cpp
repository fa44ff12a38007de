// SPDX-License-Identifier: GPL-3.0-or-later
#include "EventLoopMeter.h"

#include <QFile>
#include <QString>

#include <algorithm>

#include <ctime>
#include <unistd.h>

using namespace Qt::StringLiterals;

EventLoopMeter::EventLoopMeter(int intervalMilliseconds, QObject *parent)
    : QObject(parent)
{
    m_timer.setInterval(intervalMilliseconds);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &EventLoopMeter::tick);
}

void EventLoopMeter::start()
{
    m_longestStallMs = 0;
    m_longestBusyMs = 0;
    m_peakResidentMiB = residentMiB();
    m_clock.start();
    m_lastTickNs = 0;
    m_lastCpuNs = threadCpuNanoseconds();
    m_timer.start();
}

void EventLoopMeter::stop()
{
    tick();
    m_timer.stop();
}

void EventLoopMeter::tick()
{
    const qint64 now = m_clock.nsecsElapsed();
    const qint64 cpu = threadCpuNanoseconds();
    const double gapMs = double(now - m_lastTickNs) / 1e6;
    m_longestStallMs = std::max(m_longestStallMs, gapMs - m_timer.interval());
    m_longestBusyMs = std::max(m_longestBusyMs, double(cpu - m_lastCpuNs) / 1e6);
    m_lastTickNs = now;
    m_lastCpuNs = cpu;
    m_peakResidentMiB = std::max(m_peakResidentMiB, residentMiB());
}

qint64 EventLoopMeter::threadCpuNanoseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

double EventLoopMeter::residentMiB()
{
    // The second field of statm is the resident set in pages.
    QFile statm(u"/proc/self/statm"_s);
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    if (fields.size() < 2)
        return 0;
    return double(fields[1].toLongLong()) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}
