// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/BrickSet.h"
#include "Store/CachedInstructionURL.h"
#include "Store/CachedPriceGuide.h"
#include "Store/CatalogSet.h"

#include <QList>
#include <QString>

#include <optional>

class ManagedObjectContext;

// The read-only conveniences of a catalog set, computed from its related objects. The
// pure functions take the related lists (an absent relationship is an empty list); the
// ones taking a context fetch them first.
//
// "Latest" means the greatest lastFetchDate, an absent date counting as the distant past;
// among equal dates the guide met first stays.
class CatalogSetAccessors
{
public:
    struct ProviderGuides
    {
        QString providerName; // "unknown" for guides without a provider name
        QList<CachedPriceGuide> guides;
    };

    // The market price to show: the latest used sold guide, else the latest used guide,
    // else the latest guide of any kind, else nothing.
    static std::optional<CachedPriceGuide> preferredPriceGuide(const QList<CachedPriceGuide> &guides);
    // The avgPrice of preferredPriceGuide().
    static std::optional<Decimal> preferredPrice(const QList<CachedPriceGuide> &guides);
    // The latest "new" guide; no fallback to other conditions.
    static std::optional<CachedPriceGuide> latestNewPriceGuide(const QList<CachedPriceGuide> &guides);
    // Groups by provider name ascending; within a group by conditionType, then guideType.
    static QList<ProviderGuides> priceGuidesByProvider(const QList<CachedPriceGuide> &guides);
    // Copies by dateAdded, oldest first.
    static QList<BrickSet> sortedBrickSets(const QList<BrickSet> &brickSets);
    // Booklets without the "none" marker, by descriptionText (absent as empty).
    static QList<CachedInstructionURL> sortedInstructions(const QList<CachedInstructionURL> &instructions);

    static std::optional<CachedPriceGuide> preferredPriceGuide(ManagedObjectContext &context, const ObjectID &catalogSet);
    static std::optional<Decimal> preferredPrice(ManagedObjectContext &context, const ObjectID &catalogSet);
    static std::optional<CachedPriceGuide> latestNewPriceGuide(ManagedObjectContext &context, const ObjectID &catalogSet);
    static QList<ProviderGuides> priceGuidesByProvider(ManagedObjectContext &context, const ObjectID &catalogSet);
    static QList<BrickSet> sortedBrickSets(ManagedObjectContext &context, const ObjectID &catalogSet);
    static QList<CachedInstructionURL> sortedInstructions(ManagedObjectContext &context, const ObjectID &catalogSet);
};
