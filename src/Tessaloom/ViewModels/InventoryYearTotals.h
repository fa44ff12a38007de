// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Decimal.h"

#include <QList>
#include <QString>

// Money paid and money received in each year, in each currency, over a set of copies.
// Paid counts in the year of the copy's date (acquisition date, else date added) under
// its price currency; received counts in the year of the disposal date under the disposal
// currency (a disposal without a date is left out). A missing currency counts under the
// locale's currency code.
struct InventoryYearTotals
{
    struct Entry
    {
        QString currency; // ISO code
        int year = 0;
        Decimal paid;
        Decimal received;
        friend bool operator==(const Entry &, const Entry &) = default;
    };
    // Sorted by currency, then year; a year with neither amount has no entry.
    QList<Entry> entries;

    QStringList currencies() const; // sorted, distinct
    friend bool operator==(const InventoryYearTotals &, const InventoryYearTotals &) = default;
};
