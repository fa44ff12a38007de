// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/ContentView.h"

#include "Logging.h"
#include "Services/CatalogSyncService.h"
#include "Services/LegoInstructionsService.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreChanges.h"
#include "Store/StoreError.h"
#include "ViewModels/CollectionTrash.h"
#include "ViewModels/CollectionUndoStack.h"
#include "ViewModels/DebouncedSettingWriter.h"
#include "ViewModels/DetailColumnRule.h"
#include "ViewModels/InventorySpreadsheetViewModel.h"
#include "ViewModels/SetListViewModel.h"
#include "ViewModels/SidebarItem.h"
#include "ViewModels/SidebarViewModel.h"
#include "Views/CatalogSetDetailView.h"
#include "Views/ContentSplitterLayout.h"
#include "Views/EmptyStateView.h"
#include "Views/InventoryFilterView.h"
#include "Views/InventorySpreadsheetView.h"
#include "Views/InventoryEditor.h"
#include "Views/InventoryTab.h"
#include "Views/SetDetailView.h"
#include "Views/SetListView.h"
#include "Views/SidebarView.h"
#include "Views/ThemeBrowserView.h"
#include "Views/TrashDetailView.h"
#include "Views/TrashListView.h"
#include "Views/WishlistListView.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSettings>
#include <QSplitter>
#include <QStackedWidget>

using namespace Qt::StringLiterals;

namespace {
const QString themeBrowserSearchKey = u"themeBrowser.searchText"_s;

} // namespace

