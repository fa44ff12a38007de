// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"

#include <QLocale>
#include <QString>

#include <optional>

// A sum of money as the detail screens show it: the exact decimal, rounded half up to the
// currency's minor unit, in the user's number format and currency pattern
// (QLocale::toCurrencyString), with the currency's symbol where readers expect one. The
// digits never pass through a double, so 849.99 shows as 849.99 however large the sum.
class MoneyText
{
public:
    // Empty for an absent amount; an empty code gives the number alone.
    static QString text(const std::optional<Decimal> &amount, const QString &currencyCode,
                        const QLocale &locale = QLocale());

    // The amount rounded to `decimals` places, half away from zero, as plain text with "."
    // and exactly `decimals` fraction digits ("1234.50").
    static QString rounded(const Decimal &amount, int decimals);

    // The symbol shown for `currencyCode`: the locale's own symbol for its own currency,
    // the usual symbol of a few common currencies, the code itself otherwise.
    static QString symbol(const QString &currencyCode, const QLocale &locale = QLocale());
};
