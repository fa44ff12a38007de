// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Views/SetGridCellPainter.h"

#include <QStyledItemDelegate>

class CellPictureLoader;

// What every cell of a set grid shares: its size, and painting what cell() says it shows,
// with the picture from the grid's picture loader. The grid of copies and the grid of
// catalog results say differently what a row shows.
class SetGridDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    // What the cell of `index` shows; asks for its picture (repainting it in `view` on
    // arrival) when it is not at hand.
    virtual SetGridCell cell(const QModelIndex &index, QAbstractItemView *view = nullptr) const = 0;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

protected:
    explicit SetGridDelegate(CellPictureLoader &pictures, QObject *parent = nullptr);

    QImage picture(const QString &urlString, const QModelIndex &index, QAbstractItemView *view) const;
    static QString pieceCountText(int pieces);
    // A release year as the cells show it; empty for an unknown year (0).
    static QString yearText(int year);

private:
    CellPictureLoader &m_pictures;
};
