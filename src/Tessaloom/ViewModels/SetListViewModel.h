// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OverallCondition.h"
#include "Services/CatalogResults.h"
#include "Store/BrickSet.h"
#include "Store/FetchRequest.h"
#include "ViewModels/CatalogSearchDebounce.h"
#include "ViewModels/CatalogSearchRunner.h"
#include "ViewModels/CollectionFetchRequest.h"
#include "ViewModels/CollectionGridViewSetting.h"
#include "ViewModels/OwnedSetIndex.h"
#include "ViewModels/SetListSelection.h"
#include "ViewModels/SetListSortOrder.h"
#include "ViewModels/SidebarItem.h"
#include "ViewModels/StoredSortSetting.h"
#include "ViewModels/ThemeNameCache.h"

#include <QHash>
#include <QObject>
#include <QSet>

#include <memory>
#include <optional>

class BrickSetListModel;
class CatalogSetListModel;
class PersistentContainer;
class SetListGroupModel;

// The model behind the middle column: the user's copies or the catalog's search results,
// as a grid or a table. It binds the parts that each do one job (the stored sort and view
// settings, the fetch of copies, the wait on typing, the catalog search on the pool, the
// owned sets, the theme names) to the search text, the filters and the sidebar's
// selection. Used on the main thread only.
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
    void sidebarSelectionChanged(const std::optional<SidebarItem> &item)
    {
        sidebarSelectionChanged(item ? item->id() : QString());
    }
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
    SortColumn collectionSortColumn() const { return m_collectionSort.column(); }
    void setCollectionSortColumn(SortColumn column) { m_collectionSort.setColumn(column); }
    bool collectionSortAscending() const { return m_collectionSort.ascending(); }
    void setCollectionSortAscending(bool ascending) { m_collectionSort.setAscending(ascending); }
    SortColumn catalogSortColumn() const { return m_catalogSort.column(); }
    void setCatalogSortColumn(SortColumn column) { m_catalogSort.setColumn(column); }
    bool catalogSortAscending() const { return m_catalogSort.ascending(); }
    void setCatalogSortAscending(bool ascending) { m_catalogSort.setAscending(ascending); }

    // What the tables show as their sort. Writing one (a header click) stores the column
    // and direction of its first comparator and refetches or re-searches.
    QList<SortDescriptor> collectionSortOrder() const { return m_collectionSort.comparators(); }
    void setCollectionSortOrder(const QList<SortDescriptor> &comparators)
    {
        m_collectionSort.setComparators(comparators);
    }
    QList<SortDescriptor> catalogSortOrder() const { return m_catalogSort.comparators(); }
    void setCatalogSortOrder(const QList<SortDescriptor> &comparators) { m_catalogSort.setComparators(comparators); }
    // The collection's sort for the store's fetch.
    QList<SortDescriptor> sortDescriptors() const
    {
        return SetListSortOrder::storeSortDescriptors(m_collectionSort.column(), m_collectionSort.ascending());
    }

    // ---- Filters ----
    std::optional<QString> filterTheme() const { return m_filters.themeName; }
    void setFilterTheme(const std::optional<QString> &themeName);
    std::optional<qint16> filterYear() const { return m_filters.year; }
    void setFilterYear(std::optional<qint16> year);
    std::optional<OverallCondition> filterCondition() const { return m_filters.condition; }
    void setFilterCondition(std::optional<OverallCondition> condition);

    // Grid or table, stored under "collectionIsGridView".
    bool isGridView() const { return m_gridView.isGridView(); }
    void setGridView(bool isGridView);

    // ---- The collection ----
    // The fetch of copies for the sidebar item `itemID` under the current search text,
    // filters and sort.
    FetchRequest<BrickSet> fetchRequest(const QString &itemID) const;
    FetchRequest<BrickSet> fetchRequest(const std::optional<SidebarItem> &item) const
    {
        return fetchRequest(item ? item->id() : QString());
    }
    // The live list of the current selection's copies, in sort order, one row per copy.
    BrickSetListModel *copies() const { return m_copies.get(); }
    // The same copies grouped by set number: what the grid and table of copies show.
    SetListGroupModel *groups() const { return m_groups.get(); }
    // Set numbers of which a copy not in the trash is owned.
    const QSet<QString> &ownedSetNumbers() const { return m_ownedSets.setNumbers(); }

    // ---- The catalog ----
    const QList<CatalogSetResult> &catalogResults() const { return m_catalogResults; }
    CatalogSetListModel *catalogModel() const { return m_catalogModel.get(); }
    std::optional<int> currentCatalogThemeID() const { return m_currentCatalogThemeID; }
    // Changing the theme runs the search at once.
    void setCurrentCatalogThemeID(std::optional<int> themeID);
    const QHash<int, QString> &themeNameCache() const { return m_themeNames.names(); }
    // Empties the results and drops any search on its way.
    void clearCatalogResults();
    // Starts a search with the current text, theme and sort; a newer search replaces an
    // older one, whose results are dropped even if they arrive later.
    void runCatalogSearch();
    bool isCatalogSearchRunning() const { return m_catalogSearch.isRunning(); }
    // How many sets the current search matches in all; more than catalogResults() holds
    // when the result limit cut the list.
    qsizetype catalogTotalCount() const { return m_catalogTotalCount; }
    bool isCatalogListCut() const { return m_catalogTotalCount > m_catalogResults.size(); }
    // Lifts the result limit for the current list and searches again. The limit comes back
    // as soon as the search text, the theme or the sidebar's selection changes.
    void showAllCatalogResults();
    bool isCatalogLimitLifted() const { return m_catalogLimitLifted; }

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
    void collectionSortStored();
    void catalogSortStored();
    void applyCollectionRequest();
    // Whether the selection shows copies in this list (not a catalog list, not the
    // inventory sheet).
    bool listsCopies() const;
    void filtersUpdated();
    void applyCollectionSort();
    void applyPriceSort();
    void applySearchSelection();
    void setCatalogResults(const QList<CatalogSetResult> &results, qsizetype totalCount);
    void mergeThemeNames(const CatalogSetSearch::ThemeNames &names);

    QString m_selectionID;
    SetListSelection m_selection;
    QString m_searchText;
    bool m_searchFocusTrigger = false;
    StoredSortSetting m_collectionSort{StoredSortSetting::List::collection};
    StoredSortSetting m_catalogSort{StoredSortSetting::List::catalog};
    CollectionGridViewSetting m_gridView;
    CollectionFetchRequest::Filters m_filters;
    QList<CatalogSetResult> m_catalogResults;
    qsizetype m_catalogTotalCount = 0;
    bool m_catalogLimitLifted = false;
    std::optional<int> m_currentCatalogThemeID;
    ThemeNameCache m_themeNames;

    std::unique_ptr<BrickSetListModel> m_copies;
    std::unique_ptr<SetListGroupModel> m_groups;
    std::unique_ptr<CatalogSetListModel> m_catalogModel;
    OwnedSetIndex m_ownedSets;
    CatalogSearchDebounce m_searchDebounce;
    // Declared last so that it is destroyed first: a search that lands later reaches nothing.
    CatalogSearchRunner m_catalogSearch;
};
