// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

// The ISO codes of the currencies a user can pick for new prices and totals, in the order
// the pickers list them. Amounts in different currencies are never converted.
class OfferedCurrencies
{
public:
    static QStringList codes();
    static bool contains(const QString &code);
    // The code to use when none was chosen: `preferred` when offered, else "USD".
    static QString codeOrDefault(const QString &preferred);
};
