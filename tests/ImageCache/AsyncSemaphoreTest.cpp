// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/AsyncSemaphore.h"

#include <QCoroTask>
#include <QList>
#include <QTest>

namespace {

QCoro::Task<void> acquireAndRecord(AsyncSemaphore &semaphore, QList<int> &order, int id)
{
    co_await semaphore.acquire();
    order.append(id);
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
};

QTEST_GUILESS_MAIN(AsyncSemaphoreTest)
#include "AsyncSemaphoreTest.moc"
