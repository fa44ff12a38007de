// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/SetListViewModel.h"

#include "SearchTokenizer.h"
#include "Services/RebrickableCatalog.h"
#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"
#include "ViewModels/CatalogSetListModel.h"
#include "ViewModels/SetListGroupModel.h"

#include <QDateTime>
#include <QSettings>
#include <QtConcurrent>

using namespace Qt::StringLiterals;

namespace {

const QString collectionSortColumnKey = u"collectionSortColumn"_s;
const QString collectionSortAscendingKey = u"collectionSortAscending"_s;
const QString catalogSortColumnKey = u"catalogSortColumn"_s;
const QString catalogSortAscendingKey = u"catalogSortAscending"_s;
const QString collectionIsGridViewKey = u"collectionIsGridView"_s;

constexpr int catalogSearchLimit = 1000;
// Above this many rows the old results are dropped as soon as a new search starts, so
// that a long stale list is not resorted and redrawn while the new one is on its way.
constexpr qsizetype earlyEmptyingThreshold = 200;
constexpr int searchDebounceMilliseconds = 200;

// Absent means true: read with a presence test, not with a default that a stored false
// could be confused with.
bool storedBool(const QSettings &settings, const QString &key)
{
    return settings.contains(key) ? settings.value(key).toBool() : true;
}

SetListSortOrder::Column storedColumn(const QSettings &settings, const QString &key, SetListSortOrder::Column fallback)
{
    return SetListSortOrder::fromRawValue(settings.value(key).toString()).value_or(fallback);
}

} // namespace

SetListViewModel::SetListViewModel(PersistentContainer &container, QObject *parent)
    : QObject(parent)
    , m_container(container)
{
    const QSettings settings;
    m_collectionSortColumn = storedColumn(settings, collectionSortColumnKey, SortColumn::name);
    m_collectionSortAscending = storedBool(settings, collectionSortAscendingKey);
    m_catalogSortColumn = storedColumn(settings, catalogSortColumnKey, SortColumn::year);
    m_catalogSortAscending = storedBool(settings, catalogSortAscendingKey);
    m_isGridView = storedBool(settings, collectionIsGridViewKey);

    m_searchDebounce.setSingleShot(true);
    m_searchDebounce.setInterval(searchDebounceMilliseconds);
    connect(&m_searchDebounce, &QTimer::timeout, this, &SetListViewModel::runCatalogSearch);

    m_copies = std::make_unique<BrickSetListModel>(container);
    m_groups = std::make_unique<SetListGroupModel>(container, *m_copies);
    m_ownedSets = std::make_unique<BrickSetListModel>(container);
    m_catalogModel = std::make_unique<CatalogSetListModel>();
    connect(m_groups.get(), &SetListGroupModel::sortRequested, this, &SetListViewModel::setCollectionSortOrder);
    connect(m_catalogModel.get(), &CatalogSetListModel::sortRequested, this, &SetListViewModel::setCatalogSortOrder);
    connect(m_ownedSets.get(), &BrickSetListModel::refetched, this, &SetListViewModel::rebuildOwnedSetNumbers);

    m_ownedSets->setFetchRequest(FetchRequest<BrickSet>(BrickSetQueries::notTrashed()));
    applyCollectionRequest();
}

SetListViewModel::~SetListViewModel()
{
    // A search on its way finds its flag set; its continuation dies with this object.
    cancelCatalogSearch();
}

// ---- The sidebar's selection ----------------------------------------------------------------

void SetListViewModel::setSelectionID(const QString &itemID)
{
    const SetListSelection selection = SetListSelection::fromItemID(itemID);
    if (itemID == m_selectionID && selection == m_selection)
        return;
    m_selectionID = itemID;
    m_selection = selection;
    if (!m_selection.isCatalog())
        m_searchDebounce.stop();
    applyCollectionRequest();
    Q_EMIT selectionIDChanged(m_selectionID);
}

void SetListViewModel::sidebarSelectionChanged(const QString &itemID)
{
    const SetListSelection selection = SetListSelection::fromItemID(itemID);
    m_searchDebounce.stop();
    // The fields change first and the list is fetched or searched once, with all of them.
    const bool searchChanged = !m_searchText.isEmpty();
    if (selection.kind() != SidebarItem::Kind::catalogAllThemes)
        m_searchText.clear();
    std::optional<int> themeID = m_currentCatalogThemeID;
    if (selection.kind() == SidebarItem::Kind::catalogTheme)
        themeID = selection.themeID();
    else if (selection.kind() != SidebarItem::Kind::catalogAllThemes)
        themeID.reset();
    const bool themeChanged = themeID != m_currentCatalogThemeID;
    m_currentCatalogThemeID = themeID;

    m_selectionID = itemID;
    m_selection = selection;
    applyCollectionRequest();
    Q_EMIT selectionIDChanged(m_selectionID);
    if (searchChanged && m_searchText.isEmpty())
        Q_EMIT searchTextChanged(m_searchText);
    if (themeChanged)
        Q_EMIT currentCatalogThemeIDChanged();

    switch (selection.kind().value_or(SidebarItem::Kind::allSets)) {
    case SidebarItem::Kind::catalogTheme:
    case SidebarItem::Kind::catalogAll:
        runCatalogSearch();
        break;
    default:
        clearCatalogResults();
        break;
    }
}

