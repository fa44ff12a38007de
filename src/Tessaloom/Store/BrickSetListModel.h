// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/FetchRequest.h"
#include "Store/ManagedObjectContext.h"
#include "Store/StoreChanges.h"

#include <QAbstractListModel>
#include <QSet>

class PersistentContainer;

// A live list of copies over the view context: the copies that a fetch request selects,
// each with its catalog set, in the request's order. It refetches after every commit
// that touches an entity the request reads, whichever context made it, so the list and
// its count follow every save without a manual refresh.
//
// After a commit only the rows that are new or whose copy or catalog set changed are
// reread; removed, inserted and changed rows are reported as such, so views keep their
// selection. Only a change of order (a renamed set moving) resets the model.
class BrickSetListModel : public QAbstractListModel
{
    Q_OBJECT
    // Above this many updated copies in one commit the list reads itself again instead.
    static constexpr qsizetype copyUpdateLimit = 64;

    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        ObjectIDRole = Qt::UserRole + 1, // ObjectID
        SetNumberRole,                   // QString, the catalog set's number (empty without one)
        NameRole,                        // QString, the catalog set's name (empty without one)
        IsFavoriteRole,                  // bool
        DateAddedRole,                   // QDateTime
    };
    Q_ENUM(Role)

    // Lists every copy.
    explicit BrickSetListModel(PersistentContainer &container, QObject *parent = nullptr);
    // Lists what `request` selects; the list is read once, under this request only.
    BrickSetListModel(PersistentContainer &container, const FetchRequest<BrickSet> &request, QObject *parent = nullptr);

    FetchRequest<BrickSet> fetchRequest() const { return m_request; }
    // Replaces the request and refetches at once.
    void setFetchRequest(const FetchRequest<BrickSet> &request);
    // Keeps the request's predicate and changes only its order: the rows at hand are
    // re-sorted as the store would sort them, or refetched where that cannot be done here.
    void setSortDescriptors(const QList<SortDescriptor> &sortDescriptors);

    int count() const { return int(m_rows.size()); }
    const QList<BrickSetWithCatalogSet> &rows() const { return m_rows; }
    const BrickSetWithCatalogSet &rowAt(int row) const { return m_rows.at(row); }
    // The row of the copy `id`, or -1.
    int rowOf(const ObjectID &id) const;

    // Reads the whole list again.
    void refetch();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
    // After every refetch, whether or not anything changed.
    void refetched();

private:
    void onObjectsDidChange(const StoreChanges &changes);
    // Follows a commit that only updated copies by reading just those copies; false when
    // the commit is of another kind or a changed row would move.
    bool followCopyUpdates(const StoreChanges &changes);
    void replaceRows(QList<BrickSetWithCatalogSet> rows);
    void applyRows(const QList<ObjectID> &ids, QHash<qint64, BrickSetWithCatalogSet> &fresh);
    QList<BrickSetWithCatalogSet> fetchRows(const FetchRequest<BrickSet> &request) const;

    PersistentContainer &m_container;
    ManagedObjectContext &m_context;
    FetchRequest<BrickSet> m_request;
    QSet<EntityType> m_entitiesRead;
    QList<BrickSetWithCatalogSet> m_rows;
};
