// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"
#include "PriceForecast.h"
#include "PriceGrowthRate.h"
#include "Store/ObjectID.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

struct CatalogSet;
struct PriceResult;
class ManagedObjectContext;

// One price figure of one provider for one set, as last fetched.
struct CachedPriceGuide
{
    ObjectID objectID{EntityType::CachedPriceGuide, 0};

    std::optional<QString> conditionType; // raw value of PricingCondition
    std::optional<QString> guideType;     // raw value of PricingGuideType
    std::optional<Decimal> avgPrice;
    std::optional<Decimal> minPrice;
    std::optional<Decimal> maxPrice;
    qint32 quantitySold = 0;
    std::optional<QString> currency;
    std::optional<QDateTime> lastFetchDate;
    std::optional<QString> providerName;
    std::optional<QString> forecastsJSON;
    std::optional<QString> growthRatesJSON;

    std::optional<ObjectID> catalogSet; // inverse CatalogSet.cachedPriceGuides

    // The stored JSON decoded; an absent or undecodable text gives an empty list and no
    // report, since a damaged cache entry is simply refetched later. Values are written
    // as JSON numbers in their exact decimal text and read back through their shortest
    // double text, which is exact for every price (up to 15 significant digits).
    QList<PriceForecast> forecasts() const;
    QList<PriceGrowthRate> growthRates() const;

    // The guide a price result describes, attached to `catalogSet`. The JSON texts are set
    // only for non-empty lists: an absent text and "[]" read alike, and absent is cheaper.
    static CachedPriceGuide fromPriceResult(const PriceResult &result, const ObjectID &catalogSet);
    // Inserts that guide into `context` (pending until the context saves) and returns it.
    static CachedPriceGuide insert(ManagedObjectContext &context, const PriceResult &result,
                                   const CatalogSet &catalogSet);

    static QString encodeForecasts(const QList<PriceForecast> &forecasts);
    static QString encodeGrowthRates(const QList<PriceGrowthRate> &growthRates);

    friend bool operator==(const CachedPriceGuide &, const CachedPriceGuide &) = default;
};
