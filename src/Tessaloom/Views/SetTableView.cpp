// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetTableView.h"

#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListViewModel.h"
#include "Views/ConditionBadge.h"
#include "Views/PriceLabel.h"
#include "Views/SymbolMarkCell.h"
#include "Views/TableSortHeader.h"
#include "Views/TableThumbnail.h"

#include <QHeaderView>

using namespace Qt::StringLiterals;

namespace {
constexpr int thumbnailColumnWidth = 88;
constexpr int thumbnailRowHeight = 64;
} // namespace

SetTableView::SetTableView(SetListViewModel &viewModel, QWidget *parent)
    : SetListTable(parent)
{
    setModel(viewModel.groups());
    verticalHeader()->setDefaultSectionSize(thumbnailRowHeight);

    setItemDelegateForColumn(SetListGroupModel::ThumbnailColumn, new TableThumbnail(this));
    //% "Favorite"
    setItemDelegateForColumn(SetListGroupModel::NameColumn,
                             new SymbolMarkCell(SetListGroupModel::IsFavoriteRole, u"star.fill"_s,
                                                qtTrId("accessibility.favorited"), this));
    setItemDelegateForColumn(SetListGroupModel::ConditionColumn,
                             new ConditionBadge(SetListGroupModel::ConditionRole, this));
    setItemDelegateForColumn(SetListGroupModel::ValueColumn,
                             new PriceLabel(SetListGroupModel::PriceRole, SetListGroupModel::CurrencyRole, this));

    horizontalHeader()->resizeSection(SetListGroupModel::ThumbnailColumn, thumbnailColumnWidth);
    setUpColumnWidths(u"collectionTableColumns"_s, SetListGroupModel::NameColumn, {SetListGroupModel::ThumbnailColumn});

    installSortHeader([&viewModel] { return SetListGroupModel::columnOfSortOrder(viewModel.collectionSortOrder()); },
                      [&viewModel] { return viewModel.collectionSortAscending(); });
    connect(&viewModel, &SetListViewModel::collectionSortChanged, sortHeader(), &TableSortHeader::refresh);
}
