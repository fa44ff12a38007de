// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LoopbackHttpServer.h"
#include "Services/ImageCacheService.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QTest>
#include <QThreadPool>

#include <algorithm>

// Waits until an image cache has nothing left under way: no download holds or awaits a
// permit, the server is answering nothing, the thread pool is idle and the event loop has
// taken back what the pool finished. A test checks that something did NOT happen only
// after this, so that it had every chance to happen first however slow the machine is; and
// a service is destroyed only after this, so that none of its coroutines resumes into it.
class ImageCacheIdle
{
public:
    static bool waitFor(const ImageCacheService &service, const LoopbackHttpServer &server,
                        int timeoutMilliseconds = 10'000)
    {
        const QDeadlineTimer deadline(timeoutMilliseconds);
        const auto remaining = [&deadline] { return int(std::max<qint64>(0, deadline.remainingTime())); };
        const auto downloadsIdle = [&service, &server] {
            return service.fetchSemaphore().count() == ImageCacheService::maximumConcurrentFetches
                && service.fetchSemaphore().waitingCount() == 0 && server.inFlightRequests() == 0;
        };
        const auto poolIdle = [] { return QThreadPool::globalInstance()->activeThreadCount() == 0; };
        // Finished pool jobs and permits handed on come back as posted events, so a marker
        // posted after them arrives after them. A permit handed on while a marker is on its
        // way is only taken up after that marker: hence two quiet rounds in a row.
        int quietRounds = 0;
        while (quietRounds < 2) {
            if (!QTest::qWaitFor(downloadsIdle, remaining()) || !QTest::qWaitFor(poolIdle, remaining()))
                return false;
            bool markerArrived = false;
            QObject context;
            QMetaObject::invokeMethod(&context, [&markerArrived] { markerArrived = true; }, Qt::QueuedConnection);
            if (!QTest::qWaitFor([&markerArrived] { return markerArrived; }, remaining()))
                return false;
            quietRounds = downloadsIdle() && poolIdle() ? quietRounds + 1 : 0;
        }
        return true;
    }
};
