// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CollectionTrash.h"

#include "Logging.h"
#include "Store/ManagedObjectContext.h"
#include "Store/StoreError.h"

#include <QDateTime>

CollectionTrash::CollectionTrash(ManagedObjectContext &viewContext, QObject *parent)
    : QObject(parent)
    , m_viewContext(viewContext)
{
}

void CollectionTrash::moveToTrash(const ObjectID &brickSet)
{
    if (setTrashed(brickSet, true))
        Q_EMIT copyMovedToTrash(brickSet);
}

void CollectionTrash::restore(const ObjectID &brickSet)
{
    std::optional<QDateTime> trashedDate;
    if (setTrashed(brickSet, false, &trashedDate))
        Q_EMIT copyRestored(brickSet, trashedDate);
}

bool CollectionTrash::setTrashed(const ObjectID &brickSet, bool trashed, std::optional<QDateTime> *previousDate)
{
    std::optional<BrickSet> copy;
    try {
        copy = m_viewContext.existingObject<BrickSet>(brickSet);
        if (!copy)
            return false;
        if (copy->isTrashed == trashed)
            return false; // nothing to do, and nothing to announce or to undo
        if (previousDate)
            *previousDate = copy->trashedDate;
        copy->isTrashed = trashed;
        // The date serves the trash's order and its rows; nothing purges copies by age.
        copy->trashedDate = trashed ? std::optional<QDateTime>(QDateTime::currentDateTimeUtc()) : std::nullopt;
        m_viewContext.update(*copy);
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Changing the trash flag of a copy failed:" << error.description();
        return false;
    }
    save();
    return true;
}

void CollectionTrash::deletePermanently(const ObjectID &brickSet)
{
    emptyTrash({brickSet});
}

void CollectionTrash::emptyTrash(const QList<ObjectID> &brickSets)
{
    int deleted = 0;
    try {
        for (const ObjectID &id : brickSets) {
            if (id.entity != EntityType::BrickSet || !id.isValid())
                continue;
            m_viewContext.deleteObject(id);
            ++deleted;
        }
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Deleting copies from the trash failed:" << error.description();
    }
    if (deleted == 0)
        return;
    save();
    Q_EMIT copiesDeleted(deleted);
}

void CollectionTrash::save()
{
    try {
        m_viewContext.save();
    } catch (const StoreError &error) {
        // Dropped without a message: the change stays pending and goes out with the next save.
        qCWarning(lcPersistence) << "Saving a change of the trash failed:" << error.description();
    }
}
