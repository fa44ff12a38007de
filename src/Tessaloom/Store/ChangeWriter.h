// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/EntityTraits.h"
#include "Store/StoreChanges.h"
#include "Store/StoreConnection.h"

// Writes one pending change of a context into the open transaction of its connection:
// an insert of all properties, an update of the changed ones, or a delete. With
// `changes`, it also records what the commit will have changed, including the rows the
// store's delete rules remove (cascade) or clear (references set to NULL).
class ChangeWriter
{
public:
    enum class Kind { inserted, updated, deleted };

    // `upsert` lets an insert overwrite a row written earlier in the same transaction
    // (a pending object shown to a read again after a later change). An insert or update
    // goes to `table` when given (a temporary table of the same columns) instead of the
    // entity's own. Throws StoreError.
    static void write(StoreConnection &connection, const ObjectID &id, Kind kind, const AnyEntity &value,
                      quint64 changedFields, bool upsert, StoreChanges *changes, const QString &table = QString());
};
