// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/BrickSetListModel.h"

#include "Store/BrickSetRowOrder.h"
#include "Store/BrickSetRowUpdatePlan.h"

#include "Logging.h"
#include "Store/CopyChangeFilter.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreObserver.h"

using namespace Qt::StringLiterals;

BrickSetListModel::BrickSetListModel(PersistentContainer &container, QObject *parent)
    : BrickSetListModel(container, FetchRequest<BrickSet>(), parent)
{
}

BrickSetListModel::BrickSetListModel(PersistentContainer &container, const FetchRequest<BrickSet> &request,
                                     QObject *parent)
    : QAbstractListModel(parent)
    , m_container(container)
    , m_context(container.viewContext())
{
    connect(&m_container, &PersistentContainer::objectsDidChange, this, &BrickSetListModel::onObjectsDidChange);
    setFetchRequest(request);
}

void BrickSetListModel::setFetchRequest(const FetchRequest<BrickSet> &request)
{
    m_request = request;
    // The rows always show the catalog set; the request may read more (price guides).
    try {
        m_entitiesRead = StoreObserver::entitiesRead(request);
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Invalid copy list request:" << error.description();
        m_entitiesRead = {EntityType::BrickSet};
    }
    m_entitiesRead.insert(EntityType::CatalogSet);
    refetch();
}

QList<BrickSetWithCatalogSet> BrickSetListModel::fetchRows(const FetchRequest<BrickSet> &request) const
{
    try {
        return m_context.fetchBrickSetsWithCatalogSets(request);
    } catch (const StoreError &error) {
        // A failed fetch shows an empty list; the next change notice tries again.
        qCWarning(lcPersistence) << "Fetching the copy list failed:" << error.description();
        return {};
    }
}

void BrickSetListModel::setSortDescriptors(const QList<SortDescriptor> &sortDescriptors)
{
    m_request.sortDescriptors = sortDescriptors;
    const std::optional<BrickSetRowOrder> order = BrickSetRowOrder::forDescriptors(sortDescriptors);
    if (!order) {
        refetch();
        return;
    }
    replaceRows(order->sorted(m_rows));
}

void BrickSetListModel::refetch()
{
    replaceRows(fetchRows(m_request));
}

void BrickSetListModel::replaceRows(QList<BrickSetWithCatalogSet> rows)
{
    const int oldCount = count();
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
    if (count() != oldCount)
        Q_EMIT countChanged();
    Q_EMIT refetched();
}

int BrickSetListModel::rowOf(const ObjectID &id) const
{
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        if (m_rows[row].brickSet.objectID == id)
            return int(row);
    }
    return -1;
}

void BrickSetListModel::onObjectsDidChange(const StoreChanges &changes)
{
    if (!changes.touchesAny(m_entitiesRead) || !CopyChangeFilter(m_context, changes).mayChange(m_entitiesRead))
        return;
    if (followCopyUpdates(changes)) {
        Q_EMIT refetched();
        return;
    }
    QList<ObjectID> ids;
    try {
        ids = m_context.fetchObjectIDs(m_request);
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Refetching the copy list failed:" << error.description();
        return;
    }
    // Rows to read again: new ones, and those whose copy or catalog set changed.
    auto changed = [&changes](const std::optional<ObjectID> &id) {
        return id && (changes.updated.contains(*id) || changes.deleted.contains(*id) || changes.inserted.contains(*id));
    };
    QHash<qint64, qsizetype> oldRows;
    for (qsizetype row = 0; row < m_rows.size(); ++row)
        oldRows.insert(m_rows[row].brickSet.objectID.primaryKey, row);
    QList<ObjectID> stale;
    for (const ObjectID &id : std::as_const(ids)) {
        const auto old = oldRows.constFind(id.primaryKey);
        if (old == oldRows.cend() || changed(m_rows[*old].brickSet.objectID) || changed(m_rows[*old].brickSet.catalogSet))
            stale.append(id);
    }
    QHash<qint64, BrickSetWithCatalogSet> fresh;
    if (!stale.isEmpty()) {
        for (auto &row : fetchRows(FetchRequest<BrickSet>(Predicate::objectIn(stale))))
            fresh.insert(row.brickSet.objectID.primaryKey, std::move(row));
    }
    applyRows(ids, fresh);
    Q_EMIT refetched();
}

