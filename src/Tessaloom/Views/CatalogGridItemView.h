// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Views/SetGridDelegate.h"

// A cell of the grid of catalog results: the set's picture through the image cache, name,
// number and piece count, and a check mark when a copy of it is already owned. Reads the
// rows of CatalogSetListModel.
class CatalogGridItemView : public SetGridDelegate
{
    Q_OBJECT

public:
    explicit CatalogGridItemView(CellPictureLoader &pictures, QObject *parent = nullptr);

    SetGridCell cell(const QModelIndex &index, QAbstractItemView *view = nullptr) const override;
};
