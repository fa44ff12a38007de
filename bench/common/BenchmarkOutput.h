// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QList>

#include <functional>

// What the benchmarks share in reporting: one JSON object per line on standard output,
// wall-clock timing of a piece of work, and percentiles of the samples.
class BenchmarkOutput
{
public:
    static void print(const QJsonObject &object);
    // How long `work` takes, in milliseconds.
    static double milliseconds(const std::function<void()> &work);
    // The sample at `share` (0 to 1) of the sorted samples; 0 without samples.
    static double percentile(QList<double> samples, double share);
};
