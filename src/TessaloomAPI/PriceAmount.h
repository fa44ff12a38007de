// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"

#include <QStringView>

#include <optional>

// How adapters turn a service's price into money. Nothing here looks at the user's region:
// a service writes "1234.56" whether the user writes 1.234,56 or 1,234.56.
class PriceAmount
{
public:
    // A price sent as text, with "." as the separator. Text that is no plain decimal number
    // gives no figure rather than an error: one odd field must not cost the whole answer.
    static std::optional<Decimal> fromText(QStringView text);
    // A price sent as a JSON number, which reaches us as a double: through its shortest
    // round-trip text, so 99.99 stays 99.99. Nothing for NaN or infinity.
    static std::optional<Decimal> fromNumber(double value);
};
