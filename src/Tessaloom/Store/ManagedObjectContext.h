// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ChangeWriter.h"
#include "Store/EntityTraits.h"
#include "Store/FetchRequest.h"
#include "Store/StoreChanges.h"
#include "Store/StoreConnection.h"
#include "Store/StoreError.h"

#include <QElapsedTimer>
#include <QException>
#include <QFuture>
#include <QFutureInterface>
#include <QHash>
#include <QThreadPool>
#include <QtConcurrent>

#include <memory>
#include <optional>

class PersistentContainer;

// A copy together with its catalog set, as the set lists show it.
struct BrickSetWithCatalogSet
{
    BrickSet brickSet;
    std::optional<CatalogSet> catalogSet;
};

// A unit of work on the collection store. Fetches return plain values; insert(),
// update() and deleteObject() record pending changes; save() writes them all in one
// transaction and announces them. A failed save keeps every pending change for the next
// save. Fetches see the context's own pending changes, as if they were saved.
//
// Changes are tracked property by property: update() compares the value with what this
// context last read or wrote for the object (or, when it holds nothing of it, with the
// stored object), and only the properties that differ are written. So when two contexts change the same object, the later save wins for the
// properties it changed, and nothing else is lost.
//
// The view context is used on the main thread only. A background context is used only
// inside its perform() blocks, which run one at a time on a worker thread of its own.
// Objects never leave their context: pass ObjectIDs and resolve them with
// existingObject(). Failures are thrown as StoreError.
class ManagedObjectContext
{
public:
    enum class ConcurrencyType { mainQueue, privateQueue };
    // The in-memory value of the saving context wins, property by property; the only
    // policy the program uses, kept as a setting so every context states it.
    enum class MergePolicy { mergeByPropertyObjectTrump };

    ~ManagedObjectContext();
    ManagedObjectContext(const ManagedObjectContext &) = delete;
    ManagedObjectContext &operator=(const ManagedObjectContext &) = delete;

    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    MergePolicy mergePolicy() const { return m_mergePolicy; }
    void setMergePolicy(MergePolicy policy) { m_mergePolicy = policy; }
    ConcurrencyType concurrencyType() const { return m_concurrencyType; }
    PersistentContainer &container() const { return m_container; }

    template <StoreEntity T>
    QList<T> fetch(const FetchRequest<T> &request);
    template <StoreEntity T>
    qint64 count(const FetchRequest<T> &request);
    // For each object that `among` selects, by primary key, which of `predicates` (at
    // most 64) it matches: bit i for predicates[i]. One pass answers for all of them.
    template <StoreEntity T>
    QHash<qint64, quint64> matchesEach(const QList<Predicate> &predicates, const Predicate &among);
    // Only the identifiers of the objects `request` fetches, in its order.
    template <StoreEntity T>
    QList<ObjectID> fetchObjectIDs(const FetchRequest<T> &request);
    // The first object of the request, or nothing: the find of "find or create".
    template <StoreEntity T>
    std::optional<T> fetchFirst(FetchRequest<T> request);
    // The object behind `id`, with this context's pending changes; nothing when it does
    // not exist (deleted, never saved elsewhere) or is not a T.
    template <StoreEntity T>
    std::optional<T> existingObject(const ObjectID &id);
    // The objects of the to-many relationship `relationship` of `owner`
    // ("cachedPriceGuides" of a CatalogSet), in insertion order.
    template <StoreEntity T>
    QList<T> related(const ObjectID &owner, const QString &relationship);

    // Copies that match `request`, each with its catalog set, in one query. Meant for
    // lists that refetch on every change: it keeps no snapshot of what it read, so an
    // update() of such a value is compared with the stored object at that moment.
    QList<BrickSetWithCatalogSet> fetchBrickSetsWithCatalogSets(const FetchRequest<BrickSet> &request);
    // Over a copy's part inventory entries: the sum of quantityOwned, the sum of the
    // quantity of their inventory lines, and the number of entries.
    struct PartsCount
    {
        qint64 owned = 0;
        qint64 required = 0;
        qint64 entries = 0;
    };
    PartsCount partsCount(const ObjectID &brickSet);

    // Records a new object and returns it with its ObjectID, which is permanent at once.
    template <StoreEntity T>
    T insert(T object);
    template <StoreEntity T>
    void update(const T &object);
    void deleteObject(const ObjectID &id);
    template <StoreEntity T>
    void deleteObject(const T &object) { deleteObject(object.objectID); }

    bool hasChanges() const { return !m_pending.isEmpty(); }
    // Writes every pending change in one transaction and announces it. A background
    // context waits for the store's write turn. The view context never waits on the main
    // thread: when another context is writing, its save is queued and returns at once; it
    // runs on the main thread as soon as the turn is free, and the container announces it
    // (objectsDidChange(), then queuedSaveDidFinish() or queuedSaveDidFail()). Meanwhile
    // the changes stay pending here, visible to this context's reads; a later save()
    // carries them along with its own.
    void save();
    // Whether a save of the view context waits for the write turn.
    bool hasQueuedSave() const { return m_saveQueued; }
    // Discards every pending change.
    void rollback();
    // Forgets what this context last read of the object; without `mergeChanges` its
    // pending changes go too.
    void refresh(const ObjectID &id, bool mergeChanges);

