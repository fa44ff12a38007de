// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTableView>

#include <functional>

class TableSortHeader;

// What the set list's tables share: whole rows selected one at a time, read-only cells,
// striped rows without a grid, no row numbers, and a header that sorts the list by a click
// and shows the sort the list has.
class SetListTable : public QTableView
{
    Q_OBJECT

public:
    TableSortHeader *sortHeader() const { return m_sortHeader; }

protected:
    explicit SetListTable(QWidget *parent = nullptr);

    // `sortedColumn` and `ascending` read the list's sort back for the header's indicator.
    void installSortHeader(std::function<int()> sortedColumn, std::function<bool()> ascending);

private:
    TableSortHeader *m_sortHeader = nullptr;
};
