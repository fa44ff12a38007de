// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QMetaType>
#include <QSet>

// What one commit changed: the objects inserted, updated and deleted, whatever context
// made the commit. Rows removed or cleared by the store's delete rules are included
// (the entries of a deleted copy as deleted, references set to NULL as updated).
struct StoreChanges
{
    QSet<ObjectID> inserted;
    QSet<ObjectID> updated;
    QSet<ObjectID> deleted;

    bool isEmpty() const { return inserted.isEmpty() && updated.isEmpty() && deleted.isEmpty(); }

    // Whether any object of `entity` changed.
    bool touches(EntityType entity) const
    {
        for (const QSet<ObjectID> *set : {&inserted, &updated, &deleted}) {
            for (const ObjectID &id : *set) {
                if (id.entity == entity)
                    return true;
            }
        }
        return false;
    }

    template <typename Entities>
    bool touchesAny(const Entities &entities) const
    {
        for (EntityType entity : entities) {
            if (touches(entity))
                return true;
        }
        return false;
    }
};

Q_DECLARE_METATYPE(StoreChanges)
