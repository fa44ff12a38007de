// SPDX-License-Identifier: GPL-3.0-or-later
#include "TaskOutcome.h"

#include <RebrickableKit/AsyncMutex.h>

#include <QCoroTimer>
#include <QStringList>
#include <QTest>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using RebrickableKit::AsyncMutex;

namespace {

// An operation that holds the mutex across a real wait of the event loop.
QCoro::Task<int> holdAcrossAWait(AsyncMutex &mutex, QStringList &log, QString name, std::chrono::milliseconds wait)
{
    const AsyncMutex::Lock lock = co_await mutex.lock();
    log.append(name + u" starts"_s);
    co_await QCoro::sleepFor(wait);
    log.append(name + u" ends"_s);
    co_return 0;
}

QCoro::Task<int> holdAndThrow(AsyncMutex &mutex, QStringList &log)
{
    const AsyncMutex::Lock lock = co_await mutex.lock();
    log.append(u"thrower starts"_s);
    co_await QCoro::sleepFor(10ms);
    throw std::runtime_error("failed on purpose");
}

} // namespace

class AsyncMutexTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFreeMutexIsTakenWithoutWaiting()
    {
        AsyncMutex mutex;
        QStringList log;
        auto task = holdAcrossAWait(mutex, log, u"a"_s, 1ms);
        QCOMPARE(log, QStringList{u"a starts"_s}); // ran up to its timer at once
        QVERIFY(mutex.isLocked());
        QCOMPARE(waitForOutcome(std::move(task)).value, 0);
        QVERIFY(!mutex.isLocked());
    }

    void operationsRunOneAtATimeInTheOrderTheyAsked()
    {
        AsyncMutex mutex;
        QStringList log;
        // The first waits longest: without the mutex it would end last.
        auto first = holdAcrossAWait(mutex, log, u"first"_s, 60ms);
        auto second = holdAcrossAWait(mutex, log, u"second"_s, 5ms);
        auto third = holdAcrossAWait(mutex, log, u"third"_s, 1ms);
        QCOMPARE(mutex.waitingCount(), 2);
        waitForOutcome(std::move(first));
        waitForOutcome(std::move(second));
        waitForOutcome(std::move(third));
        QCOMPARE(log, (QStringList{u"first starts"_s, u"first ends"_s, u"second starts"_s, u"second ends"_s,
                                   u"third starts"_s, u"third ends"_s}));
        QVERIFY(!mutex.isLocked());
    }

    void aFailingOperationStillHandsOnItsTurn()
    {
        AsyncMutex mutex;
        QStringList log;
        auto thrower = holdAndThrow(mutex, log);
        auto next = holdAcrossAWait(mutex, log, u"next"_s, 1ms);
        QVERIFY(waitForOutcome(std::move(thrower)).failure);
        QCOMPARE(waitForOutcome(std::move(next)).value, 0);
        QCOMPARE(log, (QStringList{u"thrower starts"_s, u"next starts"_s, u"next ends"_s}));
    }
};

QTEST_GUILESS_MAIN(AsyncMutexTest)
#include "AsyncMutexTest.moc"
