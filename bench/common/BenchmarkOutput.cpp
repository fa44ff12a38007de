// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchmarkOutput.h"

#include <QElapsedTimer>
#include <QJsonDocument>

#include <algorithm>
#include <cstdio>

void BenchmarkOutput::print(const QJsonObject &object)
{
    std::puts(QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

double BenchmarkOutput::milliseconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

double BenchmarkOutput::percentile(QList<double> samples, double share)
{
    std::sort(samples.begin(), samples.end());
    return samples.isEmpty() ? 0 : samples[qsizetype(share * double(samples.size() - 1))];
}
