// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <coroutine>
#include <deque>

// A counting semaphore for coroutines on the main thread: `co_await semaphore.acquire()`
// takes a permit or queues the caller, first come first served. A released permit passes
// straight to the longest waiter, so a newcomer can never overtake the queue.
//
// The waiter is resumed from the event loop, not inside release(): the releasing
// coroutine finishes its turn first, and no chain of resumptions grows the stack.
class AsyncSemaphore : public QObject
{
    Q_OBJECT

public:
    explicit AsyncSemaphore(int limit, QObject *parent = nullptr);

    class Acquisition
    {
    public:
        explicit Acquisition(AsyncSemaphore &semaphore) : m_semaphore(semaphore) {}
        bool await_ready() noexcept;
        void await_suspend(std::coroutine_handle<> waiter);
        void await_resume() const noexcept {}

    private:
        AsyncSemaphore &m_semaphore;
    };

    // Takes charge of a permit its owner has just acquired and gives it back when it goes
    // out of scope, on every way out of a coroutine: a return, an exception, or the frame
    // being destroyed while suspended. For permits held across several awaits, where a
    // release written by hand is easily missed on one path.
    class Permit
    {
    public:
        explicit Permit(AsyncSemaphore &semaphore) : m_semaphore(semaphore) {}
        ~Permit();
        Q_DISABLE_COPY_MOVE(Permit)

    private:
        AsyncSemaphore &m_semaphore;
    };

    // Awaitable: completes once the caller holds a permit.
    [[nodiscard]] Acquisition acquire() { return Acquisition(*this); }
    // Gives one permit back: to the first waiter if there is one, else to the pool, which
    // never grows beyond `limit`.
    void release();

    int limit() const { return m_limit; }
    int count() const { return m_count; } // permits free
    int waitingCount() const { return static_cast<int>(m_waiters.size()); }

private:
    const int m_limit;
    int m_count;
    std::deque<std::coroutine_handle<>> m_waiters;
};
