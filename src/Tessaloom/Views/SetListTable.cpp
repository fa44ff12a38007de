// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetListTable.h"

#include "Views/TableSortHeader.h"

#include <QHeaderView>

SetListTable::SetListTable(QWidget *parent)
    : QTableView(parent)
{
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
}

void SetListTable::installSortHeader(std::function<int()> sortedColumn, std::function<bool()> ascending)
{
    m_sortHeader = new TableSortHeader(*this, std::move(sortedColumn), std::move(ascending));
}
