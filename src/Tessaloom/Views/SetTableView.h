// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Views/SetListTable.h"

class SetListViewModel;

// The copies of the selected list as a table, one row per set: a thumbnail, number, name
// (with a star for a favourite), theme, year, pieces, condition as a coloured badge, market
// value in its guide's currency, and the date added. Clicking a header sorts the list by
// that column and stores the choice; the indicator shows the sort the list has.
class SetTableView : public SetListTable
{
    Q_OBJECT

public:
    explicit SetTableView(SetListViewModel &viewModel, QWidget *parent = nullptr);
};
