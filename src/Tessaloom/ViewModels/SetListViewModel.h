// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OverallCondition.h"
#include "Services/CatalogResults.h"
#include "Store/BrickSet.h"
#include "Store/FetchRequest.h"
#include "ViewModels/SetListSelection.h"
#include "ViewModels/SetListSortOrder.h"
#include "ViewModels/SidebarItem.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <atomic>
#include <memory>
#include <optional>

class BrickSetListModel;
class CatalogSetListModel;
class PersistentContainer;
class SetListGroupModel;

// The model behind the middle column: the user's copies or the catalog's search results,
// as a grid or a table. It holds the search text, the sort settings and the filters, turns
// the sidebar's selection into a fetch of copies, and runs the catalog search off the main
// thread. Used on the main thread only.
//
// The sidebar's selection is given by its item's id ("all_sets", "catalog_theme_158", or
// empty for none).
class SetListViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)
    Q_PROPERTY(bool searchFocusTrigger READ searchFocusTrigger NOTIFY searchFocusTriggerChanged)
    Q_PROPERTY(bool isGridView READ isGridView WRITE setGridView NOTIFY isGridViewChanged)

public:
    using SortColumn = SetListSortOrder::Column;

    // Reads the stored sort and view settings; the lists stay empty until a selection is set.
    explicit SetListViewModel(PersistentContainer &container, QObject *parent = nullptr);
    ~SetListViewModel() override;

    // ---- The sidebar's selection ----
    QString selectionID() const { return m_selectionID; }
    SetListSelection selection() const { return m_selection; }
    // Shows the list of `itemID` (refetching the copies) without touching search or catalog.
    void setSelectionID(const QString &itemID);
    // What the list does when the sidebar's selection changes: a catalog theme limits the
    // catalog to it, clears the search and searches; "catalog_all" does the same for the
    // whole catalog; "catalog_all_themes" only empties the results; anything else (or no
    // selection) clears the theme, the results and the search.
    void sidebarSelectionChanged(const QString &itemID);
    void sidebarSelectionChanged(const std::optional<SidebarItem> &item);
    // Whether the list shows catalog results rather than copies.
    bool isCatalogList() const { return m_selection.isCatalog(); }

    // ---- Search ----
    QString searchText() const { return m_searchText; }
    // Over copies the new predicate applies at once; over the catalog the search runs once
    // typing has paused for 0.2 s, or at once when the text becomes empty.
    void setSearchText(const QString &text);
    bool searchFocusTrigger() const { return m_searchFocusTrigger; }
    // Each flip moves the keyboard focus to the search field.
    void toggleSearchFocusTrigger();

    // ---- Sort, stored under "collectionSortColumn", "collectionSortAscending",
    // "catalogSortColumn" and "catalogSortAscending" ----
    SortColumn collectionSortColumn() const { return m_collectionSortColumn; }
    void setCollectionSortColumn(SortColumn column);
    bool collectionSortAscending() const { return m_collectionSortAscending; }
    void setCollectionSortAscending(bool ascending);
    SortColumn catalogSortColumn() const { return m_catalogSortColumn; }
    void setCatalogSortColumn(SortColumn column);
    bool catalogSortAscending() const { return m_catalogSortAscending; }
    void setCatalogSortAscending(bool ascending);

    // What the tables show as their sort. Writing one (a header click) stores the column
    // and direction of its first comparator and refetches or re-searches.
    QList<SortDescriptor> collectionSortOrder() const;
    void setCollectionSortOrder(const QList<SortDescriptor> &comparators);
    QList<SortDescriptor> catalogSortOrder() const;
    void setCatalogSortOrder(const QList<SortDescriptor> &comparators);
    // The collection's sort for the store's fetch.
    QList<SortDescriptor> sortDescriptors() const;

    // ---- Filters ----
    std::optional<QString> filterTheme() const { return m_filterTheme; }
    void setFilterTheme(const std::optional<QString> &themeName);
    std::optional<qint16> filterYear() const { return m_filterYear; }
    void setFilterYear(std::optional<qint16> year);
    std::optional<OverallCondition> filterCondition() const { return m_filterCondition; }
    void setFilterCondition(std::optional<OverallCondition> condition);

    // Grid or table, stored under "collectionIsGridView".
    bool isGridView() const { return m_isGridView; }
    void setGridView(bool isGridView);

    // ---- The collection ----
    // The fetch of copies for the sidebar item `itemID` under the current search text,
    // filters and sort.
    FetchRequest<BrickSet> fetchRequest(const QString &itemID) const;
    FetchRequest<BrickSet> fetchRequest(const std::optional<SidebarItem> &item) const;
    // The live list of the current selection's copies, in sort order, one row per copy.
    BrickSetListModel *copies() const { return m_copies.get(); }
    // The same copies grouped by set number: what the grid and table of copies show.
    SetListGroupModel *groups() const { return m_groups.get(); }
    // Set numbers of which a copy not in the trash is owned.
    const QSet<QString> &ownedSetNumbers() const { return m_ownedSetNumbers; }

    // ---- The catalog ----
    const QList<CatalogSetResult> &catalogResults() const { return m_catalogResults; }
    CatalogSetListModel *catalogModel() const { return m_catalogModel.get(); }
    std::optional<int> currentCatalogThemeID() const { return m_currentCatalogThemeID; }
    // Changing the theme runs the search at once.
    void setCurrentCatalogThemeID(std::optional<int> themeID);
    const QHash<int, QString> &themeNameCache() const { return m_themeNameCache; }
    // Empties the results and drops any search on its way.
    void clearCatalogResults();
    // Starts a search with the current text, theme and sort; a newer search replaces an
    // older one, whose results are dropped even if they arrive later.
    void runCatalogSearch();
    bool isCatalogSearchRunning() const { return m_runningSearch != nullptr; }

