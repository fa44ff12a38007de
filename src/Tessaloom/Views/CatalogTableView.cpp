// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogTableView.h"

#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/SetListViewModel.h"
#include "Views/SymbolMarkCell.h"
#include "Views/TableSortHeader.h"

#include <QHeaderView>

using namespace Qt::StringLiterals;

CatalogTableView::CatalogTableView(SetListViewModel &viewModel, QWidget *parent)
    : QTableView(parent)
{
    setModel(viewModel.catalogModel());
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);

    //% "In your collection"
    setItemDelegateForColumn(CatalogSetListModel::OwnedColumn,
                             new SymbolMarkCell(CatalogSetListModel::IsOwnedRole, u"checkmark.circle.fill"_s,
                                                qtTrId("catalog.owned"), this));

    QHeaderView *header = horizontalHeader();
    header->setHighlightSections(false);
    header->resizeSection(CatalogSetListModel::SetNumberColumn, 90);
    header->resizeSection(CatalogSetListModel::NameColumn, 240);
    header->resizeSection(CatalogSetListModel::ThemeColumn, 140);
    header->resizeSection(CatalogSetListModel::YearColumn, 60);
    header->resizeSection(CatalogSetListModel::PiecesColumn, 70);
    header->setSectionResizeMode(CatalogSetListModel::OwnedColumn, QHeaderView::Fixed);
    header->resizeSection(CatalogSetListModel::OwnedColumn, 32);
    header->setStretchLastSection(false);
    header->setSectionResizeMode(CatalogSetListModel::NameColumn, QHeaderView::Stretch);

    m_sortHeader = new TableSortHeader(
        *this, [&viewModel] { return CatalogSetListModel::columnOfSortOrder(viewModel.catalogSortOrder()); },
        [&viewModel] { return viewModel.catalogSortAscending(); });
    connect(&viewModel, &SetListViewModel::catalogSortChanged, m_sortHeader, &TableSortHeader::refresh);
}
