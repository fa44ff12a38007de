// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "Store/ObjectID.h"

#include <QWidget>

#include <optional>

class CatalogGridItemView;
class CatalogTableView;
class CellPictureLoader;
class CollectionTrash;
class EmptyStateView;
class QAbstractItemView;
class QAction;
class QMenu;
class QItemSelectionModel;
class QLabel;
class QLineEdit;
class QStackedWidget;
class SetGridItemView;
class SetGridView;
class SetListViewModel;
class SetTableView;
class SidebarItem;

// The middle column for the collection's lists and the catalog. A bar on top carries the
// list's title, the search field and the picker between a grid of pictures and a table;
// below it the copies of the chosen smart list (one cell per set) or the catalog's search
// results, or an empty state that says why there is nothing.
//
// The selected row is the window's business: a click reports the copy or catalog set
// through the signals, and the window tells the list what is selected, which the list
// keeps showing across refetches and re-sorts.
class SetListView : public QWidget
{
    Q_OBJECT

public:
    explicit SetListView(SetListViewModel &viewModel, QWidget *parent = nullptr);
    ~SetListView() override;

    // The sidebar's selection gives the title and the search field's prompt.
    void setSidebarSelection(const std::optional<SidebarItem> &item);

    // Shows `brickSet` (or none) as the selected copy and `setNum` as the selected catalog
    // set, without reporting them back.
    void setSelectedBrickSet(const std::optional<ObjectID> &brickSet);
    void setSelectedCatalogSet(const std::optional<QString> &setNum);

    QLabel *titleLabel() const { return m_title; }
    // Says when the result limit cut the catalog list, with a link that shows it all.
    QLabel *limitNotice() const { return m_limitNotice; }
    QLineEdit *searchField() const { return m_searchField; }
    QAction *gridAction() const { return m_gridAction; }
    QAction *tableAction() const { return m_tableAction; }
    // Opens the parts checklist of the selected copy (also in the copies' context menu).
    QAction *partsChecklistAction() const { return m_partsChecklistAction; }
    // Moves the selected copy to the trash (also in the copies' context menu); Delete while
    // the grid or table of copies has the keyboard, never while typing in the search field.
    // Disabled until a trash is given.
    QAction *moveToTrashAction() const { return m_moveToTrashAction; }
    // What moves copies to the trash; none by default.
    void setCollectionTrash(CollectionTrash *trash);
    CollectionTrash *collectionTrash() const { return m_trash; }
    // The context menu of the copy at `row` of the copies list, as it would pop up.
    QMenu *copyContextMenu(int row);
    SetGridView *copiesGrid() const { return m_copiesGrid; }
    SetTableView *copiesTable() const { return m_copiesTable; }
    SetGridView *catalogGrid() const { return m_catalogGrid; }
    CatalogTableView *catalogTable() const { return m_catalogTable; }
    EmptyStateView *copiesEmptyState() const { return m_copiesEmptyState; }
    EmptyStateView *catalogEmptyState() const { return m_catalogEmptyState; }
    SetGridItemView *copyCells() const { return m_copyCells; }
    CatalogGridItemView *catalogCells() const { return m_catalogCells; }
    CellPictureLoader *gridPictures() const { return m_gridPictures; }
    // The page on show: one of the two grids, the two tables or the two empty states.
    QWidget *currentList() const;

Q_SIGNALS:
    // The user chose a cell or row: the copy that stands for it, or none.
    void brickSetSelected(const std::optional<ObjectID> &brickSet);
    void catalogSetSelected(const std::optional<CatalogSetResult> &set);
    // The user asked for the parts checklist window of a copy.
    void partsChecklistRequested(const ObjectID &brickSet);

protected:
    // Down in the search field moves the keyboard into the list on show.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildBar();
    void buildCopyActions();
    void showCopyContextMenu(QAbstractItemView *list, const QPoint &position);
    std::optional<ObjectID> copyAt(int row) const;
    void moveCopyToTrash(ObjectID brickSet); // by value: it may come from the selection it clears
    void updateMoveToTrashAction();
    void showCurrentList();
    void updateCatalogEmptyState();
    void updateLimitNotice();
    void copySelectionChanged();
    void catalogSelectionChanged();
    void reselectBrickSet();
    void reselectCatalogSet();
    bool moveIntoList();

    SetListViewModel &m_viewModel;
    CellPictureLoader *m_gridPictures;
    QLabel *m_title;
    QLineEdit *m_searchField;
    QLabel *m_limitNotice;
    QAction *m_gridAction = nullptr;
    QAction *m_tableAction = nullptr;
    QAction *m_partsChecklistAction = nullptr;
    QAction *m_moveToTrashAction = nullptr;
    CollectionTrash *m_trash = nullptr;
    QStackedWidget *m_lists;
    SetGridView *m_copiesGrid;
    SetTableView *m_copiesTable;
    SetGridView *m_catalogGrid;
    CatalogTableView *m_catalogTable;
    EmptyStateView *m_copiesEmptyState;
    EmptyStateView *m_catalogEmptyState;
    SetGridItemView *m_copyCells;
    CatalogGridItemView *m_catalogCells;
    QItemSelectionModel *m_copySelection;
    QItemSelectionModel *m_catalogSelection;
    std::optional<ObjectID> m_selectedBrickSet;
    std::optional<QString> m_selectedCatalogSet;
    bool m_applyingSelection = false;
};
