// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/CatalogSyncService.h"

#include "Logging.h"
#include "PriceResult.h"
#include "PricingProvider.h"
#include "Services/AsyncSemaphore.h"
#include "Services/CatalogSetFacts.h"
#include "Services/PriceRefreshProgress.h"
#include "Services/PricingProviderRegistry.h"
#include "Services/RebrickableCatalog.h"
#include "Services/SyncError.h"
#include "SetNumberNormalizer.h"
#include "Store/CachedPriceGuide.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "Store/PersistentContainer.h"

#include <QCoroFuture>
#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QLocale>
#include <QSet>

#include <limits>


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

// A guide older than this makes its set a target of the refresh of all prices; one exactly
// this old is still fresh.
constexpr qint64 priceGuideMaximumAgeMilliseconds = qint64(604800) * 1000;

// The sentence of whatever a provider or the store threw, for the log.
QString failureText(const std::exception_ptr &failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    } catch (...) {
        return u"Unknown error"_s;
    }
}

// The day a provider gives as "2024-12-31", at local midnight; nothing for any other form.
std::optional<QDateTime> retiredDay(const QString &text)
{
    const QDate day = QLocale::c().toDate(text, u"yyyy-MM-dd"_s);
    if (!day.isValid())
        return std::nullopt;
    return day.startOfDay();
}

