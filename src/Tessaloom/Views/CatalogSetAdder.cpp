// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/CatalogSetAdder.h"

#include "AcquisitionType.h"
#include "Logging.h"
#include "Services/CatalogSyncService.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

#include <QUuid>

#include <exception>

CatalogSetAdder::SyncOperation CatalogSetAdder::sharedSyncOperation()
{
    return [](QString setNumber) { return CatalogSyncService::shared().syncSet(std::move(setNumber)); };
}

QCoro::Task<std::optional<BrickSet>> CatalogSetAdder::add(QPointer<PersistentContainer> container, SyncOperation sync,
                                                          QString setNumber)
{
    std::optional<ObjectID> catalogSetID;
    try {
        catalogSetID = co_await sync(setNumber);
    } catch (const std::exception &error) {
        qCInfo(lcSync, "Adding %s to the collection: the sync failed: %s", qUtf8Printable(setNumber), error.what());
    }
    if (!container || !catalogSetID || !catalogSetID->isValid())
        co_return std::nullopt;
    co_return makeCopy(*container, *catalogSetID);
}

std::optional<BrickSet> CatalogSetAdder::makeCopy(PersistentContainer &container, const ObjectID &catalogSetID)
{
    ManagedObjectContext &context = container.viewContext();
    BrickSet copy;
    try {
        const std::optional<CatalogSet> set = context.existingObject<CatalogSet>(catalogSetID);
        if (!set)
            return std::nullopt;
        copy.id = QUuid::createUuid();
        copy.dateAdded = QDateTime::currentDateTimeUtc();
        copy.catalogSet = set->objectID;
        copy.setAcquisitionType(AcquisitionType::unknown);
        copy = context.insert(copy);
    } catch (const StoreError &error) {
        qCWarning(lcPersistence) << "Making a copy of a catalog set failed:" << error.description();
        return std::nullopt;
    }
    try {
        context.save();
    } catch (const StoreError &error) {
        // Dropped: the copy stays pending in the context and goes with the next save.
        qCWarning(lcPersistence) << "Saving a new copy failed:" << error.description();
    }
    return copy;
}
