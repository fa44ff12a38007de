// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "BrickEconomySet.h"
#include "PriceResult.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringView>

// Turns one BrickEconomy set answer into price figures. Kept apart from the adapter, with no
// network in it, so the decoding fuzzer and its replay test can run the same mapping on
// arbitrary answers.
//
// Up to two results, the new one first: one per current value present. The current values
// are BrickEconomy's estimates, kept as "sold" guides because that is what they stand for
// in the store. Forecasts and growth ride on the new result only. A payload with neither
// current value gives nothing, whatever else it carries.
class BrickEconomyPriceMapping
{
public:
    static constexpr QStringView providerId = u"brickeconomy";
    // Used when the answer names no currency; BrickEconomy's own.
    static constexpr QStringView fallbackCurrency = u"USD";

    static QList<PriceResult> results(const QString &setNumber, const BrickEconomySet &set,
                                      const QDateTime &fetchDate);

    static QList<PriceForecast> forecasts(const BrickEconomySet &set);
    static QList<PriceGrowthRate> growthRates(const BrickEconomySet &set);
};
