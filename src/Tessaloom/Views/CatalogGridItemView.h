// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Views/SetGridCellPainter.h"

#include <QStyledItemDelegate>

class CellPictureLoader;

// A cell of the grid of catalog results: the set's picture through the image cache, name,
// number and piece count, and a check mark when a copy of it is already owned. Reads the
// rows of CatalogSetListModel.
class CatalogGridItemView : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit CatalogGridItemView(CellPictureLoader &pictures, QObject *parent = nullptr);

    // What the cell of `index` shows; asks for its picture (repainting it in `view` on
    // arrival) when it is not at hand.
    SetGridCell cell(const QModelIndex &index, QAbstractItemView *view = nullptr) const;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    CellPictureLoader &m_pictures;
};
