// SPDX-License-Identifier: GPL-3.0-or-later
// The sliding window of RateLimiter: when it lets a call through, how long it sleeps, and
// what a stop request during the sleep does. Windows of a minute run on a simulated clock;
// the tests of the real timer use windows of a fraction of a second.
#include "RateLimiter.h"
#include "SimulatedClock.h"
#include "TestEnvironment.h"

#include <QCoroSignal>
#include <QCoroTask>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <stop_token>

using namespace std::chrono_literals;

namespace {

void waitForSlot(RateLimiter &limiter, std::stop_token stopToken = {})
{
    QCoro::waitFor(limiter.waitForSlot(std::move(stopToken)));
}

} // namespace

class RateLimiterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void secondCallFourTenthsOfASecondAfterTheFirstSleepsElevenHundredMilliseconds()
    {
        SimulatedClock clock;
        RateLimiter limiter(1, 1.5, clock.nowFunction(), clock.sleepFunction());
        waitForSlot(limiter);
        clock.advance(400ms);
        waitForSlot(limiter);

        QCOMPARE(clock.sleeps().size(), 1);
        // 1.5 − 0.4 in binary floating point lands a hair either side of 1.1, so the cut
        // gives 1100 or 1099: the resolution the clock allows.
        QVERIFY2(qAbs(clock.sleeps().first().count() - 1100) <= 1,
                 qPrintable(QString::number(clock.sleeps().first().count())));
    }

    void fourQuickCallsPassAndTheFifthWaitsUntilTheFirstIsSixtySecondsOld()
    {
        SimulatedClock clock;
        RateLimiter limiter(4, 60.0, clock.nowFunction(), clock.sleepFunction());
        const RateLimiter::TimePoint first = clock.now();
        for (int call = 0; call < 4; ++call) {
            waitForSlot(limiter);
            clock.advance(250ms); // quarters of a second: exact in binary, so the sleep is exact
        }
        QVERIFY(clock.sleeps().isEmpty());

        waitForSlot(limiter);
        QCOMPARE(clock.sleeps().size(), 1);
        QCOMPARE(clock.sleeps().first(), 59000ms); // the first is 1 s old when the fifth comes
        QCOMPARE(limiter.timestamps().last() - first, std::chrono::nanoseconds(60s));
    }

    void computedWaitOfFourTenThousandthsOfASecondSleepsZeroMilliseconds()
    {
        SimulatedClock clock;
        RateLimiter limiter(1, 1.0, clock.nowFunction(), clock.sleepFunction());
        waitForSlot(limiter);
        clock.advance(999600us); // leaves 0.0004 s of the window
        waitForSlot(limiter);

        QCOMPARE(clock.sleeps(), QList<std::chrono::milliseconds>{0ms});
        QCOMPARE(RateLimiter::sleepDuration(0.0004), 0ms);
        QCOMPARE(RateLimiter::sleepDuration(0.0019), 1ms);
    }

    void entryExactlyOneIntervalOldNoLongerCounts()
    {
        SimulatedClock clock;
        RateLimiter limiter(1, 1.5, clock.nowFunction(), clock.sleepFunction());
        waitForSlot(limiter);
        clock.advance(1500ms);
        waitForSlot(limiter);

        QVERIFY(clock.sleeps().isEmpty());
        QCOMPARE(limiter.timestamps().size(), 1);
        QCOMPARE(limiter.timestamps().first(), clock.now());
    }

    void entryOneNanosecondShortOfTheIntervalStillCounts()
    {
        SimulatedClock clock;
        RateLimiter limiter(1, 1.5, clock.nowFunction(), clock.sleepFunction());
        waitForSlot(limiter);
        clock.advance(1500ms - 1us);
        waitForSlot(limiter);

        QCOMPARE(clock.sleeps(), QList<std::chrono::milliseconds>{0ms}); // 1 µs left, cut to 0 ms
        QCOMPARE(limiter.timestamps().size(), 2);
    }

    void stopRequestDuringTheSleepReturnsAtOnceAndStillTakesTheSlot()
    {
        RateLimiter limiter(1, 60.0); // the real clock and timer
        waitForSlot(limiter);

        std::stop_source stop;
        QTimer::singleShot(50ms, [&stop] { stop.request_stop(); });
        QElapsedTimer elapsed;
        elapsed.start();
        waitForSlot(limiter, stop.get_token());

        QVERIFY2(elapsed.elapsed() < 10'000, qPrintable(QString::number(elapsed.elapsed())));
        QVERIFY(elapsed.elapsed() >= 40);
        QCOMPARE(limiter.timestamps().size(), 2);
    }

    void stopRequestedBeforeTheCallSkipsTheSleepButTakesTheSlot()
    {
        RateLimiter limiter(1, 60.0);
        waitForSlot(limiter);
        std::stop_source stop;
        stop.request_stop();
        QElapsedTimer elapsed;
        elapsed.start();
        waitForSlot(limiter, stop.get_token());

        QVERIFY(elapsed.elapsed() < 10'000);
        QCOMPARE(limiter.timestamps().size(), 2);
    }

    void realTimerSleepsForTheRestOfTheWindow()
    {
        RateLimiter limiter(1, 0.3);
        QElapsedTimer elapsed;
        elapsed.start();
        waitForSlot(limiter);
        waitForSlot(limiter);

        // A precise timer may fire up to a millisecond early against QElapsedTimer's clock.
        QVERIFY2(elapsed.elapsed() >= 295, qPrintable(QString::number(elapsed.elapsed())));
        QVERIFY2(elapsed.elapsed() < 5'000, qPrintable(QString::number(elapsed.elapsed())));
    }

    void afterASleepNothingIsPrunedSoTheListHoldsOneMoreThanTheLimit()
    {
        SimulatedClock clock;
        RateLimiter limiter(2, 1.0, clock.nowFunction(), clock.sleepFunction());
        waitForSlot(limiter);
        clock.advance(250ms);
        waitForSlot(limiter);
        clock.advance(250ms);
        waitForSlot(limiter); // sleeps 0.5 s; the first entry is exactly 1 s old afterwards

        QCOMPARE(clock.sleeps(), QList<std::chrono::milliseconds>{500ms});
        QCOMPARE(limiter.timestamps().size(), 3);
        waitForSlot(limiter); // the next call prunes the first, then waits for the second
        QCOMPARE(limiter.timestamps().size(), 3);
        QCOMPARE(clock.sleeps().last(), 250ms);
    }

    void concurrentCallersWakeTogetherAndExceedTheWindow()
    {
        // Both sleeps are held open until released, as two tasks would be in real time.
        SimulatedClock clock;
        QList<std::chrono::milliseconds> sleeps;
        QTimer release;
        release.setSingleShot(true);
        RateLimiter limiter(1, 1.0, clock.nowFunction(),
                            [&](std::chrono::milliseconds duration, std::stop_token) -> QCoro::Task<> {
                                sleeps.append(duration);
                                return [](QTimer *timer) -> QCoro::Task<> {
                                    co_await qCoro(timer, &QTimer::timeout);
                                }(&release);
                            });
        waitForSlot(limiter);
        clock.advance(250ms);
        auto first = limiter.waitForSlot();
        auto second = limiter.waitForSlot();
        QCOMPARE(sleeps, (QList<std::chrono::milliseconds>{750ms, 750ms}));
        clock.advance(750ms);
        release.start(0);
        QCoro::waitFor(std::move(first));
        QCoro::waitFor(std::move(second));
        QCOMPARE(limiter.timestamps().size(), 3); // three slots within one second
    }
};

QTEST_GUILESS_MAIN(RateLimiterTest)
#include "RateLimiterTest.moc"
