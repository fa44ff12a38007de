// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewModels/CollectionFetchRequest.h"

#include "SearchTokenizer.h"
#include "Store/BrickSetQueries.h"

FetchRequest<BrickSet> CollectionFetchRequest::build(const SetListSelection &selection, const QString &searchText,
                                                     const Filters &filters,
                                                     const QList<SortDescriptor> &sortDescriptors, const QDateTime &now)
{
    using Kind = SidebarItem::Kind;
    QList<Predicate> predicates;
    if (selection.kind() == Kind::trash) {
        predicates.append(BrickSetQueries::trashed());
    } else {
        predicates.append(BrickSetQueries::notTrashed());
        switch (selection.kind().value_or(Kind::allSets)) {
        case Kind::favorites:
            predicates.append(BrickSetQueries::favorite());
            break;
        case Kind::recentlyAdded:
            predicates.append(BrickSetQueries::addedOnOrAfter(now.addDays(-30)));
            break;
        case Kind::unknownAcquisition:
            predicates.append(BrickSetQueries::acquisitionUnknownOrAbsent());
            break;
        case Kind::unknownCondition:
            // Only an absent condition: the sidebar's count also takes "unknown", the list
            // deliberately does not.
            predicates.append(BrickSetQueries::conditionAbsent());
            break;
        case Kind::retired:
            predicates.append(BrickSetQueries::retiredBefore(now));
            break;
        case Kind::noPricing:
            predicates.append(BrickSetQueries::withoutPriceGuides());
            break;
        case Kind::outdatedPricing:
            predicates.append(BrickSetQueries::pricingOlderThan(now.addDays(-7)));
            break;
        default:
            break;
        }
    }
    if (!searchText.isEmpty() && !selection.isCatalog()) {
        for (const SearchTokenizer::Token &token : SearchTokenizer::tokenize(searchText)) {
            const std::optional<qint16> year = token.year ? std::optional<qint16>(qint16(*token.year)) : std::nullopt;
            predicates.append(BrickSetQueries::matchesSearchToken(token.text, year));
        }
    }
    if (filters.themeName)
        predicates.append(BrickSetQueries::themeName(*filters.themeName));
    if (filters.year)
        predicates.append(BrickSetQueries::year(*filters.year));
    if (filters.condition)
        predicates.append(BrickSetQueries::overallCondition(Vocabulary::rawValue(*filters.condition)));
    return FetchRequest<BrickSet>(Predicate::allOf(predicates), sortDescriptors);
}
