// SPDX-License-Identifier: GPL-3.0-or-later
#include "PriceAmount.h"

std::optional<Decimal> PriceAmount::fromText(QStringView text)
{
    return Decimal::fromString(text);
}

std::optional<Decimal> PriceAmount::fromNumber(double value)
{
    return Decimal::fromDouble(value);
}
