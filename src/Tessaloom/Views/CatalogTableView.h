// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Views/SetListTable.h"

class SetListViewModel;

// The catalog's search results as a table: number, name, theme, year, pieces, and a check
// mark for a set of which a copy is owned. Clicking a header sorts the results by that
// column and stores the choice.
class CatalogTableView : public SetListTable
{
    Q_OBJECT

public:
    explicit CatalogTableView(SetListViewModel &viewModel, QWidget *parent = nullptr);
};
