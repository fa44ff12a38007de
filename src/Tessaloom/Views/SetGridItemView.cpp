// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetGridItemView.h"

#include "ViewModels/SetListGroupModel.h"
#include "Views/CellPictureLoader.h"

#include <QAbstractItemView>
#include <QLocale>

SetGridItemView::SetGridItemView(CellPictureLoader &pictures, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_pictures(pictures)
{
}

SetGridCell SetGridItemView::cell(const QModelIndex &index, QAbstractItemView *view) const
{
    SetGridCell cell;
    cell.picture = m_pictures.picture(index.data(SetListGroupModel::ImageURLRole).toString(), index, view);
    cell.name = index.data(SetListGroupModel::NameRole).toString();
    cell.setNumber = index.data(SetListGroupModel::SetNumberRole).toString();
    //% "%1 pieces"
    cell.pieceCountText = qtTrId("setList.pieceCount.").arg(QLocale().toString(index.data(SetListGroupModel::PieceCountRole).toInt()));
    cell.isFavorite = index.data(SetListGroupModel::IsFavoriteRole).toBool();
    const int copies = index.data(SetListGroupModel::CopyCountRole).toInt();
    if (copies > 1)
        //% "%1 copies"
        cell.copyCountText = qtTrId("setList.copyCount.").arg(QLocale().toString(copies));
    return cell;
}

void SetGridItemView::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem styled = option;
    initStyleOption(&styled, index);
    auto *view = qobject_cast<QAbstractItemView *>(const_cast<QWidget *>(option.widget));
    SetGridCellPainter::paint(painter, styled, cell(index, view));
}

QSize SetGridItemView::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    Q_UNUSED(option);
    Q_UNUSED(index);
    return SetGridCellPainter::cellSize();
}
