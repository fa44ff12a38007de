// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Views/SetGridDelegate.h"

// A cell of the grid of copies, one per set: its picture through the image cache, name,
// number and piece count, a star for a favourite and, where the list holds more than one
// copy of the set, how many. Reads the rows of SetListGroupModel.
class SetGridItemView : public SetGridDelegate
{
    Q_OBJECT

public:
    explicit SetGridItemView(CellPictureLoader &pictures, QObject *parent = nullptr);

    SetGridCell cell(const QModelIndex &index, QAbstractItemView *view = nullptr) const override;
};
