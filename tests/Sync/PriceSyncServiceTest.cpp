// SPDX-License-Identifier: GPL-3.0-or-later
// Prices into the store: CatalogSyncService's syncExternalData, syncPrices, persistPrices
// and refreshAllPrices over a real store file, with price sources of the test's own that
// answer from a table (one with a bulk call, one without) and count what they are asked.
#include "PriceSyncFixture.h"
#include "SyncLogRecord.h"
#include "TestEnvironment.h"

#include "Services/CatalogSyncService.h"
#include "Services/PriceRefreshProgress.h"
#include "Store/PersistenceController.h"
#include "Store/PersistentContainer.h"
#include "Views/TranslationLoader.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

const QString noProviderLine = u"No pricing provider with valid credentials configured"_s;

SyncLogRecord::Line info(const QString &text)
{
    return {QtInfoMsg, text};
}

SyncLogRecord::Line error(const QString &text)
{
    return {QtCriticalMsg, text};
}

PriceResult resultFor(const QString &setNumber, const QString &provider)
{
    PriceResult result;
    result.setNumber = setNumber;
    result.condition = PricingCondition::new_;
    result.guideType = PricingGuideType::sold;
    result.avgPrice = Decimal::fromString(u"100"_s);
    result.currency = u"USD"_s;
    result.providerName = provider;
    result.fetchDate = QDateTime::currentDateTimeUtc();
    return result;
}

} // namespace

class PriceSyncServiceTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistenceController> m_controller;
    std::unique_ptr<PricingProviderRegistry> m_registry;
    std::unique_ptr<CatalogSyncService> m_service;

    // "single" has no bulk call, "bulk" has one; which the sync takes depends on order.
    void useProviders(const QList<std::pair<QString, bool>> &providers)
    {
        m_service.reset();
        m_registry = registryOf(providers);
        m_service = std::make_unique<CatalogSyncService>(*m_controller, *m_registry);
    }

    TablePriceProvider &provider(qsizetype index = 0) { return tableProvider(*m_registry, index); }
    PriceStore store() { return PriceStore{m_controller->container().viewContext()}; }

    void run(QCoro::Task<> task) { QCoro::waitFor(std::move(task)); }

    void refuseWritesTo(const QString &table)
    {
        sqlite3 *database = nullptr;
        QCOMPARE(sqlite3_open(QFile::encodeName(m_folder->filePath(u"Tessaloom.sqlite"_s)).constData(), &database), SQLITE_OK);
        const QByteArray sql = "CREATE TRIGGER refuse_" + table.toUtf8() + " BEFORE INSERT ON " + table.toUtf8()
            + " BEGIN SELECT RAISE(ABORT, 'writes refused by the test'); END";
        const int result = sqlite3_exec(database, sql.constData(), nullptr, nullptr, nullptr);
        sqlite3_close(database);
        QCOMPARE(result, SQLITE_OK);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_controller = PersistenceController::open(m_folder->filePath(u"Tessaloom.sqlite"_s));
        useProviders({{u"single"_s, false}});
    }

    void cleanup()
    {
        m_service.reset();
        m_registry.reset();
        m_controller.reset();
        m_folder.reset();
    }

    // syncExternalData

    void syncExternalDataAppendsThePriceSyncAndAnEmptySlot()
    {
        const CatalogSet set = store().addSet(u"75192-1"_s);
        std::vector<QCoro::Task<>> group;
        m_service->syncExternalData(group, u"75192-1"_s, set.objectID);
        QCOMPARE(group.size(), size_t(2));
        for (QCoro::Task<> &task : group)
            run(std::move(task));
        QCOMPARE(provider().singleRequests, QStringList{u"75192-1"_s});
        QCOMPARE(store().guidesOf(set.objectID).size(), 1);
    }

    void theSecondChildOfSyncExternalDataDoesNothing()
    {
        const CatalogSet set = store().addSet(u"75192-1"_s);
        const SyncLogRecord log;
        std::vector<QCoro::Task<>> group;
        m_service->syncExternalData(group, u"75192-1"_s, set.objectID);
        run(std::move(group[1]));
        run(std::move(group[0]));
        // One request and one line, both of the price sync.
        QCOMPARE(provider().singleRequests.size(), 1);
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{info(u"Synced 1 price guides for 75192-1 via single"_s)}));
    }

    // syncPrices and persistPrices

    void syncStoresOneGuidePerResultWithEveryAttribute()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        PriceResult result = resultFor(u"10497-1"_s, u"single"_s);
        result.condition = PricingCondition::used;
        result.guideType = PricingGuideType::stock;
        result.avgPrice = Decimal::fromString(u"99.99"_s);
        result.minPrice = Decimal::fromString(u"80"_s);
        result.maxPrice = Decimal::fromString(u"120.5"_s);
        result.quantitySold = 17;
        result.currency = u"EUR"_s;
        result.fetchDate = QDateTime(QDate(2026, 3, 1), QTime(12, 30), Qt::UTC);
        result.forecasts = {{u"2 Years"_s, *Decimal::fromString(u"130"_s)}};
        result.growthRates = {{u"12 Months"_s, *Decimal::fromString(u"9.75"_s)}};
        provider().results.insert(u"10497-1"_s, {result, resultFor(u"10497-1"_s, u"single"_s)});
        const SyncLogRecord log;

        run(m_service->syncPrices(u"10497-1"_s, set.objectID));

        const QList<CachedPriceGuide> guides = store().guidesOf(set.objectID);
        QCOMPARE(guides.size(), 2);
        const CachedPriceGuide &guide = guides[0];
        QCOMPARE(guide.conditionType, u"used"_s);
        QCOMPARE(guide.guideType, u"stock"_s);
        QCOMPARE(guide.avgPrice, Decimal::fromString(u"99.99"_s));
        QCOMPARE(guide.minPrice, Decimal::fromString(u"80"_s));
        QCOMPARE(guide.maxPrice, Decimal::fromString(u"120.5"_s));
        QCOMPARE(guide.quantitySold, 17);
        QCOMPARE(guide.currency, u"EUR"_s);
        QCOMPARE(guide.providerName, u"single"_s);
        QCOMPARE(guide.lastFetchDate, result.fetchDate);
        QCOMPARE(guide.forecasts(), result.forecasts);
        QCOMPARE(guide.growthRates(), result.growthRates);
        QCOMPARE(guide.catalogSet, set.objectID);
        QCOMPARE(guides[1].conditionType, u"new"_s);
        QCOMPARE(guides[1].quantitySold, 0);
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{info(u"Synced 2 price guides for 10497-1 via single"_s)}));
    }

    void resultWithEmptyForecastsLeavesTheirJSONAbsent()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        run(m_service->persistPrices({resultFor(u"10497-1"_s, u"single"_s)}, u"single"_s, set.objectID));
        const QList<CachedPriceGuide> guides = store().guidesOf(set.objectID);
        QCOMPARE(guides.size(), 1);
        QVERIFY(!guides[0].forecastsJSON);
        QVERIFY(!guides[0].growthRatesJSON);
    }

    void syncThroughOneProviderReplacesOnlyItsGuides()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        const CachedPriceGuide oldOfA = store().addGuide(set, u"a"_s, daysAgo(1), u"1"_s);
        const CachedPriceGuide ofB = store().addGuide(set, u"b"_s, daysAgo(1), u"2"_s);
        PriceResult fresh = resultFor(u"10497-1"_s, u"a"_s);
        fresh.avgPrice = Decimal::fromString(u"3"_s);

        run(m_service->persistPrices({fresh}, u"a"_s, set.objectID));

        const QList<CachedPriceGuide> guides = store().guidesOf(set.objectID);
        QCOMPARE(guides.size(), 2);
        QCOMPARE(guides[0], ofB);
        QVERIFY(guides[1].objectID != oldOfA.objectID);
        QCOMPARE(guides[1].providerName, u"a"_s);
        QCOMPARE(guides[1].avgPrice, Decimal::fromString(u"3"_s));
    }

    void guidesWithoutProviderNameAreSweptAwayByTheFirstSync()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        store().addGuide(set, std::nullopt, daysAgo(1));
        store().addGuide(set, std::nullopt, std::nullopt);
        run(m_service->persistPrices({resultFor(u"10497-1"_s, u"b"_s)}, u"b"_s, set.objectID));
        const QList<CachedPriceGuide> guides = store().guidesOf(set.objectID);
        QCOMPARE(guides.size(), 1);
        QCOMPARE(guides[0].providerName, u"b"_s);
    }

    void emptyAnswerDeletesTheProvidersGuidesAndLogsCountZero()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        store().addGuide(set, u"single"_s, daysAgo(1));
        store().addGuide(set, std::nullopt, daysAgo(1));
        const CachedPriceGuide other = store().addGuide(set, u"other"_s, daysAgo(1));
        provider().results.insert(u"10497-1"_s, {});
        const SyncLogRecord log;

        run(m_service->syncPrices(u"10497-1"_s, set.objectID));

        QCOMPARE(store().guidesOf(set.objectID), QList<CachedPriceGuide>{other});
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{info(u"Synced 0 price guides for 10497-1 via single"_s)}));
    }

    void retailPriceWithoutCurrencyWritesNeither()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        PriceResult result = resultFor(u"10497-1"_s, u"single"_s);
        result.retailPrice = Decimal::fromString(u"99.99"_s);
        run(m_service->persistPrices({result}, u"single"_s, set.objectID));
        const CatalogSet stored = store().reread(set.objectID);
        QVERIFY(!stored.retailPrice);
        QVERIFY(!stored.retailPriceCurrency);
    }

    void firstResultWithARetailPriceWins()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        PriceResult first = resultFor(u"10497-1"_s, u"single"_s);
        PriceResult second = first;
        PriceResult third = first;
        second.retailPrice = Decimal::fromString(u"99.99"_s);
        second.retailPriceCurrency = u"USD"_s;
        third.retailPrice = Decimal::fromString(u"89.99"_s);
        third.retailPriceCurrency = u"GBP"_s;
        run(m_service->persistPrices({first, second, third}, u"single"_s, set.objectID));
        const CatalogSet stored = store().reread(set.objectID);
        QCOMPARE(stored.retailPrice, Decimal::fromString(u"99.99"_s));
        QCOMPARE(stored.retailPriceCurrency, u"USD"_s);
    }

    void standingRetailPriceIsKeptWhenNewResultsDiffer()
    {
        CatalogSet set = store().addSet(u"10497-1"_s);
        set.retailPrice = Decimal::fromString(u"79.99"_s);
        set.retailPriceCurrency = u"EUR"_s;
        store().context.update(set);
        store().context.save();
        PriceResult result = resultFor(u"10497-1"_s, u"single"_s);
        result.retailPrice = Decimal::fromString(u"99.99"_s);
        result.retailPriceCurrency = u"USD"_s;

        run(m_service->persistPrices({result}, u"single"_s, set.objectID));

        const CatalogSet stored = store().reread(set.objectID);
        QCOMPARE(stored.retailPrice, Decimal::fromString(u"79.99"_s));
        QCOMPARE(stored.retailPriceCurrency, u"EUR"_s);
        QCOMPARE(store().guidesOf(set.objectID).size(), 1);
    }

    void retiredDateInDayFormGivesThatDayAtLocalMidnight()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        PriceResult result = resultFor(u"10497-1"_s, u"single"_s);
        result.retiredDate = u"2024-12-31"_s;
        run(m_service->persistPrices({result}, u"single"_s, set.objectID));
        const CatalogSet stored = store().reread(set.objectID);
        QVERIFY(stored.dateLastAvailable);
        QCOMPARE(*stored.dateLastAvailable, QDateTime(QDate(2024, 12, 31), QTime(0, 0)));
    }

    void retiredDateInAnyOtherFormLeavesTheDateAbsent()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        PriceResult first = resultFor(u"10497-1"_s, u"single"_s);
        PriceResult second = first;
        first.retiredDate = u"31/12/2024"_s;
        second.retiredDate = u"2024-12-31T00:00:00Z"_s;
        run(m_service->persistPrices({first, second}, u"single"_s, set.objectID));
        QVERIFY(!store().reread(set.objectID).dateLastAvailable);
        QCOMPARE(store().guidesOf(set.objectID).size(), 2);
    }

    void standingDateLastAvailableIsKept()
    {
        CatalogSet set = store().addSet(u"10497-1"_s);
        const QDateTime standing(QDate(2020, 6, 1), QTime(0, 0));
        set.dateLastAvailable = standing;
        store().context.update(set);
        store().context.save();
        PriceResult result = resultFor(u"10497-1"_s, u"single"_s);
        result.retiredDate = u"2024-12-31"_s;
        run(m_service->persistPrices({result}, u"single"_s, set.objectID));
        QCOMPARE(store().reread(set.objectID).dateLastAvailable, standing);
    }

    void failedQueryIsLoggedAndKeepsTheStoredGuides()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        const CachedPriceGuide stored = store().addGuide(set, u"single"_s, daysAgo(30));
        provider().failingSets.insert(u"10497-1"_s);
        const SyncLogRecord log;

        run(m_service->syncPrices(u"10497-1"_s, set.objectID));

        QCOMPARE(store().guidesOf(set.objectID), QList<CachedPriceGuide>{stored});
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{error(u"Failed to sync prices for 10497-1: HTTP error 500"_s)}));
    }

    void syncWithoutProviderLogsTheLineAndKeepsTheStoredGuides()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        const CachedPriceGuide stored = store().addGuide(set, u"single"_s, daysAgo(30));
        provider().hasCredentials = false;
        const SyncLogRecord log;

        run(m_service->syncPrices(u"10497-1"_s, set.objectID));

        QVERIFY(provider().singleRequests.isEmpty());
        QCOMPARE(store().guidesOf(set.objectID), QList<CachedPriceGuide>{stored});
        QCOMPARE(log.lines(), QList<SyncLogRecord::Line>{error(noProviderLine)});
    }

    void persistingForASetThatIsGoneEndsQuietly()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        store().context.deleteObject(set);
        store().context.save();
        const SyncLogRecord log;
        run(m_service->persistPrices({resultFor(u"10497-1"_s, u"single"_s)}, u"single"_s, set.objectID));
        QVERIFY(log.lines().isEmpty());
        QCOMPARE(store().context.count(FetchRequest<CachedPriceGuide>(Predicate())), 0);
    }

    void persistingForAnObjectThatIsNoCatalogSetEndsQuietly()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        const BrickSet copy = store().addCopy(set);
        const SyncLogRecord log;
        run(m_service->persistPrices({resultFor(u"10497-1"_s, u"single"_s)}, u"single"_s, copy.objectID));
        QVERIFY(log.lines().isEmpty());
        QCOMPARE(store().context.count(FetchRequest<CachedPriceGuide>(Predicate())), 0);
    }

    void failedSaveIsLoggedAndKeepsTheOldGuides()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        const CachedPriceGuide stored = store().addGuide(set, u"single"_s, daysAgo(30));
        refuseWritesTo(u"CachedPriceGuide"_s);
        const SyncLogRecord log;

        run(m_service->syncPrices(u"10497-1"_s, set.objectID));

        QCOMPARE(store().guidesOf(set.objectID), QList<CachedPriceGuide>{stored});
        const QList<SyncLogRecord::Line> lines = log.lines();
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[0].type, QtCriticalMsg);
        QVERIFY2(lines[0].text.startsWith(u"Failed to persist price results: "_s), qPrintable(lines[0].text));
        QVERIFY2(lines[0].text.contains(u"writes refused by the test"_s), qPrintable(lines[0].text));
        // The sync's own line follows all the same.
        QCOMPARE(lines[1], info(u"Synced 1 price guides for 10497-1 via single"_s));
    }

    // refreshAllPrices: which sets it refreshes

    void ownedSetWhoseGuidesAreAllSixDaysOldIsNoTarget()
    {
        const CatalogSet set = store().addOwnedSet(u"10497-1"_s);
        const CachedPriceGuide first = store().addGuide(set, u"single"_s, daysAgo(6));
        const CachedPriceGuide second = store().addGuide(set, u"other"_s, daysAgo(6));
        run(m_service->refreshAllPrices());
        QVERIFY(provider().singleRequests.isEmpty());
        QCOMPARE(store().guidesOf(set.objectID), (QList<CachedPriceGuide>{first, second}));
    }

    void oneStaleGuideNextToFreshOnesMakesTheSetATarget()
    {
        const CatalogSet set = store().addOwnedSet(u"10497-1"_s);
        store().addGuide(set, u"single"_s, daysAgo(1));
        store().addGuide(set, u"single"_s, daysAgo(6));
        const CachedPriceGuide stale = store().addGuide(set, u"other"_s, daysAgo(7.01));

        run(m_service->refreshAllPrices());

        QCOMPARE(provider().singleRequests, QStringList{u"10497-1"_s});
        // Every guide of the provider replaced; the other provider's stays as it was.
        const QList<CachedPriceGuide> guides = store().guidesOf(set.objectID);
        QCOMPARE(guides.size(), 2);
        QCOMPARE(guides[0], stale);
        QCOMPARE(guides[1].providerName, u"single"_s);
        QCOMPARE(guides[1].avgPrice, Decimal::fromString(u"42.5"_s));
    }

    void guideWithoutFetchDateMakesTheSetATarget()
    {
        const CatalogSet set = store().addOwnedSet(u"10497-1"_s);
        store().addGuide(set, u"single"_s, daysAgo(1));
        store().addGuide(set, u"single"_s, std::nullopt);
        run(m_service->refreshAllPrices());
        QCOMPARE(provider().singleRequests, QStringList{u"10497-1"_s});
    }

    void ownedSetWithoutGuidesIsATarget()
    {
        const CatalogSet set = store().addOwnedSet(u"10497-1"_s);
        run(m_service->refreshAllPrices());
        QCOMPARE(provider().singleRequests, QStringList{u"10497-1"_s});
        QCOMPARE(store().guidesOf(set.objectID).size(), 1);
    }

    void setOwnedOnlyThroughATrashedCopyIsATarget()
    {
        const CatalogSet set = store().addSet(u"10497-1"_s);
        store().addCopy(set, true);
        run(m_service->refreshAllPrices());
        QCOMPARE(provider().singleRequests, QStringList{u"10497-1"_s});
    }

    void setWithoutCopiesIsNoTarget()
    {
        store().addSet(u"10497-1"_s);
        const SyncLogRecord log;
        run(m_service->refreshAllPrices());
        QVERIFY(provider().singleRequests.isEmpty());
        QVERIFY(log.lines().isEmpty());
    }

    void refreshWithoutTargetsAsksForNoProvider()
    {
        provider().hasCredentials = false;
        const SyncLogRecord log;
        run(m_service->refreshAllPrices());
        QVERIFY(log.lines().isEmpty());
        QVERIFY(!m_service->priceRefreshProgress().isRunning());
    }

    void refreshWithoutProviderLogsTheLineAndKeepsTheStoredGuides()
    {
        const CatalogSet set = store().addOwnedSet(u"10497-1"_s);
        const CachedPriceGuide stored = store().addGuide(set, u"single"_s, daysAgo(30));
        provider().hasCredentials = false;
        const SyncLogRecord log;
        run(m_service->refreshAllPrices());
        QCOMPARE(log.lines(), QList<SyncLogRecord::Line>{error(noProviderLine)});
        QCOMPARE(store().guidesOf(set.objectID), QList<CachedPriceGuide>{stored});
    }

    // refreshAllPrices: how it asks

    void providerWithoutBulkFetchIsQueriedOncePerTargetInFetchOrder()
    {
        store().addOwnedSet(u"3-1"_s);
        store().addOwnedSet(u"1-1"_s);
        store().addOwnedSet(u"2-1"_s);
        run(m_service->refreshAllPrices());
        QCOMPARE(provider().singleRequests, (QStringList{u"3-1"_s, u"1-1"_s, u"2-1"_s}));
        QVERIFY(provider().bulkRequests.isEmpty());
    }

    void providerWithBulkFetchIsQueriedOnceForAllTargets()
    {
        useProviders({{u"single"_s, false}, {u"bulk"_s, true}});
        const CatalogSet first = store().addOwnedSet(u"3-1"_s);
        const CatalogSet second = store().addOwnedSet(u"1-1"_s);
        const SyncLogRecord log;

        run(m_service->refreshAllPrices());

        QCOMPARE(provider(1).bulkRequests, QList<QStringList>{(QStringList{u"3-1"_s, u"1-1"_s})});
        QVERIFY(provider(1).singleRequests.isEmpty());
        QVERIFY(provider(0).singleRequests.isEmpty());
        QCOMPARE(store().guidesOf(first.objectID).size(), 1);
        QCOMPARE(store().guidesOf(second.objectID)[0].providerName, u"bulk"_s);
        QVERIFY(log.lines().isEmpty());
    }

    void bulkResultsAreGroupedBySetNumberInTheirOrder()
    {
        useProviders({{u"bulk"_s, true}});
        const CatalogSet set = store().addOwnedSet(u"1-1"_s);
        PriceResult newFigure = resultFor(u"1-1"_s, u"bulk"_s);
        PriceResult usedFigure = newFigure;
        usedFigure.condition = PricingCondition::used;
        provider().results.insert(u"1-1"_s, {});
        // The figures of one set arrive apart, with another set's between them.
        provider().extraBulkResults = {newFigure, resultFor(u"9-1"_s, u"bulk"_s), usedFigure};

        run(m_service->refreshAllPrices());

        const QList<CachedPriceGuide> guides = store().guidesOf(set.objectID);
        QCOMPARE(guides.size(), 2);
        QCOMPARE(guides[0].conditionType, u"new"_s);
        QCOMPARE(guides[1].conditionType, u"used"_s);
    }

    void bulkResultsForSetsThatAreNoTargetAreDropped()
    {
        useProviders({{u"bulk"_s, true}});
        store().addOwnedSet(u"1-1"_s);
        const CatalogSet unowned = store().addSet(u"9-1"_s);
        provider().extraBulkResults = {resultFor(u"9-1"_s, u"bulk"_s), resultFor(u"77-1"_s, u"bulk"_s)};
        const SyncLogRecord log;
        run(m_service->refreshAllPrices());
        QVERIFY(store().guidesOf(unowned.objectID).isEmpty());
        QCOMPARE(store().context.count(FetchRequest<CachedPriceGuide>(Predicate())), 1);
        QVERIFY(log.lines().isEmpty());
    }

    void targetWithoutBulkResultsKeepsItsGuides()
    {
        useProviders({{u"bulk"_s, true}});
        const CatalogSet set = store().addOwnedSet(u"1-1"_s);
        const CachedPriceGuide stale = store().addGuide(set, u"bulk"_s, daysAgo(30));
        provider().results.insert(u"1-1"_s, {});
        run(m_service->refreshAllPrices());
        QCOMPARE(provider().bulkRequests.size(), 1);
        QCOMPARE(store().guidesOf(set.objectID), QList<CachedPriceGuide>{stale});
    }

    void failedBulkQueryIsLoggedStoresNothingAndAsksNoSetAlone()
    {
        useProviders({{u"bulk"_s, true}});
        const CatalogSet set = store().addOwnedSet(u"1-1"_s);
        const CachedPriceGuide stale = store().addGuide(set, u"bulk"_s, daysAgo(30));
        provider().bulkFails = true;
        const SyncLogRecord log;

        run(m_service->refreshAllPrices());

        QCOMPARE(log.lines(), QList<SyncLogRecord::Line>{error(u"Bulk price refresh failed: HTTP error 503"_s)});
        QVERIFY(provider().singleRequests.isEmpty());
        QCOMPARE(store().guidesOf(set.objectID), QList<CachedPriceGuide>{stale});
    }

    void failureOfOneSetDoesNotStopTheRefresh()
    {
        const CatalogSet first = store().addOwnedSet(u"1-1"_s);
        const CatalogSet failing = store().addOwnedSet(u"2-1"_s);
        const CatalogSet last = store().addOwnedSet(u"3-1"_s);
        provider().failingSets.insert(u"2-1"_s);
        const SyncLogRecord log;

        run(m_service->refreshAllPrices());

        QCOMPARE(provider().singleRequests, (QStringList{u"1-1"_s, u"2-1"_s, u"3-1"_s}));
        QCOMPARE(store().guidesOf(first.objectID).size(), 1);
        QVERIFY(store().guidesOf(failing.objectID).isEmpty());
        QCOMPARE(store().guidesOf(last.objectID).size(), 1);
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{
                                  info(u"Synced 1 price guides for 1-1 via single"_s),
                                  error(u"Failed to sync prices for 2-1: HTTP error 500"_s),
                                  info(u"Synced 1 price guides for 3-1 via single"_s),
                              }));
    }

    void twoTargetsSharingASetNumberStopTheProcess()
    {
        QTemporaryDir folder;
        QProcess refresh;
        refresh.start(QStringLiteral(DUPLICATE_SET_NUMBER_REFRESH_PROCESS), {folder.filePath(u"Tessaloom.sqlite"_s)});
        QVERIFY(refresh.waitForFinished(60'000));
        // Which of the two sets the prices belong to would be a guess: the process stops.
        QCOMPARE(refresh.exitStatus(), QProcess::CrashExit);
        QVERIFY2(refresh.readAllStandardError().contains("Two price refresh targets share the set number 10497-1"),
                 "the fault names the set number");
    }

    // refreshAllPrices: what the main window sees

    void progressCountsTheTargetsAndTheSetsDone()
    {
        store().addOwnedSet(u"1-1"_s);
        store().addOwnedSet(u"2-1"_s);
        PriceRefreshProgress &progress = m_service->priceRefreshProgress();
        QList<std::pair<int, int>> seen;
        provider().onFetch = [&](const QString &) {
            QVERIFY(progress.isRunning());
            seen.append({progress.setsDone(), progress.targetCount()});
        };
        QSignalSpy running(&progress, &PriceRefreshProgress::runningChanged);

        run(m_service->refreshAllPrices());

        QCOMPARE(seen, (QList<std::pair<int, int>>{{0, 2}, {1, 2}}));
        QCOMPARE(progress.setsDone(), 2);
        QVERIFY(!progress.isRunning());
        QCOMPARE(running.size(), 2);
        QCOMPARE(running[0][0].toBool(), true);
        QCOMPARE(running[1][0].toBool(), false);
    }

    void cancelStopsBeforeTheNextRequestAndKeepsWhatIsStored()
    {
        const CatalogSet first = store().addOwnedSet(u"1-1"_s);
        const CatalogSet second = store().addOwnedSet(u"2-1"_s);
        const CachedPriceGuide stale = store().addGuide(second, u"single"_s, daysAgo(30));
        store().addOwnedSet(u"3-1"_s);
        // Cancelled while the first set's request is under way: that set is still stored.
        provider().onFetch = [this](const QString &) { m_service->priceRefreshProgress().cancel(); };

        run(m_service->refreshAllPrices());

        QCOMPARE(provider().singleRequests, QStringList{u"1-1"_s});
        QCOMPARE(store().guidesOf(first.objectID).size(), 1);
        QCOMPARE(store().guidesOf(second.objectID), QList<CachedPriceGuide>{stale});
        QVERIFY(!m_service->priceRefreshProgress().isRunning());
        QVERIFY(!m_service->priceRefreshProgress().isCancelRequested());
    }

    void cancelledBulkRefreshStoresNoFurtherSet()
    {
        useProviders({{u"bulk"_s, true}});
        store().addOwnedSet(u"1-1"_s);
        store().addOwnedSet(u"2-1"_s);
        PriceRefreshProgress &progress = m_service->priceRefreshProgress();
        // Cancelled once the first set's figures are stored.
        connect(&progress, &PriceRefreshProgress::progressChanged, this, [&progress] {
            if (progress.setsDone() == 1)
                progress.cancel();
        });
        run(m_service->refreshAllPrices());
        QCOMPARE(provider().bulkRequests.size(), 1);
        QCOMPARE(store().context.count(FetchRequest<CachedPriceGuide>(Predicate())), 1);
    }

    void nextRefreshAfterACancelRunsAgain()
    {
        store().addOwnedSet(u"1-1"_s);
        store().addOwnedSet(u"2-1"_s);
        provider().onFetch = [this](const QString &) { m_service->priceRefreshProgress().cancel(); };
        run(m_service->refreshAllPrices());
        provider().onFetch = nullptr;
        run(m_service->refreshAllPrices());
        QCOMPARE(provider().singleRequests, (QStringList{u"1-1"_s, u"2-1"_s}));
    }
};

QTEST_GUILESS_MAIN(PriceSyncServiceTest)
#include "PriceSyncServiceTest.moc"
