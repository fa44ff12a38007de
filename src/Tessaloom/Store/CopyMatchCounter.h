// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/Predicate.h"
#include "Store/StoreChanges.h"

#include <QHash>
#include <QList>
#include <QSet>

class ManagedObjectContext;

// How many copies match each of a few predicates, kept up to date commit by commit.
//
// It remembers which predicates each copy matches, so a commit that changed a handful of
// copies is followed by reading only those copies: with thousands of copies a full count
// per predicate after every edit would cost far more than the edit. A commit that changed
// catalog sets the copies refer to, or very many copies, is followed by a full count.
class CopyMatchCounter
{
public:
    // Above this many changed copies a commit is followed by a full count.
    static constexpr qsizetype changedCopiesLimit = 500;

    // At most 64 predicates over copies. Counts nothing until the first recountAll().
    CopyMatchCounter(ManagedObjectContext &context, QList<Predicate> predicates);

    // Reads every copy again.
    void recountAll();
    // Brings the counts up to date after `changes`.
    void follow(const StoreChanges &changes);

    // How many copies match predicates[index].
    qint64 count(qsizetype index) const { return m_counts.value(index); }
    // The entities the predicates read: the commits that touch none of them change nothing.
    const QSet<EntityType> &entitiesRead() const { return m_entitiesRead; }

private:
    void add(quint64 matches, int sign);
    QSet<EntityType> readEntities() const;

    ManagedObjectContext &m_context;
    QList<Predicate> m_predicates;
    QSet<EntityType> m_entitiesRead;
    QHash<qint64, quint64> m_matches; // copy's primary key -> bit i set when it matches predicates[i]
    QList<qint64> m_counts;
    // After a failed read the next commit counts everything again.
    bool m_complete = false;
};
