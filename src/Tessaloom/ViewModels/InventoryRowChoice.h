// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/InventorySpreadsheetViewModel.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

class QCollator;
struct InventoryRow;

// Chooses the sheet's rows in five steps, each on what the one before left: status,
// search, the first day, the last day, then the order. Works on the keys read into each
// row, so a choice over ten thousand copies takes about a millisecond.
//
// The order is kept apart, over every row: sorting then filtering gives the same rows in
// the same order as filtering then sorting, and a filter change or a keystroke then costs
// one pass, a live edit of one copy one binary search, and only a new sort column or new
// copies a sort.
class InventoryRowChoice
{
public:
    using Rows = std::vector<std::shared_ptr<const InventoryRow>>;

    struct Filter
    {
        QString statusFilterRaw;
        QString searchText;
        // Instants in milliseconds since the epoch: a copy's date must not lie before
        // `from` and must lie before `before`.
        std::optional<qint64> from;
        std::optional<qint64> before;
    };

    struct Order
    {
        InventorySpreadsheetViewModel::SortColumn column = InventorySpreadsheetViewModel::SortColumn::setNumber;
        bool ascending = true;
    };

    // The positions of all rows in `order`. Rows that compare the same keep their order
    // in `rows` (the live list's order): there is no second key.
    static QList<int> sorted(const Rows &rows, const Order &order, const QCollator &collator);
    // Moves the row at `position` of `rows`, whose keys changed, to its place in `sorted`
    // (every position once, in `order`), as if all had been sorted again.
    static void reposition(QList<int> &sorted, const Rows &rows, int position, const Order &order,
                           const QCollator &collator);
    // The positions in `sorted` that the filter keeps, in that order.
    static QList<int> filtered(const Rows &rows, const QList<int> &sorted, const Filter &filter);

    // All five steps at once.
    static QList<int> choose(const Rows &rows, const Filter &filter, const Order &order, const QCollator &collator);
};
