// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>

// The timings of one step, in milliseconds, in the order they were taken.
struct BenchmarkSamples
{
    QList<double> values;

    double median() const;
    double p90() const;
    // The slowest sample; 0 without samples.
    double worst() const;
};
