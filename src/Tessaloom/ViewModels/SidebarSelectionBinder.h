// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QItemSelectionModel;
class SidebarTreeModel;

// Keeps a view's selection over a SidebarTreeModel and the view model's selectedItem()
// in step, both ways. The user's choice of a row becomes the selection; a new selection
// from elsewhere (the theme browser, "view in collection") becomes the view's current row.
//
// Rows that disappear never change the selection: a hidden smart list or a theme whose
// outline is being replaced stays selected in the view model, and is shown as selected
// again as soon as its row is back. A selection without a row (an unknown theme, a theme
// restored without its name) shows no row as selected.
class SidebarSelectionBinder : public QObject
{
    Q_OBJECT

public:
    SidebarSelectionBinder(SidebarTreeModel &model, QItemSelectionModel &selectionModel, QObject *parent = nullptr);

private:
    void takeUsersChoice();
    void showSelection();

    SidebarTreeModel &m_model;
    QItemSelectionModel &m_selectionModel;
    bool m_showing = false;
};
