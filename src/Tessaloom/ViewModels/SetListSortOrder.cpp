// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListSortOrder.h"

#include <QCollator>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct ColumnNames
{
    SetListSortOrder::Column column;
    QString rawValue;
    QString collectionKeyPath;
    QString catalogKeyPath;
};

const QList<ColumnNames> &columnNames()
{
    using Column = SetListSortOrder::Column;
    static const QList<ColumnNames> names{
        {Column::name, u"name"_s, u"catalogSet.name"_s, u"name"_s},
        {Column::setNumber, u"setNumber"_s, u"catalogSet.setNumber"_s, u"setNum"_s},
        {Column::year, u"year"_s, u"catalogSet.year"_s, u"year"_s},
        {Column::pieces, u"pieces"_s, u"catalogSet.pieceCount"_s, u"numParts"_s},
        {Column::dateAdded, u"dateAdded"_s, u"dateAdded"_s, QString()},
        {Column::condition, u"condition"_s, u"overallCondition"_s, QString()},
        {Column::value, u"value"_s, QString(), QString()},
    };
    return names;
}

const ColumnNames &namesOf(SetListSortOrder::Column column)
{
    return columnNames().at(qsizetype(column));
}

} // namespace

QString SetListSortOrder::rawValue(Column column)
{
    return namesOf(column).rawValue;
}

std::optional<SetListSortOrder::Column> SetListSortOrder::fromRawValue(QStringView raw)
{
    for (const ColumnNames &names : columnNames()) {
        if (names.rawValue == raw)
            return names.column;
    }
    return std::nullopt;
}

QList<SortDescriptor> SetListSortOrder::storeSortDescriptors(Column column, bool ascending)
{
    switch (column) {
    case Column::year:
        return {{u"catalogSet.year"_s, ascending}, {u"catalogSet.name"_s, true}};
    case Column::value:
        return {{u"catalogSet.name"_s, true}};
    default:
        return {{namesOf(column).collectionKeyPath, ascending}};
    }
}

QList<SortDescriptor> SetListSortOrder::collectionComparators(Column column, bool ascending)
{
    switch (column) {
    case Column::year:
        return {{u"catalogSet.year"_s, ascending}, {u"catalogSet.name"_s, true}};
    case Column::value:
        return {{u"catalogSet.name"_s, ascending}};
    default:
        return {{namesOf(column).collectionKeyPath, ascending}};
    }
}

QList<SortDescriptor> SetListSortOrder::catalogComparators(Column column, bool ascending)
{
    switch (column) {
    case Column::year:
        return {{u"year"_s, ascending}, {u"name"_s, true}};
    case Column::name:
    case Column::setNumber:
    case Column::pieces:
        return {{namesOf(column).catalogKeyPath, ascending}};
    default:
        return {{u"name"_s, ascending}};
    }
}

std::optional<SetListSortOrder::Choice> SetListSortOrder::collectionChoice(const QList<SortDescriptor> &comparators)
{
    if (comparators.isEmpty())
        return std::nullopt;
    for (const ColumnNames &names : columnNames()) {
        if (!names.collectionKeyPath.isEmpty() && names.collectionKeyPath == comparators.first().keyPath)
            return Choice{names.column, comparators.first().ascending};
    }
    return std::nullopt;
}

std::optional<SetListSortOrder::Choice> SetListSortOrder::catalogChoice(const QList<SortDescriptor> &comparators)
{
    if (comparators.isEmpty())
        return std::nullopt;
    for (const ColumnNames &names : columnNames()) {
        if (!names.catalogKeyPath.isEmpty() && names.catalogKeyPath == comparators.first().keyPath)
            return Choice{names.column, comparators.first().ascending};
    }
    return std::nullopt;
}

void SetListSortOrder::sortCatalogResults(QList<CatalogSetResult> &results, const QList<SortDescriptor> &comparators)
{
    if (comparators.isEmpty() || results.size() < 2)
        return;
    QCollator collator;
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    auto compareBy = [&collator](const SortDescriptor &key, const CatalogSetResult &left,
                                 const CatalogSetResult &right) -> int {
        if (key.keyPath == u"name")
            return collator.compare(left.name, right.name);
        if (key.keyPath == u"setNum")
            return collator.compare(left.setNum, right.setNum);
        if (key.keyPath == u"year")
            return left.year < right.year ? -1 : (left.year > right.year ? 1 : 0);
        if (key.keyPath == u"numParts")
            return left.numParts < right.numParts ? -1 : (left.numParts > right.numParts ? 1 : 0);
        return 0;
    };
    std::stable_sort(results.begin(), results.end(), [&](const CatalogSetResult &left, const CatalogSetResult &right) {
        for (const SortDescriptor &key : comparators) {
            const int order = compareBy(key, left, right);
            if (order != 0)
                return key.ascending ? order < 0 : order > 0;
        }
        return false;
    });
}
