// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryRowChoice.h"

#include "ViewModels/InventoryRow.h"

#include <QCollator>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using SortColumn = InventorySpreadsheetViewModel::SortColumn;
using Rows = std::vector<std::shared_ptr<const InventoryRow>>;

template <typename T>
int threeWay(const T &left, const T &right)
{
    return left < right ? -1 : (right < left ? 1 : 0);
}

// Sorts `chosen` by `compare` (negative: ascending order): a pair is in order when the
// comparison says ascending and the sort is ascending, or descending and it is not. The
// stable sort leaves pairs that compare the same in the live list's order.
template <typename Compare>
void sortBy(QList<int> &chosen, const Rows &rows, bool ascending, Compare compare)
{
    if (ascending) {
        std::stable_sort(chosen.begin(), chosen.end(),
                         [&](int left, int right) { return compare(*rows[left], *rows[right]) < 0; });
    } else {
        std::stable_sort(chosen.begin(), chosen.end(),
                         [&](int left, int right) { return compare(*rows[left], *rows[right]) > 0; });
    }
}

void sort(QList<int> &chosen, const Rows &rows, SortColumn column, bool ascending, const QCollator &collator)
{
    switch (column) {
    case SortColumn::setNumber:
        // Plain comparison of the text, case and all.
        return sortBy(chosen, rows, ascending, [](const InventoryRow &l, const InventoryRow &r) {
            return QString::compare(l.setNumber, r.setNumber, Qt::CaseSensitive);
        });
    case SortColumn::name:
        // Sort keys once per row, then plain comparisons of keys rather than a
        // collation per comparison.
        for (const int row : std::as_const(chosen)) {
            if (!rows[row]->nameSortKey)
                rows[row]->nameSortKey = collator.sortKey(rows[row]->name);
        }
        return sortBy(chosen, rows, ascending, [](const InventoryRow &l, const InventoryRow &r) {
            return l.nameSortKey->compare(*r.nameSortKey);
        });
    case SortColumn::year:
        return sortBy(chosen, rows, ascending, [](const InventoryRow &l, const InventoryRow &r) {
            return threeWay(l.year, r.year);
        });
    case SortColumn::condition:
        return sortBy(chosen, rows, ascending, [](const InventoryRow &l, const InventoryRow &r) {
            return QString::compare(l.conditionKey, r.conditionKey, Qt::CaseSensitive);
        });
    case SortColumn::built:
        return sortBy(chosen, rows, ascending, [](const InventoryRow &l, const InventoryRow &r) {
            return QString::compare(l.builtKey, r.builtKey, Qt::CaseSensitive);
        });
    case SortColumn::paid:
        return sortBy(chosen, rows, ascending, [](const InventoryRow &l, const InventoryRow &r) {
            return threeWay(l.paidKey, r.paidKey);
        });
    case SortColumn::disposed:
        return sortBy(chosen, rows, ascending, [](const InventoryRow &l, const InventoryRow &r) {
            return threeWay(l.disposedKey, r.disposedKey);
        });
    case SortColumn::acquired:
        return sortBy(chosen, rows, ascending, [](const InventoryRow &l, const InventoryRow &r) {
            return threeWay(l.acquiredMsecs, r.acquiredMsecs);
        });
    case SortColumn::disposedDate:
        return sortBy(chosen, rows, ascending, [](const InventoryRow &l, const InventoryRow &r) {
            return threeWay(l.disposedDateMsecs, r.disposedDateMsecs);
        });
    case SortColumn::added:
        return sortBy(chosen, rows, ascending, [](const InventoryRow &l, const InventoryRow &r) {
            return threeWay(l.addedMsecs, r.addedMsecs);
        });
    }
}

} // namespace

QList<int> InventoryRowChoice::choose(const Rows &rows, const Criteria &criteria, const QCollator &collator)
{
    // Any stored text other than the two named ones, "all" included, keeps every copy.
    const bool onlyDisposed = criteria.statusFilterRaw == u"disposed";
    const bool onlyInStock = criteria.statusFilterRaw == u"inStock";
    const QString search = criteria.searchText.toLower();

    QList<int> chosen;
    chosen.reserve(qsizetype(rows.size()));
    for (std::size_t at = 0; at < rows.size(); ++at) {
        const InventoryRow &row = *rows[at];
        if ((onlyDisposed && !row.isDisposed) || (onlyInStock && row.isDisposed))
            continue;
        if (!search.isEmpty() && !row.setNumberLowered.contains(search) && !row.nameLowered.contains(search))
            continue;
        // A copy without any date reads as the distant past, as it does in the sort.
        if (criteria.from && row.filterDateMsecs < *criteria.from)
            continue;
        if (criteria.before && !(row.filterDateMsecs < *criteria.before))
            continue;
        chosen.append(int(at));
    }
    sort(chosen, rows, criteria.sortColumn, criteria.ascending, collator);
    return chosen;
}
