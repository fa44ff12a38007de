// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListViewModel.h"

#include "Store/BrickSetListModel.h"
#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListSidebarSwitch.h"

namespace {
// Above this many rows the old results are dropped as soon as a new search starts, so
// that a long stale list is not resorted and redrawn while the new one is on its way.
constexpr qsizetype earlyEmptyingThreshold = 200;
} // namespace

SetListViewModel::SetListViewModel(PersistentContainer &container, QObject *parent)
    : QObject(parent)
    // Empty until applyCollectionRequest() below sets the list's own request, so the
    // collection is read once at start-up.
    , m_copies(std::make_unique<BrickSetListModel>(container, FetchRequest<BrickSet>(Predicate::alwaysFalse())))
    , m_groups(std::make_unique<SetListGroupModel>(container, *m_copies))
    , m_catalogModel(std::make_unique<CatalogSetListModel>())
    , m_ownedSets(container)
{
    connect(m_groups.get(), &SetListGroupModel::sortRequested, this, &SetListViewModel::setCollectionSortOrder);
    connect(m_catalogModel.get(), &CatalogSetListModel::sortRequested, this, &SetListViewModel::setCatalogSortOrder);
    connect(&m_collectionSort, &StoredSortSetting::changed, this, &SetListViewModel::collectionSortStored);
    connect(&m_catalogSort, &StoredSortSetting::changed, this, &SetListViewModel::catalogSortStored);
    m_catalogModel->setOwnedSetNumbers(m_ownedSets.setNumbers());
    connect(&m_ownedSets, &OwnedSetIndex::setNumbersChanged, this, [this] {
        m_catalogModel->setOwnedSetNumbers(m_ownedSets.setNumbers());
        Q_EMIT ownedSetNumbersChanged();
    });
    connect(&m_searchDebounce, &CatalogSearchDebounce::searchDue, this, &SetListViewModel::runCatalogSearch);
    connect(&m_catalogSearch, &CatalogSearchRunner::themeNamesFound, this, &SetListViewModel::mergeThemeNames);
    connect(&m_catalogSearch, &CatalogSearchRunner::resultsReady, this, &SetListViewModel::setCatalogResults);
    applyCollectionRequest();
}

SetListViewModel::~SetListViewModel() = default;

// ---- The sidebar's selection ----------------------------------------------------------------

void SetListViewModel::setSelectionID(const QString &itemID)
{
    const SetListSelection selection = SetListSelection::fromItemID(itemID);
    if (itemID == m_selectionID && selection == m_selection)
        return;
    m_selectionID = itemID;
    m_selection = selection;
    if (!m_selection.isCatalog())
        m_searchDebounce.cancel();
    applyCollectionRequest();
    Q_EMIT selectionIDChanged(m_selectionID);
}

void SetListViewModel::sidebarSelectionChanged(const QString &itemID)
{
    const SetListSelection selection = SetListSelection::fromItemID(itemID);
    const SetListSidebarSwitch change = SetListSidebarSwitch::to(selection, m_currentCatalogThemeID);
    m_searchDebounce.cancel();
    m_catalogLimitLifted = false;
    // The fields change first and the list is fetched or searched once, with all of them.
    const bool searchCleared = !change.keepsSearchText && !std::exchange(m_searchText, QString()).isEmpty();
    const bool themeChanged = std::exchange(m_currentCatalogThemeID, change.catalogThemeID) != change.catalogThemeID;
    m_selectionID = itemID;
    m_selection = selection;
    applyCollectionRequest();
    Q_EMIT selectionIDChanged(m_selectionID);
    if (searchCleared)
        Q_EMIT searchTextChanged(m_searchText);
    if (themeChanged)
        Q_EMIT currentCatalogThemeIDChanged();
    if (change.searchesCatalog)
        runCatalogSearch();
    else
        clearCatalogResults();
}

// ---- Search ---------------------------------------------------------------------------------

void SetListViewModel::setSearchText(const QString &text)
{
    if (text == m_searchText)
        return;
    m_searchText = text;
    m_catalogLimitLifted = false;
    Q_EMIT searchTextChanged(m_searchText);
    if (isCatalogList()) {
        m_searchDebounce.textChanged(m_searchText);
        return;
    }
    applyCollectionRequest();
    applySearchSelection();
}

void SetListViewModel::toggleSearchFocusTrigger()
{
    m_searchFocusTrigger = !m_searchFocusTrigger;
    Q_EMIT searchFocusTriggerChanged(m_searchFocusTrigger);
}

void SetListViewModel::applySearchSelection()
{
    if (!m_searchText.isEmpty() && m_groups->count() == 1)
        Q_EMIT brickSetSelectedBySearch(m_groups->groupAt(0).copy->brickSet.objectID);
}

// ---- Sort -----------------------------------------------------------------------------------

void SetListViewModel::collectionSortStored()
{
    Q_EMIT collectionSortChanged();
    applyCollectionSort();
}

