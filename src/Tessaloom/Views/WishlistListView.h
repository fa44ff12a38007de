// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"

#include <QWidget>

#include <optional>

class CatalogGridItemView;
class CellPictureLoader;
class EmptyStateView;
class ManagedObjectContext;
class QAbstractItemView;
class QAction;
class QItemSelectionModel;
class QLabel;
class QMenu;
class QStackedWidget;
class SetGridView;
class SetListViewModel;
class WishlistListModel;
class WishlistTableView;

// The middle column for the wishlist: every wanted set, newest first, as a grid of
// pictures or a table, switched by the same picker setting as the set lists; or an empty
// state. Each entry can be removed from its context menu or with the Delete key.
//
// The selected set is the window's business: a click reports the entry's catalog set
// through catalogSetSelected(), for the detail column, and the window tells the list which
// set number is selected. Removing the selected entry reports no selection first.
class WishlistListView : public QWidget
{
    Q_OBJECT

public:
    // `listViewModel` is the set lists' model, whose grid-or-table setting is shared.
    WishlistListView(ManagedObjectContext &viewContext, SetListViewModel &listViewModel, QWidget *parent = nullptr);
    ~WishlistListView() override;

    // Shows the first entry of `setNumber` (or none) as selected, without reporting it back.
    void setSelectedSetNumber(const std::optional<QString> &setNumber);
    std::optional<QString> selectedSetNumber() const { return m_selectedSetNumber; }

    // Removes the entry at `row`; when its set is the selected one, the selection is
    // cleared (and reported) before the entry is deleted.
    void removeFromWishlist(int row);
    // The context menu of the entry at `row`, as it would pop up.
    QMenu *itemContextMenu(int row);

    WishlistListModel *items() const { return m_items; }
    QLabel *titleLabel() const { return m_title; }
    QWidget *viewPicker() const { return m_picker; }
    QAction *gridAction() const { return m_gridAction; }
    QAction *tableAction() const { return m_tableAction; }
    // Removes the selected entry (Delete, while the grid or table has the keyboard).
    QAction *removeAction() const { return m_removeAction; }
    SetGridView *grid() const { return m_grid; }
    WishlistTableView *table() const { return m_table; }
    EmptyStateView *emptyState() const { return m_emptyState; }
    CatalogGridItemView *cells() const { return m_cells; }
    // The page on show: the grid, the table or the empty state.
    QWidget *currentList() const;

Q_SIGNALS:
    // The user chose an entry: its catalog set, or none.
    void catalogSetSelected(const std::optional<CatalogSetResult> &set);

private:
    void buildBar();
    void buildRemoveAction();
    void showContextMenu(QAbstractItemView *list, const QPoint &position);
    void showCurrentList();
    void selectionChanged();
    void reselect();

    SetListViewModel &m_listViewModel;
    WishlistListModel *m_items;
    CellPictureLoader *m_pictures;
    QLabel *m_title;
    QWidget *m_picker = nullptr;
    QAction *m_gridAction = nullptr;
    QAction *m_tableAction = nullptr;
    QAction *m_removeAction = nullptr;
    QStackedWidget *m_lists;
    SetGridView *m_grid;
    WishlistTableView *m_table;
    EmptyStateView *m_emptyState;
    CatalogGridItemView *m_cells;
    QItemSelectionModel *m_selection = nullptr;
    std::optional<QString> m_selectedSetNumber;
    bool m_applyingSelection = false;
};
