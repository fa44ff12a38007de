// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/CatalogSetAccessors.h"

#include "Store/ManagedObjectContext.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

qint64 fetchTime(const CachedPriceGuide &guide)
{
    return guide.lastFetchDate && guide.lastFetchDate->isValid() ? guide.lastFetchDate->toMSecsSinceEpoch()
                                                                 : std::numeric_limits<qint64>::min();
}

template <typename Filter>
std::optional<CachedPriceGuide> latest(const QList<CachedPriceGuide> &guides, Filter filter)
{
    std::optional<CachedPriceGuide> best;
    for (const CachedPriceGuide &guide : guides) {
        // Strictly later replaces: with equal dates the first guide met stays.
        if (filter(guide) && (!best || fetchTime(guide) > fetchTime(*best)))
            best = guide;
    }
    return best;
}

QString orEmpty(const std::optional<QString> &text)
{
    return text.value_or(QString());
}

} // namespace

std::optional<CachedPriceGuide> CatalogSetAccessors::preferredPriceGuide(const QList<CachedPriceGuide> &guides)
{
    if (auto usedSold = latest(guides, [](const CachedPriceGuide &guide) {
            return guide.conditionType == u"used"_s && guide.guideType == u"sold"_s;
        }))
        return usedSold;
    if (auto used = latest(guides, [](const CachedPriceGuide &guide) { return guide.conditionType == u"used"_s; }))
        return used;
    return latest(guides, [](const CachedPriceGuide &) { return true; });
}

std::optional<Decimal> CatalogSetAccessors::preferredPrice(const QList<CachedPriceGuide> &guides)
{
    const auto guide = preferredPriceGuide(guides);
    return guide ? guide->avgPrice : std::nullopt;
}

std::optional<CachedPriceGuide> CatalogSetAccessors::latestNewPriceGuide(const QList<CachedPriceGuide> &guides)
{
    return latest(guides, [](const CachedPriceGuide &guide) { return guide.conditionType == u"new"_s; });
}

QList<CatalogSetAccessors::ProviderGuides> CatalogSetAccessors::priceGuidesByProvider(const QList<CachedPriceGuide> &guides)
{
    QList<ProviderGuides> groups;
    for (const CachedPriceGuide &guide : guides) {
        const QString provider = guide.providerName.value_or(u"unknown"_s);
        auto group = std::find_if(groups.begin(), groups.end(),
                                  [&provider](const ProviderGuides &candidate) { return candidate.providerName == provider; });
        if (group == groups.end())
            groups.append(ProviderGuides{provider, {guide}});
        else
            group->guides.append(guide);
    }
    std::stable_sort(groups.begin(), groups.end(),
                     [](const ProviderGuides &left, const ProviderGuides &right) { return left.providerName < right.providerName; });
    for (ProviderGuides &group : groups) {
        std::stable_sort(group.guides.begin(), group.guides.end(), [](const CachedPriceGuide &left, const CachedPriceGuide &right) {
            const QString leftCondition = orEmpty(left.conditionType);
            const QString rightCondition = orEmpty(right.conditionType);
            if (leftCondition != rightCondition)
                return leftCondition < rightCondition;
            return orEmpty(left.guideType) < orEmpty(right.guideType);
        });
    }
    return groups;
}

QList<BrickSet> CatalogSetAccessors::sortedBrickSets(const QList<BrickSet> &brickSets)
{
    QList<BrickSet> sorted = brickSets;
    auto addedAt = [](const BrickSet &brickSet) {
        return brickSet.dateAdded && brickSet.dateAdded->isValid() ? brickSet.dateAdded->toMSecsSinceEpoch()
                                                                   : std::numeric_limits<qint64>::min();
    };
    std::stable_sort(sorted.begin(), sorted.end(),
                     [&addedAt](const BrickSet &left, const BrickSet &right) { return addedAt(left) < addedAt(right); });
    return sorted;
}

QList<CachedInstructionURL> CatalogSetAccessors::sortedInstructions(const QList<CachedInstructionURL> &instructions)
{
    QList<CachedInstructionURL> booklets;
    for (const CachedInstructionURL &instruction : instructions) {
        if (!instruction.isNoneMarker())
            booklets.append(instruction);
    }
    std::stable_sort(booklets.begin(), booklets.end(), [](const CachedInstructionURL &left, const CachedInstructionURL &right) {
        return orEmpty(left.descriptionText) < orEmpty(right.descriptionText);
    });
    return booklets;
}

std::optional<CachedPriceGuide> CatalogSetAccessors::preferredPriceGuide(ManagedObjectContext &context, const ObjectID &catalogSet)
{
    return preferredPriceGuide(context.related<CachedPriceGuide>(catalogSet, u"cachedPriceGuides"_s));
}

std::optional<Decimal> CatalogSetAccessors::preferredPrice(ManagedObjectContext &context, const ObjectID &catalogSet)
{
    return preferredPrice(context.related<CachedPriceGuide>(catalogSet, u"cachedPriceGuides"_s));
}

std::optional<CachedPriceGuide> CatalogSetAccessors::latestNewPriceGuide(ManagedObjectContext &context, const ObjectID &catalogSet)
{
    return latestNewPriceGuide(context.related<CachedPriceGuide>(catalogSet, u"cachedPriceGuides"_s));
}

QList<CatalogSetAccessors::ProviderGuides> CatalogSetAccessors::priceGuidesByProvider(ManagedObjectContext &context,
                                                                                      const ObjectID &catalogSet)
{
    return priceGuidesByProvider(context.related<CachedPriceGuide>(catalogSet, u"cachedPriceGuides"_s));
}

QList<BrickSet> CatalogSetAccessors::sortedBrickSets(ManagedObjectContext &context, const ObjectID &catalogSet)
{
    return sortedBrickSets(context.related<BrickSet>(catalogSet, u"brickSets"_s));
}

QList<CachedInstructionURL> CatalogSetAccessors::sortedInstructions(ManagedObjectContext &context, const ObjectID &catalogSet)
{
    return sortedInstructions(context.related<CachedInstructionURL>(catalogSet, u"cachedInstructions"_s));
}
