// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogGridItemView.h"

#include "ViewModels/CatalogSetListModel.h"
#include "Views/CellPictureLoader.h"

#include <QAbstractItemView>
#include <QLocale>

CatalogGridItemView::CatalogGridItemView(CellPictureLoader &pictures, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_pictures(pictures)
{
}

SetGridCell CatalogGridItemView::cell(const QModelIndex &index, QAbstractItemView *view) const
{
    SetGridCell cell;
    cell.picture = m_pictures.picture(index.data(CatalogSetListModel::ImageURLRole).toString(), index, view);
    cell.name = index.data(CatalogSetListModel::NameRole).toString();
    cell.setNumber = index.data(CatalogSetListModel::SetNumberRole).toString();
    cell.pieceCountText = qtTrId("setList.pieceCount.").arg(QLocale().toString(index.data(CatalogSetListModel::PieceCountRole).toInt()));
    cell.isOwned = index.data(CatalogSetListModel::IsOwnedRole).toBool();
    return cell;
}

void CatalogGridItemView::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem styled = option;
    initStyleOption(&styled, index);
    auto *view = qobject_cast<QAbstractItemView *>(const_cast<QWidget *>(option.widget));
    SetGridCellPainter::paint(painter, styled, cell(index, view));
}

QSize CatalogGridItemView::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    Q_UNUSED(option);
    Q_UNUSED(index);
    return SetGridCellPainter::cellSize();
}
