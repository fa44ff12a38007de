// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/BrickSetQueries.h"

using namespace Qt::StringLiterals;

Predicate BrickSetQueries::notTrashed()
{
    return Predicate::equal(u"isTrashed"_s, false);
}

Predicate BrickSetQueries::trashed()
{
    return Predicate::equal(u"isTrashed"_s, true);
}

Predicate BrickSetQueries::favorite()
{
    return Predicate::equal(u"isFavorite"_s, true);
}

Predicate BrickSetQueries::addedOnOrAfter(const QDateTime &date)
{
    return Predicate::compare(u"dateAdded"_s, Predicate::Comparison::greaterOrEqual, date);
}

Predicate BrickSetQueries::acquisitionUnknownOrAbsent()
{
    return Predicate::equal(u"acquisitionType"_s, u"unknown"_s) || Predicate::isNil(u"acquisitionType"_s);
}

Predicate BrickSetQueries::conditionUnknownOrAbsent()
{
    return Predicate::equal(u"overallCondition"_s, u"unknown"_s) || Predicate::isNil(u"overallCondition"_s);
}

Predicate BrickSetQueries::conditionAbsent()
{
    return Predicate::isNil(u"overallCondition"_s);
}

Predicate BrickSetQueries::overallCondition(const QString &rawValue)
{
    return Predicate::equal(u"overallCondition"_s, rawValue);
}

Predicate BrickSetQueries::retiredBefore(const QDateTime &date)
{
    return Predicate::isNotNil(u"catalogSet.dateLastAvailable"_s)
        && Predicate::compare(u"catalogSet.dateLastAvailable"_s, Predicate::Comparison::less, date);
}

Predicate BrickSetQueries::withoutPriceGuides()
{
    return Predicate::count(u"catalogSet.cachedPriceGuides"_s, Predicate::Comparison::equal, 0);
}

Predicate BrickSetQueries::pricingOlderThan(const QDateTime &date)
{
    return Predicate::count(u"catalogSet.cachedPriceGuides"_s, Predicate::Comparison::greater, 0)
        && Predicate::any(u"catalogSet.cachedPriceGuides"_s, u"lastFetchDate"_s, Predicate::Comparison::less, date);
}

Predicate BrickSetQueries::matchesSearchToken(const QString &text, std::optional<qint16> year)
{
    QList<Predicate> alternatives{
        Predicate::containsFolded(u"catalogSet.name"_s, text),
        Predicate::containsFolded(u"catalogSet.setNumber"_s, text),
    };
    if (year)
        alternatives.append(BrickSetQueries::year(*year));
    return Predicate::anyOf(alternatives);
}

Predicate BrickSetQueries::themeName(const QString &themeName)
{
    return Predicate::equal(u"catalogSet.themeName"_s, themeName);
}

Predicate BrickSetQueries::year(qint16 year)
{
    return Predicate::equal(u"catalogSet.year"_s, int(year));
}

Predicate BrickSetQueries::setNumber(const QString &setNumber)
{
    return Predicate::equal(u"catalogSet.setNumber"_s, setNumber);
}

Predicate BrickSetQueries::catalogSet(const ObjectID &catalogSet)
{
    return Predicate::equal(u"catalogSet"_s, QVariant::fromValue(catalogSet));
}

Predicate BrickSetQueries::id(const QUuid &id)
{
    return Predicate::equal(u"id"_s, id);
}
