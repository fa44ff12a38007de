// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/BrickSetListModel.h"

#include "Logging.h"
#include "Store/PersistentContainer.h"

using namespace Qt::StringLiterals;

BrickSetListModel::BrickSetListModel(PersistentContainer &container, QObject *parent)
    : QAbstractListModel(parent)
    , m_container(container)
    , m_context(container.viewContext())
{
    connect(&m_container, &PersistentContainer::objectsDidChange, this, &BrickSetListModel::onObjectsDidChange);
    setFetchRequest(FetchRequest<BrickSet>());
}

void BrickSetListModel::setFetchRequest(const FetchRequest<BrickSet> &request)
{
    m_request = request;
    // The rows always show the catalog set; the request may read more (price guides).
    QueryCompiler compiler(EntityType::BrickSet, u"t0"_s);
    QList<SqlValue> bindings;
    try {
        request.predicate.toSql(compiler, bindings);
        for (const SortDescriptor &descriptor : request.sortDescriptors)
            compiler.scalar(descriptor.keyPath);
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Invalid copy list request:" << error.description();
    }
    m_entitiesRead = compiler.entitiesRead();
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

void BrickSetListModel::refetch()
{
    const int oldCount = count();
    beginResetModel();
    m_rows = fetchRows(m_request);
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
    if (!changes.touchesAny(m_entitiesRead))
        return;
    QList<ObjectID> ids;
    try {
        ids = m_context.fetchObjectIDs(m_request);
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Refetching the copy list failed:" << error.description();
        return;
    }
    bool sameRows = ids.size() == m_rows.size();
    for (qsizetype row = 0; sameRows && row < ids.size(); ++row)
        sameRows = ids[row] == m_rows[row].brickSet.objectID;
    if (!sameRows) {
        refetch();
        return;
    }
    // Same copies in the same order: reread only the rows whose copy or catalog set
    // changed.
    QList<ObjectID> stale;
    for (const auto &row : std::as_const(m_rows)) {
        const bool copyChanged = changes.updated.contains(row.brickSet.objectID);
        const bool catalogChanged = row.brickSet.catalogSet
            && (changes.updated.contains(*row.brickSet.catalogSet) || changes.deleted.contains(*row.brickSet.catalogSet)
                || changes.inserted.contains(*row.brickSet.catalogSet));
        if (copyChanged || catalogChanged)
            stale.append(row.brickSet.objectID);
    }
    if (!stale.isEmpty()) {
        const auto fresh = fetchRows(FetchRequest<BrickSet>(Predicate::objectIn(stale)));
        for (const auto &row : fresh) {
            const int index = rowOf(row.brickSet.objectID);
            if (index < 0)
                continue;
            m_rows[index] = row;
            Q_EMIT dataChanged(this->index(index), this->index(index));
        }
    }
    Q_EMIT refetched();
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
