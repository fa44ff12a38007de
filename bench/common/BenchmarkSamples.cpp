// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchmarkSamples.h"

#include "BenchmarkOutput.h"

#include <algorithm>

double BenchmarkSamples::median() const
{
    return BenchmarkOutput::percentile(values, 0.5);
}

double BenchmarkSamples::p90() const
{
    return BenchmarkOutput::percentile(values, 0.9);
}

double BenchmarkSamples::worst() const
{
    return values.isEmpty() ? 0 : *std::max_element(values.cbegin(), values.cend());
}