bool BrickSetListModel::followCopyUpdates(const StoreChanges &changes)
{
    // A limited list can gain or lose rows at its end from any change: no shortcut there.
    if (m_request.fetchLimit > 0)
        return false;
    for (const QSet<ObjectID> *set : {&changes.inserted, &changes.deleted}) {
        for (const ObjectID &id : *set) {
            if (m_entitiesRead.contains(id.entity))
                return false;
        }
    }
    QList<ObjectID> copies;
    for (const ObjectID &id : changes.updated) {
        if (!m_entitiesRead.contains(id.entity))
            continue;
        if (id.entity != EntityType::BrickSet)
            return false;
        copies.append(id);
    }
    if (copies.isEmpty() || copies.size() > copyUpdateLimit)
        return false;
    const std::optional<BrickSetRowOrder> order = BrickSetRowOrder::forDescriptors(m_request.sortDescriptors);
    if (!order)
        return false;

    QHash<qint64, BrickSetWithCatalogSet> matching;
    try {
        FetchRequest<BrickSet> request(m_request.predicate && Predicate::objectIn(copies));
        for (auto &row : m_context.fetchBrickSetsWithCatalogSets(request))
            matching.insert(row.brickSet.objectID.primaryKey, std::move(row));
    } catch (const StoreError &) {
        return false; // the whole refetch tries again and says what failed
    }
    std::optional<BrickSetRowUpdatePlan> plan = BrickSetRowUpdatePlan::make(m_rows, *order, copies, std::move(matching));
    if (!plan)
        return false;

    const int oldCount = count();
    for (auto &[row, shown] : plan->changing) {
        m_rows[row] = std::move(shown);
        Q_EMIT dataChanged(index(row), index(row));
    }
    for (qsizetype leaving = plan->leaving.size() - 1; leaving >= 0; --leaving) {
        const int row = plan->leaving[leaving];
        beginRemoveRows(QModelIndex(), row, row);
        m_rows.remove(row);
        endRemoveRows();
    }
    for (BrickSetWithCatalogSet &joining : plan->joining) {
        const auto at = std::lower_bound(m_rows.cbegin(), m_rows.cend(), joining,
                                         [&order](const BrickSetWithCatalogSet &left, const BrickSetWithCatalogSet &right) {
                                             return order->lessThan(left, right);
                                         });
        const int row = int(at - m_rows.cbegin());
        beginInsertRows(QModelIndex(), row, row);
        m_rows.insert(row, std::move(joining));
        endInsertRows();
    }
    if (count() != oldCount)
        Q_EMIT countChanged();
    return true;
}

void BrickSetListModel::applyRows(const QList<ObjectID> &ids, QHash<qint64, BrickSetWithCatalogSet> &fresh)
{
    const int oldCount = count();
    QSet<qint64> wanted;
    for (const ObjectID &id : ids)
        wanted.insert(id.primaryKey);
    // Removals, as contiguous blocks from the end so earlier row numbers stay valid.
    for (qsizetype row = m_rows.size() - 1; row >= 0;) {
        if (wanted.contains(m_rows[row].brickSet.objectID.primaryKey)) {
            --row;
            continue;
        }
        qsizetype first = row;
        while (first > 0 && !wanted.contains(m_rows[first - 1].brickSet.objectID.primaryKey))
            --first;
        beginRemoveRows(QModelIndex(), int(first), int(row));
        m_rows.remove(first, row - first + 1);
        endRemoveRows();
        row = first - 1;
    }
    // What stays keeps its relative order unless a sort key changed; then the layout moves.
    bool sameOrder = true;
    {
        QSet<qint64> present;
        for (const auto &row : std::as_const(m_rows))
            present.insert(row.brickSet.objectID.primaryKey);
        qsizetype next = 0;
        for (const ObjectID &id : ids) {
            if (next < m_rows.size() && m_rows[next].brickSet.objectID == id)
                ++next;
            else if (!fresh.contains(id.primaryKey) || present.contains(id.primaryKey))
                sameOrder = false;
        }
        sameOrder = sameOrder && next == m_rows.size();
    }
    if (!sameOrder) {
        // Rare (a renamed set moves): rebuild in one reset.
        QHash<qint64, BrickSetWithCatalogSet> kept;
        for (auto &row : m_rows)
            kept.insert(row.brickSet.objectID.primaryKey, std::move(row));
        beginResetModel();
        m_rows.clear();
        for (const ObjectID &id : ids) {
            if (fresh.contains(id.primaryKey))
                m_rows.append(fresh.take(id.primaryKey));
            else if (kept.contains(id.primaryKey))
                m_rows.append(kept.take(id.primaryKey));
        }
        endResetModel();
    } else {
        // Insertions and changed rows in place.
        for (qsizetype index = 0; index < ids.size(); ++index) {
            const qint64 key = ids[index].primaryKey;
            const bool present = index < m_rows.size() && m_rows[index].brickSet.objectID.primaryKey == key;
            const auto update = fresh.find(key);
            if (present) {
                if (update != fresh.end()) {
                    m_rows[index] = std::move(*update);
                    Q_EMIT dataChanged(this->index(int(index)), this->index(int(index)));
                }
                continue;
            }
            if (update == fresh.end())
                continue; // vanished between the two reads: the next notice settles it
            beginInsertRows(QModelIndex(), int(index), int(index));
            m_rows.insert(index, std::move(*update));
            endInsertRows();
        }
    }
    if (count() != oldCount)
        Q_EMIT countChanged();
}

int BrickSetListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant BrickSetListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const BrickSetWithCatalogSet &row = m_rows[index.row()];
    const QString setNumber = row.catalogSet ? row.catalogSet->setNumber.value_or(QString()) : QString();
    const QString name = row.catalogSet ? row.catalogSet->name.value_or(QString()) : QString();
    switch (role) {
    case Qt::DisplayRole:
        if (!row.catalogSet)
            return u"Unknown Set"_s;
        return name.isEmpty() ? setNumber : setNumber + u"  "_s + name;
    case ObjectIDRole:
        return QVariant::fromValue(row.brickSet.objectID);
    case SetNumberRole:
        return setNumber;
    case NameRole:
        return name;
    case IsFavoriteRole:
        return row.brickSet.isFavorite;
    case DateAddedRole:
        return row.brickSet.dateAdded ? QVariant(*row.brickSet.dateAdded) : QVariant();
    default:
        return {};
    }
}

QHash<int, QByteArray> BrickSetListModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractListModel::roleNames();
    names.insert(ObjectIDRole, "objectID");
    names.insert(SetNumberRole, "setNumber");
    names.insert(NameRole, "name");
    names.insert(IsFavoriteRole, "isFavorite");
    names.insert(DateAddedRole, "dateAdded");
    return names;
}
