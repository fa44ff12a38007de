// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTreeView>

class SidebarSelectionBinder;
class SidebarTreeModel;
class SidebarViewModel;

// The sidebar column: the collection's smart lists with their counts and the catalog with
// its outline of themes. Its selection is the view model's, both ways.
class SidebarView : public QTreeView
{
    Q_OBJECT

public:
    explicit SidebarView(SidebarViewModel &viewModel, QWidget *parent = nullptr);

    SidebarTreeModel *treeModel() const { return m_model; }

private:
    SidebarTreeModel *m_model;
    SidebarSelectionBinder *m_binder;
};