ContentView::ContentView(PersistentContainer &container, CatalogDatabaseService &catalogService, QWidget *parent)
    : QWidget(parent)
    , m_container(container)
    , m_sidebarViewModel(std::make_unique<SidebarViewModel>(container.viewContext(), catalogService))
    , m_listViewModel(std::make_unique<SetListViewModel>(container))
    , m_undoStack(new CollectionUndoStack(container.viewContext(), this))
    , m_trash(new CollectionTrash(container.viewContext(), this))
    , m_splitter(new QSplitter(Qt::Horizontal, this))
    , m_sidebar(new SidebarView(*m_sidebarViewModel, m_splitter))
    , m_middleColumn(new QStackedWidget(m_splitter))
    , m_setListView(new SetListView(*m_listViewModel, m_middleColumn))
    , m_themeBrowser(new ThemeBrowserView(m_middleColumn))
    , m_wishlist(new WishlistListView(container.viewContext(), *m_listViewModel, m_middleColumn))
    , m_trashList(new TrashListView(container, *m_trash, m_middleColumn))
    , m_detailColumn(new QStackedWidget(m_splitter))
    , m_detailPlaceholder(new EmptyStateView(m_detailColumn))
    , m_catalogDetail(new CatalogSetDetailView(container, LegoInstructionsService::sharedFetcher(), m_detailColumn))
    , m_trashDetail(new TrashDetailView(container.viewContext(), *m_trash, m_detailColumn))
    , m_findAction(new QAction(this))
    , m_themeBrowserSearchWriter(
          new DebouncedSettingWriter(themeBrowserSearchKey, DebouncedSettingWriter::defaultPause, this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_splitter);

    m_splitter->setObjectName(u"contentSplitter"_s);
    m_middleColumn->setObjectName(u"middleColumn"_s);
    m_detailColumn->setObjectName(u"detailColumn"_s);
    m_detailPlaceholder->setObjectName(u"detailPlaceholder"_s);

    m_middleColumn->addWidget(m_setListView);
    m_middleColumn->addWidget(m_themeBrowser);
    m_middleColumn->addWidget(m_wishlist);
    m_middleColumn->addWidget(m_trashList);
    m_detailColumn->addWidget(m_detailPlaceholder);
    m_detailColumn->addWidget(m_catalogDetail);
    m_detailColumn->addWidget(m_trashDetail);
    m_catalogDetail->setObjectName(u"catalogSetDetail"_s);
    connect(m_catalogDetail, &CatalogSetDetailView::viewInCollectionRequested, this, &ContentView::showOwnedCopy);
    // Removing the set from the wishlist on its detail closes the detail.
    connect(m_catalogDetail, &CatalogSetDetailView::dismissRequested, this,
            [this] { setSelectedCatalogSet(std::nullopt); });
    connect(m_catalogDetail, &CatalogSetDetailView::copyAdded, m_undoStack, &CollectionUndoStack::recordAddedCopy);

    // Copies leave the collection through the trash, from the set list's menu and Delete
    // key, and come back from the trash's screens; each step can be taken back.
    m_setListView->setCollectionTrash(m_trash);
    connect(m_trash, &CollectionTrash::copyMovedToTrash, m_undoStack, &CollectionUndoStack::recordMovedToTrash);
    connect(m_trash, &CollectionTrash::copyRestored, m_undoStack, &CollectionUndoStack::recordRestored);
    // The trash list speaks for the selection only while it is on show: it lets go of any
    // copy that is not in the trash, which elsewhere is every copy.
    connect(m_trashList, &TrashListView::copySelected, this, [this](const std::optional<ObjectID> &copy) {
        if (isShowingTrash())
            setSelectedBrickSet(copy);
    });
    connect(m_wishlist, &WishlistListView::catalogSetSelected, this, &ContentView::setSelectedCatalogSet);

    // A window-wide shortcut without a visible control: Ctrl+F from anywhere in the window.
    m_findAction->setShortcut(QKeySequence::Find);
    m_findAction->setShortcutContext(Qt::WindowShortcut);
    addAction(m_findAction);
    connect(m_findAction, &QAction::triggered, this, [this] {
        m_listViewModel->toggleSearchFocusTrigger();
        // The theme browser stands in the list's place with a search field of its own.
        if (m_middleColumn->currentWidget() == m_themeBrowser)
            m_themeBrowser->focusSearchField();
        // So does the inventory sheet, in the detail column.
        if (m_inventorySheet && m_detailColumn->currentWidget() == m_inventorySheet)
            m_inventorySheet->searchField()->setFocus(Qt::ShortcutFocusReason);
    });

    // The theme browser's search stays with the window between visits. It is written once
    // typing pauses, not at every keystroke, and at the latest when the window goes.
    m_themeBrowser->setSearchText(QSettings().value(themeBrowserSearchKey).toString());
    connect(m_themeBrowser, &ThemeBrowserView::searchTextChanged, m_themeBrowserSearchWriter,
            [this](const QString &text) { m_themeBrowserSearchWriter->setValue(text); });
    connect(m_themeBrowser, &ThemeBrowserView::themeSelected, this, [this](int id, const QString &name) {
        m_sidebarViewModel->setSelectedItem(SidebarItem::catalogTheme(id, name));
    });

    connect(m_setListView, &SetListView::brickSetSelected, this, &ContentView::setSelectedBrickSet);
    connect(m_setListView, &SetListView::catalogSetSelected, this, &ContentView::setSelectedCatalogSet);
    connect(m_listViewModel.get(), &SetListViewModel::brickSetSelectedBySearch, this,
            [this](const ObjectID &brickSet) { setSelectedBrickSet(brickSet); });
    connect(m_listViewModel.get(), &SetListViewModel::catalogSetSelectedBySearch, this,
            [this](const CatalogSetResult &set) { setSelectedCatalogSet(set); });
    connect(&m_container, &PersistentContainer::objectsDidChange, this, &ContentView::objectsChanged);

    connect(m_sidebarViewModel.get(), &SidebarViewModel::selectedItemChanged, this, &ContentView::selectionChanged);
    selectionChanged(m_sidebarViewModel->selectedItem());

    ContentSplitterLayout::apply(*m_splitter);
}

ContentView::~ContentView()
{
    // The inventory's widgets hold the view model by reference: they go first.
    delete m_inventoryFilter;
    delete m_inventorySheet;
}

void ContentView::selectionChanged(const std::optional<SidebarItem> &item)
{
    // A change of sidebar item clears the selected copy unless one waits to be shown.
    m_selectedBrickSet = std::exchange(m_pendingBrickSet, std::nullopt);
    m_selectedCatalogSet.reset();
    // For the inventory the list, hidden behind the sheet, lets its copies go: the sheet
    // reads its own, and a hidden list would refetch after every save.
    m_listViewModel->sidebarSelectionChanged(item);

    showMiddleColumnFor(item);
    m_setListView->setSidebarSelection(item);
    m_setListView->setSelectedBrickSet(m_selectedBrickSet);
    m_setListView->setSelectedCatalogSet(std::nullopt);
    m_trashList->setSelectedCopy(isShowingTrash() ? m_selectedBrickSet : std::nullopt);
    m_wishlist->setSelectedSetNumber(std::nullopt);
    updateDetailColumn();
}

