// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/PendingImage.h"

void PendingImage::finish(const QImage &image)
{
    if (m_finished)
        return;
    m_finished = true;
    m_image = image;
    // A resumed waiter may drop the last other reference to this object.
    const std::shared_ptr<PendingImage> keepAlive = shared_from_this();
    const std::vector<std::coroutine_handle<>> waiters = std::exchange(m_waiters, {});
    for (const std::coroutine_handle<> waiter : waiters)
        waiter.resume();
}
