// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "BrickEconomyPriceEvent.h"
#include "JSONValue.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// What BrickEconomy's set endpoint says about one set. Every field may be absent; a field
// that is present with the wrong type fails the whole answer. Keys are looked up after the
// client's snake-case conversion ("current_value_new" arrives as "currentValueNew").
//
// Only the current values, forecasts, growth, US retail price, retirement date and currency
// become prices; the catalog fields, other regions' retail prices and the price history are
// read so that the answer is checked whole, and then left unused.
struct BrickEconomySet
{
    std::optional<QString> setNumber;
    std::optional<QString> name;
    std::optional<QString> theme;
    std::optional<QString> subtheme;
    std::optional<qint64> year;
    std::optional<bool> retired;
    std::optional<qint64> piecesCount;
    std::optional<qint64> minifigsCount;
    std::optional<QStringList> minifigs;
    std::optional<QString> availability;
    std::optional<double> retailPriceUs;
    std::optional<double> retailPriceUk;
    std::optional<double> retailPriceCa;
    std::optional<double> retailPriceEu;
    std::optional<double> retailPriceAu;
    std::optional<QString> ean;
    std::optional<QString> upc;
    std::optional<QString> releasedDate;
    std::optional<QString> retiredDate;
    std::optional<double> currentValueNew;
    std::optional<double> currentValueUsed;
    std::optional<double> currentValueUsedLow;
    std::optional<double> currentValueUsedHigh;
    std::optional<double> forecastValueNew2Years;
    std::optional<double> forecastValueNew5Years;
    std::optional<double> rollingGrowthLastyear;
    std::optional<double> rollingGrowth12Months;
    std::optional<QList<BrickEconomyPriceEvent>> priceEventsNew;
    std::optional<QList<BrickEconomyPriceEvent>> priceEventsUsed;
    std::optional<QString> currency;

    static BrickEconomySet decode(const JSONValue &value);

    friend bool operator==(const BrickEconomySet &, const BrickEconomySet &) = default;
};
