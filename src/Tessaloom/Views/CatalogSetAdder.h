// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/BrickSet.h"
#include "Store/ObjectID.h"

#include <QCoroTask>
#include <QPointer>
#include <QString>

#include <functional>
#include <optional>

class PersistentContainer;

// Adds a catalog set to the collection as a new copy: the set's catalog facts are synced
// into the store first, then a copy with only what a new copy carries (a new id, the date
// added, its catalog set and an unknown acquisition) is made in the view context and saved.
//
// There is no duplicate check here: every call makes a copy. A sync that fails, or an
// identifier that does not name a CatalogSet, ends without a copy and without a message; a
// save that fails is dropped, and the copy stays pending in the view context for the next
// save.
class CatalogSetAdder
{
public:
    // Copies the catalog's facts of a set number into the store and gives the CatalogSet's
    // identifier; throws when it cannot.
    using SyncOperation = std::function<QCoro::Task<ObjectID>(QString setNumber)>;

    // CatalogSyncService::shared().syncSet.
    static SyncOperation sharedSyncOperation();

    // The new copy, or nothing. `container` is checked again after the sync, which gives up
    // the main thread's turn.
    static QCoro::Task<std::optional<BrickSet>> add(QPointer<PersistentContainer> container, SyncOperation sync,
                                                    QString setNumber);

    // The copy part alone, for a CatalogSet already in the store.
    static std::optional<BrickSet> makeCopy(PersistentContainer &container, const ObjectID &catalogSetID);
};
