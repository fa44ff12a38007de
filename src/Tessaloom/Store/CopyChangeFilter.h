// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"
#include "Store/StoreChanges.h"

#include <QSet>

#include <optional>

class ManagedObjectContext;

// Tells the copy lists and counts whether a commit can change what they show, beyond
// whether it touched an entity their query reads. A commit that changed only catalog sets
// that no copy refers to cannot: that is what adding a set from the catalog writes first
// (the set's facts, then its parts), before the copy itself is saved, and each of those
// commits would otherwise make every list of the collection read itself again.
//
// Made for one commit; the store is asked at most once, and only when the answer hangs
// on it.
class CopyChangeFilter
{
public:
    // Above this many changed catalog sets the filter does not look them up and says yes.
    static constexpr qsizetype lookUpLimit = 200;

    CopyChangeFilter(ManagedObjectContext &context, const StoreChanges &changes);

    // Whether a query over copies that reads `entitiesRead` may answer differently.
    bool mayChange(const QSet<EntityType> &entitiesRead);

private:
    bool copiesReferToChangedCatalogSets();

    ManagedObjectContext &m_context;
    const StoreChanges &m_changes;
    std::optional<bool> m_referenced;
};
