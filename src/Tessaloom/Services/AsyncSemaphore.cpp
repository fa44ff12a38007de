// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/AsyncSemaphore.h"

#include <QMetaObject>

#include <algorithm>

AsyncSemaphore::AsyncSemaphore(int limit, QObject *parent)
    : QObject(parent)
    , m_limit(std::max(limit, 0))
    , m_count(m_limit)
{
}

bool AsyncSemaphore::Acquisition::await_ready() noexcept
{
    // A free permit is only taken when nobody queues: the queue keeps its order even in
    // the moment between a hand-over and the waiter's resumption.
    if (m_semaphore.m_count > 0 && m_semaphore.m_waiters.empty()) {
        --m_semaphore.m_count;
        return true;
    }
    return false;
}

void AsyncSemaphore::Acquisition::await_suspend(std::coroutine_handle<> waiter)
{
    m_semaphore.m_waiters.push_back(waiter);
}

AsyncSemaphore::Permit::~Permit()
{
    m_semaphore.release();
}

void AsyncSemaphore::release()
{
    if (!m_waiters.empty()) {
        const std::coroutine_handle<> next = m_waiters.front();
        m_waiters.pop_front();
        // The permit now belongs to `next`; it runs on its own turn of the event loop.
        QMetaObject::invokeMethod(this, [next] { next.resume(); }, Qt::QueuedConnection);
        return;
    }
    m_count = std::min(m_count + 1, m_limit);
}
