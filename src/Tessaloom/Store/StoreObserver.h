// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/FetchRequest.h"
#include "Store/StoreChanges.h"

#include <QObject>
#include <QSet>

class PersistentContainer;

// Tells a screen when a commit touched an entity its query reads, so that counts and
// lists other than BrickSetListModel (sidebar badges, the wishlist) can refetch on the
// main thread after every save, merged background saves included.
class StoreObserver : public QObject
{
    Q_OBJECT

public:
    StoreObserver(PersistentContainer &container, QSet<EntityType> entities, QObject *parent = nullptr);

    QSet<EntityType> entities() const { return m_entities; }
    void setEntities(const QSet<EntityType> &entities) { m_entities = entities; }

    // The entities `request` reads: its own and those its predicate and sort reach.
    template <StoreEntity T>
    static QSet<EntityType> entitiesRead(const FetchRequest<T> &request)
    {
        QueryCompiler compiler(EntityTraits<T>::type, QStringLiteral("t0"));
        QList<SqlValue> bindings;
        request.predicate.toSql(compiler, bindings);
        for (const SortDescriptor &descriptor : request.sortDescriptors)
            compiler.scalar(descriptor.keyPath);
        return compiler.entitiesRead();
    }

Q_SIGNALS:
    void changed(const StoreChanges &changes);

private:
    QSet<EntityType> m_entities;
};
