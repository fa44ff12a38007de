// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/BrickSet.h"
#include "Store/PartInventoryEntry.h"
#include "ViewModels/ChecklistCompletion.h"
#include "ViewModels/ChecklistGroup.h"
#include "ViewModels/ChecklistItem.h"

#include <QCollator>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QStringList>

class ManagedObjectContext;
class RebrickableCatalog;

// The logic behind one copy's parts checklist window, on the main thread. The rows are the
// set's newest inventory read live from the catalog; the store keeps only the user's
// counts, as PartInventoryEntry objects made at the first tick of a line and deleted when
// its count falls back to zero, so a copy with nothing ticked has no rows at all and the
// checklist works for a set whose parts were never synchronised.
//
// loadItems() reads the catalog where it is called and returns with the rows in place;
// the checklist window calls loadItemsInBackground() instead, which reads on QtConcurrent's
// global pool (the largest inventory takes some 50 ms) and lands the rows and the stored
// counts on the main thread, so the window paints at once. isLoading() is true from
// creation until the first load has landed. Every user action that changes counts saves the view
// context once; a failed save is dropped, and its changes go out with the next one.
//
// The owned counts live in store values the screens do not watch, so each change of a
// count adds one to revision() and emits revisionChanged(); rows depend on it.
class PartsChecklistViewModel : public QObject
{
    Q_OBJECT

public:
    // Which items the list shows by completion; the raw values are the picker's labels.
    enum class FilterMode { all, incomplete, complete };
    Q_ENUM(FilterMode)
    enum class GroupMode { none, color, category };
    Q_ENUM(GroupMode)
    enum class SortMode { name, quantity, partNumber, completion };
    Q_ENUM(SortMode)

    // One entry of the colour filter.
    struct ColorInfo
    {
        int colorID = 0;
        QString name;
        QString hexCode;

        friend bool operator==(const ColorInfo &, const ColorInfo &) = default;
    };

    static const QList<FilterMode> &allFilterModes();
    static const QList<GroupMode> &allGroupModes();
    static const QList<SortMode> &allSortModes();
    // "All", "Missing", "Complete"; "None", "Color", "Category"; "Name", "Quantity",
    // "Part Number", "Completion".
    static QString rawValue(FilterMode mode);
    static QString rawValue(GroupMode mode);
    static QString rawValue(SortMode mode);
    // The same, localised for the pickers.
    static QString label(FilterMode mode);
    static QString label(GroupMode mode);
    static QString label(SortMode mode);

    PartsChecklistViewModel(const BrickSet &brickSet, ManagedObjectContext &viewContext, QObject *parent = nullptr);
    ~PartsChecklistViewModel() override;

    const BrickSet &brickSet() const { return m_brickSet; }
    ManagedObjectContext &viewContext() const { return m_viewContext; }

    // --- State
    const QList<ChecklistItem> &items() const { return m_items; }
    const QString &searchText() const { return m_searchText; }
    void setSearchText(const QString &text);
    SortMode sortBy() const { return m_sortBy; }
    void setSortBy(SortMode mode);
    GroupMode groupBy() const { return m_groupBy; }
    void setGroupBy(GroupMode mode);
    FilterMode filterMode() const { return m_filterMode; }
    void setFilterMode(FilterMode mode);
    const QSet<int> &selectedColors() const { return m_selectedColors; }
    const QSet<QString> &selectedCategories() const { return m_selectedCategories; }
    bool isLoading() const { return m_isLoading; }
    qint64 revision() const { return m_revision; }
    // The copy's stored counts by item id.
    const QHash<QString, PartInventoryEntry> &entriesByKey() const { return m_entriesByKey; }

    // --- Operations
    // Reads the rows from the shared catalog and the counts from the store, and returns
    // when they are in place. Without a catalog, or for a copy without a catalog set, the
    // rows stay as they were.
    void loadItems();
    // The same, with the catalog read on the pool: returns at once, and the rows land on
    // the main thread later. A later load, of either kind, replaces one still running.
    void loadItemsInBackground();
    // One more or one fewer of `item`; a count never rises above the item's quantity and
    // a count of zero leaves no entry.
    void increment(const ChecklistItem &item);
    void decrement(const ChecklistItem &item);
    // Over every item, whatever the filters show: each count set to its quantity, or every
    // entry removed. One save each.
    void markAllComplete();
    void resetAll();
    void toggleColor(int colorID);
    void toggleCategory(const QString &name);
    // Empties both facet selections; the search text and the filter mode stay.
    void clearFilters();

    // --- Derived values, computed on each read
    int ownedCount(const ChecklistItem &item) const;
    bool isComplete(const ChecklistItem &item) const;
    QList<ChecklistItem> filteredItems() const;
    // filteredItems() in the blocks of groupBy().
    QList<ChecklistGroup> groupedItems() const;
    static QList<ChecklistGroup> group(const QList<ChecklistItem> &items, GroupMode mode);
    QList<ColorInfo> availableColors() const;
    QStringList availableCategories() const;
    qint64 totalPieces() const;
    qint64 ownedPieces() const;
    int completeItemCount() const;
    ChecklistCompletion completion() const;

Q_SIGNALS:
    void isLoadingChanged(bool loading);
    // items() was replaced by a load.
    void itemsChanged();
    // A count changed (and with it entriesByKey()).
    void revisionChanged(qint64 revision);
    void searchTextChanged(const QString &text);
    void sortByChanged(PartsChecklistViewModel::SortMode mode);
    void groupByChanged(PartsChecklistViewModel::GroupMode mode);
    void filterModeChanged(PartsChecklistViewModel::FilterMode mode);
    void selectedColorsChanged();
    void selectedCategoriesChanged();

private:
    // What a row is searched and sorted by, worked out once per load.
    struct ItemKeys
    {
        QString lowerPartName;
        QString lowerPartNum;
        QString lowerColorName;
        QString lowerCategory;
        QCollatorSortKey nameSortKey; // localised, case-insensitive
    };
    struct LoadedItems
    {
        QList<ChecklistItem> items;
        QList<ItemKeys> keys;
    };
    static LoadedItems readItems(const RebrickableCatalog &catalog, const QString &setNumber);
    struct LoadSource
    {
        std::shared_ptr<RebrickableCatalog> catalog;
        QString setNumber;
    };
    // What a load reads from, or nothing (the load then ends at once, rows unchanged).
    std::optional<LoadSource> loadSource();
    void finishLoad(LoadedItems loaded);
    void setLoading(bool loading);
    void saveAfterAction();
    void bumpRevision();
    // Indexes into m_items that pass the facets (`colors`, `categories`; empty: all).
    QList<qsizetype> facetIndexes(const QSet<int> &colors, const QSet<QString> &categories) const;

    BrickSet m_brickSet;
    ManagedObjectContext &m_viewContext;
    QList<ChecklistItem> m_items;
    QList<ItemKeys> m_keys;
    QString m_searchText;
    SortMode m_sortBy = SortMode::name;
    GroupMode m_groupBy = GroupMode::color;
    FilterMode m_filterMode = FilterMode::all;
    QSet<int> m_selectedColors;
    QSet<QString> m_selectedCategories;
    bool m_isLoading = true;
    qint64 m_revision = 0;
    QHash<QString, PartInventoryEntry> m_entriesByKey;
    // Loads may overlap; only the latest one lands.
    quint64 m_loadGeneration = 0;
};
