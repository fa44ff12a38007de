// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/CachedPriceGuide.h"
#include "Store/ManagedObjectContext.h"
#include "ViewModels/SetListTableModel.h"

#include <QHash>

class BrickSetListModel;
class PersistentContainer;

// The copies of a live list as the set list shows them: one row per set, not per copy.
// Walking the copies in their sorted order, the first copy of each set number stands for
// its group and the others only raise its copy count. A copy without a catalog set (or
// whose catalog set has no number) is keyed by its object's URI and so stays alone.
//
// The rows follow the live list: after each refetch the groups are rebuilt; when the
// same copies still stand for the same groups only changed rows are reported, so views
// keep their selection. The value column needs each set's market price, read from the
// price guides once and read again only after a commit that touches guides.
class SetListGroupModel : public SetListTableModel
{
    Q_OBJECT

public:
    enum Column {
        ThumbnailColumn,
        SetNumberColumn,
        NameColumn,
        ThemeColumn,
        YearColumn,
        PiecesColumn,
        ConditionColumn,
        ValueColumn,
        AddedColumn,
        ColumnCount
    };
    Q_ENUM(Column)

    enum Role {
        ObjectIDRole = Qt::UserRole + 1, // ObjectID of the copy that stands for the group
        SetNumberRole,                   // QString, empty without a catalog set
        NameRole,                        // QString, the name cell's text (name, number or "Unknown Set")
        ThemeNameRole,                   // QString
        YearRole,                        // int, 0 without a catalog set
        PieceCountRole,                  // int
        IsFavoriteRole,                  // bool
        CopyCountRole,                   // int, the copies of this set in the list
        ConditionRole,                   // QString raw value, empty when absent
        PriceRole,                       // Decimal (preferred price), invalid when none
        CurrencyRole,                    // QString, the preferred guide's currency
        DateAddedRole,                   // QDateTime
        ImageURLRole,                    // QString, the large picture or else the small one
        ThumbnailURLRole,                // QString
    };
    Q_ENUM(Role)

    struct Group
    {
        // The first copy in sort order, in the model's own snapshot of the live list's
        // rows, which stays as it is until the next rebuild.
        const BrickSetWithCatalogSet *copy = nullptr;
        int copyCount = 1;
        const CachedPriceGuide *priceGuide = nullptr; // the set's preferred guide, or none
    };

    SetListGroupModel(PersistentContainer &container, BrickSetListModel &copies, QObject *parent = nullptr);

    // With a direction, the copies are sorted by their set's market price before grouping
    // (the store cannot order by it); absent prices come first when ascending. It takes
    // effect when the copies are next refetched or re-sorted, which the caller brings
    // about, so that a change of sort regroups once and not twice.
    void setPriceSort(std::optional<bool> ascending);

    int count() const { return int(m_groups.size()); }
    const QList<Group> &groups() const { return m_groups; }
    const Group &groupAt(int row) const { return m_groups.at(row); }
    // The row whose group holds the copy `id` (standing for it or counted in it), or -1.
    int rowOf(const ObjectID &id) const;

    // The key a copy is grouped by.
    static QString groupKey(const BrickSetWithCatalogSet &copy);
    // How a copy is named on screen: its set's name, else the set's number, else
    // "Unknown Set" for a copy without a catalog set.
    static QString nameText(const BrickSetWithCatalogSet &copy);

    // The comparators a click on `column` stands for; empty for the columns that do not
    // sort (thumbnail, theme). The value column sorts by name: a header cannot carry the
    // computed price.
    static QList<SortDescriptor> comparatorsForColumn(int column, Qt::SortOrder order);
    static int columnOfSortOrder(const QList<SortDescriptor> &comparators);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    // After every rebuild, whether or not anything changed.
    void regrouped();

private:
    void rebuild();
    void onObjectsDidChange(const StoreChanges &changes);
    const QHash<qint64, CachedPriceGuide> &priceGuides();

    PersistentContainer &m_container;
    BrickSetListModel &m_copies;
    std::optional<bool> m_priceSortAscending;
    // The live list's rows when the groups were last built. Taking it shares the list's
    // data rather than copying it; a later change to the live list leaves it untouched.
    QList<BrickSetWithCatalogSet> m_rows;
    // The price guides the groups point into, kept in the same way.
    QHash<qint64, CachedPriceGuide> m_guidesOfGroups;
    QList<Group> m_groups;
    QHash<ObjectID, int> m_rowOfCopy;
    // Preferred guide by catalog set's primary key; read on demand.
    QHash<qint64, CachedPriceGuide> m_priceGuides;
    bool m_priceGuidesLoaded = false;
};
