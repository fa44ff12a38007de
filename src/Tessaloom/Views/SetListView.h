// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class OwnedCopiesList;
class QLineEdit;
class QStackedWidget;
class QTableView;
class SetListViewModel;

// The middle column for the collection's lists and the catalog: a search field over the
// copies of the selected smart list, or over the catalog's search results. Ctrl+F moves
// the keyboard to the search field.
class SetListView : public QWidget
{
    Q_OBJECT

public:
    explicit SetListView(SetListViewModel &viewModel, QWidget *parent = nullptr);

    QLineEdit *searchField() const { return m_searchField; }
    OwnedCopiesList *copiesList() const { return m_copiesList; }
    QTableView *catalogTable() const { return m_catalogTable; }
    // The list on show: the copies, or the catalog's results.
    QWidget *currentList() const;

private:
    void showListForSelection();

    SetListViewModel &m_viewModel;
    QLineEdit *m_searchField;
    QStackedWidget *m_lists;
    OwnedCopiesList *m_copiesList;
    QTableView *m_catalogTable;
};
