// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/ManagedObjectContext.h"

#include "Logging.h"
#include "Store/ContextLending.h"
#include "Store/PersistentContainer.h"

#include <QSemaphore>

#include <sqlite3.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 maximumScratchMilliseconds = 250;

AnyEntity emptyEntity(EntityType type)
{
    switch (type) {
    case EntityType::CatalogSet:
        return CatalogSet{};
    case EntityType::CatalogPart:
        return CatalogPart{};
    case EntityType::CatalogColor:
        return CatalogColor{};
    case EntityType::CatalogSetPart:
        return CatalogSetPart{};
    case EntityType::BrickSet:
        return BrickSet{};
    case EntityType::PartInventoryEntry:
        return PartInventoryEntry{};
    case EntityType::CachedPriceGuide:
        return CachedPriceGuide{};
    case EntityType::CachedInstructionURL:
        return CachedInstructionURL{};
    case EntityType::WishlistItem:
        return WishlistItem{};
    }
    return BrickSet{};
}

// Waits until every block given to the worker has run. The worker runs one task at a time,
// in the order given, so once a last empty task has run, so has every block before it.
// Unlike QThreadPool::waitForDone(), which ends the thread, this leaves the thread idle for
// the next context the worker is lent to.
void waitForBlocks(QThreadPool &worker)
{
    QSemaphore done;
    worker.start([&done] { done.release(); });
    done.acquire();
}

} // namespace

ManagedObjectContext::ManagedObjectContext(PersistentContainer &container, ConcurrencyType type,
                                           std::unique_ptr<StoreConnection> connection)
    : m_container(container)
    , m_concurrencyType(type)
    , m_connection(std::move(connection))
{
    // One worker thread per context, lent by the container: its blocks run one at a
    // time, in the order given.
    if (type == ConcurrencyType::privateQueue)
        m_pool = m_container.lendWorker();
}

ManagedObjectContext::~ManagedObjectContext()
{
    if (m_pool)
        waitForBlocks(*m_pool);
    closeScratch();
    closeOverlay();
    if (m_concurrencyType == ConcurrencyType::privateQueue)
        giveBackToContainer(&m_container, std::move(m_connection), std::move(m_pool));
}

qint64 ManagedObjectContext::allocateKey(EntityType entity)
{
    return m_container.allocatePrimaryKey(entity);
}

void ManagedObjectContext::remember(const AnyEntity &value)
{
    std::visit([this](const auto &object) { remember(object); }, value);
}

void ManagedObjectContext::forget(const ObjectID &id)
{
    std::visit(
        [this, &id](const auto &object) {
            using T = std::decay_t<decltype(object)>;
            snapshots<T>().remove(id.primaryKey);
        },
        emptyEntity(id.entity));
}

void ManagedObjectContext::recordUpdate(const ObjectID &id, AnyEntity value, quint64 changedFields)
{
    m_pending.insert(id, Pending{Pending::Kind::updated, std::move(value), changedFields, false, ++m_sequence});
}

void ManagedObjectContext::bindAll(RebrickableKit::SQLiteStatement &statement, const QList<SqlValue> &bindings)
{
    int index = 1;
    for (const SqlValue &value : bindings) {
        if (const auto *integer = std::get_if<qint64>(&value))
            statement.bindInteger(index, *integer);
        else if (const auto *text = std::get_if<QString>(&value))
            statement.bindText(index, *text);
        else
            statement.bindNull(index);
        ++index;
    }
}

QString ManagedObjectContext::orderBy(QueryCompiler &compiler, const QList<SortDescriptor> &descriptors)
{
    QStringList terms;
    for (const SortDescriptor &descriptor : descriptors)
        terms.append(compiler.scalar(descriptor.keyPath).expression + (descriptor.ascending ? u" ASC"_s : u" DESC"_s));
    // Equal keys keep the order of insertion, so a list does not reshuffle on refetch.
    terms.append(u"t0.pk ASC"_s);
    return u" ORDER BY "_s + terms.join(u", "_s);
}

QString ManagedObjectContext::limitClause(int limit)
{
    return limit > 0 ? u" LIMIT "_s + QString::number(limit) : QString();
}

