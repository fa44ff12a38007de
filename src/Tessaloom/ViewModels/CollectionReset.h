// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QCoroTask>
#include <QList>

class PersistentContainer;

// Starting over: every copy with its parts inventory, and every wishlist item, deleted at
// once; the catalog facts, price guides and instruction links stay, so sets added again
// find their data. Runs on a new background context; the view context forgets the
// deleted objects and every live list hears of them through the store's change notice.
class CollectionReset
{
public:
    // The entities deleted, in this order: inventories first, so that nothing is left
    // pointing at a copy while its deletion runs.
    static const QList<EntityType> &deletedEntities();

    // Deletes every object of deletedEntities() and returns their identifiers. Throws
    // StoreError; an entity whose delete failed keeps its objects, as do the ones after it.
    static QCoro::Task<QList<ObjectID>> deleteCollection(PersistentContainer &container);
};
