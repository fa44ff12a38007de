// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetGridItemView.h"

#include "ViewModels/SetListGroupModel.h"


SetGridItemView::SetGridItemView(CellPictureLoader &pictures, QObject *parent)
    : SetGridDelegate(pictures, parent)
{
}

SetGridCell SetGridItemView::cell(const QModelIndex &index, QAbstractItemView *view) const
{
    SetGridCell cell;
    cell.picture = picture(index.data(SetListGroupModel::ImageURLRole).toString(), index, view);
    cell.name = index.data(SetListGroupModel::NameRole).toString();
    cell.setNumber = index.data(SetListGroupModel::SetNumberRole).toString();
    cell.yearText = yearText(index.data(SetListGroupModel::YearRole).toInt());
    cell.pieceCountText = pieceCountText(index.data(SetListGroupModel::PieceCountRole).toInt());
    cell.isFavorite = index.data(SetListGroupModel::IsFavoriteRole).toBool();
    const int copies = index.data(SetListGroupModel::CopyCountRole).toInt();
    if (copies > 1)
        //% "%Ln copies"
        cell.copyCountText = qtTrId("setList.copyCount.", copies);
    return cell;
}
