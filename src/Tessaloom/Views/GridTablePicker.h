// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QAction;
class SetListViewModel;

// The two exclusive buttons between a grid of pictures and a table, on the list view
// model's one grid-or-table setting, with Ctrl+1 and Ctrl+2. The set lists and the
// wishlist each show one; only the picker on show answers the keys, the other one's list
// being hidden behind it.
class GridTablePicker : public QWidget
{
    Q_OBJECT

public:
    // `accessibleName` names the picker for assistive tools and in its tool tip.
    GridTablePicker(SetListViewModel &viewModel, const QString &accessibleName, QWidget *parent = nullptr);

    QAction *gridAction() const { return m_gridAction; }
    QAction *tableAction() const { return m_tableAction; }

private:
    void showPicked();

    SetListViewModel &m_viewModel;
    QAction *m_gridAction;
    QAction *m_tableAction;
};