void ManagedObjectContext::beginRead()
{
    if (m_pending.isEmpty()) {
        ++m_readDepth;
        return;
    }
    try {
        applyPendingForRead();
    } catch (...) {
        closeScratch();
        if (m_readDepth == 0)
            closeOverlay();
        throw;
    }
    ++m_readDepth;
}

QList<ObjectID> ManagedObjectContext::pendingInWriteOrder() const
{
    QList<ObjectID> order = m_pending.keys();
    std::sort(order.begin(), order.end(), [this](const ObjectID &left, const ObjectID &right) {
        const Pending &a = m_pending[left];
        const Pending &b = m_pending[right];
        return std::tuple(int(a.kind), int(left.entity), a.sequence) < std::tuple(int(b.kind), int(right.entity), b.sequence);
    });
    return order;
}

void ManagedObjectContext::applyPendingForRead()
{
    if (m_overlayOpen)
        return; // pending changes do not change during one read of the view context
    if (!m_scratchOpen) {
        if (m_concurrencyType == ConcurrencyType::mainQueue) {
            if (!m_container.tryAcquireWriteTurn()) {
                openOverlay();
                return;
            }
        } else {
            m_container.acquireWriteTurn();
        }
        try {
            m_connection->execute("BEGIN IMMEDIATE");
        } catch (...) {
            m_container.releaseWriteTurn();
            throw;
        }
        m_scratchOpen = true;
        m_scratchAge.start();
        m_connection->execute("PRAGMA defer_foreign_keys = ON");
        for (auto &pending : m_pending)
            pending.applied = false;
    }
    QList<ObjectID> order;
    for (auto it = m_pending.cbegin(); it != m_pending.cend(); ++it) {
        if (!it->applied)
            order.append(it.key());
    }
    std::sort(order.begin(), order.end(), [this](const ObjectID &left, const ObjectID &right) {
        const Pending &a = m_pending[left];
        const Pending &b = m_pending[right];
        return std::tuple(int(a.kind), int(left.entity), a.sequence) < std::tuple(int(b.kind), int(right.entity), b.sequence);
    });
    for (const ObjectID &id : std::as_const(order)) {
        Pending &pending = m_pending[id];
        ChangeWriter::write(*m_connection, id, pending.kind, pending.value, pending.changedFields, true, nullptr);
        pending.applied = true;
    }
}

void ManagedObjectContext::openOverlay()
{
    // SQLite looks an unqualified table name up in the connection's private temp schema
    // first, so a temporary view named like an entity's table takes its place in every
    // query of this connection, joins and subqueries of predicates included. The view
    // shows the committed rows of the table without those this context changed, plus
    // the changed rows as this context would write them. The temp schema belongs to the
    // connection alone: building it takes no lock that another writer holds. Unlike the
    // write transaction it replaces, a pending deletion does not run the delete rules.
    QList<EntityType> entities;
    for (auto it = m_pending.cbegin(); it != m_pending.cend(); ++it) {
        if (!entities.contains(it.key().entity))
            entities.append(it.key().entity);
    }
    m_overlaidEntities.clear();
    m_overlayOpen = true;
    try {
        for (EntityType entity : std::as_const(entities)) {
            const QString name = entityName(entity);
            m_overlaidEntities.append(entity);
            m_connection->execute(
                (u"CREATE TEMP TABLE pendingRows_"_s + name + u" AS SELECT * FROM main."_s + name + u" WHERE 0;"_s
                 + u"CREATE TEMP TABLE pendingKeys_"_s + name + u" (pk INTEGER PRIMARY KEY)"_s)
                    .toUtf8()
                    .constData());
        }
        for (const ObjectID &id : pendingInWriteOrder()) {
            const Pending &pending = m_pending[id];
            const QString name = entityName(id.entity);
            auto key = m_connection->prepare(u"INSERT INTO temp.pendingKeys_"_s + name + u" (pk) VALUES (?)"_s);
            key.bindInteger(1, id.primaryKey);
            key.run();
            if (pending.kind == Pending::Kind::deleted)
                continue;
            const QString rows = u"temp.pendingRows_"_s + name;
            if (pending.kind == Pending::Kind::updated) {
                // Only the changed properties are laid over the committed row, as a save
                // would write them; a row deleted elsewhere meanwhile stays away.
                auto base = m_connection->prepare(u"INSERT INTO "_s + rows + u" SELECT * FROM main."_s + name
                                                  + u" WHERE pk = ?"_s);
                base.bindInteger(1, id.primaryKey);
                base.run();
            }
            // One pending change per object: a plain insert never meets a row of its own.
            ChangeWriter::write(*m_connection, id, pending.kind, pending.value, pending.changedFields, false, nullptr,
                                rows);
        }
        for (EntityType entity : std::as_const(entities)) {
            const QString name = entityName(entity);
            m_connection->execute((u"CREATE TEMP VIEW "_s + name + u" AS SELECT * FROM main."_s + name
                                   + u" WHERE pk NOT IN (SELECT pk FROM temp.pendingKeys_"_s + name
                                   + u") UNION ALL SELECT * FROM temp.pendingRows_"_s + name)
                                      .toUtf8()
                                      .constData());
        }
    } catch (...) {
        closeOverlay();
        throw;
    }
}

