// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <functional>

class QTableView;

// The header of a set table: a click on a column asks the model to sort by it (ascending,
// or the other way round when the column already sorts), and the indicator shows the sort
// the list really has, which is read back after every change. A column that does not sort
// leaves everything as it was.
class TableSortHeader : public QObject
{
    Q_OBJECT

public:
    // `sortedColumn` gives the column the list sorts by (-1 for none) and `ascending` its
    // direction.
    TableSortHeader(QTableView &table, std::function<int()> sortedColumn, std::function<bool()> ascending);

    // Shows the list's sort in the header again.
    void refresh();

private:
    void sectionClicked(int column);

    QTableView &m_table;
    std::function<int()> m_sortedColumn;
    std::function<bool()> m_ascending;
};
