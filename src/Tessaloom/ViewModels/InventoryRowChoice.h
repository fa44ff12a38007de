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
// row, so a choice over ten thousand copies takes a few milliseconds.
class InventoryRowChoice
{
public:
    struct Criteria
    {
        QString statusFilterRaw;
        QString searchText;
        // Instants in milliseconds since the epoch: a copy's date must not lie before
        // `from` and must lie before `before`.
        std::optional<qint64> from;
        std::optional<qint64> before;
        InventorySpreadsheetViewModel::SortColumn sortColumn = InventorySpreadsheetViewModel::SortColumn::setNumber;
        bool ascending = true;
    };

    // The positions in `rows` of the chosen rows, in their order. Rows that compare the
    // same keep their order in `rows`: there is no second key. `collator` compares names.
    static QList<int> choose(const std::vector<std::shared_ptr<const InventoryRow>> &rows, const Criteria &criteria,
                             const QCollator &collator);
};
