// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CatalogSyncService.h"

#include "Logging.h"
#include "Services/AsyncSemaphore.h"
#include "Services/CatalogSetFacts.h"
#include "Services/RebrickableCatalog.h"
#include "Services/SyncError.h"
#include "SetNumberNormalizer.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "Store/PersistentContainer.h"

#include <QCoroFuture>
#include <QDateTime>
#include <QHash>
#include <QSet>


using namespace Qt::StringLiterals;

namespace {

// Keys per look-up query: SQLite nests each OR one level deeper, and its expression depth
// is limited to 1000, so a set with more distinct parts is looked up in slices.
constexpr qsizetype keysPerQuery = 200;

// A part and a colour, by the primary keys of their store objects.
using LineKey = QPair<qint64, qint64>;

// Records `object` as new when it has no identifier yet, else as changed, and gives it
// back with its identifier.
template <StoreEntity T>
T insertOrUpdate(ManagedObjectContext &context, const T &object)
{
    if (!object.objectID.isValid())
        return context.insert(object);
    context.update(object);
    return object;
}

// The find of "find or create" for many keys at once: the object whose `attribute`
// equals each key. Fetches come in insertion order, so where the store holds several for
// one key, the first is the one a fetch limited to one object would find. A failed query
// finds nothing, so the caller creates the objects anew; a passing store fault can thus
// leave a duplicate.
template <StoreEntity T, typename Key, typename KeyOf>
QHash<Key, T> findByKeys(ManagedObjectContext &context, const QString &attribute, const QList<Key> &keys, KeyOf keyOf)
{
    QHash<Key, T> found;
    for (qsizetype start = 0; start < keys.size(); start += keysPerQuery) {
        QList<Predicate> alternatives;
        for (const Key &key : keys.mid(start, keysPerQuery))
            alternatives.append(Predicate::equal(attribute, QVariant::fromValue(key)));
        QList<T> objects;
        try {
            objects = context.fetch(FetchRequest<T>(Predicate::anyOf(alternatives)));
        } catch (const StoreError &) {
        }
        for (const T &object : std::as_const(objects)) {
            if (!found.contains(keyOf(object)))
                found.insert(keyOf(object), object);
        }
    }
    return found;
}

// The lines of `catalogSet` by part and colour, as findByKeys() finds objects.
QHash<LineKey, CatalogSetPart> findLines(ManagedObjectContext &context, const ObjectID &catalogSet)
{
    QList<CatalogSetPart> objects;
    try {
        objects = context.fetch(FetchRequest<CatalogSetPart>(Predicate::equal(u"catalogSet"_s, QVariant::fromValue(catalogSet))));
    } catch (const StoreError &) {
    }
    QHash<LineKey, CatalogSetPart> lines;
    for (const CatalogSetPart &line : std::as_const(objects)) {
        if (!line.catalogPart || !line.catalogColor)
            continue;
        const LineKey key(line.catalogPart->primaryKey, line.catalogColor->primaryKey);
        if (!lines.contains(key))
            lines.insert(key, line);
    }
    return lines;
}

// Finds or creates the parts, colours and lines of one set's inventory in `context`,
// without saving. Every look-up in the store comes before the first change: the context
// shows its pending changes to a read by writing them into a transaction of its own, so
// reads between changes would cost a write per row. Each part and colour is written once,
// as its values are the same for every row that names it.
void writeInventory(ManagedObjectContext &context, const RebrickableCatalog &catalog, const ObjectID &catalogSet,
                    const QList<CatalogInventoryPartResult> &rows)
{
    QList<QString> partNumbers;
    QList<int> colorIDs;
    {
        QSet<QString> seenParts;
        QSet<int> seenColors;
        for (const CatalogInventoryPartResult &row : rows) {
            if (!seenParts.contains(row.partNum)) {
                seenParts.insert(row.partNum);
                partNumbers.append(row.partNum);
            }
            if (!seenColors.contains(row.colorID)) {
                seenColors.insert(row.colorID);
                colorIDs.append(row.colorID);
            }
        }
    }
    QHash<QString, CatalogPart> parts = findByKeys<CatalogPart>(
        context, u"partNumber"_s, partNumbers, [](const CatalogPart &part) { return part.partNumber.value_or(QString()); });
    QHash<int, CatalogColor> colors = findByKeys<CatalogColor>(
        context, u"colorID"_s, colorIDs, [](const CatalogColor &color) { return int(color.colorID); });
    QHash<LineKey, CatalogSetPart> lines = findLines(context, catalogSet);
    // The catalog's facts of all of them in a few statements rather than one per key.
    const QHash<QString, CatalogPartResult> catalogParts = catalog.parts(partNumbers);
    const QHash<int, CatalogColorResult> catalogColors = catalog.colors(colorIDs);

    for (const QString &number : std::as_const(partNumbers)) {
        CatalogPart part = parts.value(number);
        part.partNumber = number; // unchanged when found: it is the key that found it
        const auto fromCatalog = catalogParts.constFind(number);
        part.name = fromCatalog != catalogParts.cend() ? fromCatalog->name : number;
        parts.insert(number, insertOrUpdate(context, part));
    }
    for (const int colorID : std::as_const(colorIDs)) {
        CatalogColor color = colors.value(colorID);
        color.colorID = colorID;
        const auto fromCatalog = catalogColors.constFind(colorID);
        const bool known = fromCatalog != catalogColors.cend();
        color.name = known ? fromCatalog->name : u"Unknown"_s;
        color.hexCode = known ? fromCatalog->rgb : u"000000"_s;
        color.isTransparent = known && fromCatalog->isTransparent;
        colors.insert(colorID, insertOrUpdate(context, color));
    }

    for (const CatalogInventoryPartResult &row : rows) {
        const ObjectID part = parts.value(row.partNum).objectID;
        const ObjectID color = colors.value(row.colorID).objectID;
        // A line is one part in one colour, spare or not: a regular and a spare row of the
        // same part and colour share it, and the row read last sets its quantity and
        // isSpare (it replaces the earlier quantity, it is not added to it).
        CatalogSetPart &line = lines[LineKey(part.primaryKey, color.primaryKey)];
        if (!line.objectID.isValid()) {
            line.catalogSet = catalogSet;
            line.catalogPart = part;
            line.catalogColor = color;
        }
        line.quantity = row.quantity;
        line.isSpare = row.isSpare;
        line = insertOrUpdate(context, line);
    }
}

} // namespace

