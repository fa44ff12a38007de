// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Views/SetListTable.h"

class WishlistListModel;

// The wishlist as a table: number, name, theme, year and pieces, newest entry first. The
// order is the wishlist's own, so the headers do not sort.
class WishlistTableView : public SetListTable
{
    Q_OBJECT

public:
    explicit WishlistTableView(WishlistListModel &model, QWidget *parent = nullptr);
};
