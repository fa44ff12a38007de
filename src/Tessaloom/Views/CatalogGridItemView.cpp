// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogGridItemView.h"

#include "ViewModels/CatalogSetListModel.h"

CatalogGridItemView::CatalogGridItemView(CellPictureLoader &pictures, QObject *parent)
    : SetGridDelegate(pictures, parent)
{
}

SetGridCell CatalogGridItemView::cell(const QModelIndex &index, QAbstractItemView *view) const
{
    SetGridCell cell;
    cell.picture = picture(index.data(CatalogSetListModel::ImageURLRole).toString(), index, view);
    cell.name = index.data(CatalogSetListModel::NameRole).toString();
    cell.setNumber = index.data(CatalogSetListModel::SetNumberRole).toString();
    cell.yearText = yearText(index.data(CatalogSetListModel::YearRole).toInt());
    cell.pieceCountText = pieceCountText(index.data(CatalogSetListModel::PieceCountRole).toInt());
    cell.isOwned = index.data(CatalogSetListModel::IsOwnedRole).toBool();
    return cell;
}
