// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryYearTotals.h"

QStringList InventoryYearTotals::currencies() const
{
    // The entries are sorted by currency, so equal codes stand together.
    QStringList codes;
    for (const Entry &entry : entries) {
        if (codes.isEmpty() || codes.constLast() != entry.currency)
            codes.append(entry.currency);
    }
    return codes;
}
