// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogTableView.h"

#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/SetListViewModel.h"
#include "Views/SymbolMarkCell.h"
#include "Views/TableSortHeader.h"

#include <QHeaderView>

using namespace Qt::StringLiterals;

CatalogTableView::CatalogTableView(SetListViewModel &viewModel, QWidget *parent)
    : SetListTable(parent)
{
    setModel(viewModel.catalogModel());

    //% "In your collection"
    setItemDelegateForColumn(CatalogSetListModel::OwnedColumn,
                             new SymbolMarkCell(CatalogSetListModel::IsOwnedRole, u"checkmark.circle.fill"_s,
                                                qtTrId("catalog.owned"), this));

    QHeaderView *header = horizontalHeader();
    header->resizeSection(CatalogSetListModel::OwnedColumn, 32);
    setUpColumnWidths(u"catalogTableColumns"_s, CatalogSetListModel::NameColumn, {CatalogSetListModel::OwnedColumn});

    installSortHeader([&viewModel] { return CatalogSetListModel::columnOfSortOrder(viewModel.catalogSortOrder()); },
                      [&viewModel] { return viewModel.catalogSortAscending(); });
    connect(&viewModel, &SetListViewModel::catalogSortChanged, sortHeader(), &TableSortHeader::refresh);
}