void ManagedObjectContext::closeOverlay()
{
    if (!m_overlayOpen)
        return;
    for (EntityType entity : std::as_const(m_overlaidEntities)) {
        const QByteArray name = entityName(entity).toUtf8();
        const QByteArray sql = "DROP VIEW IF EXISTS temp." + name + "; DROP TABLE IF EXISTS temp.pendingRows_" + name
            + "; DROP TABLE IF EXISTS temp.pendingKeys_" + name;
        if (sqlite3_exec(m_connection->handle(), sql.constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
            qCWarning(lcPersistence) << "Removing the view of pending changes failed:"
                                     << sqlite3_errmsg(m_connection->handle());
    }
    m_overlaidEntities.clear();
    m_overlayOpen = false;
}

void ManagedObjectContext::endRead()
{
    --m_readDepth;
    if (m_readDepth == 0)
        closeOverlay();
    if (!m_scratchOpen || m_readDepth > 0)
        return;
    // Inside a perform() block the transaction that shows pending changes stays open, so
    // a find-or-create loop writes each change once, but only for a short while: it holds
    // the store's write lock, and other contexts must get their turn.
    const bool insideBackgroundBlock = m_concurrencyType == ConcurrencyType::privateQueue && m_performDepth > 0;
    if (!insideBackgroundBlock || m_scratchAge.elapsed() > maximumScratchMilliseconds)
        closeScratch();
}

void ManagedObjectContext::closeScratch()
{
    if (!m_scratchOpen)
        return;
    if (sqlite3_exec(m_connection->handle(), "ROLLBACK", nullptr, nullptr, nullptr) != SQLITE_OK)
        qCWarning(lcPersistence) << "Rolling back a read of pending changes failed:"
                                 << sqlite3_errmsg(m_connection->handle());
    m_scratchOpen = false;
    m_container.releaseWriteTurn();
    for (auto &pending : m_pending)
        pending.applied = false;
}

void ManagedObjectContext::deleteObject(const ObjectID &id)
{
    if (!id.isValid())
        return;
    auto pending = m_pending.find(id);
    if (pending != m_pending.end()) {
        if (pending->kind == Pending::Kind::deleted)
            return;
        if (pending->kind == Pending::Kind::inserted) {
            // Never saved: forgetting it is the whole deletion.
            const bool wasApplied = pending->applied;
            m_pending.erase(pending);
            if (wasApplied)
                closeScratch();
            return;
        }
    }
    m_pending.insert(id, Pending{Pending::Kind::deleted, emptyEntity(id.entity), 0, false, ++m_sequence});
}

void ManagedObjectContext::save()
{
    if (m_pending.isEmpty())
        return;
    closeScratch();
    if (m_concurrencyType == ConcurrencyType::mainQueue) {
        if (!m_container.tryAcquireWriteTurn()) {
            m_saveQueued = true;
            m_container.requestWriteTurnForViewContext();
            return;
        }
        // A save that finds the turn free carries a queued one along with it.
        const bool carriesQueuedSave = m_saveQueued;
        m_saveQueued = false;
        try {
            saveHoldingTurn();
        } catch (const StoreError &error) {
            if (carriesQueuedSave)
                Q_EMIT m_container.queuedSaveDidFail(error.description());
            throw;
        }
        if (carriesQueuedSave)
            Q_EMIT m_container.queuedSaveDidFinish();
        return;
    }
    m_container.acquireWriteTurn();
    saveHoldingTurn();
}

void ManagedObjectContext::runQueuedSave()
{
    if (!m_saveQueued)
        return;
    if (m_pending.isEmpty()) {
        m_saveQueued = false; // rolled back meanwhile: nothing left to write
        return;
    }
    if (!m_container.tryAcquireWriteTurn()) {
        // Another context took the turn first; wait for the next free moment.
        m_container.requestWriteTurnForViewContext();
        return;
    }
    m_saveQueued = false;
    try {
        closeScratch();
        saveHoldingTurn();
    } catch (const StoreError &error) {
        Q_EMIT m_container.queuedSaveDidFail(error.description());
        return;
    }
    Q_EMIT m_container.queuedSaveDidFinish();
}

void ManagedObjectContext::saveWaitingForTurn()
{
    m_saveQueued = false;
    if (m_pending.isEmpty())
        return;
    closeScratch();
    m_container.acquireWriteTurn();
    try {
        saveHoldingTurn();
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "The last save of" << m_name << "before closing the store failed:"
                                 << error.description();
    }
}

void ManagedObjectContext::saveHoldingTurn()
{
    const QList<ObjectID> order = pendingInWriteOrder();
    StoreChanges changes;
    try {
        m_connection->execute("BEGIN IMMEDIATE");
    } catch (const StoreError &error) {
        m_container.releaseWriteTurn();
        throw StoreError(StoreError::Kind::saveFailed, error.detail(), error.sqliteCode());
    }
    try {
        // References are checked at COMMIT, so the order of the writes inside the
        // transaction does not matter, only the result.
        m_connection->execute("PRAGMA defer_foreign_keys = ON");
        for (const ObjectID &id : std::as_const(order)) {
            const Pending &pending = m_pending[id];
            ChangeWriter::write(*m_connection, id, pending.kind, pending.value, pending.changedFields,
                                false, &changes);
        }
        m_connection->execute("COMMIT");
    } catch (const StoreError &error) {
        sqlite3_exec(m_connection->handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        m_container.releaseWriteTurn();
        qCWarning(lcPersistence) << "Saving" << m_name << "failed:" << error.description();
        throw StoreError(StoreError::Kind::saveFailed, error.detail(), error.sqliteCode());
    }
    m_container.releaseWriteTurn();
    for (auto it = m_pending.cbegin(); it != m_pending.cend(); ++it) {
        if (it->kind == Pending::Kind::deleted)
            forget(it.key());
        else
            remember(it->value);
    }
    for (const ObjectID &id : std::as_const(changes.deleted)) {
        changes.updated.remove(id);
        forget(id);
    }
    m_pending.clear();
    m_container.postChanges(changes);
}

void ManagedObjectContext::rollback()
{
    closeScratch();
    m_pending.clear();
    m_saveQueued = false;
}

void ManagedObjectContext::refresh(const ObjectID &id, bool mergeChanges)
{
    forget(id);
    if (!mergeChanges && m_pending.remove(id))
        closeScratch();
}

QList<ObjectID> ManagedObjectContext::batchDelete(EntityType entity)
{
    closeScratch();
    StoreChanges changes;
    QList<ObjectID> deleted;
    m_container.acquireWriteTurn();
    try {
        m_connection->execute("BEGIN IMMEDIATE");
    } catch (...) {
        m_container.releaseWriteTurn();
        throw;
    }
    try {
        const QString table = entityName(entity);
        auto rows = m_connection->prepare(u"SELECT pk FROM "_s + table);
        while (rows.step())
            deleted.append(ObjectID{entity, rows.integer(0)});
        for (const auto &reference : StoreSchema::entity(entity).referencedBy) {
            auto statement = m_connection->prepare(u"SELECT pk FROM "_s + entityName(reference.source) + u" WHERE "_s
                                                   + reference.column + u" IS NOT NULL"_s);
            while (statement.step())
                (reference.cascades ? changes.deleted : changes.updated).insert(ObjectID{reference.source, statement.integer(0)});
        }
        m_connection->prepare(u"DELETE FROM "_s + table).run();
        m_connection->execute("COMMIT");
    } catch (...) {
        sqlite3_exec(m_connection->handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        m_container.releaseWriteTurn();
        throw;
    }
    m_container.releaseWriteTurn();
    for (const ObjectID &id : std::as_const(deleted))
        changes.deleted.insert(id);
    for (const ObjectID &id : std::as_const(changes.deleted)) {
        changes.updated.remove(id);
        forget(id);
        m_pending.remove(id);
    }
    m_container.postChanges(changes);
    return deleted;
}

QList<BrickSetWithCatalogSet> ManagedObjectContext::fetchBrickSetsWithCatalogSets(const FetchRequest<BrickSet> &request)
{
    QueryCompiler compiler(EntityType::BrickSet, u"t0"_s);
    QList<SqlValue> bindings;
    const QString where = request.predicate.toSql(compiler, bindings);
    // A full list is read in two steps: SQLite orders only the keys, then the wide rows
    // are read in table order and put in place. Sorting whole rows of two tables costs
    // more than both steps together, and knowing the count first spares regrowing the
    // list of rows.
    const bool sortKeysFirst = request.fetchLimit <= 0;
    const QString order = sortKeysFirst ? QString() : orderBy(compiler, request.sortDescriptors);
    const QString sql = u"SELECT "_s + columnList<BrickSet>(u"t0"_s) + u", "_s + columnList<CatalogSet>(u"c"_s)
        + u" FROM BrickSet t0 LEFT JOIN CatalogSet c ON c.pk = t0.catalogSet WHERE "_s + where + order
        + limitClause(request.fetchLimit);
    const int catalogColumn = int(EntityTraits<BrickSet>::fields().size()) + 1;
    QList<BrickSetWithCatalogSet> rows;
    QHash<qint64, qsizetype> positions;
    QHash<qint64, CatalogSet> catalogSets;
    beginRead();
    // Both reads must see the same rows: hold one read transaction across them.
    const bool ownTransaction = sortKeysFirst && !m_connection->inTransaction();
    try {
        if (ownTransaction)
            m_connection->execute("BEGIN DEFERRED");
        if (sortKeysFirst) {
            const QList<ObjectID> order = fetchObjectIDs(request);
            positions.reserve(order.size());
            for (qsizetype index = 0; index < order.size(); ++index)
                positions.insert(order[index].primaryKey, index);
            rows.resize(order.size());
        }
        auto statement = m_connection->prepare(sql);
        bindAll(statement, bindings);
        while (statement.step()) {
            BrickSetWithCatalogSet row;
            readRow(row.brickSet, statement, 0);
            if (!statement.isNull(catalogColumn)) {
                // Copies of one set share its row: read it once per fetch.
                const qint64 key = statement.integer(catalogColumn);
                auto known = catalogSets.constFind(key);
                if (known == catalogSets.cend()) {
                    CatalogSet catalogSet;
                    readRow(catalogSet, statement, catalogColumn);
                    known = catalogSets.insert(key, catalogSet);
                }
                row.catalogSet = *known;
            }
            if (!sortKeysFirst) {
                rows.append(std::move(row));
                continue;
            }
            const auto position = positions.constFind(row.brickSet.objectID.primaryKey);
            if (position != positions.cend())
                rows[*position] = std::move(row);
        }
        if (ownTransaction)
            m_connection->execute("COMMIT");
    } catch (...) {
        if (ownTransaction)
            sqlite3_exec(m_connection->handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        endRead();
        throw;
    }
    endRead();
    return rows;
}

ManagedObjectContext::PartsCount ManagedObjectContext::partsCount(const ObjectID &brickSet)
{
    PartsCount result;
    beginRead();
    try {
        auto statement = m_connection->prepare(
            u"SELECT coalesce(sum(e.quantityOwned), 0), coalesce(sum(p.quantity), 0), count(*) "
            "FROM PartInventoryEntry e LEFT JOIN CatalogSetPart p ON p.pk = e.catalogSetPart WHERE e.brickSet = ?"_s);
        statement.bindInteger(1, brickSet.primaryKey);
        if (statement.step())
            result = PartsCount{statement.integer(0), statement.integer(1), statement.integer(2)};
    } catch (...) {
        endRead();
        throw;
    }
    endRead();
    return result;
}
