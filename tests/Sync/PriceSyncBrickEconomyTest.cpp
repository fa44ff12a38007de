// SPDX-License-Identifier: GPL-3.0-or-later
// Prices from BrickEconomy into the store, end to end: the registry's real BrickEconomy
// adapter, with a token in an in-memory credential source, asks a stand-in of the service
// on 127.0.0.1, and CatalogSyncService stores what it answers in a real store file. The
// adapter's rate limiter is opened up so that a handful of sets does not take minutes.
#include "BrickEconomyAdapter.h"
#include "BrickEconomyStandIn.h"
#include "CatalogFixture.h"
#include "PriceSyncFixture.h"
#include "SyncLogRecord.h"
#include "TestEnvironment.h"

#include "Services/CatalogSyncService.h"
#include "Services/PriceRefreshProgress.h"
#include "Services/RebrickableCatalog.h"
#include "ViewModels/SetDetailViewModel.h"
#include "Store/PersistenceController.h"
#include "Store/PersistentContainer.h"
#include "Views/TranslationLoader.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class PriceSyncBrickEconomyTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<BrickEconomyStandIn> m_standIn;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistenceController> m_controller;
    QHash<QString, QString> m_credentials;
    std::unique_ptr<PricingProviderRegistry> m_registry;
    std::unique_ptr<CatalogSyncService> m_service;

    PriceStore store() { return PriceStore{m_controller->container().viewContext()}; }
    void run(QCoro::Task<> task) { QCoro::waitFor(std::move(task)); }

    QJsonObject setAnswer(const QString &number)
    {
        QJsonObject data = BrickEconomyStandIn::fullSet(number);
        data.insert(u"current_value_new"_s, 300.25);
        return data;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
        m_standIn = std::make_unique<BrickEconomyStandIn>();
        QVERIFY(m_standIn->listen());
        m_standIn->pointEndpointsHere();
    }

    void init()
    {
        m_standIn->server().resetCounters();
        m_folder = std::make_unique<QTemporaryDir>();
        m_controller = PersistenceController::open(m_folder->filePath(u"Tessaloom.sqlite"_s));
        m_credentials = {{u"pricing.brickeconomy.api_token"_s, u"test-token"_s}};
        PricingProviderRegistry::CredentialSource source{
            [this](QString key) -> QCoro::Task<std::optional<QString>> {
                if (!m_credentials.contains(key))
                    co_return std::nullopt;
                co_return m_credentials.value(key);
            },
            [](KeychainService::KeychainKey) -> QCoro::Task<std::optional<QString>> { co_return std::nullopt; },
        };
        m_registry = std::make_unique<PricingProviderRegistry>(source, PricingProviderRegistry::defaultProviderFactories());
        auto *adapter = dynamic_cast<BrickEconomyAdapter *>(m_registry->providers().constFirst());
        QVERIFY(adapter);
        adapter->setRateLimiterForTesting(RateLimiter(1'000'000, 1.0));
        m_service = std::make_unique<CatalogSyncService>(*m_controller, *m_registry);
        for (const QString &number : {u"10001-1"_s, u"10002-1"_s, u"10003-1"_s})
            m_standIn->serveSet(number, setAnswer(number));
    }

    void cleanup()
    {
        m_service.reset();
        m_registry.reset();
        m_controller.reset();
        m_folder.reset();
    }

    void refreshStoresTheAnswersOfEveryOwnedSet()
    {
        QList<CatalogSet> sets;
        for (const QString &number : {u"10001-1"_s, u"10002-1"_s, u"10003-1"_s})
            sets.append(store().addOwnedSet(number));
        const SyncLogRecord log;

        run(m_service->refreshAllPrices());

        QCOMPARE(m_standIn->server().requestCount(), 3);
        for (const CatalogSet &set : std::as_const(sets)) {
            const QList<CachedPriceGuide> guides = store().guidesOf(set.objectID);
            QCOMPARE(guides.size(), 2);
            QCOMPARE(guides[0].conditionType, u"new"_s);
            QCOMPARE(guides[0].avgPrice, Decimal::fromString(u"300.25"_s));
            QCOMPARE(guides[0].providerName, u"brickeconomy"_s);
            QCOMPARE(guides[0].forecasts().size(), 2);
            QCOMPARE(guides[1].conditionType, u"used"_s);
            QCOMPARE(guides[1].minPrice, Decimal::fromString(u"180"_s));
            const CatalogSet stored = store().reread(set.objectID);
            QCOMPARE(stored.retailPrice, Decimal::fromString(u"99.99"_s));
            QCOMPARE(stored.retailPriceCurrency, u"USD"_s);
            QCOMPARE(stored.dateLastAvailable, QDateTime(QDate(2024, 12, 31), QTime(0, 0)));
        }
        QCOMPARE(log.lines().size(), 3);
        QCOMPARE(log.lines()[0], (SyncLogRecord::Line{QtInfoMsg, u"Synced 2 price guides for 10001-1 via brickeconomy"_s}));
    }

    void syncKeepsARetailPriceThatIsAlreadyThere()
    {
        CatalogSet set = store().addOwnedSet(u"10001-1"_s);
        set.retailPrice = Decimal::fromString(u"109.99"_s);
        set.retailPriceCurrency = u"EUR"_s;
        store().context.update(set);
        store().context.save();

        run(m_service->syncPrices(u"10001-1"_s, set.objectID));

        const CatalogSet stored = store().reread(set.objectID);
        QCOMPARE(stored.retailPrice, Decimal::fromString(u"109.99"_s));
        QCOMPARE(stored.retailPriceCurrency, u"EUR"_s);
        QCOMPARE(store().guidesOf(set.objectID).size(), 2);
    }

    void serverErrorForOneSetIsLoggedWhileTheRefreshGoesOn()
    {
        const CatalogSet first = store().addOwnedSet(u"10001-1"_s);
        const CatalogSet failing = store().addOwnedSet(u"10002-1"_s);
        const CatalogSet last = store().addOwnedSet(u"10003-1"_s);
        m_standIn->serveRaw(u"10002-1"_s, "{\"error\":\"internal\"}", 500);
        const SyncLogRecord log;

        run(m_service->refreshAllPrices());

        QCOMPARE(store().guidesOf(first.objectID).size(), 2);
        QVERIFY(store().guidesOf(failing.objectID).isEmpty());
        QCOMPARE(store().guidesOf(last.objectID).size(), 2);
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{
                                  {QtInfoMsg, u"Synced 2 price guides for 10001-1 via brickeconomy"_s},
                                  {QtCriticalMsg, u"Failed to sync prices for 10002-1: HTTP error 500"_s},
                                  {QtInfoMsg, u"Synced 2 price guides for 10003-1 via brickeconomy"_s},
                              }));
    }

    void cancellingKeepsWhatIsStoredAndAsksNoFurtherSet()
    {
        const CatalogSet first = store().addOwnedSet(u"10001-1"_s);
        const CatalogSet second = store().addOwnedSet(u"10002-1"_s);
        const CachedPriceGuide stale = store().addGuide(second, u"brickeconomy"_s, daysAgo(30));
        store().addOwnedSet(u"10003-1"_s);
        PriceRefreshProgress &progress = m_service->priceRefreshProgress();
        connect(&progress, &PriceRefreshProgress::progressChanged, this, [&progress] {
            if (progress.setsDone() == 1)
                progress.cancel();
        });

        run(m_service->refreshAllPrices());

        QCOMPARE(m_standIn->server().requestCount(), 1);
        QCOMPARE(m_standIn->server().requestCount(BrickEconomyStandIn::setPath(u"10001-1"_s)), 1);
        QCOMPARE(store().guidesOf(first.objectID).size(), 2);
        QCOMPARE(store().guidesOf(second.objectID), QList<CachedPriceGuide>{stale});
        QVERIFY(!progress.isRunning());
    }

    void refreshWithoutATokenLogsThatNoProviderIsConfigured()
    {
        m_credentials.clear();
        const CatalogSet set = store().addOwnedSet(u"10001-1"_s);
        const SyncLogRecord log;

        run(m_service->refreshAllPrices());

        QCOMPARE(m_standIn->server().requestCount(), 0);
        QVERIFY(store().guidesOf(set.objectID).isEmpty());
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{
                                  {QtCriticalMsg, u"No pricing provider with valid credentials configured"_s}}));
    }

    void theDetailsRefreshSyncsTheSetThenStoresItsPrices()
    {
        // A copy stored under the number without its version, as a hand-made list has it.
        QTemporaryDir catalogFolder;
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "1,Test Theme,\n");
        fixture.addRows(u"sets"_s, "10001-1,Metroliner,1985,1,800,\n");
        RebrickableCatalog::replaceShared(RebrickableCatalog::openFile(fixture.build(catalogFolder.filePath(u"catalog"_s))));
        const BrickSet copy = store().addCopy(store().addSet(u"10001"_s));

        SetDetailViewModel detail(copy, m_controller->container().viewContext());
        detail.setCatalogSyncStep([this](QString number) { return m_service->syncSet(std::move(number)); });
        detail.setPriceSyncStep([this](QString number, ObjectID catalogSet) {
            return m_service->syncExternalDataOfSet(std::move(number), catalogSet);
        });
        run(detail.refresh());
        RebrickableCatalog::replaceShared(nullptr);

        QVERIFY2(!detail.syncError(), qPrintable(detail.syncError().value_or(QString())));
        QVERIFY(!detail.isSyncing());
        QCOMPARE(m_standIn->server().requestCount(BrickEconomyStandIn::setPath(u"10001-1"_s)), 1);
        const std::optional<CatalogSet> synced = m_controller->container().viewContext().fetchFirst(
            FetchRequest<CatalogSet>(Predicate::equal(u"setNumber"_s, u"10001-1"_s)));
        QVERIFY(synced);
        QCOMPARE(synced->name, std::optional<QString>(u"Metroliner"_s));
        QCOMPARE(store().guidesOf(synced->objectID).size(), 2);
        QCOMPARE(store().reread(synced->objectID).retailPrice, Decimal::fromString(u"99.99"_s));
    }
};

QTEST_GUILESS_MAIN(PriceSyncBrickEconomyTest)
#include "PriceSyncBrickEconomyTest.moc"