Q_SIGNALS:
    void searchTextChanged(const QString &text);
    void searchFocusTriggerChanged(bool trigger);
    void collectionSortChanged();
    void catalogSortChanged();
    void filtersChanged();
    void isGridViewChanged(bool isGridView);
    void selectionIDChanged(const QString &itemID);
    void catalogResultsChanged();
    void currentCatalogThemeIDChanged();
    void themeNameCacheChanged();
    void ownedSetNumbersChanged();
    // A catalog search has started (it ends with catalogResultsChanged(), unless replaced).
    void catalogSearchStarted();
    // A search over the copies left exactly one set: the detail should show this copy.
    void brickSetSelectedBySearch(const ObjectID &brickSet);
    // A catalog search left exactly one set: the detail should show it.
    void catalogSetSelectedBySearch(const CatalogSetResult &set);

private:
    struct SearchOutcome
    {
        QList<CatalogSetResult> results;
        QHash<int, std::optional<QString>> themeNames; // names looked up for ids not yet cached
        bool catalogAbsent = false;
    };
    static SearchOutcome searchCatalog(QString text, std::optional<int> themeID, QList<SortDescriptor> sortOrder,
                                       QSet<int> knownThemes, std::shared_ptr<std::atomic_bool> cancelled);

    void applyCollectionRequest();
    void applyCollectionSort();
    void applySearchSelection();
    void setCatalogResults(const QList<CatalogSetResult> &results);
    void cancelCatalogSearch();
    void mergeThemeNames(const QHash<int, std::optional<QString>> &names);
    void rebuildOwnedSetNumbers();
    void storeCollectionSort();
    void storeCatalogSort();

    PersistentContainer &m_container;
    QString m_selectionID;
    SetListSelection m_selection;
    QString m_searchText;
    bool m_searchFocusTrigger = false;
    SortColumn m_collectionSortColumn = SortColumn::name;
    bool m_collectionSortAscending = true;
    SortColumn m_catalogSortColumn = SortColumn::year;
    bool m_catalogSortAscending = true;
    std::optional<QString> m_filterTheme;
    std::optional<qint16> m_filterYear;
    std::optional<OverallCondition> m_filterCondition;
    bool m_isGridView = true;
    QList<CatalogSetResult> m_catalogResults;
    std::optional<int> m_currentCatalogThemeID;
    QHash<int, QString> m_themeNameCache;
    QSet<QString> m_ownedSetNumbers;

    QTimer m_searchDebounce;
    // The search on its way: its cancellation flag; a result carrying another flag is stale.
    std::shared_ptr<std::atomic_bool> m_runningSearch;

    std::unique_ptr<BrickSetListModel> m_copies;
    std::unique_ptr<SetListGroupModel> m_groups;
    std::unique_ptr<BrickSetListModel> m_ownedSets;
    std::unique_ptr<CatalogSetListModel> m_catalogModel;
};
