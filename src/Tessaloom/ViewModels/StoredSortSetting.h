// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/SortDescriptor.h"
#include "ViewModels/SetListSortOrder.h"

#include <QList>
#include <QObject>
#include <QString>

// One set list's sort column and direction, read from the user settings at construction
// and written back under the same two keys whenever either changes: for the copies
// "collectionSortColumn" (default `name`) and "collectionSortAscending", for the catalog
// results "catalogSortColumn" (default `year`) and "catalogSortAscending". The column is
// stored as its raw value, and an unknown text gives the default; an absent direction
// means ascending. Main thread only.
class StoredSortSetting : public QObject
{
    Q_OBJECT

public:
    using Column = SetListSortOrder::Column;
    enum class List { collection, catalog };

    explicit StoredSortSetting(List list, QObject *parent = nullptr);

    Column column() const { return m_choice.column; }
    bool ascending() const { return m_choice.ascending; }
    void setColumn(Column column);
    void setAscending(bool ascending);

    // What the list's table shows as its sort (SetListSortOrder's comparators of the list).
    QList<SortDescriptor> comparators() const;
    // A header click: takes the column and direction of the first comparator; an order
    // that names no column changes nothing.
    void setComparators(const QList<SortDescriptor> &comparators);

Q_SIGNALS:
    // After a change has been written; never for a value that was already there.
    void changed();

private:
    void setChoice(const SetListSortOrder::Choice &choice);

    List m_list;
    QString m_columnKey;
    QString m_ascendingKey;
    SetListSortOrder::Choice m_choice;
};
