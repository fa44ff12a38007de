// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/InventoryRowChoice.h"

#include "ViewModels/InventoryRow.h"

#include <QCollator>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using SortColumn = InventorySpreadsheetViewModel::SortColumn;
using Rows = InventoryRowChoice::Rows;

template <typename T>
int threeWay(const T &left, const T &right)
{
    return left < right ? -1 : (right < left ? 1 : 0);
}

// Calls `use` with the comparison of the column (negative: the left row comes first when
// ascending), so that each sort runs with its comparison inlined.
template <typename Use>
void withComparison(SortColumn column, Use use)
{
    switch (column) {
    case SortColumn::setNumber:
        // Plain comparison of the text, case and all.
        return use([](const InventoryRow &l, const InventoryRow &r) {
            return QString::compare(l.setNumber, r.setNumber, Qt::CaseSensitive);
        });
    case SortColumn::name:
        return use([](const InventoryRow &l, const InventoryRow &r) { return l.nameSortKey->compare(*r.nameSortKey); });
    case SortColumn::year:
        return use([](const InventoryRow &l, const InventoryRow &r) { return threeWay(l.year, r.year); });
    case SortColumn::condition:
        return use([](const InventoryRow &l, const InventoryRow &r) {
            return QString::compare(l.conditionKey, r.conditionKey, Qt::CaseSensitive);
        });
    case SortColumn::built:
        return use([](const InventoryRow &l, const InventoryRow &r) {
            return QString::compare(l.builtKey, r.builtKey, Qt::CaseSensitive);
        });
    case SortColumn::paid:
        return use([](const InventoryRow &l, const InventoryRow &r) { return threeWay(l.paidKey, r.paidKey); });
    case SortColumn::disposed:
        return use([](const InventoryRow &l, const InventoryRow &r) { return threeWay(l.disposedKey, r.disposedKey); });
    case SortColumn::acquired:
        return use([](const InventoryRow &l, const InventoryRow &r) { return threeWay(l.acquiredMsecs, r.acquiredMsecs); });
    case SortColumn::disposedDate:
        return use([](const InventoryRow &l, const InventoryRow &r) {
            return threeWay(l.disposedDateMsecs, r.disposedDateMsecs);
        });
    case SortColumn::added:
        return use([](const InventoryRow &l, const InventoryRow &r) { return threeWay(l.addedMsecs, r.addedMsecs); });
    }
}

// Whether the row at position `left` comes before the one at `right`: a pair is in order
// when the comparison says ascending and the sort is ascending, or descending and it is
// not; a pair that compares the same stays in the live list's order, which makes the
// order total, so that an ordinary sort and a binary search give what a stable sort would.
template <typename Compare>
auto before(const Rows &rows, bool ascending, Compare compare)
{
    return [&rows, ascending, compare](int left, int right) {
        const int result = compare(*rows[std::size_t(left)], *rows[std::size_t(right)]);
        if (result != 0)
            return ascending ? result < 0 : result > 0;
        return left < right;
    };
}

// Names compare by collation keys made once per row rather than by a collation per pair.
void prepareKeys(const Rows &rows, SortColumn column, const QCollator &collator)
{
    if (column != SortColumn::name)
        return;
    for (const auto &row : rows) {
        if (!row->nameSortKey)
            row->nameSortKey = collator.sortKey(row->name);
    }
}

} // namespace

QList<int> InventoryRowChoice::sorted(const Rows &rows, const Order &order, const QCollator &collator)
{
    prepareKeys(rows, order.column, collator);
    QList<int> positions(qsizetype(rows.size()));
    for (qsizetype at = 0; at < positions.size(); ++at)
        positions[at] = int(at);
    withComparison(order.column, [&](auto compare) {
        std::sort(positions.begin(), positions.end(), before(rows, order.ascending, compare));
    });
    return positions;
}

void InventoryRowChoice::reposition(QList<int> &sorted, const Rows &rows, int position, const Order &order,
                                    const QCollator &collator)
{
    if (order.column == SortColumn::name && !rows[std::size_t(position)]->nameSortKey)
        rows[std::size_t(position)]->nameSortKey = collator.sortKey(rows[std::size_t(position)]->name);
    const qsizetype old = sorted.indexOf(position);
    if (old < 0)
        return;
    sorted.remove(old);
    withComparison(order.column, [&](auto compare) {
        const auto place = std::lower_bound(sorted.begin(), sorted.end(), position, before(rows, order.ascending, compare));
        sorted.insert(place, position);
    });
}

QList<int> InventoryRowChoice::filtered(const Rows &rows, const QList<int> &sorted, const Filter &filter)
{
    // Any stored text other than the two named ones, "all" included, keeps every copy.
    const bool onlyDisposed = filter.statusFilterRaw == u"disposed";
    const bool onlyInStock = filter.statusFilterRaw == u"inStock";
    const QString search = filter.searchText.toLower();

    QList<int> chosen;
    chosen.reserve(sorted.size());
    for (const int at : sorted) {
        const InventoryRow &row = *rows[std::size_t(at)];
        if ((onlyDisposed && !row.isDisposed) || (onlyInStock && row.isDisposed))
            continue;
        if (!search.isEmpty() && !row.setNumberLowered.contains(search) && !row.nameLowered.contains(search))
            continue;
        // A copy without any date reads as the distant past, as it does in the sort.
        if (filter.from && row.filterDateMsecs < *filter.from)
            continue;
        if (filter.before && !(row.filterDateMsecs < *filter.before))
            continue;
        chosen.append(at);
    }
    return chosen;
}

QList<int> InventoryRowChoice::choose(const Rows &rows, const Filter &filter, const Order &order,
                                      const QCollator &collator)
{
    return filtered(rows, sorted(rows, order, collator), filter);
}
