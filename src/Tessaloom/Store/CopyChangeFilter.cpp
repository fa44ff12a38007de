// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/CopyChangeFilter.h"

#include "Logging.h"
#include "Store/ManagedObjectContext.h"

using namespace Qt::StringLiterals;

CopyChangeFilter::CopyChangeFilter(ManagedObjectContext &context, const StoreChanges &changes)
    : m_context(context)
    , m_changes(changes)
{
}

bool CopyChangeFilter::mayChange(const QSet<EntityType> &entitiesRead)
{
    for (EntityType entity : entitiesRead) {
        if (entity != EntityType::CatalogSet && m_changes.touches(entity))
            return true;
    }
    if (!entitiesRead.contains(EntityType::CatalogSet) || !m_changes.touches(EntityType::CatalogSet))
        return false;
    return copiesReferToChangedCatalogSets();
}

bool CopyChangeFilter::copiesReferToChangedCatalogSets()
{
    if (m_referenced)
        return *m_referenced;
    QList<Predicate> refersToChanged;
    for (const QSet<ObjectID> *set : {&m_changes.inserted, &m_changes.updated, &m_changes.deleted}) {
        for (const ObjectID &id : *set) {
            if (id.entity == EntityType::CatalogSet)
                refersToChanged.append(Predicate::equal(u"catalogSet"_s, QVariant::fromValue(id)));
        }
    }
    if (refersToChanged.size() > lookUpLimit) {
        m_referenced = true;
        return true;
    }
    try {
        m_referenced = m_context.count(FetchRequest<BrickSet>(Predicate::anyOf(refersToChanged))) > 0;
    } catch (const StoreError &error) {
        // Not knowing, the lists read themselves again as they would without the filter.
        qCWarning(lcPersistence) << "Looking up the copies of changed catalog sets failed:" << error.description();
        m_referenced = true;
    }
    return *m_referenced;
}
