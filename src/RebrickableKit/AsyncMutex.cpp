// SPDX-License-Identifier: GPL-3.0-or-later
#include "AsyncMutex.h"

#include <algorithm>
#include <utility>

namespace RebrickableKit {

AsyncMutex::Lock::Lock(Lock &&other) noexcept
    : m_mutex(std::exchange(other.m_mutex, nullptr))
{
}

AsyncMutex::Lock &AsyncMutex::Lock::operator=(Lock &&other) noexcept
{
    if (this != &other) {
        if (m_mutex)
            m_mutex->unlock();
        m_mutex = std::exchange(other.m_mutex, nullptr);
    }
    return *this;
}

AsyncMutex::Lock::~Lock()
{
    if (m_mutex)
        m_mutex->unlock();
}

AsyncMutex::LockOperation::LockOperation(LockOperation &&other) noexcept
    : m_mutex(other.m_mutex)
{
    Q_ASSERT(!other.m_queued);
}

AsyncMutex::LockOperation::~LockOperation()
{
    // A coroutine destroyed while it waited in line must not be resumed later.
    if (m_queued)
        std::erase(m_mutex.m_waiters, this);
}

bool AsyncMutex::LockOperation::await_ready() noexcept
{
    if (m_mutex.m_locked)
        return false;
    m_mutex.m_locked = true;
    return true;
}

void AsyncMutex::LockOperation::await_suspend(std::coroutine_handle<> waiting)
{
    m_waiting = waiting;
    m_queued = true;
    m_mutex.m_waiters.push_back(this);
}

void AsyncMutex::unlock()
{
    if (m_waiters.empty()) {
        m_locked = false;
        return;
    }
    // The lock passes straight to the next waiter and stays taken, so no newcomer can slip
    // in between. The waiter runs now, up to its next wait, inside the unlocking call.
    LockOperation *next = m_waiters.front();
    m_waiters.pop_front();
    next->m_queued = false;
    next->m_waiting.resume();
}

} // namespace RebrickableKit