bool ContentView::isShowingTrash() const
{
    const std::optional<SidebarItem> item = m_sidebarViewModel->selectedItem();
    return item && item->kind() == SidebarItem::Kind::trash;
}

void ContentView::showMiddleColumnFor(const std::optional<SidebarItem> &item)
{
    QWidget *column = m_setListView;
    if (item) {
        switch (item->kind()) {
        case SidebarItem::Kind::catalogAllThemes:
            column = m_themeBrowser;
            break;
        case SidebarItem::Kind::wishlist:
            column = m_wishlist;
            break;
        case SidebarItem::Kind::trash:
            column = m_trashList;
            break;
        case SidebarItem::Kind::inventory:
            makeInventoryColumns();
            column = m_inventoryFilter;
            break;
        default:
            break;
        }
    }
    m_middleColumn->setCurrentWidget(column);
}

void ContentView::makeInventoryColumns()
{
    // Made on the first visit, not at start-up, since it reads every copy; kept after
    // that, so the search, the order and the dates stay for the rest of the session.
    if (m_inventoryViewModel)
        return;
    m_inventoryViewModel = std::make_unique<InventorySpreadsheetViewModel>(m_container);
    m_inventoryFilter = new InventoryFilterView(*m_inventoryViewModel, m_middleColumn);
    m_inventoryFilter->setObjectName(u"inventoryFilter"_s);
    m_middleColumn->addWidget(m_inventoryFilter);
    m_inventorySheet = new InventorySpreadsheetView(*m_inventoryViewModel, m_detailColumn);
    m_detailColumn->addWidget(m_inventorySheet);
    connect(m_inventorySheet, &InventorySpreadsheetView::copyActivated, this, &ContentView::showOwnedCopy);
}

void ContentView::setSelectedBrickSet(const std::optional<ObjectID> &brickSet)
{
    m_selectedBrickSet = brickSet;
    m_setListView->setSelectedBrickSet(brickSet);
    m_trashList->setSelectedCopy(isShowingTrash() ? brickSet : std::nullopt);
    updateDetailColumn();
}

void ContentView::setSelectedCatalogSet(const std::optional<CatalogSetResult> &set)
{
    m_selectedCatalogSet = set;
    const std::optional<QString> setNumber = set ? std::optional<QString>(set->setNum) : std::nullopt;
    m_setListView->setSelectedCatalogSet(setNumber);
    m_wishlist->setSelectedSetNumber(setNumber);
    updateDetailColumn();
}

void ContentView::showOwnedCopy(const ObjectID &brickSet)
{
    setSelectedCatalogSet(std::nullopt);
    const std::optional<SidebarItem> shown = m_sidebarViewModel->selectedItem();
    // The catalog lists and the inventory sheet do not show a selected copy: the window
    // goes to all sets, where it is selected.
    if (shown && (shown->isCatalogItem() || shown->kind() == SidebarItem::Kind::inventory)) {
        m_pendingBrickSet = brickSet;
        m_sidebarViewModel->setSelectedItem(SidebarItem(SidebarItem::Kind::allSets));
    } else {
        setSelectedBrickSet(brickSet);
    }
}

void ContentView::objectsChanged(const StoreChanges &changes)
{
    // The copy on show, or its set, may have been changed or deleted elsewhere.
    if (m_selectedBrickSet && !m_selectedCatalogSet
        && (changes.touches(EntityType::BrickSet) || changes.touches(EntityType::CatalogSet)))
        updateDetailColumn();
}

