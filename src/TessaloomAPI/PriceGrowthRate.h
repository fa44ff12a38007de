// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"

#include <QString>

// A growth figure of a set's value over a period such as "12 Months", in percent points
// as the service gives them. Stored as JSON with exactly the keys "period" and "percent".
struct PriceGrowthRate
{
    QString period;
    Decimal percent;

    friend bool operator==(const PriceGrowthRate &, const PriceGrowthRate &) = default;
};
