// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/CatalogSetAccessors.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

class CatalogSetAccessorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void setWithOnlyANewGuidePrefersItAndCallsItTheLatestNewGuide()
    {
        const ObjectID set{EntityType::CatalogSet, 1};
        const auto onlyNew = guide(set, u"new"_s, u"sold"_s, QDateTime::currentDateTimeUtc(), u"120.50"_s);
        QCOMPARE(CatalogSetAccessors::preferredPriceGuide({onlyNew}), onlyNew);
        QCOMPARE(CatalogSetAccessors::latestNewPriceGuide({onlyNew}), onlyNew);
        QCOMPARE(CatalogSetAccessors::preferredPrice({onlyNew})->toString(), u"120.5"_s);
    }

    void usedSoldGuideFromAYearAgoBeatsAUsedStockGuideFromToday()
    {
        const ObjectID set{EntityType::CatalogSet, 1};
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const auto stockToday = guide(set, u"used"_s, u"stock"_s, now, u"80"_s);
        const auto soldLastYear = guide(set, u"used"_s, u"sold"_s, now.addYears(-1), u"70"_s);
        QCOMPARE(CatalogSetAccessors::preferredPriceGuide({stockToday, soldLastYear}), soldLastYear);
        QCOMPARE(CatalogSetAccessors::preferredPrice({stockToday, soldLastYear})->toString(), u"70"_s);
    }

    void guideWithoutFetchDateLosesAgainstAnyDatedGuide()
    {
        const ObjectID set{EntityType::CatalogSet, 1};
        const auto undated = guide(set, u"used"_s, u"sold"_s, std::nullopt, u"1"_s);
        const auto ancient = guide(set, u"used"_s, u"sold"_s, QDateTime::fromMSecsSinceEpoch(0, Qt::UTC), u"2"_s);
        QCOMPARE(CatalogSetAccessors::preferredPriceGuide({undated, ancient}), ancient);
        QCOMPARE(CatalogSetAccessors::preferredPriceGuide({ancient, undated}), ancient);
    }

    void amongEqualDatesTheFirstGuideStays()
    {
        const ObjectID set{EntityType::CatalogSet, 1};
        const QDateTime when = QDateTime::currentDateTimeUtc();
        const auto first = guide(set, u"used"_s, u"sold"_s, when, u"1"_s);
        const auto second = guide(set, u"used"_s, u"sold"_s, when, u"2"_s);
        QCOMPARE(CatalogSetAccessors::preferredPriceGuide({first, second}), first);
    }

    void usedGuideOfAnyTypeComesBeforeNewGuides()
    {
        const ObjectID set{EntityType::CatalogSet, 1};
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const auto usedStock = guide(set, u"used"_s, u"stock"_s, now.addDays(-3));
        const auto newSold = guide(set, u"new"_s, u"sold"_s, now);
        QCOMPARE(CatalogSetAccessors::preferredPriceGuide({newSold, usedStock}), usedStock);
        QCOMPARE(CatalogSetAccessors::latestNewPriceGuide({usedStock}), std::nullopt);
        QCOMPARE(CatalogSetAccessors::preferredPriceGuide({}), std::nullopt);
        QCOMPARE(CatalogSetAccessors::preferredPrice({}), std::nullopt);
    }

    void guidesGroupByProviderThenSortByConditionAndType()
    {
        const ObjectID set{EntityType::CatalogSet, 1};
        auto usedStock = guide(set, u"used"_s, u"stock"_s, std::nullopt);
        auto newSold = guide(set, u"new"_s, u"sold"_s, std::nullopt);
        auto usedSold = guide(set, u"used"_s, u"sold"_s, std::nullopt);
        usedStock.providerName = u"bricklink"_s;
        newSold.providerName = u"bricklink"_s;
        usedSold.providerName.reset();
        auto economy = guide(set, u"new"_s, u"stock"_s, std::nullopt);
        const auto groups = CatalogSetAccessors::priceGuidesByProvider({usedStock, usedSold, economy, newSold});
        QCOMPARE(groups.size(), 3);
        QCOMPARE(groups[0].providerName, u"brickeconomy"_s);
        QCOMPARE(groups[1].providerName, u"bricklink"_s);
        QCOMPARE(groups[1].guides, (QList<CachedPriceGuide>{newSold, usedStock}));
        QCOMPARE(groups[2].providerName, u"unknown"_s);
        QCOMPARE(groups[2].guides, QList<CachedPriceGuide>{usedSold});
    }

    void copiesSortOldestFirst()
    {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const auto newer = newCopy(std::nullopt, now);
        const auto older = newCopy(std::nullopt, now.addDays(-1));
        QCOMPARE(CatalogSetAccessors::sortedBrickSets({newer, older}), (QList<BrickSet>{older, newer}));
    }

    void noneMarkerAloneLeavesNoSortedInstructionsButStaysStored()
    {
        QTemporaryDir folder;
        auto store = openStore(folder);
        auto &context = store->viewContext();
        const auto set = context.insert(catalogSet(u"10294-1"_s, u"Titanic"_s));
        context.insert(CachedInstructionURL{{}, CachedInstructionURL::noneMarker, {}, {}, QDateTime::currentDateTimeUtc(), set.objectID});
        context.save();
        QCOMPARE(CatalogSetAccessors::sortedInstructions(context, set.objectID).size(), 0);
        QCOMPARE(context.related<CachedInstructionURL>(set.objectID, u"cachedInstructions"_s).size(), 1);
    }

    void instructionsSortByLabelWithAbsentLabelsFirst()
    {
        const ObjectID set{EntityType::CatalogSet, 1};
        const CachedInstructionURL second{{}, u"b.pdf"_s, u"Book 2"_s, {}, {}, set};
        const CachedInstructionURL first{{}, u"a.pdf"_s, u"Book 1"_s, {}, {}, set};
        const CachedInstructionURL unlabelled{{}, u"c.pdf"_s, {}, {}, {}, set};
        const CachedInstructionURL marker{{}, u"none"_s, {}, {}, {}, set};
        QCOMPARE(CatalogSetAccessors::sortedInstructions({second, marker, first, unlabelled}),
                 (QList<CachedInstructionURL>{unlabelled, first, second}));
    }

    void contextVariantsReadTheSetsRelationships()
    {
        QTemporaryDir folder;
        auto store = openStore(folder);
        auto &context = store->viewContext();
        const auto set = context.insert(catalogSet(u"1-1"_s, u"One"_s));
        const auto other = context.insert(catalogSet(u"2-1"_s, u"Two"_s));
        const QDateTime now = QDateTime::currentDateTimeUtc();
        context.insert(guide(set.objectID, u"used"_s, u"sold"_s, now, u"42"_s));
        context.insert(guide(other.objectID, u"used"_s, u"sold"_s, now.addDays(1), u"99"_s));
        const auto older = context.insert(newCopy(set.objectID, now.addDays(-5)));
        const auto newer = context.insert(newCopy(set.objectID, now));
        context.save();
        QCOMPARE(CatalogSetAccessors::preferredPrice(context, set.objectID)->toString(), u"42"_s);
        QCOMPARE(CatalogSetAccessors::preferredPrice(context, ObjectID{EntityType::CatalogSet, 77}), std::nullopt);
        const auto copies = CatalogSetAccessors::sortedBrickSets(context, set.objectID);
        QCOMPARE(copies.size(), 2);
        QCOMPARE(copies[0].objectID, older.objectID);
        QCOMPARE(copies[1].objectID, newer.objectID);
    }
};

QTEST_GUILESS_MAIN(CatalogSetAccessorsTest)
#include "CatalogSetAccessorsTest.moc"
