// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "Store/SortDescriptor.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>

// The sort keys of the set lists and their three readings: the store's sort descriptors
// for the fetch of copies, the comparators that the table of copies shows as its sort,
// and the comparators of the catalog results. A comparator is written as a SortDescriptor
// whose key path names a field of BrickSet ("catalogSet.year") or of CatalogSetResult
// ("numParts").
class SetListSortOrder
{
    Q_GADGET

public:
    // Declaration order and raw values are what the settings store.
    enum class Column { name, setNumber, year, pieces, dateAdded, condition, value };
    Q_ENUM(Column)

    static QString rawValue(Column column);
    static std::optional<Column> fromRawValue(QStringView raw);

    // The fetch's order. `year` is followed by the name, always ascending. `value` cannot
    // be ordered by the store (the price is computed from the guides): the fetch orders by
    // name, and the list sorts by price in memory afterwards (sortsInMemory()).
    static QList<SortDescriptor> storeSortDescriptors(Column column, bool ascending);
    static bool sortsInMemory(Column column) { return column == Column::value; }

    // What the table of copies shows as its sort. For `value` this is deliberately the name:
    // a header's sort state cannot carry the computed price.
    static QList<SortDescriptor> collectionComparators(Column column, bool ascending);
    // The catalog results' order. The results carry no date, condition or price: those
    // columns order by name.
    static QList<SortDescriptor> catalogComparators(Column column, bool ascending);

    struct Choice
    {
        Column column;
        bool ascending;
        friend bool operator==(const Choice &, const Choice &) = default;
    };
    // The column and direction that a rewritten sort order stands for: its first
    // comparator. Nothing when the order is empty or its first key is not a column.
    static std::optional<Choice> collectionChoice(const QList<SortDescriptor> &comparators);
    static std::optional<Choice> catalogChoice(const QList<SortDescriptor> &comparators);

    // Sorts catalog results by `comparators`, stably: rows that compare equal keep the
    // order the search gave them. Texts compare as people read them (case-insensitive,
    // digits by number). Safe on any thread.
    static void sortCatalogResults(QList<CatalogSetResult> &results, const QList<SortDescriptor> &comparators);
};
