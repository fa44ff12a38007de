// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStackedWidget>

class BrickSetListModel;
class EmptyStateView;
class QListView;

// The middle column's list of the copies the selected smart list holds, live: a save from
// any context shows here at once. With no copies it shows an empty state instead of a
// blank list.
class OwnedCopiesList : public QStackedWidget
{
    Q_OBJECT

public:
    explicit OwnedCopiesList(BrickSetListModel *model, QWidget *parent = nullptr);

    BrickSetListModel *model() const { return m_model; }
    QListView *listView() const { return m_listView; }
    EmptyStateView *emptyState() const { return m_emptyState; }

private:
    void showListOrEmptyState();

    BrickSetListModel *m_model;
    QListView *m_listView;
    EmptyStateView *m_emptyState;
};
