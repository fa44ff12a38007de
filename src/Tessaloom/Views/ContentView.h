// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "Store/ObjectID.h"

#include <QPointer>
#include <QUrl>
#include <QWidget>

#include <memory>
#include <optional>

struct BrickSet;
class CatalogDatabaseService;
class CatalogSetDetailView;
class CollectionTrash;
class CollectionUndoStack;
class DebouncedSettingWriter;
class EmptyStateView;
class InventoryFilterView;
class InventorySpreadsheetView;
class InventorySpreadsheetViewModel;
class PersistentContainer;
class QAction;
class QSplitter;
class QStackedWidget;
class SetListView;
class SetListViewModel;
class SetDetailView;
class SidebarItem;
class SidebarView;
class SidebarViewModel;
struct StoreChanges;
class ThemeBrowserView;
class TrashDetailView;
class TrashListView;
class WishlistListView;

// The three columns of the main window: the sidebar, the middle list and the detail pane,
// side by side in a splitter whose sizes the window remembers. The sidebar's selection
// decides what the two other columns show; the copy or catalog set selected in the list
// is held here and shown in the detail column.
class ContentView : public QWidget
{
    Q_OBJECT

public:
    ContentView(PersistentContainer &container, CatalogDatabaseService &catalogService, QWidget *parent = nullptr);
    ~ContentView() override;

    QSplitter *splitter() const { return m_splitter; }
    SidebarView *sidebarColumn() const { return m_sidebar; }
    QStackedWidget *middleColumn() const { return m_middleColumn; }
    QStackedWidget *detailColumn() const { return m_detailColumn; }
    EmptyStateView *detailPlaceholder() const { return m_detailPlaceholder; }
    // The detail of the selected copy; null until a copy has been shown.
    SetDetailView *copyDetail() const;
    CatalogSetDetailView *catalogDetail() const { return m_catalogDetail; }
    SetListView *setListView() const { return m_setListView; }
    ThemeBrowserView *themeBrowser() const { return m_themeBrowser; }
    WishlistListView *wishlistView() const { return m_wishlist; }
    TrashListView *trashList() const { return m_trashList; }
    TrashDetailView *trashDetail() const { return m_trashDetail; }
    // The inventory's two columns and their shared view model; null until the inventory
    // item is first chosen, then kept for the window's life.
    InventoryFilterView *inventoryFilterView() const { return m_inventoryFilter; }
    InventorySpreadsheetView *inventorySpreadsheet() const { return m_inventorySheet; }
    InventorySpreadsheetViewModel *inventoryViewModel() const { return m_inventoryViewModel.get(); }
    // Moves copies to the trash, restores them and deletes them for good.
    CollectionTrash &trash() const { return *m_trash; }
    SidebarViewModel &sidebarViewModel() const { return *m_sidebarViewModel; }
    // What the user can take back: adds, moves to the trash, restores.
    CollectionUndoStack &undoStack() const { return *m_undoStack; }
    SetListViewModel &listViewModel() const { return *m_listViewModel; }
    // Ctrl+F: the keyboard to the list's search field.
    QAction *findAction() const { return m_findAction; }

    // The copy shown in the detail pane, and the catalog set; at most one is shown, the
    // catalog set first.
    std::optional<ObjectID> selectedBrickSet() const { return m_selectedBrickSet; }
    void setSelectedBrickSet(const std::optional<ObjectID> &brickSet);
    std::optional<CatalogSetResult> selectedCatalogSet() const { return m_selectedCatalogSet; }
    void setSelectedCatalogSet(const std::optional<CatalogSetResult> &set);
    // The copy waiting to be selected once the sidebar has switched to the collection.
    std::optional<ObjectID> pendingBrickSet() const { return m_pendingBrickSet; }

    // Shows a copy in the collection: from a catalog list or the inventory sheet the sidebar
    // switches to all sets and the copy is selected there; elsewhere it is selected at once.
    void showOwnedCopy(const ObjectID &brickSet);

Q_SIGNALS:
    // The detail asks for a copy's parts checklist window.
    void partsChecklistRequested(const QUrl &copyURI);

private:
    void selectionChanged(const std::optional<SidebarItem> &item);
    void updateDetailColumn();
    void showDetailPlaceholder(const QString &symbolName, const QString &title, const QString &description);
    bool showCopyDetail();
    void replaceCopyDetail(const BrickSet &copy);
    void objectsChanged(const StoreChanges &changes);
    void showCatalogSetDetail();
    void showMiddleColumnFor(const std::optional<SidebarItem> &item);
    bool isShowingTrash() const;
    void makeInventoryColumns();

    PersistentContainer &m_container;
    std::unique_ptr<SidebarViewModel> m_sidebarViewModel;
    std::unique_ptr<SetListViewModel> m_listViewModel;
    CollectionUndoStack *m_undoStack;
    CollectionTrash *m_trash;
    QSplitter *m_splitter;
    SidebarView *m_sidebar;
    QStackedWidget *m_middleColumn;
    SetListView *m_setListView;
    ThemeBrowserView *m_themeBrowser;
    WishlistListView *m_wishlist;
    TrashListView *m_trashList;
    QStackedWidget *m_detailColumn;
    EmptyStateView *m_detailPlaceholder;
    QPointer<SetDetailView> m_copyDetail;
    CatalogSetDetailView *m_catalogDetail;
    TrashDetailView *m_trashDetail;
    QAction *m_findAction;
    DebouncedSettingWriter *m_themeBrowserSearchWriter;
    std::unique_ptr<InventorySpreadsheetViewModel> m_inventoryViewModel;
    InventoryFilterView *m_inventoryFilter = nullptr;
    InventorySpreadsheetView *m_inventorySheet = nullptr;

    std::optional<ObjectID> m_selectedBrickSet;
    std::optional<CatalogSetResult> m_selectedCatalogSet;
    std::optional<ObjectID> m_pendingBrickSet;
};