// Whether a stored price guide of `set` asks for a new fetch at `now`.
bool isStale(const CachedPriceGuide &guide, const QDateTime &now)
{
    return !guide.lastFetchDate || guide.lastFetchDate->msecsTo(now) > priceGuideMaximumAgeMilliseconds;
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
    , m_priceRefreshProgress(std::make_unique<PriceRefreshProgress>())
{
}

CatalogSyncService::CatalogSyncService(PersistenceController &persistenceController, PricingProviderRegistry &registry)
    : CatalogSyncService(persistenceController)
{
    m_registry = &registry;
}

CatalogSyncService::~CatalogSyncService() = default;

std::shared_ptr<ManagedObjectContext> CatalogSyncService::newContext() const
{
    std::shared_ptr<ManagedObjectContext> context = m_persistenceController.container().newBackgroundContext();
    context->setMergePolicy(ManagedObjectContext::MergePolicy::mergeByPropertyObjectTrump);
    context->setName(u"backgroundContext"_s);
    return context;
}

PricingProviderRegistry &CatalogSyncService::registry()
{
    // Reached only here, so that syncing a set never builds the adapters nor opens the
    // credential store.
    if (!m_registry)
        m_registry = &PricingProviderRegistry::shared();
    return *m_registry;
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

void CatalogSyncService::syncExternalData(std::vector<QCoro::Task<>> &group, QString setNumber, ObjectID objectID)
{
    group.push_back(syncPrices(setNumber, objectID));
    group.push_back(reservedExternalSync(std::move(setNumber), std::move(objectID)));
}

QCoro::Task<> CatalogSyncService::reservedExternalSync(QString, ObjectID)
{
    // Deliberately empty: the place of a second kind of external data beside prices.
    // Building instructions are not fetched here but when their screen asks for them.
    co_return;
}

QCoro::Task<> CatalogSyncService::syncExternalDataOfSet(QString setNumber, ObjectID objectID)
{
    std::vector<QCoro::Task<>> group;
    // The price services take the number into their request as given.
    syncExternalData(group, SetNumberNormalizer::catalogNumber(setNumber), objectID);
    // The tasks run already; awaiting them ends this when both have ended.
    for (QCoro::Task<> &task : group)
        co_await std::move(task);
}

QCoro::Task<> CatalogSyncService::syncPrices(QString setNumber, ObjectID objectID)
{
    PricingProvider *const provider = co_await registry().activeProvider(false);
    if (!provider) {
        qCCritical(lcSync, "No pricing provider with valid credentials configured");
        co_return;
    }
    // The registry and its adapters outlive every task, so the pointer holds across waits.
    const QString providerID = provider->info().id;
    QList<PriceResult> results;
    std::exception_ptr failure;
    try {
        results = co_await provider->fetchPrices(setNumber);
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure) {
        // What is stored stays: a failed query tells nothing about the prices.
        qCCritical(lcSync, "Failed to sync prices for %s: %s", qUtf8Printable(setNumber),
                   qUtf8Printable(failureText(failure)));
        co_return;
    }
    const qint64 count = results.size();
    co_await persistPrices(std::move(results), providerID, objectID);
    // Written also when the store refused the results: persistPrices() logged why.
    qCInfo(lcSync, "Synced %lld price guides for %s via %s", count, qUtf8Printable(setNumber),
           qUtf8Printable(providerID));
}

QCoro::Task<> CatalogSyncService::persistPrices(QList<PriceResult> results, QString providerID, ObjectID objectID)
{
    // A sample size beyond the attribute's 32 bits is a fault of the adapter that made it,
    // not a figure to store clamped.
    for (const PriceResult &result : std::as_const(results)) {
        const qint64 quantity = result.quantitySold.value_or(0);
        if (quantity < std::numeric_limits<qint32>::min() || quantity > std::numeric_limits<qint32>::max())
            qFatal("Price result for %s sold %lld items, beyond the store's 32-bit quantity",
                   qUtf8Printable(result.setNumber), quantity);
    }

    const std::shared_ptr<ManagedObjectContext> context = newContext();
    // Named before it is awaited, like the block of syncSet().
    QFuture<void> writing = context->perform([results, providerID, objectID](ManagedObjectContext &store) {
        std::optional<CatalogSet> set;
        try {
            set = store.existingObject<CatalogSet>(objectID);
        } catch (const StoreError &) {
        }
        // A set deleted meanwhile, or an identifier of something else: nothing to do.
        if (!set)
            return;
        // Every read before the first change (see writeInventory()).
        const QList<CachedPriceGuide> guides = store.related<CachedPriceGuide>(objectID, u"cachedPriceGuides"_s);

        // One block of guides per provider, replaced as a whole, by an empty list too.
        // Guides without a provider come from stores older than that rule and are swept
        // away by whichever provider syncs first.
        for (const CachedPriceGuide &guide : guides) {
            if (!guide.providerName || *guide.providerName == providerID)
                store.deleteObject(guide);
        }
        const CatalogSet before = *set;
        for (const PriceResult &result : results) {
            store.insert(CachedPriceGuide::fromPriceResult(result, objectID));
            // The first result with a retail price wins, and a price that stands is kept:
            // a later sync never rewrites it.
            if (!set->retailPrice && result.retailPrice && result.retailPriceCurrency) {
                set->retailPrice = result.retailPrice;
                set->retailPriceCurrency = result.retailPriceCurrency;
            }
            if (!set->dateLastAvailable && result.retiredDate)
                set->dateLastAvailable = retiredDay(*result.retiredDate);
        }
        if (*set != before)
            store.update(*set);
        store.save();
    });
    std::exception_ptr failure;
    try {
        co_await writing;
    } catch (...) {
        failure = std::current_exception();
    }
    // The context goes with its pending changes, so the old guides stay.
    if (failure)
        qCCritical(lcSync, "Failed to persist price results: %s", qUtf8Printable(failureText(failure)));
}

QCoro::Task<QList<CatalogSyncService::PriceTarget>> CatalogSyncService::priceTargets()
{
    const std::shared_ptr<ManagedObjectContext> context = newContext();
    QFuture<QList<PriceTarget>> reading = context->perform([](ManagedObjectContext &store) {
        // Copies of any kind count, trashed and disposed ones too.
        const QList<CatalogSet> owned = store.fetch(
            FetchRequest<CatalogSet>(Predicate::count(u"brickSets"_s, Predicate::Comparison::greater, 0)));
        QSet<ObjectID> ownedIDs;
        for (const CatalogSet &set : owned)
            ownedIDs.insert(set.objectID);
        // All guides in one query rather than one per set.
        const QList<CachedPriceGuide> guides = store.fetch(FetchRequest<CachedPriceGuide>(Predicate()));
        const QDateTime now = QDateTime::currentDateTimeUtc();
        QSet<ObjectID> withGuides;
        QSet<ObjectID> withStaleGuides;
        for (const CachedPriceGuide &guide : guides) {
            if (!guide.catalogSet || !ownedIDs.contains(*guide.catalogSet))
                continue;
            withGuides.insert(*guide.catalogSet);
            // One stale guide, of any provider, makes the whole set a target.
            if (isStale(guide, now))
                withStaleGuides.insert(*guide.catalogSet);
        }
        QList<PriceTarget> targets;
        for (const CatalogSet &set : owned) {
            if (!withGuides.contains(set.objectID) || withStaleGuides.contains(set.objectID))
                targets.append(PriceTarget{set.objectID, set.setNumber.value_or(QString())});
        }
        return targets;
    });
    try {
        co_return co_await reading;
    } catch (...) {
        // No sets to refresh, and nothing to tell: the refresh ends as if all were fresh.
        co_return QList<PriceTarget>{};
    }
}

QCoro::Task<> CatalogSyncService::refreshAllPrices()
{
    const QList<PriceTarget> targets = co_await priceTargets();
    if (targets.isEmpty())
        co_return;
    PricingProvider *const provider = co_await registry().activeProvider(true);
    if (!provider) {
        qCCritical(lcSync, "No pricing provider with valid credentials configured");
        co_return;
    }
    if (provider->info().capabilities.contains(PricingCapability::bulkFetch)) {
        co_await refreshInBulk(provider, targets);
        co_return;
    }
    PriceRefreshProgress::Run run(*m_priceRefreshProgress, int(targets.size()));
    // One set after the other, each awaited: the adapter's rate limiter sets the pace, and
    // a set that fails is logged by syncPrices() and does not stop the others.
    for (const PriceTarget &target : targets) {
        if (run.isCancelled())
            break;
        co_await syncPrices(target.setNumber, target.objectID);
        run.setDone();
    }
}

QCoro::Task<> CatalogSyncService::refreshInBulk(PricingProvider *provider, QList<PriceTarget> targets)
{
    PriceRefreshProgress::Run run(*m_priceRefreshProgress, int(targets.size()));
    if (run.isCancelled())
        co_return;
    const QString providerID = provider->info().id;
    QStringList setNumbers;
    setNumbers.reserve(targets.size());
    for (const PriceTarget &target : std::as_const(targets))
        setNumbers.append(target.setNumber);

    QList<PriceResult> results;
    std::exception_ptr failure;
    try {
        results = co_await provider->fetchBulkPrices(setNumbers);
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure) {
        // Nothing is stored, and no set is asked for alone instead: one failed bulk call
        // must not turn into hundreds of single requests.
        qCCritical(lcSync, "Bulk price refresh failed: %s", qUtf8Printable(failureText(failure)));
        co_return;
    }

    QStringList order;
    QHash<QString, QList<PriceResult>> groups;
    for (PriceResult &result : results) {
        auto group = groups.find(result.setNumber);
        if (group == groups.end()) {
            order.append(result.setNumber);
            group = groups.insert(result.setNumber, {});
        }
        group->append(std::move(result));
    }
    QHash<QString, ObjectID> objectIDs;
    for (const PriceTarget &target : std::as_const(targets)) {
        // Set numbers are unique among CatalogSet objects; two targets with one number
        // mean the store is broken, and guessing which set the prices belong to is worse
        // than stopping.
        if (objectIDs.contains(target.setNumber))
            qFatal("Two price refresh targets share the set number %s", qUtf8Printable(target.setNumber));
        objectIDs.insert(target.setNumber, target.objectID);
    }
    // Results for a number that is no target are dropped; a target without results keeps
    // its guides.
    for (const QString &setNumber : std::as_const(order)) {
        const auto objectID = objectIDs.constFind(setNumber);
        if (objectID == objectIDs.cend())
            continue;
        if (run.isCancelled())
            break;
        co_await persistPrices(groups.value(setNumber), providerID, *objectID);
        run.setDone();
    }
}