CatalogSyncService &CatalogSyncService::shared()
{
    static CatalogSyncService instance(PersistenceController::shared());
    return instance;
}

CatalogSyncService::CatalogSyncService(PersistenceController &persistenceController)
    : m_persistenceController(persistenceController)
    , m_setWriting(std::make_unique<AsyncSemaphore>(1))
{
}

CatalogSyncService::~CatalogSyncService() = default;

std::shared_ptr<ManagedObjectContext> CatalogSyncService::newContext() const
{
    std::shared_ptr<ManagedObjectContext> context = m_persistenceController.container().newBackgroundContext();
    context->setMergePolicy(ManagedObjectContext::MergePolicy::mergeByPropertyObjectTrump);
    context->setName(u"backgroundContext"_s);
    return context;
}

QCoro::Task<ObjectID> CatalogSyncService::syncSet(QString setNumber)
{
    const QString number = SetNumberNormalizer::catalogNumber(setNumber);
    const std::shared_ptr<ManagedObjectContext> context = newContext();

    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    if (!catalog)
        throw SyncError::catalogUnavailable();
    const std::optional<CatalogSetFacts> facts = CatalogSetFacts::read(*catalog, number);
    if (!facts)
        throw SyncError::setNotFound(number);

    co_await m_setWriting->acquire();
    const AsyncSemaphore::Permit permit(*m_setWriting);
    // Named before it is awaited: GCC 12 destroys the captures of a lambda written inside
    // a co_await expression twice.
    QFuture<ObjectID> writing = context->perform([number, facts = *facts](ManagedObjectContext &store) {
        std::optional<CatalogSet> existing;
        try {
            existing = store.fetchFirst(FetchRequest<CatalogSet>(Predicate::equal(u"setNumber"_s, number)));
        } catch (const StoreError &) {
            // Counted as no match: the set is created anew.
        }
        CatalogSet set = existing.value_or(CatalogSet{});
        if (!existing)
            set.setNumber = number;
        facts.writeInto(set);
        set = insertOrUpdate(store, set);
        store.save();
        return set.objectID;
    });
    const ObjectID objectID = co_await writing;

    co_await syncParts(number, objectID);
    co_return objectID;
}

QCoro::Task<> CatalogSyncService::syncParts(QString setNumber, ObjectID objectID)
{
    const std::shared_ptr<RebrickableCatalog> catalog = RebrickableCatalog::shared();
    if (!catalog) {
        qCCritical(lcSync, "Catalog unavailable for parts sync of %s", qUtf8Printable(setNumber));
        co_return;
    }
    const QList<CatalogInventoryPartResult> rows = catalog->inventoryParts(setNumber);
    const std::shared_ptr<ManagedObjectContext> context = newContext();

    // Named before it is awaited, like the block of syncSet().
    QFuture<void> writing = context->perform([catalog, objectID, rows](ManagedObjectContext &store) {
        std::optional<CatalogSet> set;
        try {
            set = store.existingObject<CatalogSet>(objectID);
        } catch (const StoreError &) {
        }
        // A set deleted meanwhile, or an identifier of something else: nothing to do.
        if (!set)
            return;
        writeInventory(store, *catalog, objectID, rows);
        set->partsSyncDate = QDateTime::currentDateTimeUtc();
        store.update(*set);
        // One transaction for all the lines of the set: no batching.
        store.save();
    });
    QString failure;
    try {
        co_await writing;
    } catch (const StoreError &error) {
        failure = error.description();
    } catch (const std::exception &error) {
        failure = QString::fromUtf8(error.what());
    }
    if (!failure.isNull()) {
        qCCritical(lcSync, "Failed to sync parts for %s: %s", qUtf8Printable(setNumber), qUtf8Printable(failure));
        co_return;
    }
    qCInfo(lcSync, "Synced %lld parts for %s", qint64(rows.size()), qUtf8Printable(setNumber));
}
