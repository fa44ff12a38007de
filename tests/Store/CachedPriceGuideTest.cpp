// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "PriceResult.h"
#include "Store/CachedPriceGuide.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

class CachedPriceGuideTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void invalidForecastJsonGivesNoForecastsAndNoError()
    {
        CachedPriceGuide guide;
        guide.forecastsJSON = u"{not json"_s;
        guide.growthRatesJSON = u"[{\"period\": 12}]"_s;
        QVERIFY(guide.forecasts().isEmpty());
        QVERIFY(guide.growthRates().isEmpty());
        guide.forecastsJSON.reset();
        QVERIFY(guide.forecasts().isEmpty());
    }

    void storedForecastsAndGrowthRatesDecode()
    {
        CachedPriceGuide guide;
        guide.forecastsJSON = u"[{\"period\":\"2 Years\",\"value\":249.99},{\"period\":\"5 Years\",\"value\":310}]"_s;
        guide.growthRatesJSON = u"[{\"period\":\"12 Months\",\"percent\":-3.5}]"_s;
        const auto forecasts = guide.forecasts();
        QCOMPARE(forecasts.size(), 2);
        QCOMPARE(forecasts[0].period, u"2 Years"_s);
        QCOMPARE(forecasts[0].value.toString(), u"249.99"_s);
        QCOMPARE(guide.growthRates().first().percent.toString(), u"-3.5"_s);
    }

    void priceResultWithoutForecastsLeavesTheJsonAbsent()
    {
        PriceResult result = sampleResult();
        result.forecasts.clear();
        result.growthRates.clear();
        const auto guide = CachedPriceGuide::fromPriceResult(result, ObjectID{EntityType::CatalogSet, 3});
        QVERIFY(!guide.forecastsJSON.has_value());
        QVERIFY(!guide.growthRatesJSON.has_value());
    }

    void factoryCopiesEveryFieldOfThePriceResult()
    {
        const PriceResult result = sampleResult();
        const auto guide = CachedPriceGuide::fromPriceResult(result, ObjectID{EntityType::CatalogSet, 3});
        QCOMPARE(guide.conditionType, std::optional<QString>(u"new"_s));
        QCOMPARE(guide.guideType, std::optional<QString>(u"stock"_s));
        QCOMPARE(guide.avgPrice->toString(), u"99.99"_s);
        QVERIFY(!guide.minPrice);
        QCOMPARE(guide.maxPrice->toString(), u"150"_s);
        QCOMPARE(guide.quantitySold, 0); // absent becomes 0
        QCOMPARE(guide.currency, std::optional<QString>(u"USD"_s));
        QCOMPARE(guide.providerName, std::optional<QString>(u"brickeconomy"_s));
        QCOMPARE(guide.lastFetchDate, std::optional<QDateTime>(result.fetchDate));
        QCOMPARE(guide.catalogSet, std::optional<ObjectID>(ObjectID{EntityType::CatalogSet, 3}));
        QCOMPARE(guide.forecasts(), result.forecasts);
        QCOMPARE(guide.growthRates(), result.growthRates);
    }

    void factoryInsertsIntoTheContextAndSurvivesASave()
    {
        QTemporaryDir folder;
        auto store = openStore(folder);
        auto &context = store->viewContext();
        const auto set = context.insert(catalogSet(u"10497-1"_s, u"Galaxy Explorer"_s));
        const auto inserted = CachedPriceGuide::insert(context, sampleResult(), set);
        context.save();
        auto reopened = PersistentContainer::open(store->path());
        const auto stored = reopened->viewContext().existingObject<CachedPriceGuide>(inserted.objectID);
        QVERIFY(stored);
        QCOMPARE(*stored, inserted);
        QCOMPARE(stored->forecasts().first().value.toString(), u"1234567.89"_s);
    }

private:
    static PriceResult sampleResult()
    {
        PriceResult result;
        result.setNumber = u"10497-1"_s;
        result.condition = PricingCondition::new_;
        result.guideType = PricingGuideType::stock;
        result.avgPrice = Decimal::fromString(u"99.99"_s);
        result.maxPrice = Decimal::fromString(u"150"_s);
        result.currency = u"USD"_s;
        result.providerName = u"brickeconomy"_s;
        result.fetchDate = QDateTime::fromMSecsSinceEpoch(1750000000000, Qt::UTC);
        result.forecasts = {{u"2 \"Years\""_s, *Decimal::fromString(u"1234567.89"_s)}};
        result.growthRates = {{u"12 Months"_s, *Decimal::fromString(u"7.25"_s)}};
        return result;
    }
};

QTEST_GUILESS_MAIN(CachedPriceGuideTest)
#include "CachedPriceGuideTest.moc"