void SetListViewModel::sidebarSelectionChanged(const std::optional<SidebarItem> &item)
{
    sidebarSelectionChanged(item ? item->id() : QString());
}

// ---- Search ---------------------------------------------------------------------------------

void SetListViewModel::setSearchText(const QString &text)
{
    if (text == m_searchText)
        return;
    m_searchText = text;
    Q_EMIT searchTextChanged(m_searchText);
    if (isCatalogList()) {
        m_searchDebounce.stop();
        if (m_searchText.isEmpty())
            runCatalogSearch();
        else
            m_searchDebounce.start();
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

void SetListViewModel::setCollectionSortColumn(SortColumn column)
{
    if (column == m_collectionSortColumn)
        return;
    m_collectionSortColumn = column;
    storeCollectionSort();
}

void SetListViewModel::setCollectionSortAscending(bool ascending)
{
    if (ascending == m_collectionSortAscending)
        return;
    m_collectionSortAscending = ascending;
    storeCollectionSort();
}

void SetListViewModel::setCatalogSortColumn(SortColumn column)
{
    if (column == m_catalogSortColumn)
        return;
    m_catalogSortColumn = column;
    storeCatalogSort();
}

void SetListViewModel::setCatalogSortAscending(bool ascending)
{
    if (ascending == m_catalogSortAscending)
        return;
    m_catalogSortAscending = ascending;
    storeCatalogSort();
}

QList<SortDescriptor> SetListViewModel::collectionSortOrder() const
{
    return SetListSortOrder::collectionComparators(m_collectionSortColumn, m_collectionSortAscending);
}

void SetListViewModel::setCollectionSortOrder(const QList<SortDescriptor> &comparators)
{
    const auto choice = SetListSortOrder::collectionChoice(comparators);
    if (!choice || (choice->column == m_collectionSortColumn && choice->ascending == m_collectionSortAscending))
        return;
    m_collectionSortColumn = choice->column;
    m_collectionSortAscending = choice->ascending;
    storeCollectionSort();
}

QList<SortDescriptor> SetListViewModel::catalogSortOrder() const
{
    return SetListSortOrder::catalogComparators(m_catalogSortColumn, m_catalogSortAscending);
}

void SetListViewModel::setCatalogSortOrder(const QList<SortDescriptor> &comparators)
{
    const auto choice = SetListSortOrder::catalogChoice(comparators);
    if (!choice || (choice->column == m_catalogSortColumn && choice->ascending == m_catalogSortAscending))
        return;
    m_catalogSortColumn = choice->column;
    m_catalogSortAscending = choice->ascending;
    storeCatalogSort();
}

QList<SortDescriptor> SetListViewModel::sortDescriptors() const
{
    return SetListSortOrder::storeSortDescriptors(m_collectionSortColumn, m_collectionSortAscending);
}

void SetListViewModel::storeCollectionSort()
{
    QSettings settings;
    settings.setValue(collectionSortColumnKey, SetListSortOrder::rawValue(m_collectionSortColumn));
    settings.setValue(collectionSortAscendingKey, m_collectionSortAscending);
    Q_EMIT collectionSortChanged();
    applyCollectionSort();
}

void SetListViewModel::storeCatalogSort()
{
    QSettings settings;
    settings.setValue(catalogSortColumnKey, SetListSortOrder::rawValue(m_catalogSortColumn));
    settings.setValue(catalogSortAscendingKey, m_catalogSortAscending);
    Q_EMIT catalogSortChanged();
    if (isCatalogList())
        runCatalogSearch();
}

// ---- Filters and view -----------------------------------------------------------------------

void SetListViewModel::setFilterTheme(const std::optional<QString> &themeName)
{
    if (themeName == m_filterTheme)
        return;
    m_filterTheme = themeName;
    Q_EMIT filtersChanged();
    applyCollectionRequest();
}

void SetListViewModel::setFilterYear(std::optional<qint16> year)
{
    if (year == m_filterYear)
        return;
    m_filterYear = year;
    Q_EMIT filtersChanged();
    applyCollectionRequest();
}

void SetListViewModel::setFilterCondition(std::optional<OverallCondition> condition)
{
    if (condition == m_filterCondition)
        return;
    m_filterCondition = condition;
    Q_EMIT filtersChanged();
    applyCollectionRequest();
}

void SetListViewModel::setGridView(bool isGridView)
{
    if (isGridView == m_isGridView)
        return;
    m_isGridView = isGridView;
    QSettings().setValue(collectionIsGridViewKey, m_isGridView);
    Q_EMIT isGridViewChanged(m_isGridView);
}

// ---- The collection -------------------------------------------------------------------------

FetchRequest<BrickSet> SetListViewModel::fetchRequest(const QString &itemID) const
{
    using Kind = SidebarItem::Kind;
    const SetListSelection selection = SetListSelection::fromItemID(itemID);
    // "now" is taken at the moment of the fetch, so a list left open moves with the clock
    // at its next refetch.
    const QDateTime now = QDateTime::currentDateTime();
    QList<Predicate> predicates;
    if (selection.kind() == Kind::trash) {
        predicates.append(BrickSetQueries::trashed());
    } else {
        predicates.append(BrickSetQueries::notTrashed());
        // No selection lists the whole collection, as all sets does.
        switch (selection.kind().value_or(Kind::allSets)) {
        case Kind::favorites:
            predicates.append(BrickSetQueries::favorite());
            break;
        case Kind::recentlyAdded:
            predicates.append(BrickSetQueries::addedOnOrAfter(now.addDays(-30)));
            break;
        case Kind::unknownAcquisition:
            predicates.append(BrickSetQueries::acquisitionUnknownOrAbsent());
            break;
        case Kind::unknownCondition:
            // Only an absent condition: the sidebar's count also takes "unknown", the list
            // deliberately does not.
            predicates.append(BrickSetQueries::conditionAbsent());
            break;
        case Kind::retired:
            predicates.append(BrickSetQueries::retiredBefore(now));
            break;
        case Kind::noPricing:
            predicates.append(BrickSetQueries::withoutPriceGuides());
            break;
        case Kind::outdatedPricing:
            predicates.append(BrickSetQueries::pricingOlderThan(now.addDays(-7)));
            break;
        default:
            break;
        }
    }
    // Over the catalog the text goes to the catalog search, never into this fetch.
    if (!m_searchText.isEmpty() && !selection.isCatalog()) {
        for (const SearchTokenizer::Token &token : SearchTokenizer::tokenize(m_searchText)) {
            const std::optional<qint16> year = token.year ? std::optional<qint16>(qint16(*token.year)) : std::nullopt;
            predicates.append(BrickSetQueries::matchesSearchToken(token.text, year));
        }
    }
    if (m_filterTheme)
        predicates.append(BrickSetQueries::themeName(*m_filterTheme));
    if (m_filterYear)
        predicates.append(BrickSetQueries::year(*m_filterYear));
    if (m_filterCondition)
        predicates.append(BrickSetQueries::overallCondition(Vocabulary::rawValue(*m_filterCondition)));
    return FetchRequest<BrickSet>(Predicate::allOf(predicates), sortDescriptors());
}

FetchRequest<BrickSet> SetListViewModel::fetchRequest(const std::optional<SidebarItem> &item) const
{
    return fetchRequest(item ? item->id() : QString());
}

void SetListViewModel::applyCollectionRequest()
{
    // A catalog list shows no copies: its live list holds none rather than refetching the
    // whole collection after every save.
    FetchRequest<BrickSet> request = m_selection.isCatalog() ? FetchRequest<BrickSet>(Predicate::alwaysFalse())
                                                             : fetchRequest(m_selectionID);
    const bool priceSort = !m_selection.isCatalog() && SetListSortOrder::sortsInMemory(m_collectionSortColumn);
    m_groups->setPriceSort(priceSort ? std::optional<bool>(m_collectionSortAscending) : std::nullopt);
    m_copies->setFetchRequest(request);
}

void SetListViewModel::applyCollectionSort()
{
    // A catalog list holds no copies to sort.
    if (m_selection.isCatalog())
        return;
    const bool priceSort = SetListSortOrder::sortsInMemory(m_collectionSortColumn);
    m_groups->setPriceSort(priceSort ? std::optional<bool>(m_collectionSortAscending) : std::nullopt);
    // Only the order changes: the copies at hand are re-sorted rather than read again.
    m_copies->setSortDescriptors(sortDescriptors());
}

void SetListViewModel::rebuildOwnedSetNumbers()
{
    QSet<QString> numbers;
    numbers.reserve(m_ownedSets->count());
    for (const BrickSetWithCatalogSet &row : m_ownedSets->rows()) {
        if (row.catalogSet && row.catalogSet->setNumber)
            numbers.insert(*row.catalogSet->setNumber);
    }
    if (numbers == m_ownedSetNumbers)
        return;
    m_ownedSetNumbers = std::move(numbers);
    m_catalogModel->setOwnedSetNumbers(m_ownedSetNumbers);
    Q_EMIT ownedSetNumbersChanged();
}

// ---- The catalog ----------------------------------------------------------------------------

void SetListViewModel::setCurrentCatalogThemeID(std::optional<int> themeID)
{
    if (themeID == m_currentCatalogThemeID)
        return;
    m_currentCatalogThemeID = themeID;
    Q_EMIT currentCatalogThemeIDChanged();
    if (isCatalogList())
        runCatalogSearch();
}

void SetListViewModel::setCatalogResults(const QList<CatalogSetResult> &results)
{
    if (results == m_catalogResults)
        return;
    m_catalogResults = results;
    m_catalogModel->setResults(m_catalogResults);
    Q_EMIT catalogResultsChanged();
    if (m_catalogResults.size() == 1 && !m_searchText.isEmpty())
        Q_EMIT catalogSetSelectedBySearch(m_catalogResults.first());
}

void SetListViewModel::cancelCatalogSearch()
{
    if (m_runningSearch) {
        m_runningSearch->store(true);
        m_runningSearch.reset();
    }
}

void SetListViewModel::clearCatalogResults()
{
    cancelCatalogSearch();
    setCatalogResults({});
}

void SetListViewModel::runCatalogSearch()
{
    m_searchDebounce.stop();
    cancelCatalogSearch();
    const QString text = m_searchText;
    const std::optional<int> themeID = m_currentCatalogThemeID;
    const QList<SortDescriptor> sortOrder = catalogSortOrder();
    if (m_catalogResults.size() > earlyEmptyingThreshold)
        setCatalogResults({});

    auto cancelled = std::make_shared<std::atomic_bool>(false);
    m_runningSearch = cancelled;
    QSet<int> knownThemes;
    knownThemes.reserve(m_themeNameCache.size());
    for (auto it = m_themeNameCache.cbegin(); it != m_themeNameCache.cend(); ++it)
        knownThemes.insert(it.key());

    // The task holds values only; its continuation runs on this object's thread and is
    // dropped with the object, so a search outliving the list ends unseen.
    QFuture<SearchOutcome> search =
        QtConcurrent::run(&SetListViewModel::searchCatalog, text, themeID, sortOrder, knownThemes, cancelled);
    search.then(this, [this, cancelled](const SearchOutcome &outcome) {
        mergeThemeNames(outcome.themeNames);
        // A newer search (or a clear) has replaced this one: its results are stale.
        if (cancelled != m_runningSearch || cancelled->load())
            return;
        m_runningSearch.reset();
        setCatalogResults(outcome.results);
    });
    Q_EMIT catalogSearchStarted();
}

SetListViewModel::SearchOutcome SetListViewModel::searchCatalog(QString text, std::optional<int> themeID,
                                                                 QList<SortDescriptor> sortOrder, QSet<int> knownThemes,
                                                                 std::shared_ptr<std::atomic_bool> cancelled)
{
    SearchOutcome outcome;
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    if (!catalog) {
        outcome.catalogAbsent = true;
        return outcome;
    }
    // Over the whole catalog a bare set number typed alone is brought to the front even
    // when the text search misses it.
    outcome.results = themeID ? catalog->searchSets(*themeID, text, catalogSearchLimit)
                              : catalog->searchSetsPromotingExactHit(text, catalogSearchLimit);
    if (cancelled->load())
        return outcome;
    // Stable: the promoted set keeps the front only among rows that compare equal.
    SetListSortOrder::sortCatalogResults(outcome.results, sortOrder);
    for (const CatalogSetResult &result : std::as_const(outcome.results)) {
        if (knownThemes.contains(result.themeID) || outcome.themeNames.contains(result.themeID))
            continue;
        const std::optional<CatalogThemeResult> theme = catalog->theme(result.themeID);
        outcome.themeNames.insert(result.themeID, theme ? std::optional<QString>(theme->name) : std::nullopt);
    }
    return outcome;
}

void SetListViewModel::mergeThemeNames(const QHash<int, std::optional<QString>> &names)
{
    bool changed = false;
    for (auto it = names.cbegin(); it != names.cend(); ++it) {
        if (m_themeNameCache.contains(it.key()))
            continue;
        //% "Unknown Theme"
        m_themeNameCache.insert(it.key(), it.value().value_or(qtTrId("setList.theme.unknown")));
        changed = true;
    }
    if (!changed)
        return;
    m_catalogModel->setThemeNames(m_themeNameCache);
    Q_EMIT themeNameCacheChanged();
}
