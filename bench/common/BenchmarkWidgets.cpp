// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchmarkWidgets.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QThread>
#include <QWidget>
#include <QWindow>

void BenchmarkWidgets::paintNow(QWidget &window)
{
    if (!window.windowHandle() || !window.windowHandle()->isExposed())
        (void)QTest::qWaitForWindowExposed(&window);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
    window.repaint();
}

bool BenchmarkWidgets::processUntil(const std::function<bool()> &done, int patienceMs)
{
    QElapsedTimer patience;
    patience.start();
    while (!done()) {
        if (patience.elapsed() > patienceMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        QThread::usleep(50);
    }
    return true;
}
