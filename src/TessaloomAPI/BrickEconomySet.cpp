// SPDX-License-Identifier: GPL-3.0-or-later
#include "BrickEconomySet.h"

using namespace Qt::StringLiterals;

BrickEconomySet BrickEconomySet::decode(const JSONValue &value)
{
    // A payload that is not an object fails at the first lookup (a type mismatch at "data"),
    // so "every field absent" is only ever an object with none of them.
    BrickEconomySet set;
    set.setNumber = value.decodeIfPresent<QString>(u"setNumber"_s);
    set.name = value.decodeIfPresent<QString>(u"name"_s);
    set.theme = value.decodeIfPresent<QString>(u"theme"_s);
    set.subtheme = value.decodeIfPresent<QString>(u"subtheme"_s);
    set.year = value.decodeIfPresent<qint64>(u"year"_s);
    set.retired = value.decodeIfPresent<bool>(u"retired"_s);
    set.piecesCount = value.decodeIfPresent<qint64>(u"piecesCount"_s);
    set.minifigsCount = value.decodeIfPresent<qint64>(u"minifigsCount"_s);
    if (auto minifigs = value.decodeIfPresent<QList<QString>>(u"minifigs"_s))
        set.minifigs = QStringList(std::move(*minifigs));
    set.availability = value.decodeIfPresent<QString>(u"availability"_s);
    set.retailPriceUs = value.decodeIfPresent<double>(u"retailPriceUs"_s);
    set.retailPriceUk = value.decodeIfPresent<double>(u"retailPriceUk"_s);
    set.retailPriceCa = value.decodeIfPresent<double>(u"retailPriceCa"_s);
    set.retailPriceEu = value.decodeIfPresent<double>(u"retailPriceEu"_s);
    set.retailPriceAu = value.decodeIfPresent<double>(u"retailPriceAu"_s);
    set.ean = value.decodeIfPresent<QString>(u"ean"_s);
    set.upc = value.decodeIfPresent<QString>(u"upc"_s);
    set.releasedDate = value.decodeIfPresent<QString>(u"releasedDate"_s);
    set.retiredDate = value.decodeIfPresent<QString>(u"retiredDate"_s);
    set.currentValueNew = value.decodeIfPresent<double>(u"currentValueNew"_s);
    set.currentValueUsed = value.decodeIfPresent<double>(u"currentValueUsed"_s);
    set.currentValueUsedLow = value.decodeIfPresent<double>(u"currentValueUsedLow"_s);
    set.currentValueUsedHigh = value.decodeIfPresent<double>(u"currentValueUsedHigh"_s);
    set.forecastValueNew2Years = value.decodeIfPresent<double>(u"forecastValueNew2Years"_s);
    set.forecastValueNew5Years = value.decodeIfPresent<double>(u"forecastValueNew5Years"_s);
    set.rollingGrowthLastyear = value.decodeIfPresent<double>(u"rollingGrowthLastyear"_s);
    set.rollingGrowth12Months = value.decodeIfPresent<double>(u"rollingGrowth12Months"_s);
    set.priceEventsNew = value.decodeIfPresent<QList<BrickEconomyPriceEvent>>(u"priceEventsNew"_s);
    set.priceEventsUsed = value.decodeIfPresent<QList<BrickEconomyPriceEvent>>(u"priceEventsUsed"_s);
    set.currency = value.decodeIfPresent<QString>(u"currency"_s);
    return set;
}
