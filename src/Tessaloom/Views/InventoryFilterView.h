// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class InventorySpreadsheetViewModel;
class QListWidget;

// The middle column beside the inventory sheet: the three status choices (all copies, those
// in stock, those disposed of) as a list with one selected row. Choosing a row writes the
// sheet's stored status filter; a filter changed elsewhere moves the selection, and a
// stored text that names no choice leaves every row unselected.
class InventoryFilterView : public QWidget
{
    Q_OBJECT

public:
    explicit InventoryFilterView(InventorySpreadsheetViewModel &viewModel, QWidget *parent = nullptr);

    QListWidget *list() const { return m_list; }
    // The stored value of the choice in `row` ("all", "inStock", "disposed").
    QString valueAt(int row) const;

private:
    void showStoredFilter();
    void userSelected();

    InventorySpreadsheetViewModel &m_viewModel;
    QListWidget *m_list;
    bool m_showing = false;
};