void ContentView::updateDetailColumn()
{
    using Content = DetailColumnRule::Content;
    const std::optional<SidebarItem> item = m_sidebarViewModel->selectedItem();
    switch (DetailColumnRule::choose(item, m_selectedBrickSet.has_value(), m_selectedCatalogSet.has_value())) {
    case Content::trashedCopy:
        m_trashDetail->setBrickSet(m_selectedBrickSet);
        m_detailColumn->setCurrentWidget(m_trashDetail);
        return;
    case Content::copy:
        if (showCopyDetail())
            return;
        break;
    case Content::catalogSet:
        showCatalogSetDetail();
        return;
    case Content::trashPlaceholder: {
        //% "No Set Selected"
        const QString title = qtTrId("trash.placeholder.title");
        //% "Select a set in the trash to restore it or delete it for good."
        const QString description = qtTrId("trash.placeholder.description");
        showDetailPlaceholder(u"trash"_s, title, description);
        return;
    }
    case Content::themePlaceholder: {
        //% "No Theme Selected"
        const QString title = qtTrId("detail.placeholder.selectTheme");
        //% "Select a theme to see its sets."
        const QString description = qtTrId("detail.placeholder.selectThemeDescription");
        showDetailPlaceholder(u"folder"_s, title, description);
        return;
    }
    case Content::inventorySpreadsheet:
        makeInventoryColumns();
        m_detailColumn->setCurrentWidget(m_inventorySheet);
        return;
    case Content::setPlaceholder:
        break;
    }
    //% "No Set Selected"
    const QString title = qtTrId("detail.placeholder.title");
    //% "Select a set to see its details."
    const QString description = qtTrId("detail.placeholder.description");
    showDetailPlaceholder(u"square.grid.2x2"_s, title, description);
}

SetDetailView *ContentView::copyDetail() const
{
    return m_copyDetail;
}

bool ContentView::showCopyDetail()
{
    try {
        const std::optional<BrickSet> brickSet = m_container.viewContext().existingObject<BrickSet>(*m_selectedBrickSet);
        if (!brickSet)
            return false;
        // The detail of the copy on show stays, with its open tab and the form's typing.
        if (!m_copyDetail || m_copyDetail->viewModel().brickSet().objectID != brickSet->objectID)
            replaceCopyDetail(*brickSet);
        m_detailColumn->setCurrentWidget(m_copyDetail);
        return true;
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Reading the selected set failed:" << error.description();
        return false;
    }
}

void ContentView::replaceCopyDetail(const BrickSet &copy)
{
    if (m_copyDetail) {
        // A move to another copy within the form's pause writes nothing of the old copy,
        // as a move between copies of one set does inside the form.
        if (m_copyDetail->inventoryTab()) {
            if (auto *editor = qobject_cast<InventoryEditor *>(m_copyDetail->inventoryTab()->editor()))
                editor->setBrickSet(std::nullopt);
        }
        m_detailColumn->removeWidget(m_copyDetail);
        m_copyDetail->deleteLater();
    }
    m_copyDetail = new SetDetailView(copy, m_container.viewContext(), LegoInstructionsService::sharedFetcher(),
                                     m_detailColumn);
    m_copyDetail->setObjectName(u"copyDetail"_s);
    m_copyDetail->setCollectionTrash(m_trash);
    m_copyDetail->setEditorFactory([this](const ObjectID &edited, QWidget *parent) -> QWidget * {
        auto *editor = new InventoryEditor(m_container.viewContext(), edited, parent);
        editor->setTrash(m_trash);
        return editor;
    });
    m_copyDetail->setPriceSyncStep([](QString setNumber, ObjectID catalogSet) {
        return CatalogSyncService::shared().syncExternalDataOfSet(std::move(setNumber), catalogSet);
    });
    connect(m_copyDetail, &SetDetailView::partsChecklistRequested, this, &ContentView::partsChecklistRequested);
    m_detailColumn->addWidget(m_copyDetail);
}

void ContentView::showDetailPlaceholder(const QString &symbolName, const QString &title, const QString &description)
{
    m_detailPlaceholder->setContent(symbolName, title, description);
    m_detailColumn->setCurrentWidget(m_detailPlaceholder);
}

void ContentView::showCatalogSetDetail()
{
    // Each showCatalogSet() is a new visit that asks for the booklets again, so a set that
    // is on show already stays as it is when the detail column is merely brought up to date.
    if (m_detailColumn->currentWidget() != m_catalogDetail || m_catalogDetail->catalogSet() != m_selectedCatalogSet)
        m_catalogDetail->showCatalogSet(*m_selectedCatalogSet);
    m_detailColumn->setCurrentWidget(m_catalogDetail);
}
