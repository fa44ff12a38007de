// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryYearTally.h"

#include "ViewModels/InventoryRow.h"

#include <QHash>

#include <algorithm>

namespace {

// The entries of one currency by year. A sheet holds a handful of currencies, so finding
// one by a walk along the list beats hashing its code for every row.
struct CurrencyYears
{
    QString currency;
    QHash<int, InventoryYearTotals::Entry> years;
};

InventoryYearTotals::Entry &entryFor(QList<CurrencyYears> &currencies, const QString &currency, int year)
{
    auto found = std::find_if(currencies.begin(), currencies.end(),
                              [&currency](const CurrencyYears &candidate) { return candidate.currency == currency; });
    if (found == currencies.end()) {
        currencies.append(CurrencyYears{currency, {}});
        found = std::prev(currencies.end());
    }
    auto entry = found->years.find(year);
    if (entry == found->years.end())
        entry = found->years.insert(year, InventoryYearTotals::Entry{currency, year, {}, {}});
    return *entry;
}

} // namespace

InventoryYearTotals InventoryYearTally::of(const QList<std::shared_ptr<const InventoryRow>> &rows,
                                           const QString &localeCurrency)
{
    QList<CurrencyYears> currencies;
    for (const auto &row : rows) {
        // Like the footer's total sold, a recorded sale price counts whatever the copy's
        // status says; only a sale without a date has no year to count in.
        if (row->pricePaid && row->filterDay.isValid()) {
            entryFor(currencies, row->priceCurrency.isEmpty() ? localeCurrency : row->priceCurrency,
                     row->filterDay.year())
                .paid += *row->pricePaid;
        }
        if (row->disposalPrice && row->disposedDay.isValid()) {
            entryFor(currencies, row->disposalCurrency.isEmpty() ? localeCurrency : row->disposalCurrency,
                     row->disposedDay.year())
                .received += *row->disposalPrice;
        }
    }
    InventoryYearTotals totals;
    for (const CurrencyYears &currency : std::as_const(currencies)) {
        for (const InventoryYearTotals::Entry &entry : currency.years)
            totals.entries.append(entry);
    }
    std::sort(totals.entries.begin(), totals.entries.end(),
              [](const InventoryYearTotals::Entry &left, const InventoryYearTotals::Entry &right) {
                  return left.currency != right.currency ? left.currency < right.currency : left.year < right.year;
              });
    return totals;
}
