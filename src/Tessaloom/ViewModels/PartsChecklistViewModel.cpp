// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/PartsChecklistViewModel.h"

#include "Logging.h"
#include "Services/RebrickableCatalog.h"
#include "Store/CatalogSet.h"
#include "Store/ManagedObjectContext.h"
#include "ViewModels/ChecklistEntryStore.h"
#include "ViewModels/ChecklistInventoryReader.h"

#include <QFutureWatcher>
#include <QtConcurrent>

#include <algorithm>

using namespace Qt::StringLiterals;

const QList<PartsChecklistViewModel::FilterMode> &PartsChecklistViewModel::allFilterModes()
{
    static const QList<FilterMode> modes{FilterMode::all, FilterMode::incomplete, FilterMode::complete};
    return modes;
}

const QList<PartsChecklistViewModel::GroupMode> &PartsChecklistViewModel::allGroupModes()
{
    static const QList<GroupMode> modes{GroupMode::none, GroupMode::color, GroupMode::category};
    return modes;
}

const QList<PartsChecklistViewModel::SortMode> &PartsChecklistViewModel::allSortModes()
{
    static const QList<SortMode> modes{SortMode::name, SortMode::quantity, SortMode::partNumber, SortMode::completion};
    return modes;
}

QString PartsChecklistViewModel::rawValue(FilterMode mode)
{
    switch (mode) {
    case FilterMode::all:
        return u"All"_s;
    case FilterMode::incomplete:
        return u"Missing"_s;
    case FilterMode::complete:
        return u"Complete"_s;
    }
    return QString();
}

QString PartsChecklistViewModel::rawValue(GroupMode mode)
{
    switch (mode) {
    case GroupMode::none:
        return u"None"_s;
    case GroupMode::color:
        return u"Color"_s;
    case GroupMode::category:
        return u"Category"_s;
    }
    return QString();
}

QString PartsChecklistViewModel::rawValue(SortMode mode)
{
    switch (mode) {
    case SortMode::name:
        return u"Name"_s;
    case SortMode::quantity:
        return u"Quantity"_s;
    case SortMode::partNumber:
        return u"Part Number"_s;
    case SortMode::completion:
        return u"Completion"_s;
    }
    return QString();
}

QString PartsChecklistViewModel::label(FilterMode mode)
{
    // Each key is spelled out so that the translation tools find it with its English text.
    switch (mode) {
    case FilterMode::all:
        //% "All"
        return qtTrId("detail.parts.status.all");
    case FilterMode::incomplete:
        //% "Missing"
        return qtTrId("detail.parts.status.incomplete");
    case FilterMode::complete:
        //% "Complete"
        return qtTrId("detail.parts.status.complete");
    }
    return QString();
}

QString PartsChecklistViewModel::label(GroupMode mode)
{
    switch (mode) {
    case GroupMode::none:
        //% "None"
        return qtTrId("detail.parts.group.none");
    case GroupMode::color:
        //% "Color"
        return qtTrId("detail.parts.group.color");
    case GroupMode::category:
        //% "Category"
        return qtTrId("detail.parts.group.category");
    }
    return QString();
}

QString PartsChecklistViewModel::label(SortMode mode)
{
    switch (mode) {
    case SortMode::name:
        //% "Name"
        return qtTrId("detail.parts.sort.name");
    case SortMode::quantity:
        //% "Quantity"
        return qtTrId("detail.parts.sort.quantity");
    case SortMode::partNumber:
        //% "Part Number"
        return qtTrId("detail.parts.sort.partNumber");
    case SortMode::completion:
        //% "Completion"
        return qtTrId("detail.parts.sort.completion");
    }
    return QString();
}

PartsChecklistViewModel::PartsChecklistViewModel(const BrickSet &brickSet, ManagedObjectContext &viewContext,
                                                 QObject *parent)
    : QObject(parent)
    , m_brickSet(brickSet)
    , m_viewContext(viewContext)
{
}

