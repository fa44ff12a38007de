// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/WishlistTableView.h"

#include "ViewModels/WishlistListModel.h"

#include <QHeaderView>

WishlistTableView::WishlistTableView(WishlistListModel &model, QWidget *parent)
    : SetListTable(parent)
{
    setModel(&model);
    QHeaderView *header = horizontalHeader();
    header->setSectionsClickable(false);
    header->resizeSection(WishlistListModel::SetNumberColumn, 90);
    header->resizeSection(WishlistListModel::NameColumn, 240);
    header->resizeSection(WishlistListModel::ThemeColumn, 140);
    header->resizeSection(WishlistListModel::YearColumn, 60);
    header->resizeSection(WishlistListModel::PiecesColumn, 70);
    header->setStretchLastSection(false);
    header->setSectionResizeMode(WishlistListModel::NameColumn, QHeaderView::Stretch);
}
