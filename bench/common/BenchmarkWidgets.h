// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class QWidget;

// What the benchmarks of screens share: painting a window at once, so that a measure ends
// when the user would see the result, and waiting for work that ends in the event loop.
class BenchmarkWidgets
{
public:
    // Waits for `window` to be shown on first use, then lays out and paints it now.
    static void paintNow(QWidget &window);
    // Runs the event loop until `done` holds; false when `patienceMs` ran out first.
    static bool processUntil(const std::function<bool()> &done, int patienceMs = 60000);
};
