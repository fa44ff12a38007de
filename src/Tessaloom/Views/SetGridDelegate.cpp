// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/SetGridDelegate.h"

#include "Views/CellPictureLoader.h"

#include <QAbstractItemView>

SetGridDelegate::SetGridDelegate(CellPictureLoader &pictures, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_pictures(pictures)
{
}

QImage SetGridDelegate::picture(const QString &urlString, const QModelIndex &index, QAbstractItemView *view) const
{
    return m_pictures.picture(urlString, index, view);
}

QString SetGridDelegate::pieceCountText(int pieces)
{
    //% "%Ln piece(s)"
    return qtTrId("setList.pieceCount.", pieces);
}

QString SetGridDelegate::yearText(int year)
{
    // A year is a name, not an amount: never grouped ("2017", not "2,017").
    return year > 0 ? QString::number(year) : QString();
}

void SetGridDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem styled = option;
    initStyleOption(&styled, index);
    // Painting has to stay const for the view; asking for a picture changes only the
    // loader's bookkeeping, never what the model or the view see.
    auto *view = qobject_cast<QAbstractItemView *>(const_cast<QWidget *>(option.widget));
    SetGridCellPainter::paint(painter, styled, cell(index, view));
}

QSize SetGridDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    Q_UNUSED(option);
    Q_UNUSED(index);
    return SetGridCellPainter::cellSize();
}
