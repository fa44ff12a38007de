// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/Predicate.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

// The named conditions on copies (BrickSet) that the collection's lists, the sidebar
// counts, the detail screen and the import use, each meaning exactly what its name says.
// Combine them with && and ||.
class BrickSetQueries
{
public:
    static Predicate notTrashed();                      // isTrashed == NO
    static Predicate trashed();                         // isTrashed == YES
    static Predicate favorite();                        // isFavorite == YES
    static Predicate addedOnOrAfter(const QDateTime &date);
    // acquisitionType == "unknown" OR acquisitionType == nil
    static Predicate acquisitionUnknownOrAbsent();
    // The badge's "unknown condition": overallCondition == "unknown" OR nil.
    static Predicate conditionUnknownOrAbsent();
    // The list's "unknown condition": overallCondition == nil only (the badge counts more).
    static Predicate conditionAbsent();
    static Predicate overallCondition(const QString &rawValue);
    // catalogSet.dateLastAvailable != nil AND catalogSet.dateLastAvailable < date
    static Predicate retiredBefore(const QDateTime &date);
    // catalogSet.cachedPriceGuides.@count == 0 (a copy without a catalog set has none)
    static Predicate withoutPriceGuides();
    // catalogSet.cachedPriceGuides.@count > 0 AND ANY catalogSet.cachedPriceGuides.lastFetchDate < date
    static Predicate pricingOlderThan(const QDateTime &date);
    // One search token: catalogSet.name or catalogSet.setNumber CONTAINS[cd] text, or,
    // when the token carries a year, catalogSet.year == year.
    static Predicate matchesSearchToken(const QString &text, std::optional<qint16> year);
    static Predicate themeName(const QString &themeName);  // catalogSet.themeName == name
    static Predicate year(qint16 year);                    // catalogSet.year == year
    static Predicate setNumber(const QString &setNumber);  // catalogSet.setNumber == number
    static Predicate catalogSet(const ObjectID &catalogSet);
    static Predicate id(const QUuid &id);
};
