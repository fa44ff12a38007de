// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/LegoInstructionsService.h"
#include "ViewModels/SetDetailViewModel.h"
#include "Views/InventoryTab.h"

#include <QPointer>
#include <QUrl>
#include <QWidget>

#include <array>
#include <functional>

class CollectionTrash;
class ImageCacheService;
class LazyTabContent;
class OverviewTab;
class PartsTab;
class QLabel;
class QStackedWidget;
class QTabBar;
class QToolButton;

// The detail column for one owned copy: a header with the set's name and the favourite
// toggle, then three tabs (overview, inventory, parts). Each tab is built the first time
// it is opened and kept from then on. One view shows one copy; the window makes a new
// one when the selection moves to another copy.
//
// The owner supplies what this screen does not make itself: the editor of a copy (through
// setEditorFactory), the price synchronisation run by the refresh (setPriceSyncStep), and
// opens the parts checklist window it asks for (partsChecklistRequested).
class SetDetailView : public QWidget
{
    Q_OBJECT

public:
    using DetailTab = SetDetailViewModel::DetailTab;
    using EditorFactory = InventoryTab::EditorFactory;
    using UrlOpener = std::function<void(const QUrl &url)>;

    // `fetchInstructions` looks booklets up (LegoInstructionsService::sharedFetcher() in the
    // program); the refresh syncs through CatalogSyncService::shared() unless set otherwise.
    SetDetailView(const BrickSet &copy, ManagedObjectContext &viewContext,
                  LegoInstructionsService::Fetcher fetchInstructions, QWidget *parent = nullptr);
    ~SetDetailView() override;

    SetDetailViewModel &viewModel() { return m_viewModel; }

    void setEditorFactory(EditorFactory factory);
    void setCatalogSyncStep(SetDetailViewModel::CatalogSyncStep step);
    void setPriceSyncStep(SetDetailViewModel::PriceSyncStep step);
    void setImageCache(ImageCacheService *cache);
    void setUrlOpener(UrlOpener opener);
    // The trash the inventory's context menu uses, so the window can offer an undo.
    void setCollectionTrash(CollectionTrash *trash);

    void selectTab(DetailTab tab);
    DetailTab selectedTab() const { return m_viewModel.selectedTab(); }

    // ---- Parts, for the window and tests; a tab is null until it has been opened ----
    QLabel *titleLabel() const { return m_title; }
    QToolButton *favoriteButton() const { return m_favoriteButton; }
    QTabBar *tabBar() const { return m_tabBar; }
    LazyTabContent *tabPage(DetailTab tab) const;
    OverviewTab *overviewTab() const;
    InventoryTab *inventoryTab() const;
    PartsTab *partsTab() const;

Q_SIGNALS:
    // Open the parts checklist window for this URI of a copy's ObjectID.
    void partsChecklistRequested(const QUrl &copyURI);

private:
    void reloadHeader();
    QWidget *buildOverview(QWidget *parent);
    QWidget *buildInventory(QWidget *parent);
    QWidget *buildParts(QWidget *parent);

    SetDetailViewModel m_viewModel;
    LegoInstructionsService::Fetcher m_fetchInstructions;
    EditorFactory m_editorFactory;
    UrlOpener m_urlOpener;
    QPointer<ImageCacheService> m_imageCache;
    QPointer<CollectionTrash> m_trash;

    QLabel *m_title;
    QToolButton *m_favoriteButton;
    QTabBar *m_tabBar;
    QStackedWidget *m_pages;
    std::array<LazyTabContent *, 3> m_tabPages{};
};