PartsChecklistViewModel::~PartsChecklistViewModel() = default;

void PartsChecklistViewModel::setSearchText(const QString &text)
{
    if (text == m_searchText)
        return;
    m_searchText = text;
    Q_EMIT searchTextChanged(m_searchText);
}

void PartsChecklistViewModel::setSortBy(SortMode mode)
{
    if (mode == m_sortBy)
        return;
    m_sortBy = mode;
    Q_EMIT sortByChanged(mode);
}

void PartsChecklistViewModel::setGroupBy(GroupMode mode)
{
    if (mode == m_groupBy)
        return;
    m_groupBy = mode;
    Q_EMIT groupByChanged(mode);
}

void PartsChecklistViewModel::setFilterMode(FilterMode mode)
{
    if (mode == m_filterMode)
        return;
    m_filterMode = mode;
    Q_EMIT filterModeChanged(mode);
}

void PartsChecklistViewModel::setLoading(bool loading)
{
    if (loading == m_isLoading)
        return;
    m_isLoading = loading;
    Q_EMIT isLoadingChanged(loading);
}

// ---------------------------------------------------------------------------------------
// Loading

PartsChecklistViewModel::LoadedItems PartsChecklistViewModel::readItems(const RebrickableCatalog &catalog,
                                                                        const QString &setNumber)
{
    LoadedItems loaded;
    loaded.items = ChecklistInventoryReader::read(catalog, setNumber);
    // Folded first: the collator of the C locale compares code points and ignores its
    // case setting, and the order must ignore case in every locale.
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    loaded.keys.reserve(loaded.items.size());
    for (const ChecklistItem &item : std::as_const(loaded.items)) {
        loaded.keys.append(ItemKeys{item.partName.toLower(), item.partNum.toLower(), item.colorName.toLower(),
                                    item.category.toLower(), collator.sortKey(item.partName.toCaseFolded())});
    }
    return loaded;
}

std::optional<PartsChecklistViewModel::LoadSource> PartsChecklistViewModel::loadSource()
{
    std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    std::optional<CatalogSet> catalogSet;
    if (catalog && m_brickSet.catalogSet) {
        try {
            catalogSet = m_viewContext.existingObject<CatalogSet>(*m_brickSet.catalogSet);
        } catch (const StoreError &error) {
            qCWarning(lcPersistence) << "Reading the catalog set of a checklist failed:" << error.description();
        }
    }
    if (!catalog || !catalogSet)
        return std::nullopt;
    return LoadSource{std::move(catalog), catalogSet->setNumber.value_or(QString())};
}

void PartsChecklistViewModel::loadItems()
{
    ++m_loadGeneration; // a background load still running lands nothing
    setLoading(true);
    const std::optional<LoadSource> source = loadSource();
    if (!source) {
        // Nothing to read: the rows stay as they were and the screen shows what it has.
        setLoading(false);
        return;
    }
    finishLoad(readItems(*source->catalog, source->setNumber));
}

void PartsChecklistViewModel::loadItemsInBackground()
{
    const quint64 generation = ++m_loadGeneration;
    setLoading(true);
    std::optional<LoadSource> source = loadSource();
    if (!source) {
        setLoading(false);
        return;
    }

    auto *watcher = new QFutureWatcher<LoadedItems>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, generation] {
        watcher->deleteLater();
        if (generation != m_loadGeneration)
            return; // a later load replaced this one
        finishLoad(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run(
        [source = std::move(*source)] { return readItems(*source.catalog, source.setNumber); }));
}

void PartsChecklistViewModel::finishLoad(LoadedItems loaded)
{
    m_items = std::move(loaded.items);
    m_keys = std::move(loaded.keys);
    m_entriesByKey.clear();
    if (m_brickSet.objectID.isValid()) {
        try {
            m_entriesByKey = ChecklistEntryStore::loadEntries(m_viewContext, m_brickSet.objectID);
        } catch (const StoreError &) {
            // The counts show zero; the stored entries stay as they are.
        }
    }
    Q_EMIT itemsChanged();
    setLoading(false);
}

