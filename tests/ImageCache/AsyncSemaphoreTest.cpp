// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/AsyncSemaphore.h"

#include <QCoroFuture>
#include <QCoroTask>
#include <QFuture>
#include <QList>
#include <QPromise>
#include <QTest>

#include <stdexcept>

namespace {

QCoro::Task<void> acquireAndRecord(AsyncSemaphore &semaphore, QList<int> &order, int id)
{
    co_await semaphore.acquire();
    order.append(id);
}

// Holds a permit through a guard until `end` finishes, then returns or throws.
QCoro::Task<void> holdPermitUntil(AsyncSemaphore &semaphore, QFuture<void> end, bool fail)
{
    co_await semaphore.acquire();
    const AsyncSemaphore::Permit permit(semaphore);
    co_await end;
    if (fail)
        throw std::runtime_error("failed while holding a permit");
}

// Whether the task ended in an exception: QCoro::waitFor does not hand one on.
QCoro::Task<bool> endsInException(QCoro::Task<void> task)
{
    try {
        co_await task;
    } catch (const std::runtime_error &) {
        co_return true;
    }
    co_return false;
}

} // namespace

class AsyncSemaphoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countStartsAtTheLimit()
    {
        const AsyncSemaphore semaphore(8);
        QCOMPARE(semaphore.limit(), 8);
        QCOMPARE(semaphore.count(), 8);
        QCOMPARE(semaphore.waitingCount(), 0);
    }

    void acquireTakesAFreePermitWithoutWaiting()
    {
        AsyncSemaphore semaphore(2);
        QList<int> order;
        acquireAndRecord(semaphore, order, 1);
        QCOMPARE(order, QList<int>{1}); // no event loop turn needed
        QCOMPARE(semaphore.count(), 1);
    }

    void acquireSuspendsWhenNoPermitIsFree()
    {
        AsyncSemaphore semaphore(1);
        QList<int> order;
        acquireAndRecord(semaphore, order, 1);
        acquireAndRecord(semaphore, order, 2);
        QCoreApplication::processEvents();
        QCOMPARE(order, QList<int>{1});
        QCOMPARE(semaphore.count(), 0);
        QCOMPARE(semaphore.waitingCount(), 1);
        semaphore.release(); // lets the waiter finish
        QTRY_COMPARE(order, (QList<int>{1, 2}));
    }

    void waitersAreResumedFirstInFirstOut()
    {
        AsyncSemaphore semaphore(1);
        QList<int> order;
        for (int id = 1; id <= 5; ++id)
            acquireAndRecord(semaphore, order, id);
        for (int released = 1; released < 5; ++released) {
            semaphore.release();
            QTRY_COMPARE(order.size(), released + 1);
        }
        QCOMPARE(order, (QList<int>{1, 2, 3, 4, 5}));
    }

    void releasePassesThePermitToTheFirstWaiterWithoutRaisingTheCount()
    {
        AsyncSemaphore semaphore(1);
        QList<int> order;
        acquireAndRecord(semaphore, order, 1);
        acquireAndRecord(semaphore, order, 2);
        semaphore.release();
        QCOMPARE(semaphore.count(), 0);
        QCOMPARE(semaphore.waitingCount(), 0);
        QTRY_COMPARE(order, (QList<int>{1, 2}));
        QCOMPARE(semaphore.count(), 0);
    }

    void releaseResumesTheWaiterOnALaterTurnOfTheEventLoop()
    {
        AsyncSemaphore semaphore(1);
        QList<int> order;
        acquireAndRecord(semaphore, order, 1);
        acquireAndRecord(semaphore, order, 2);
        semaphore.release();
        QCOMPARE(order, QList<int>{1}); // the releasing code finishes its turn first
        QTRY_COMPARE(order, (QList<int>{1, 2}));
    }

    void aNewcomerDoesNotOvertakeAWaiterThatIsBeingHandedAPermit()
    {
        AsyncSemaphore semaphore(1);
        QList<int> order;
        acquireAndRecord(semaphore, order, 1);
        acquireAndRecord(semaphore, order, 2);
        semaphore.release();
        acquireAndRecord(semaphore, order, 3);
        QTRY_COMPARE(order, (QList<int>{1, 2}));
        QCOMPARE(semaphore.waitingCount(), 1);
        semaphore.release();
        QTRY_COMPARE(order, (QList<int>{1, 2, 3}));
    }

    void releaseWithoutWaitersNeverRaisesTheCountAboveTheLimit()
    {
        AsyncSemaphore semaphore(3);
        semaphore.release();
        semaphore.release();
        QCOMPARE(semaphore.count(), 3);
        QList<int> order;
        acquireAndRecord(semaphore, order, 1);
        semaphore.release();
        semaphore.release();
        QCOMPARE(semaphore.count(), 3);
    }

    void aPermitGuardHoldsThePermitAcrossAwaitsAndGivesItBackWhenTheCoroutineReturns()
    {
        AsyncSemaphore semaphore(1);
        QPromise<void> end;
        QCoro::Task<void> holder = holdPermitUntil(semaphore, end.future(), false);
        QCoreApplication::processEvents();
        QCOMPARE(semaphore.count(), 0);
        end.start();
        end.finish();
        QCoro::waitFor(holder);
        QCOMPARE(semaphore.count(), 1);
    }

    void aPermitGuardGivesThePermitBackWhenTheCoroutineThrows()
    {
        AsyncSemaphore semaphore(1);
        QPromise<void> end;
        QCoro::Task<void> holder = holdPermitUntil(semaphore, end.future(), true);
        QCOMPARE(semaphore.count(), 0);
        end.start();
        end.finish();
        QVERIFY(QCoro::waitFor(endsInException(std::move(holder))));
        QCOMPARE(semaphore.count(), 1);
    }
};

QTEST_GUILESS_MAIN(AsyncSemaphoreTest)
#include "AsyncSemaphoreTest.moc"
