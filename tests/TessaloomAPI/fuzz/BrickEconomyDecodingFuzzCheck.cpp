// SPDX-License-Identifier: GPL-3.0-or-later
#include "BrickEconomyDecodingFuzzCheck.h"

#include "BrickEconomyPriceMapping.h"
#include "BrickEconomyResponse.h"
#include "BrickEconomySet.h"
#include "JSONDecoder.h"

using namespace Qt::StringLiterals;

namespace {

// The rules every mapped answer keeps, whatever the service sent.
bool keepsTheRules(const BrickEconomySet &set, const QList<PriceResult> &results, const QString &setNumber,
                   const QDateTime &fetchDate)
{
    const qsizetype expected = (set.currentValueNew ? 1 : 0) + (set.currentValueUsed ? 1 : 0);
    if (results.size() != expected)
        return false;
    for (qsizetype index = 0; index < results.size(); ++index) {
        const PriceResult &result = results.at(index);
        const bool isNew = index == 0 && set.currentValueNew;
        if (result.condition != (isNew ? PricingCondition::new_ : PricingCondition::used))
            return false;
        if (result.setNumber != setNumber || result.guideType != PricingGuideType::sold
            || result.providerName != u"brickeconomy"_s || result.fetchDate != fetchDate)
            return false;
        if (result.currency != set.currency.value_or(u"USD"_s) || result.quantitySold)
            return false;
        if (result.retailPrice.has_value() != result.retailPriceCurrency.has_value())
            return false;
        if (result.retailPriceCurrency && *result.retailPriceCurrency != u"USD"_s)
            return false;
        if (result.retiredDate != set.retiredDate)
            return false;
        if (!isNew && (!result.forecasts.isEmpty() || !result.growthRates.isEmpty()))
            return false;
        if (isNew && (result.minPrice || result.maxPrice))
            return false;
        if (result.forecasts.size() > 2 || result.growthRates.size() > 2)
            return false;
    }
    return true;
}

} // namespace

BrickEconomyDecodingFuzzCheck::Verdict BrickEconomyDecodingFuzzCheck::verdict(QByteArrayView body)
{
    const QString setNumber = u"10497-1"_s;
    const QDateTime fetchDate = QDateTime::fromMSecsSinceEpoch(1'764'000'000'000, Qt::UTC);
    try {
        const auto answer = JSONDecoder::decode<BrickEconomyResponse<BrickEconomySet>>(body.toByteArray());
        const QList<PriceResult> results = BrickEconomyPriceMapping::results(setNumber, answer.data, fetchDate);
        return keepsTheRules(answer.data, results, setNumber, fetchDate) ? Verdict::value : Verdict::broken;
    } catch (const JSONDecodingError &) {
        return Verdict::decodingError;
    } catch (...) {
        return Verdict::broken;
    }
}
