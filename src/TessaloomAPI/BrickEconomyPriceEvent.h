// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "JSONValue.h"

#include <QString>

// One dated value in a BrickEconomy set's price history. Read with the rest of the answer so
// that a malformed history fails the answer as a whole; no price is taken from it.
struct BrickEconomyPriceEvent
{
    QString date;
    double value = 0;

    // Both fields are required.
    static BrickEconomyPriceEvent decode(const JSONValue &value);

    friend bool operator==(const BrickEconomyPriceEvent &, const BrickEconomyPriceEvent &) = default;
};
