// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

// Watches the main thread while a batch runs: a timer that should fire every few
// milliseconds records the longest gap between two firings beyond its interval (the
// longest time the event loop could not turn), and samples the resident memory.
//
// On a shared machine a gap also holds the time the thread was not scheduled at all, so
// the meter records beside it the main thread's own CPU time within the longest gap:
// that part is work the event loop did instead of turning.
class EventLoopMeter : public QObject
{
    Q_OBJECT

public:
    explicit EventLoopMeter(int intervalMilliseconds = 4, QObject *parent = nullptr);

    void start();
    void stop();

    double longestStallMilliseconds() const { return m_longestStallMs; }
    double longestBusyMilliseconds() const { return m_longestBusyMs; }
    double peakResidentMiB() const { return m_peakResidentMiB; }

    static double residentMiB();
    static qint64 threadCpuNanoseconds();

private:
    void tick();

    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_lastTickNs = 0;
    qint64 m_lastCpuNs = 0;
    double m_longestStallMs = 0;
    double m_longestBusyMs = 0;
    double m_peakResidentMiB = 0;
};
