// SPDX-License-Identifier: GPL-3.0-or-later
#include "BrickEconomyPriceMapping.h"

#include "PriceAmount.h"

using namespace Qt::StringLiterals;

namespace {

// Prices and growth percentages alike become decimals through the shortest text of the double.
std::optional<Decimal> decimalOf(const std::optional<double> &value)
{
    if (!value)
        return std::nullopt;
    return PriceAmount::fromNumber(*value);
}

} // namespace

QList<PriceForecast> BrickEconomyPriceMapping::forecasts(const BrickEconomySet &set)
{
    QList<PriceForecast> list;
    if (const auto value = decimalOf(set.forecastValueNew2Years))
        list.append({u"2 Years"_s, *value});
    if (const auto value = decimalOf(set.forecastValueNew5Years))
        list.append({u"5 Years"_s, *value});
    return list;
}

QList<PriceGrowthRate> BrickEconomyPriceMapping::growthRates(const BrickEconomySet &set)
{
    QList<PriceGrowthRate> list;
    if (const auto percent = decimalOf(set.rollingGrowth12Months))
        list.append({u"12 Months"_s, *percent});
    if (const auto percent = decimalOf(set.rollingGrowthLastyear))
        list.append({u"Last Year"_s, *percent});
    return list;
}

QList<PriceResult> BrickEconomyPriceMapping::results(const QString &setNumber, const BrickEconomySet &set,
                                                     const QDateTime &fetchDate)
{
    const QString currency = set.currency.value_or(fallbackCurrency.toString());

    // The US list price is the one kept, always labelled in dollars: the answer's currency
    // is that of the market values, not of the retail prices.
    const std::optional<Decimal> retailPrice = decimalOf(set.retailPriceUs);
    const std::optional<QString> retailPriceCurrency =
        retailPrice ? std::optional<QString>(u"USD"_s) : std::nullopt;

    const auto base = [&](PricingCondition condition) {
        PriceResult result;
        result.setNumber = setNumber;
        result.condition = condition;
        result.guideType = PricingGuideType::sold;
        result.currency = currency;
        result.providerName = providerId.toString();
        result.fetchDate = fetchDate;
        result.retailPrice = retailPrice;
        result.retailPriceCurrency = retailPriceCurrency;
        result.retiredDate = set.retiredDate;
        return result;
    };

    QList<PriceResult> list;
    if (set.currentValueNew) {
        PriceResult result = base(PricingCondition::new_);
        result.avgPrice = decimalOf(set.currentValueNew);
        result.forecasts = forecasts(set);
        result.growthRates = growthRates(set);
        list.append(std::move(result));
    }
    if (set.currentValueUsed) {
        PriceResult result = base(PricingCondition::used);
        result.avgPrice = decimalOf(set.currentValueUsed);
        result.minPrice = decimalOf(set.currentValueUsedLow);
        result.maxPrice = decimalOf(set.currentValueUsedHigh);
        list.append(std::move(result));
    }
    return list;
}
