// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/BrickSetQueries.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// The conditions the screens and services put to the store, each against a small
// collection made for it.
class StoreQueriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = openStore(*m_folder);
    }
    void cleanup()
    {
        m_store.reset();
        m_folder.reset();
    }

    void trashFlagSplitsCopiesIntoCollectionAndTrash()
    {
        auto &context = m_store->viewContext();
        const auto kept = context.insert(newCopy(std::nullopt));
        auto thrown = newCopy(std::nullopt);
        thrown.isTrashed = true;
        thrown = context.insert(thrown);
        context.save();
        QCOMPARE(ids(BrickSetQueries::notTrashed()), QList<ObjectID>{kept.objectID});
        QCOMPARE(ids(BrickSetQueries::trashed()), QList<ObjectID>{thrown.objectID});
    }

    void unknownAndAbsentAcquisitionBothCountAsUnknown()
    {
        auto &context = m_store->viewContext();
        const auto unknown = context.insert(newCopy(std::nullopt));
        auto absent = newCopy(std::nullopt);
        absent.acquisitionType.reset();
        absent = context.insert(absent);
        auto bought = newCopy(std::nullopt);
        bought.setAcquisitionType(AcquisitionType::purchased);
        context.insert(bought);
        auto capitalised = newCopy(std::nullopt);
        capitalised.acquisitionType = u"Unknown"_s; // equality is exact: no case folding
        context.insert(capitalised);
        QCOMPARE(ids(BrickSetQueries::notTrashed() && BrickSetQueries::acquisitionUnknownOrAbsent()),
                 (QList<ObjectID>{unknown.objectID, absent.objectID}));
    }

    void foreignUnknownConditionCountsInTheBadgeButNotInTheList()
    {
        auto &context = m_store->viewContext();
        auto foreign = newCopy(std::nullopt);
        foreign.overallCondition = u"unknown"_s;
        foreign = context.insert(foreign);
        const auto absent = context.insert(newCopy(std::nullopt));
        auto used = newCopy(std::nullopt);
        used.overallCondition = u"used"_s;
        used = context.insert(used);
        QCOMPARE(ids(BrickSetQueries::conditionUnknownOrAbsent()), (QList<ObjectID>{foreign.objectID, absent.objectID}));
        QCOMPARE(ids(BrickSetQueries::conditionAbsent()), QList<ObjectID>{absent.objectID});
        QCOMPARE(ids(BrickSetQueries::overallCondition(u"used"_s)), QList<ObjectID>{used.objectID});
    }

    void retiredNeedsALastDayInThePast()
    {
        auto &context = m_store->viewContext();
        const QDateTime now = QDateTime::currentDateTimeUtc();
        auto retiredSet = catalogSet(u"1-1"_s, u"Old"_s);
        retiredSet.dateLastAvailable = now.addDays(-1);
        auto currentSet = catalogSet(u"2-1"_s, u"Current"_s);
        currentSet.dateLastAvailable = now.addDays(30);
        const auto undatedSet = context.insert(catalogSet(u"3-1"_s, u"Undated"_s));
        const auto retired = context.insert(newCopy(context.insert(retiredSet).objectID));
        context.insert(newCopy(context.insert(currentSet).objectID));
        context.insert(newCopy(undatedSet.objectID));
        context.insert(newCopy(std::nullopt));
        QCOMPARE(ids(BrickSetQueries::retiredBefore(now)), QList<ObjectID>{retired.objectID});
    }

    void copiesWithoutGuidesAreWithoutPricingEvenWithoutACatalogSet()
    {
        auto &context = m_store->viewContext();
        const auto priced = context.insert(catalogSet(u"1-1"_s, u"Priced"_s));
        const auto unpriced = context.insert(catalogSet(u"2-1"_s, u"Unpriced"_s));
        context.insert(guide(priced.objectID, u"used"_s, u"sold"_s, QDateTime::currentDateTimeUtc()));
        context.insert(newCopy(priced.objectID));
        const auto bare = context.insert(newCopy(unpriced.objectID));
        const auto orphan = context.insert(newCopy(std::nullopt));
        QCOMPARE(ids(BrickSetQueries::withoutPriceGuides()), (QList<ObjectID>{bare.objectID, orphan.objectID}));
    }

    void oneGuideOlderThanSevenDaysMakesTheSetOutdated()
    {
        auto &context = m_store->viewContext();
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const auto mixed = context.insert(catalogSet(u"1-1"_s, u"Mixed"_s));
        context.insert(guide(mixed.objectID, u"used"_s, u"sold"_s, now.addDays(-8)));
        context.insert(guide(mixed.objectID, u"new"_s, u"sold"_s, now));
        const auto fresh = context.insert(catalogSet(u"2-1"_s, u"Fresh"_s));
        context.insert(guide(fresh.objectID, u"used"_s, u"sold"_s, now.addDays(-1)));
        const auto undated = context.insert(catalogSet(u"3-1"_s, u"Undated"_s));
        context.insert(guide(undated.objectID, u"used"_s, u"sold"_s, std::nullopt));
        const auto none = context.insert(catalogSet(u"4-1"_s, u"None"_s));
        const auto outdated = context.insert(newCopy(mixed.objectID));
        context.insert(newCopy(fresh.objectID));
        context.insert(newCopy(undated.objectID));
        context.insert(newCopy(none.objectID));
        QCOMPARE(ids(BrickSetQueries::pricingOlderThan(now.addDays(-7))), QList<ObjectID>{outdated.objectID});
    }

    void searchIgnoresCaseAndDiacriticsInNameAndNumber()
    {
        auto &context = m_store->viewContext();
        const auto cafe = context.insert(newCopy(context.insert(catalogSet(u"10182-1"_s, u"Café Corner"_s)).objectID));
        const auto falcon = context.insert(newCopy(context.insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s)).objectID));
        context.insert(newCopy(std::nullopt));
        QCOMPARE(ids(BrickSetQueries::matchesSearchToken(u"CAFE"_s, std::nullopt)), QList<ObjectID>{cafe.objectID});
        QCOMPARE(ids(BrickSetQueries::matchesSearchToken(u"corner"_s, std::nullopt)), QList<ObjectID>{cafe.objectID});
        QCOMPARE(ids(BrickSetQueries::matchesSearchToken(u"7519"_s, std::nullopt)), QList<ObjectID>{falcon.objectID});
        QCOMPARE(ids(BrickSetQueries::matchesSearchToken(u""_s, std::nullopt)), QList<ObjectID>{});
    }

    void everySearchTokenMustMatchSomeField()
    {
        auto &context = m_store->viewContext();
        const auto both = context.insert(newCopy(context.insert(catalogSet(u"10497-1"_s, u"Galaxy Explorer"_s, 2022)).objectID));
        context.insert(newCopy(context.insert(catalogSet(u"928-1"_s, u"Galaxy Explorer"_s, 1979)).objectID));
        context.insert(newCopy(context.insert(catalogSet(u"10497-2"_s, u"Other"_s, 2022)).objectID));
        const Predicate numberAndWord = BrickSetQueries::matchesSearchToken(u"10497"_s, std::nullopt)
            && BrickSetQueries::matchesSearchToken(u"galaxy"_s, std::nullopt);
        QCOMPARE(ids(numberAndWord), QList<ObjectID>{both.objectID});
        // A year token also matches the release year.
        const auto byYear = ids(BrickSetQueries::matchesSearchToken(u"1979"_s, qint16(1979)));
        QCOMPARE(byYear.size(), 1);
    }

    void filtersCompareThemeAndYearExactly()
    {
        auto &context = m_store->viewContext();
        auto castle = catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s, 2022);
        castle.themeName = u"Icons"_s;
        const auto copy = context.insert(newCopy(context.insert(castle).objectID));
        context.insert(newCopy(std::nullopt));
        QCOMPARE(ids(BrickSetQueries::themeName(u"Icons"_s) && BrickSetQueries::year(2022)), QList<ObjectID>{copy.objectID});
        QCOMPARE(ids(BrickSetQueries::themeName(u"icons"_s)), QList<ObjectID>{});
        QCOMPARE(ids(BrickSetQueries::setNumber(u"10305-1"_s)), QList<ObjectID>{copy.objectID});
    }

    void recentlyAddedComparesTheDateAdded()
    {
        auto &context = m_store->viewContext();
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const auto recent = context.insert(newCopy(std::nullopt, now.addDays(-2)));
        context.insert(newCopy(std::nullopt, now.addDays(-40)));
        QCOMPARE(ids(BrickSetQueries::addedOnOrAfter(now.addDays(-30))), QList<ObjectID>{recent.objectID});
    }

    void findOrCreatePredicatesMatchOnRelationshipsAndKeys()
    {
        auto &context = m_store->viewContext();
        const auto set = context.insert(catalogSet(u"1-1"_s, u"One"_s));
        const auto part = context.insert(CatalogPart{{}, u"3001"_s, u"Brick"_s, {}, {}});
        const auto red = context.insert(CatalogColor{{}, 4, u"Red"_s, {}, false});
        const auto blue = context.insert(CatalogColor{{}, 1, u"Blue"_s, {}, false});
        const auto line = context.insert(CatalogSetPart{{}, 2, false, set.objectID, part.objectID, red.objectID});
        context.insert(CatalogSetPart{{}, 2, false, set.objectID, part.objectID, blue.objectID});
        const auto found = context.fetchFirst(FetchRequest<CatalogSetPart>(
            Predicate::equal(u"catalogSet"_s, QVariant::fromValue(set.objectID))
            && Predicate::equal(u"catalogPart"_s, QVariant::fromValue(part.objectID))
            && Predicate::equal(u"catalogColor"_s, QVariant::fromValue(red.objectID))));
        QCOMPARE(found->objectID, line.objectID);
        QCOMPARE(context.fetchFirst(FetchRequest<CatalogColor>(Predicate::equal(u"colorID"_s, 1)))->objectID, blue.objectID);
        const auto copy = context.insert(newCopy(set.objectID));
        QCOMPARE(context.fetchFirst(FetchRequest<BrickSet>(BrickSetQueries::id(copy.id)))->objectID, copy.objectID);
    }

    void catalogSetsWithAnyCopyIncludeTrashedCopies()
    {
        auto &context = m_store->viewContext();
        const auto owned = context.insert(catalogSet(u"1-1"_s, u"Owned"_s));
        const auto trashedOnly = context.insert(catalogSet(u"2-1"_s, u"Trashed"_s));
        context.insert(catalogSet(u"3-1"_s, u"None"_s));
        context.insert(newCopy(owned.objectID));
        auto thrown = newCopy(trashedOnly.objectID);
        thrown.isTrashed = true;
        context.insert(thrown);
        const auto sets = context.fetchObjectIDs(
            FetchRequest<CatalogSet>(Predicate::count(u"brickSets"_s, Predicate::Comparison::greater, 0)));
        QCOMPARE(sets, (QList<ObjectID>{owned.objectID, trashedOnly.objectID}));
    }

    void notEqualHoldsForAbsentValuesAndOrderedComparisonsDoNot()
    {
        auto &context = m_store->viewContext();
        auto named = catalogSet(u"1-1"_s, u"Named"_s);
        const auto withName = context.insert(named);
        auto unnamed = catalogSet(u"2-1"_s, u"x"_s);
        unnamed.name.reset();
        const auto withoutName = context.insert(unnamed);
        QCOMPARE(context.fetchObjectIDs(FetchRequest<CatalogSet>(Predicate::notEqual(u"name"_s, u"Other"_s))),
                 (QList<ObjectID>{withName.objectID, withoutName.objectID}));
        QCOMPARE(context.fetchObjectIDs(FetchRequest<CatalogSet>(!Predicate::equal(u"name"_s, u"Named"_s))),
                 QList<ObjectID>{withoutName.objectID});
        QCOMPARE(context.fetchObjectIDs(FetchRequest<CatalogSet>(
                     Predicate::compare(u"dateLastAvailable"_s, Predicate::Comparison::less, QDateTime::currentDateTimeUtc()))),
                 QList<ObjectID>{});
    }

    void sortDescriptorsOrderByRelatedKeysWithAbsentFirstAndLimitApplies()
    {
        auto &context = m_store->viewContext();
        const auto b2020 = context.insert(newCopy(context.insert(catalogSet(u"2-1"_s, u"B"_s, 2020)).objectID));
        const auto a2020 = context.insert(newCopy(context.insert(catalogSet(u"1-1"_s, u"A"_s, 2020)).objectID));
        const auto c2019 = context.insert(newCopy(context.insert(catalogSet(u"3-1"_s, u"C"_s, 2019)).objectID));
        const auto orphan = context.insert(newCopy(std::nullopt));
        FetchRequest<BrickSet> byYearThenName(Predicate(), {{u"catalogSet.year"_s, false}, {u"catalogSet.name"_s, true}});
        QCOMPARE(context.fetchObjectIDs(byYearThenName),
                 (QList<ObjectID>{a2020.objectID, b2020.objectID, c2019.objectID, orphan.objectID}));
        FetchRequest<BrickSet> byName(Predicate(), {{u"catalogSet.name"_s, true}}, 2);
        QCOMPARE(context.fetchObjectIDs(byName), (QList<ObjectID>{orphan.objectID, a2020.objectID}));
        QCOMPARE(context.count(byName), qint64(2));
    }

    void unknownKeyPathIsReportedAsAnError()
    {
        QVERIFY_THROWS_EXCEPTION(StoreError,
                                 m_store->viewContext().fetch(FetchRequest<BrickSet>(Predicate::equal(u"colour"_s, 1))));
    }

private:
    QList<ObjectID> ids(const Predicate &predicate)
    {
        return m_store->viewContext().fetchObjectIDs(FetchRequest<BrickSet>(predicate));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
};

QTEST_GUILESS_MAIN(StoreQueriesTest)
#include "StoreQueriesTest.moc"