// ---------------------------------------------------------------------------------------
// Counts

int PartsChecklistViewModel::ownedCount(const ChecklistItem &item) const
{
    const auto entry = m_entriesByKey.constFind(item.id);
    return entry == m_entriesByKey.cend() ? 0 : entry->quantityOwned;
}

bool PartsChecklistViewModel::isComplete(const ChecklistItem &item) const
{
    const auto entry = m_entriesByKey.constFind(item.id);
    if (entry == m_entriesByKey.cend())
        return item.quantity < 1;
    return entry->quantityOwned >= item.quantity;
}

void PartsChecklistViewModel::saveAfterAction()
{
    try {
        m_viewContext.save();
    } catch (const StoreError &) {
        // Dropped without a message: the changes stay pending and go out with the next save.
    }
}

void PartsChecklistViewModel::bumpRevision()
{
    ++m_revision;
    Q_EMIT revisionChanged(m_revision);
}

void PartsChecklistViewModel::increment(const ChecklistItem &item)
{
    const int owned = ownedCount(item);
    if (isComplete(item))
        return; // clamped at the quantity
    auto entry = m_entriesByKey.find(item.id);
    if (entry != m_entriesByKey.end()) {
        entry->quantityOwned = owned + 1;
        m_viewContext.update(*entry);
    } else {
        std::optional<PartInventoryEntry> created;
        try {
            ChecklistEntryStore store(m_viewContext, m_brickSet.objectID, m_brickSet.catalogSet);
            created = store.createEntry(item, owned + 1);
        } catch (const StoreError &error) {
            qCWarning(lcPersistence) << "Finding the inventory line of" << item.id << "failed:" << error.description();
            return;
        }
        if (!created)
            return;
        m_entriesByKey.insert(item.id, *created);
    }
    saveAfterAction();
    bumpRevision();
}

void PartsChecklistViewModel::decrement(const ChecklistItem &item)
{
    auto entry = m_entriesByKey.find(item.id);
    if (entry == m_entriesByKey.end() || entry->quantityOwned < 1)
        return;
    if (entry->quantityOwned == 1) {
        // A count of zero is no row at all.
        const ObjectID id = entry->objectID;
        m_entriesByKey.erase(entry);
        m_viewContext.deleteObject(id);
    } else {
        entry->quantityOwned -= 1;
        m_viewContext.update(*entry);
    }
    saveAfterAction();
    bumpRevision();
}

void PartsChecklistViewModel::markAllComplete()
{
    try {
        ChecklistEntryStore store(m_viewContext, m_brickSet.objectID, m_brickSet.catalogSet);
        store.prefetch(m_items);
        for (const ChecklistItem &item : std::as_const(m_items)) {
            auto entry = m_entriesByKey.find(item.id);
            if (entry != m_entriesByKey.end()) {
                // Overwrites a higher count as well as a lower one.
                entry->quantityOwned = item.quantity;
                m_viewContext.update(*entry);
                continue;
            }
            // Items with quantity 0 get their entry too, with a count of 0.
            if (const auto created = store.createEntry(item, item.quantity))
                m_entriesByKey.insert(item.id, *created);
        }
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Marking all parts complete failed:" << error.description();
        return;
    }
    saveAfterAction();
    bumpRevision();
}

void PartsChecklistViewModel::resetAll()
{
    for (const PartInventoryEntry &entry : std::as_const(m_entriesByKey))
        m_viewContext.deleteObject(entry.objectID);
    m_entriesByKey.clear();
    saveAfterAction();
    bumpRevision();
}

// ---------------------------------------------------------------------------------------
// Filters and facets

