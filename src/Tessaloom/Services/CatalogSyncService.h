// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QCoroTask>
#include <QString>

#include <memory>

class AsyncSemaphore;
class ManagedObjectContext;
class PersistenceController;

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
class CatalogSyncService
{
public:
    // The process-wide service over PersistenceController::shared(), made on first use.
    static CatalogSyncService &shared();

    explicit CatalogSyncService(PersistenceController &persistenceController);
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

private:
    std::shared_ptr<ManagedObjectContext> newContext() const;

    PersistenceController &m_persistenceController;
    std::unique_ptr<AsyncSemaphore> m_setWriting; // one syncSet() at a time
};
