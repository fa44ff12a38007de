// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/CopyMatchCounter.h"

#include "Logging.h"
#include "Store/CopyChangeFilter.h"
#include "Store/ManagedObjectContext.h"
#include "Store/StoreObserver.h"

CopyMatchCounter::CopyMatchCounter(ManagedObjectContext &context, QList<Predicate> predicates)
    : m_context(context)
    , m_predicates(std::move(predicates))
    , m_counts(m_predicates.size(), 0)
{
    Q_ASSERT(m_predicates.size() <= 64);
    m_entitiesRead = readEntities();
}

QSet<EntityType> CopyMatchCounter::readEntities() const
{
    QSet<EntityType> entities{EntityType::BrickSet};
    for (const Predicate &predicate : m_predicates) {
        try {
            entities.unite(StoreObserver::entitiesRead(FetchRequest<BrickSet>(predicate)));
        } catch (const StoreError &error) {
            qCWarning(lcPersistence) << "Invalid copy count:" << error.description();
        }
    }
    return entities;
}

void CopyMatchCounter::recountAll()
{
    m_counts.fill(0);
    try {
        m_matches = m_context.matchesEach<BrickSet>(m_predicates, Predicate::alwaysTrue());
        m_complete = true;
    } catch (const StoreError &error) {
        // A count that cannot be read shows as none, like a failed fetch.
        qCWarning(lcPersistence) << "Counting copies failed:" << error.description();
        m_matches.clear();
        m_complete = false;
    }
    for (const quint64 matches : std::as_const(m_matches))
        add(matches, +1);
}

void CopyMatchCounter::follow(const StoreChanges &changes)
{
    if (!changes.touchesAny(m_entitiesRead))
        return;
    // Changes of other entities (catalog sets) can change what any copy matches.
    QSet<EntityType> others = m_entitiesRead;
    others.remove(EntityType::BrickSet);
    if (!m_complete || (changes.touchesAny(others) && CopyChangeFilter(m_context, changes).mayChange(others))) {
        recountAll();
        return;
    }
    QList<ObjectID> changed;
    QSet<qint64> gone;
    for (const QSet<ObjectID> *set : {&changes.inserted, &changes.updated, &changes.deleted}) {
        for (const ObjectID &id : *set) {
            if (id.entity != EntityType::BrickSet)
                continue;
            if (set == &changes.deleted)
                gone.insert(id.primaryKey);
            else
                changed.append(id);
        }
    }
    if (changed.size() + gone.size() > changedCopiesLimit) {
        recountAll();
        return;
    }
    QHash<qint64, quint64> now;
    if (!changed.isEmpty()) {
        try {
            now = m_context.matchesEach<BrickSet>(m_predicates, Predicate::objectIn(changed));
        } catch (const StoreError &error) {
            qCWarning(lcPersistence) << "Counting copies failed:" << error.description();
            m_complete = false;
            return;
        }
    }
    // Copies that were changed but no longer exist (deleted again since) count as gone.
    for (const ObjectID &id : std::as_const(changed)) {
        if (!now.contains(id.primaryKey))
            gone.insert(id.primaryKey);
    }
    for (const qint64 key : std::as_const(gone)) {
        const auto old = m_matches.constFind(key);
        if (old == m_matches.cend())
            continue;
        add(*old, -1);
        m_matches.erase(old);
    }
    for (auto fresh = now.cbegin(); fresh != now.cend(); ++fresh) {
        auto old = m_matches.find(fresh.key());
        if (old == m_matches.end()) {
            m_matches.insert(fresh.key(), fresh.value());
        } else {
            add(*old, -1);
            *old = fresh.value();
        }
        add(fresh.value(), +1);
    }
}

void CopyMatchCounter::add(quint64 matches, int sign)
{
    for (qsizetype index = 0; index < m_counts.size(); ++index) {
        if (matches & (quint64(1) << index))
            m_counts[index] += sign;
    }
}
