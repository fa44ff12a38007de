// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Small builders shared by the store's tests: real stores in temporary folders and
// objects with the few attributes a test cares about.

#include "Store/ManagedObjectContext.h"
#include "Store/PersistenceController.h"
#include "Store/PersistentContainer.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <QUuid>

#include <functional>

namespace StoreFixtures {

using namespace Qt::StringLiterals;

inline std::unique_ptr<PersistentContainer> openStore(const QTemporaryDir &folder, const QString &name = u"Tessaloom.sqlite"_s)
{
    return PersistentContainer::open(folder.filePath(name));
}

// The error that opening the store at `path` ends in; a store that opens ends the test
// program, since every caller expects a refusal.
inline StoreError openFailure(const QString &path)
{
    try {
        PersistenceController::open(path);
    } catch (const StoreError &error) {
        return error;
    }
    qFatal("opening %s should have failed", qPrintable(path));
}

inline CatalogSet catalogSet(const QString &setNumber, const QString &name, qint16 year = 2020)
{
    CatalogSet set;
    set.setNumber = setNumber;
    set.name = name;
    set.year = year;
    return set;
}

// A copy valid with only what adding a copy sets: id, dateAdded, catalogSet, acquisitionType.
inline BrickSet newCopy(const std::optional<ObjectID> &catalogSet, const QDateTime &added = QDateTime::currentDateTimeUtc())
{
    BrickSet copy;
    copy.id = QUuid::createUuid();
    copy.dateAdded = added;
    copy.catalogSet = catalogSet;
    copy.setAcquisitionType(AcquisitionType::unknown);
    return copy;
}

// Inserts a new copy of `catalogSet`, shaped by `configure`, and saves it.
inline BrickSet saveCopy(ManagedObjectContext &context, const std::optional<ObjectID> &catalogSet,
                         const std::function<void(BrickSet &)> &configure = {})
{
    BrickSet copy = newCopy(catalogSet);
    if (configure)
        configure(copy);
    copy = context.insert(copy);
    context.save();
    return copy;
}

inline CachedPriceGuide guide(const ObjectID &catalogSet, const QString &condition, const QString &guideType,
                              const std::optional<QDateTime> &fetched, const QString &average = u"10"_s)
{
    CachedPriceGuide guide;
    guide.catalogSet = catalogSet;
    guide.conditionType = condition;
    guide.guideType = guideType;
    guide.lastFetchDate = fetched;
    guide.avgPrice = Decimal::fromString(average);
    guide.providerName = u"brickeconomy"_s;
    return guide;
}

} // namespace StoreFixtures
