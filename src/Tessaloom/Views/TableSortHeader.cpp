// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/TableSortHeader.h"

#include <QHeaderView>
#include <QTableView>

TableSortHeader::TableSortHeader(QTableView &table, std::function<int()> sortedColumn, std::function<bool()> ascending)
    : QObject(&table)
    , m_table(table)
    , m_sortedColumn(std::move(sortedColumn))
    , m_ascending(std::move(ascending))
{
    // The view's own sorting would sort at once on being switched on and move the
    // indicator before the list has sorted; the clicks are handled here instead.
    m_table.setSortingEnabled(false);
    QHeaderView *header = m_table.horizontalHeader();
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    connect(header, &QHeaderView::sectionClicked, this, &TableSortHeader::sectionClicked);
    refresh();
}

void TableSortHeader::refresh()
{
    const int column = m_sortedColumn();
    m_table.horizontalHeader()->setSortIndicator(column, m_ascending() ? Qt::AscendingOrder : Qt::DescendingOrder);
}

void TableSortHeader::sectionClicked(int column)
{
    const bool sameColumn = column == m_sortedColumn();
    const Qt::SortOrder order = sameColumn && m_ascending() ? Qt::DescendingOrder : Qt::AscendingOrder;
    if (m_table.model())
        m_table.model()->sort(column, order);
    refresh();
}
