// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"

#include <QString>

// One forecast of a set's value: a period such as "2 Years" and the value expected then.
// Stored as JSON with exactly the keys "period" and "value".
struct PriceForecast
{
    QString period;
    Decimal value;

    friend bool operator==(const PriceForecast &, const PriceForecast &) = default;
};
