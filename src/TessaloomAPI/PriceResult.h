// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"
#include "PriceForecast.h"
#include "PriceGrowthRate.h"
#include "PricingCondition.h"
#include "PricingGuideType.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

// One price figure: one set, one condition, one guide type, from one provider. A plain
// value that travels between tasks; money stays decimal from the moment it is built.
struct PriceResult
{
    QString setNumber; // as the caller passed it to the provider, never rewritten
    PricingCondition condition = PricingCondition::used;
    PricingGuideType guideType = PricingGuideType::sold;
    std::optional<Decimal> avgPrice;
    std::optional<Decimal> minPrice;
    std::optional<Decimal> maxPrice;
    std::optional<qint64> quantitySold;
    QString currency;
    QString providerName; // the provider's id ("bricklink"), matched against stored guides
    QDateTime fetchDate;
    QList<PriceForecast> forecasts;
    QList<PriceGrowthRate> growthRates;
    std::optional<Decimal> retailPrice;
    std::optional<QString> retailPriceCurrency;
    std::optional<QString> retiredDate; // as the service spells it; not parsed here

    friend bool operator==(const PriceResult &, const PriceResult &) = default;
};