QList<qsizetype> PartsChecklistViewModel::facetIndexes(const QSet<int> &colors, const QSet<QString> &categories) const
{
    QList<qsizetype> indexes;
    indexes.reserve(m_items.size());
    for (qsizetype index = 0; index < m_items.size(); ++index) {
        const ChecklistItem &item = m_items.at(index);
        if (!colors.isEmpty() && !colors.contains(item.colorID))
            continue;
        if (!categories.isEmpty() && !categories.contains(item.category))
            continue;
        indexes.append(index);
    }
    return indexes;
}

QList<ChecklistItem> PartsChecklistViewModel::filteredItems() const
{
    struct Row
    {
        qsizetype index;
        int owned;
    };
    QList<Row> rows;
    rows.reserve(m_items.size());
    const QString needle = m_searchText.toLower();
    for (qsizetype index = 0; index < m_items.size(); ++index) {
        const ChecklistItem &item = m_items.at(index);
        if (m_filterMode != FilterMode::all) {
            const bool complete = isComplete(item);
            if (complete != (m_filterMode == FilterMode::complete))
                continue;
        }
        if (!m_selectedColors.isEmpty() && !m_selectedColors.contains(item.colorID))
            continue;
        if (!m_selectedCategories.isEmpty() && !m_selectedCategories.contains(item.category))
            continue;
        if (!needle.isEmpty()) {
            // A plain substring test: the text is neither trimmed nor split into words.
            const ItemKeys &keys = m_keys.at(index);
            if (!keys.lowerPartName.contains(needle) && !keys.lowerPartNum.contains(needle)
                && !keys.lowerColorName.contains(needle) && !keys.lowerCategory.contains(needle))
                continue;
        }
        rows.append(Row{index, ownedCount(item)});
    }

    // Stable throughout, so ties keep the catalog's order by part number.
    switch (m_sortBy) {
    case SortMode::name:
        std::stable_sort(rows.begin(), rows.end(), [this](const Row &left, const Row &right) {
            return m_keys.at(left.index).nameSortKey.compare(m_keys.at(right.index).nameSortKey) < 0;
        });
        break;
    case SortMode::quantity:
        std::stable_sort(rows.begin(), rows.end(), [this](const Row &left, const Row &right) {
            return m_items.at(left.index).quantity > m_items.at(right.index).quantity;
        });
        break;
    case SortMode::partNumber:
        // Plain text order: "10" before "9".
        std::stable_sort(rows.begin(), rows.end(), [this](const Row &left, const Row &right) {
            return m_items.at(left.index).partNum < m_items.at(right.index).partNum;
        });
        break;
    case SortMode::completion: {
        auto ratio = [this](const Row &row) {
            const qint32 quantity = m_items.at(row.index).quantity;
            return quantity < 1 ? 0.0 : double(row.owned) / double(quantity);
        };
        std::stable_sort(rows.begin(), rows.end(),
                         [&ratio](const Row &left, const Row &right) { return ratio(left) < ratio(right); });
        break;
    }
    }

    QList<ChecklistItem> result;
    result.reserve(rows.size());
    for (const Row &row : std::as_const(rows))
        result.append(m_items.at(row.index));
    return result;
}

QList<PartsChecklistViewModel::ColorInfo> PartsChecklistViewModel::availableColors() const
{
    QList<ColorInfo> colors;
    QSet<int> seen;
    for (const qsizetype index : facetIndexes({}, m_selectedCategories)) {
        const ChecklistItem &item = m_items.at(index);
        if (seen.contains(item.colorID))
            continue;
        seen.insert(item.colorID);
        colors.append(ColorInfo{item.colorID, item.colorName, item.colorHex});
    }
    std::stable_sort(colors.begin(), colors.end(),
                     [](const ColorInfo &left, const ColorInfo &right) { return left.name < right.name; });
    return colors;
}

QStringList PartsChecklistViewModel::availableCategories() const
{
    QStringList categories;
    QSet<QString> seen;
    for (const qsizetype index : facetIndexes(m_selectedColors, {})) {
        const QString &category = m_items.at(index).category;
        if (seen.contains(category))
            continue;
        seen.insert(category);
        categories.append(category);
    }
    std::sort(categories.begin(), categories.end());
    return categories;
}

