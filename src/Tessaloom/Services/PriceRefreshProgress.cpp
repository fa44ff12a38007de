// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/PriceRefreshProgress.h"

#include <QCoreApplication>

PriceRefreshProgress::PriceRefreshProgress(QObject *parent)
    : QObject(parent)
{
    m_monotonic.start();
    m_clock = [this] { return m_monotonic.elapsed(); };
    // A refresh of hundreds of sets takes hours at the sources' request limits; quitting
    // must not leave it waiting for its next slot while the application goes down.
    if (QCoreApplication *application = QCoreApplication::instance())
        connect(application, &QCoreApplication::aboutToQuit, this, &PriceRefreshProgress::cancel);
}

PriceRefreshProgress::~PriceRefreshProgress() = default;

std::optional<std::chrono::milliseconds> PriceRefreshProgress::estimatedTimeLeft() const
{
    if (!isRunning() || m_setsDone <= 0)
        return std::nullopt;
    const qint64 elapsed = qMax<qint64>(0, m_clock() - m_startedAt);
    const qint64 left = qMax(0, m_targetCount - m_setsDone);
    return std::chrono::milliseconds(elapsed * left / m_setsDone);
}

void PriceRefreshProgress::setClock(Clock clock)
{
    m_clock = std::move(clock);
}

void PriceRefreshProgress::cancel()
{
    if (!isRunning() || m_cancelRequested)
        return;
    m_cancelRequested = true;
    Q_EMIT progressChanged();
}

void PriceRefreshProgress::begin(int targetCount)
{
    const bool starting = !isRunning();
    if (starting) {
        m_targetCount = 0;
        m_setsDone = 0;
        m_cancelRequested = false;
        m_startedAt = m_clock();
    }
    ++m_runs;
    m_targetCount += targetCount;
    if (starting)
        Q_EMIT runningChanged(true);
    Q_EMIT progressChanged();
}

void PriceRefreshProgress::end()
{
    if (--m_runs > 0)
        return;
    m_cancelRequested = false;
    Q_EMIT runningChanged(false);
    Q_EMIT progressChanged();
}

void PriceRefreshProgress::addDone(int sets)
{
    m_setsDone += sets;
    Q_EMIT progressChanged();
}

PriceRefreshProgress::Run::Run(PriceRefreshProgress &progress, int targetCount)
    : m_progress(progress)
{
    m_progress.begin(targetCount);
}

PriceRefreshProgress::Run::~Run()
{
    m_progress.end();
}
