// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CollectionReset.h"

#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QCoroFuture>

using namespace Qt::StringLiterals;

const QList<EntityType> &CollectionReset::deletedEntities()
{
    static const QList<EntityType> entities{EntityType::PartInventoryEntry, EntityType::BrickSet,
                                            EntityType::WishlistItem};
    return entities;
}

QCoro::Task<QList<ObjectID>> CollectionReset::deleteCollection(PersistentContainer &container)
{
    const std::shared_ptr<ManagedObjectContext> context = container.newBackgroundContext();
    context->setMergePolicy(ManagedObjectContext::MergePolicy::mergeByPropertyObjectTrump);
    context->setName(u"backgroundContext"_s);
    // Named before it is awaited: GCC 12 destroys the captures of a lambda written inside
    // a co_await expression twice.
    QFuture<QList<ObjectID>> deleting = context->perform([](ManagedObjectContext &background) {
        QList<ObjectID> ids;
        for (const EntityType entity : deletedEntities())
            ids += background.batchDelete(entity);
        return ids;
    });
    const QList<ObjectID> deleted = co_await deleting;
    // What the view context remembers of these objects, pending edits included, would
    // otherwise come back in its next read or save.
    ManagedObjectContext &viewContext = container.viewContext();
    for (const ObjectID &id : deleted)
        viewContext.refresh(id, false);
    co_return deleted;
}
