// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/StoreObserver.h"

#include "Store/PersistentContainer.h"

StoreObserver::StoreObserver(PersistentContainer &container, QSet<EntityType> entities, QObject *parent)
    : QObject(parent)
    , m_entities(std::move(entities))
{
    connect(&container, &PersistentContainer::objectsDidChange, this, [this](const StoreChanges &changes) {
        if (changes.touchesAny(m_entities))
            Q_EMIT changed(changes);
    });
}