void SetListViewModel::catalogSortStored()
{
    Q_EMIT catalogSortChanged();
    if (isCatalogList())
        runCatalogSearch();
}

// ---- Filters and view -----------------------------------------------------------------------

void SetListViewModel::setFilterTheme(const std::optional<QString> &themeName)
{
    if (std::exchange(m_filters.themeName, themeName) != themeName)
        filtersUpdated();
}

void SetListViewModel::setFilterYear(std::optional<qint16> year)
{
    if (std::exchange(m_filters.year, year) != year)
        filtersUpdated();
}

void SetListViewModel::setFilterCondition(std::optional<OverallCondition> condition)
{
    if (std::exchange(m_filters.condition, condition) != condition)
        filtersUpdated();
}

void SetListViewModel::filtersUpdated()
{
    Q_EMIT filtersChanged();
    applyCollectionRequest();
}

void SetListViewModel::setGridView(bool isGridView)
{
    if (m_gridView.setGridView(isGridView))
        Q_EMIT isGridViewChanged(isGridView);
}

// ---- The collection -------------------------------------------------------------------------

FetchRequest<BrickSet> SetListViewModel::fetchRequest(const QString &itemID) const
{
    return CollectionFetchRequest::build(SetListSelection::fromItemID(itemID), m_searchText, m_filters,
                                         sortDescriptors());
}

void SetListViewModel::applyCollectionRequest()
{
    // A catalog list shows no copies, and the inventory sheet, standing in the list's
    // place, reads its own: the live list holds none then rather than refetching and
    // regrouping the whole collection after every save for nobody to see.
    applyPriceSort();
    m_copies->setFetchRequest(listsCopies() ? fetchRequest(m_selectionID)
                                            : FetchRequest<BrickSet>(Predicate::alwaysFalse()));
}

bool SetListViewModel::listsCopies() const
{
    return !m_selection.isCatalog() && m_selection.kind() != SidebarItem::Kind::inventory;
}

void SetListViewModel::applyCollectionSort()
{
    // A catalog list and the inventory hold no copies to sort.
    if (!listsCopies())
        return;
    applyPriceSort();
    // Only the order changes: the copies at hand are re-sorted rather than read again.
    m_copies->setSortDescriptors(sortDescriptors());
}

void SetListViewModel::applyPriceSort()
{
    // The store cannot order by the computed price: the groups sort by it in memory.
    const bool priceSort = listsCopies() && SetListSortOrder::sortsInMemory(m_collectionSort.column());
    m_groups->setPriceSort(priceSort ? std::optional<bool>(m_collectionSort.ascending()) : std::nullopt);
}

// ---- The catalog ----------------------------------------------------------------------------

void SetListViewModel::setCurrentCatalogThemeID(std::optional<int> themeID)
{
    if (themeID == m_currentCatalogThemeID)
        return;
    m_currentCatalogThemeID = themeID;
    m_catalogLimitLifted = false;
    Q_EMIT currentCatalogThemeIDChanged();
    if (isCatalogList())
        runCatalogSearch();
}

void SetListViewModel::setCatalogResults(const QList<CatalogSetResult> &results, qsizetype totalCount)
{
    totalCount = std::max(totalCount, results.size());
    if (results == m_catalogResults && totalCount == m_catalogTotalCount)
        return;
    m_catalogTotalCount = totalCount;
    if (results == m_catalogResults) {
        Q_EMIT catalogResultsChanged();
        return;
    }
    m_catalogResults = results;
    m_catalogModel->setResults(m_catalogResults);
    Q_EMIT catalogResultsChanged();
    if (m_catalogResults.size() == 1 && !m_searchText.isEmpty())
        Q_EMIT catalogSetSelectedBySearch(m_catalogResults.first());
}

void SetListViewModel::clearCatalogResults()
{
    m_catalogSearch.cancel();
    setCatalogResults({}, 0);
}

void SetListViewModel::showAllCatalogResults()
{
    if (m_catalogLimitLifted)
        return;
    m_catalogLimitLifted = true;
    if (isCatalogList())
        runCatalogSearch();
}

void SetListViewModel::runCatalogSearch()
{
    m_searchDebounce.cancel();
    m_catalogSearch.cancel();
    const CatalogSetSearch::Request request{m_searchText, m_currentCatalogThemeID, catalogSortOrder(),
                                            m_themeNames.knownThemeIDs(), m_catalogLimitLifted};
    if (m_catalogResults.size() > earlyEmptyingThreshold)
        setCatalogResults({}, 0);
    m_catalogSearch.start(request);
    Q_EMIT catalogSearchStarted();
}

void SetListViewModel::mergeThemeNames(const CatalogSetSearch::ThemeNames &names)
{
    if (!m_themeNames.merge(names))
        return;
    m_catalogModel->setThemeNames(m_themeNames.names());
    Q_EMIT themeNameCacheChanged();
}