void PartsChecklistViewModel::toggleColor(int colorID)
{
    if (!m_selectedColors.remove(colorID))
        m_selectedColors.insert(colorID);
    Q_EMIT selectedColorsChanged();
    if (m_selectedCategories.isEmpty())
        return;
    // The category choice may not outlive the colours that made it possible.
    const QStringList available = availableCategories();
    const QSet<QString> narrowed = m_selectedCategories & QSet<QString>(available.cbegin(), available.cend());
    if (narrowed != m_selectedCategories) {
        m_selectedCategories = narrowed;
        Q_EMIT selectedCategoriesChanged();
    }
}

void PartsChecklistViewModel::toggleCategory(const QString &name)
{
    if (!m_selectedCategories.remove(name))
        m_selectedCategories.insert(name);
    Q_EMIT selectedCategoriesChanged();
    if (m_selectedColors.isEmpty())
        return;
    QSet<int> available;
    for (const ColorInfo &color : availableColors())
        available.insert(color.colorID);
    const QSet<int> narrowed = m_selectedColors & available;
    if (narrowed != m_selectedColors) {
        m_selectedColors = narrowed;
        Q_EMIT selectedColorsChanged();
    }
}

void PartsChecklistViewModel::clearFilters()
{
    if (!m_selectedColors.isEmpty()) {
        m_selectedColors.clear();
        Q_EMIT selectedColorsChanged();
    }
    if (!m_selectedCategories.isEmpty()) {
        m_selectedCategories.clear();
        Q_EMIT selectedCategoriesChanged();
    }
}

// ---------------------------------------------------------------------------------------
// Grouping and figures

QList<ChecklistGroup> PartsChecklistViewModel::groupedItems() const
{
    return group(filteredItems(), m_groupBy);
}

QList<ChecklistGroup> PartsChecklistViewModel::group(const QList<ChecklistItem> &items, GroupMode mode)
{
    if (mode == GroupMode::none) {
        if (items.isEmpty())
            return {};
        return {ChecklistGroup{u"all"_s, QString(), std::nullopt, QString(), items}};
    }
    QList<ChecklistGroup> groups;
    QHash<QString, qsizetype> groupOfKey;
    for (const ChecklistItem &item : items) {
        const QString key = mode == GroupMode::color ? u"color-"_s + QString::number(item.colorID)
                                                     : u"category-"_s + item.category;
        auto found = groupOfKey.constFind(key);
        if (found == groupOfKey.cend()) {
            found = groupOfKey.insert(key, groups.size());
            if (mode == GroupMode::color)
                groups.append(ChecklistGroup{key, item.colorName, item.colorID, item.colorHex, {}});
            else
                groups.append(ChecklistGroup{key, item.category, std::nullopt, QString(), {}});
        }
        groups[*found].items.append(item);
    }
    // A colour block is titled by the colour name of its first item; plain text order.
    std::stable_sort(groups.begin(), groups.end(),
                     [](const ChecklistGroup &left, const ChecklistGroup &right) { return left.title < right.title; });
    return groups;
}

qint64 PartsChecklistViewModel::totalPieces() const
{
    qint64 total = 0;
    for (const ChecklistItem &item : m_items)
        total += item.quantity;
    return total;
}

qint64 PartsChecklistViewModel::ownedPieces() const
{
    // Over the entries, not the items: a count whose part left the newest inventory still
    // counts.
    qint64 owned = 0;
    for (const PartInventoryEntry &entry : m_entriesByKey)
        owned += entry.quantityOwned;
    return owned;
}

int PartsChecklistViewModel::completeItemCount() const
{
    int complete = 0;
    for (const ChecklistItem &item : m_items) {
        if (isComplete(item))
            ++complete;
    }
    return complete;
}

ChecklistCompletion PartsChecklistViewModel::completion() const
{
    return ChecklistCompletion{completeItemCount(), int(m_items.size()), ownedPieces(), totalPieces()};
}
