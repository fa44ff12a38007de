// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryYearTally.h"

#include "ViewModels/InventoryRow.h"

#include <map>
#include <utility>

InventoryYearTotals InventoryYearTally::of(const QList<std::shared_ptr<const InventoryRow>> &rows,
                                           const QString &localeCurrency)
{
    // Ordered by currency, then year, as the entries are to be.
    std::map<std::pair<QString, int>, InventoryYearTotals::Entry> entries;
    auto entry = [&entries](const QString &currency, int year) -> InventoryYearTotals::Entry & {
        InventoryYearTotals::Entry &found = entries[{currency, year}];
        found.currency = currency;
        found.year = year;
        return found;
    };
    for (const auto &row : rows) {
        // Like the footer's total sold, a recorded sale price counts whatever the copy's
        // status says; only a sale without a date has no year to count in.
        if (row->pricePaid && row->filterDay.isValid()) {
            entry(row->priceCurrency.isEmpty() ? localeCurrency : row->priceCurrency, row->filterDay.year()).paid +=
                *row->pricePaid;
        }
        if (row->disposalPrice && row->disposedDay.isValid()) {
            entry(row->disposalCurrency.isEmpty() ? localeCurrency : row->disposalCurrency, row->disposedDay.year())
                .received += *row->disposalPrice;
        }
    }
    InventoryYearTotals totals;
    totals.entries.reserve(qsizetype(entries.size()));
    for (auto &[key, value] : entries)
        totals.entries.append(std::move(value));
    return totals;
}