    // Deletes every object of `entity` at once, outside the unit of work, the store's
    // delete rules included, and announces the deleted identifiers. Throws StoreError.
    QList<ObjectID> batchDelete(EntityType entity);

    // Runs `work(context)` on the context's queue: for a background context on its worker
    // thread, one block after the other; for the view context at once on the calling
    // (main) thread. The result or StoreError comes back through the future. A block with
    // pending changes may hold the store's write turn for a moment: it must not wait on
    // another context's block (performAndWait inside perform).
    //
    // Contexts must not outlive their container.
    template <typename Work>
    auto perform(Work work) -> QFuture<std::invoke_result_t<Work, ManagedObjectContext &>>;
    // Runs `work` like perform() and waits for it; rethrows its error.
    template <typename Work>
    auto performAndWait(Work work) -> std::invoke_result_t<Work, ManagedObjectContext &>;

private:
    friend class PersistentContainer;
    ManagedObjectContext(PersistentContainer &container, ConcurrencyType type,
                         std::unique_ptr<StoreConnection> connection);

    struct Pending
    {
        using Kind = ChangeWriter::Kind;
        Kind kind;
        AnyEntity value;
        quint64 changedFields = 0;
        bool applied = false; // already written into the open read transaction
        qint64 sequence = 0;
    };

    // Pending changes are made visible to reads by writing them into a write transaction
    // that is rolled back after the read (or, inside a background perform() block, at its
    // end, so a long find-or-create loop writes each change once).
    //
    // The view context must not wait for the write lock on the main thread: while another
    // context writes, its reads run on the committed rows instead, with its pending
    // changes laid over them by temporary views of the same names (see openOverlay()).
    void beginRead();
    void applyPendingForRead();
    void endRead();
    void closeScratch();
    void openOverlay();
    void closeOverlay();

    // The body of save() once the write turn is held; releases it. Throws StoreError.
    void saveHoldingTurn();
    // For the container: the queued save, on the main thread once the turn is free, and
    // the last save before the store closes, which may wait.
    void runQueuedSave();
    void saveWaitingForTurn();
    QList<ObjectID> pendingInWriteOrder() const;

    template <StoreEntity T>
    QList<T> runFetch(const QString &where, const QList<SqlValue> &bindings, const QString &order, int limit);
    template <StoreEntity T>
    static QString columnList(const QString &alias);
    template <StoreEntity T>
    static void readRow(T &object, const RebrickableKit::SQLiteStatement &statement, int firstColumn);
    static void bindAll(RebrickableKit::SQLiteStatement &statement, const QList<SqlValue> &bindings);
    static QString orderBy(QueryCompiler &compiler, const QList<SortDescriptor> &descriptors);
    static QString limitClause(int limit);
    qint64 allocateKey(EntityType entity);
    template <StoreEntity T>
    QHash<qint64, T> &snapshots()
    {
        return std::get<QHash<qint64, T>>(m_snapshots);
    }
    template <StoreEntity T>
    void remember(const T &object)
    {
        snapshots<T>().insert(object.objectID.primaryKey, object);
    }
    void remember(const AnyEntity &value);
    void forget(const ObjectID &id);
    void recordUpdate(const ObjectID &id, AnyEntity value, quint64 changedFields);

    PersistentContainer &m_container;
    ConcurrencyType m_concurrencyType;
    std::unique_ptr<StoreConnection> m_connection;
    std::unique_ptr<QThreadPool> m_pool;
    QString m_name;
    MergePolicy m_mergePolicy = MergePolicy::mergeByPropertyObjectTrump;
    QHash<ObjectID, Pending> m_pending;
    // What this context last read or wrote of each object: the base that update()
    // compares against. One table per entity keeps lookups cheap on large fetches.
    std::tuple<QHash<qint64, CatalogSet>, QHash<qint64, CatalogPart>, QHash<qint64, CatalogColor>,
               QHash<qint64, CatalogSetPart>, QHash<qint64, BrickSet>, QHash<qint64, PartInventoryEntry>,
               QHash<qint64, CachedPriceGuide>, QHash<qint64, CachedInstructionURL>, QHash<qint64, WishlistItem>>
        m_snapshots;
    qint64 m_sequence = 0;
    bool m_scratchOpen = false;
    bool m_saveQueued = false;
    QList<EntityType> m_overlaidEntities; // entities shown through temporary views
    bool m_overlayOpen = false;
    QElapsedTimer m_scratchAge;
    int m_performDepth = 0;
    int m_readDepth = 0;
};

#include "Store/ManagedObjectContextTemplates.h"
