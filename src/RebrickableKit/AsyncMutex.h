// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <coroutine>
#include <deque>

namespace RebrickableKit {

// Lets coroutines on one thread take turns: whoever holds the lock runs its operation to the
// end, across all its waits, before the next one in line starts. Waiters are served first
// come, first served. Not for use across threads.
//
//     const AsyncMutex::Lock lock = co_await m_mutex.lock();
class AsyncMutex
{
public:
    // Holds the turn until it is destroyed; then the next waiter resumes at once.
    class Lock
    {
    public:
        Lock() = default;
        Lock(Lock &&other) noexcept;
        Lock &operator=(Lock &&other) noexcept;
        Lock(const Lock &) = delete;
        Lock &operator=(const Lock &) = delete;
        ~Lock();

    private:
        friend class AsyncMutex;
        explicit Lock(AsyncMutex *mutex) : m_mutex(mutex) { }
        AsyncMutex *m_mutex = nullptr;
    };

    // What `co_await mutex.lock()` waits on. It may be moved until it is awaited; once in
    // line it stays put, since the mutex keeps its address.
    class LockOperation
    {
    public:
        explicit LockOperation(AsyncMutex &mutex) : m_mutex(mutex) { }
        LockOperation(LockOperation &&other) noexcept;
        LockOperation(const LockOperation &) = delete;
        LockOperation &operator=(const LockOperation &) = delete;
        LockOperation &operator=(LockOperation &&) = delete;
        ~LockOperation();

        bool await_ready() noexcept;
        void await_suspend(std::coroutine_handle<> waiting);
        Lock await_resume() noexcept { return Lock(&m_mutex); }

    private:
        friend class AsyncMutex;
        AsyncMutex &m_mutex;
        std::coroutine_handle<> m_waiting;
        bool m_queued = false;
    };

    AsyncMutex() = default;
    AsyncMutex(const AsyncMutex &) = delete;
    AsyncMutex &operator=(const AsyncMutex &) = delete;

    LockOperation lock() { return LockOperation(*this); }
    bool isLocked() const { return m_locked; }
    qsizetype waitingCount() const { return qsizetype(m_waiters.size()); }

private:
    void unlock();

    bool m_locked = false;
    std::deque<LockOperation *> m_waiters;
};

} // namespace RebrickableKit
