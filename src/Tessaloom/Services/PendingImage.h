// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

#include <coroutine>
#include <memory>
#include <vector>

// The outcome of one download that any number of coroutines await together: each waiter
// gets its own copy of the picture (a null image when there is none). Held through a
// shared pointer by the download and by every waiter, so it outlives whoever leaves first.
class PendingImage : public std::enable_shared_from_this<PendingImage>
{
public:
    class Awaiter
    {
    public:
        explicit Awaiter(std::shared_ptr<PendingImage> pending) : m_pending(std::move(pending)) {}
        bool await_ready() const noexcept { return m_pending->m_finished; }
        void await_suspend(std::coroutine_handle<> waiter) { m_pending->m_waiters.push_back(waiter); }
        QImage await_resume() const { return m_pending->m_image; }

    private:
        std::shared_ptr<PendingImage> m_pending;
    };

    bool isFinished() const { return m_finished; }
    int waiterCount() const { return static_cast<int>(m_waiters.size()); }

    // Stores the outcome and resumes every waiter in the order they came.
    void finish(const QImage &image);

    Awaiter operator co_await() { return Awaiter(shared_from_this()); }

private:
    bool m_finished = false;
    QImage m_image;
    std::vector<std::coroutine_handle<>> m_waiters;
};
