// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QObject>

#include <chrono>
#include <functional>
#include <optional>

// How far the refresh of all prices has come, for the main window's status bar, and the
// way to stop it. CatalogSyncService::refreshAllPrices() reports into it as it goes; the
// refresh itself reports nothing to its caller.
//
// Refreshes that overlap (the button pressed again while one runs) share one account:
// their targets add up, and it stops running when the last of them ends. A cancellation
// holds for every refresh running at that moment and is forgotten when none runs.
class PriceRefreshProgress : public QObject
{
    Q_OBJECT

public:
    // Milliseconds since some fixed moment; the default is a monotonic clock. Tests give
    // their own to pin down the estimate.
    using Clock = std::function<qint64()>;

    explicit PriceRefreshProgress(QObject *parent = nullptr);
    ~PriceRefreshProgress() override;

    bool isRunning() const { return m_runs > 0; }
    int targetCount() const { return m_targetCount; }
    int setsDone() const { return m_setsDone; }
    bool isCancelRequested() const { return m_cancelRequested; }

    // The time left at the average time per set so far; nothing before the first set is
    // done or while nothing runs.
    std::optional<std::chrono::milliseconds> estimatedTimeLeft() const;

    void setClock(Clock clock);

    // The reporting side, for the refresh. A Run counts its sets while it exists.
    class Run
    {
    public:
        Run(PriceRefreshProgress &progress, int targetCount);
        ~Run();
        Run(const Run &) = delete;
        Run &operator=(const Run &) = delete;

        // True once the user asked to stop: the refresh makes no further provider request.
        bool isCancelled() const { return m_progress.isCancelRequested(); }
        void setDone() { m_progress.addDone(1); }

    private:
        PriceRefreshProgress &m_progress;
    };

public Q_SLOTS:
    // Stops every running refresh before its next request to a provider; what is stored
    // stays. Nothing happens while no refresh runs. The application's quit calls it too.
    void cancel();

Q_SIGNALS:
    // Any of the figures above changed.
    void progressChanged();
    void runningChanged(bool running);

private:
    void begin(int targetCount);
    void end();
    void addDone(int sets);

    Clock m_clock;
    QElapsedTimer m_monotonic;
    int m_runs = 0;
    int m_targetCount = 0;
    int m_setsDone = 0;
    bool m_cancelRequested = false;
    qint64 m_startedAt = 0;
};
