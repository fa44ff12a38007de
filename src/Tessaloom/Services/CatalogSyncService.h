// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QCoroTask>
#include <QList>
#include <QString>

#include <memory>
#include <vector>

class AsyncSemaphore;
class ManagedObjectContext;
class PersistenceController;
class PriceRefreshProgress;
class PricingProvider;
class PricingProviderRegistry;
struct PriceResult;

// Copies the facts of one catalog set and its parts lines from the local catalog database
// into the collection store, where only the sets the user has touched are kept.
//
// Its coroutines run on the main thread, so calls run one at a time and give up their turn
// only while a context's perform() runs on its worker; two calls can interleave there,
// except that syncSet() runs one at a time, its set and its parts lines both, so that two
// syncs of one number at once (two screens adding the same set) make one CatalogSet with
// one line per part and colour.
// Each operation makes its own background context and drops it at the end: the service
// holds no state besides the store.
//
// It also brings market prices into the store: PriceResult values of the provider that
// PricingProviderRegistry picks become the CachedPriceGuide objects of a CatalogSet, and
// give it a retail price and a retirement date where it has none. Prices are fetched only
// when the user asks (a set's sync action, or refreshing all prices); none of the price
// operations fails towards its caller, what goes wrong goes to the log.
class CatalogSyncService
{
public:
    // The process-wide service over PersistenceController::shared(), made on first use.
    static CatalogSyncService &shared();

    // Prices come from PricingProviderRegistry::shared(), reached at the first price sync.
    explicit CatalogSyncService(PersistenceController &persistenceController);
    // Prices come from `registry`, which must outlive the service.
    CatalogSyncService(PersistenceController &persistenceController, PricingProviderRegistry &registry);
    ~CatalogSyncService();
    CatalogSyncService(const CatalogSyncService &) = delete;
    CatalogSyncService &operator=(const CatalogSyncService &) = delete;

    // Writes the catalog's facts of the set into its CatalogSet (found by the normalised
    // number, or created), then its parts lines, and gives the CatalogSet's identifier.
    // The number may come with or without its "-1" suffix. Throws SyncError when the
    // catalog is absent or lacks the set (the store is then untouched), and the store's
    // StoreError when the save fails.
    QCoro::Task<ObjectID> syncSet(QString setNumber);

    // Adds and updates the parts lines of the CatalogSet `objectID` from the inventory of
    // the (normalised) number `setNumber`, in one transaction; lines are never removed.
    // Never fails towards the caller: what goes wrong is logged.
    QCoro::Task<> syncParts(QString setNumber, ObjectID objectID);

    // What the sync action of a set's detail screen runs after syncSet() succeeded: appends
    // two tasks, already started, to the caller's `group`, which awaits them (a std::vector:
    // tasks can be moved but not copied, which QList requires). The first is
    // syncPrices(setNumber, objectID); the second does nothing and is kept as the place of
    // further external data (instructions are fetched when their screen asks for them).
    void syncExternalData(std::vector<QCoro::Task<>> &group, QString setNumber, ObjectID objectID);
    // The price step of a set detail's refresh: syncExternalData() for the set's number in
    // the catalog's form (with or without its "-1" as given), ending when both of its
    // tasks have ended. Never fails towards the caller.
    QCoro::Task<> syncExternalDataOfSet(QString setNumber, ObjectID objectID);

    // Fetches the prices of one set from the active provider and replaces that provider's
    // guides of the CatalogSet `objectID` with them. Never fails towards the caller.
    QCoro::Task<> syncPrices(QString setNumber, ObjectID objectID);

    // Replaces the guides of `providerID` (and those of no provider) of the CatalogSet
    // `objectID` with one guide per result, in one save; takes the retail price and the
    // retirement date from the results where the set has none. Never fails towards the
    // caller.
    QCoro::Task<> persistPrices(QList<PriceResult> results, QString providerID, ObjectID objectID);

    // Fetches prices for every owned set (any copy, trashed or disposed too) that has no
    // guide or a guide older than seven days, one set after the other, or in one call when
    // the provider fetches in bulk. Never fails towards the caller. Reports into
    // priceRefreshProgress() as it goes, and stops there when asked to.
    QCoro::Task<> refreshAllPrices();

    // How far refreshAllPrices() has come, and its Cancel.
    PriceRefreshProgress &priceRefreshProgress() const { return *m_priceRefreshProgress; }

private:
    struct PriceTarget
    {
        ObjectID objectID;
        QString setNumber;
    };

    std::shared_ptr<ManagedObjectContext> newContext() const;
    PricingProviderRegistry &registry();
    QCoro::Task<QList<PriceTarget>> priceTargets();
    QCoro::Task<> refreshInBulk(PricingProvider *provider, QList<PriceTarget> targets);
    static QCoro::Task<> reservedExternalSync(QString setNumber, ObjectID objectID);

    PersistenceController &m_persistenceController;
    PricingProviderRegistry *m_registry = nullptr; // nullptr: the shared one, reached when needed
    std::unique_ptr<AsyncSemaphore> m_setWriting; // one syncSet() at a time
    std::unique_ptr<PriceRefreshProgress> m_priceRefreshProgress;
};
