// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QWidget>

class InventoryDateFilterBar;
class InventorySpreadsheetViewModel;
class InventoryYearChart;
class QAction;
class QLabel;
class QLineEdit;
class QTableView;
class QToolBar;

// The detail column for the inventory: every copy as one row of a flat sheet, under a bar
// with the search field and the switch of the date bar, with the footer line of totals
// and a chart of money paid and received per year beneath. The rows, their order, the
// footer and the chart all come from the view model; this widget only shows them and
// passes the user's choices on. Ctrl+C copies the selected rows (all rows without a
// selection) as tab-separated text; a double-click asks for the copy in the collection.
class InventorySpreadsheetView : public QWidget
{
    Q_OBJECT

public:
    explicit InventorySpreadsheetView(InventorySpreadsheetViewModel &viewModel, QWidget *parent = nullptr);

    InventorySpreadsheetViewModel &viewModel() const { return m_viewModel; }
    QToolBar *toolBar() const { return m_toolBar; }
    QLineEdit *searchField() const { return m_search; }
    QAction *dateFilterAction() const { return m_dateAction; }
    InventoryDateFilterBar *dateFilterBar() const { return m_dateBar; }
    QTableView *table() const { return m_table; }
    QLabel *footerLabel() const { return m_footer; }
    InventoryYearChart *yearChart() const { return m_chart; }
    QAction *copyAction() const { return m_copyAction; }

    // Puts the selected rows, or every row when none is selected, on the clipboard.
    void copyRows();

Q_SIGNALS:
    // The user double-clicked the row of `copy`.
    void copyActivated(const ObjectID &copy);

private:
    void showState();
    void showRows();
    void showSortIndicator();
    void headerClicked(int column);
    void keepLeastWidth(int column, int oldWidth, int newWidth);

    InventorySpreadsheetViewModel &m_viewModel;
    QToolBar *m_toolBar;
    QLineEdit *m_search;
    QAction *m_dateAction;
    InventoryDateFilterBar *m_dateBar;
    QTableView *m_table;
    QLabel *m_footer;
    InventoryYearChart *m_chart;
    QAction *m_copyAction;
};
