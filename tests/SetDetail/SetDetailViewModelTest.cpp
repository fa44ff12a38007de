// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "HeldSync.h"
#include "TestEnvironment.h"

#include "Store/CachedPriceGuide.h"
#include "ViewModels/MoneyText.h"
#include "ViewModels/SetDetailViewModel.h"
#include "Views/TranslationLoader.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// The view model behind an owned copy's detail, over a real store file: the values the
// overview shows, the copies it counts, the favourite flag and the refresh with steps the
// test plays.
class SetDetailViewModelTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    HeldSync m_sync;

    ManagedObjectContext &context() { return m_store->viewContext(); }

    CatalogSet savedSet(const QString &number, const QString &name, qint16 year = 2020)
    {
        CatalogSet set = context().insert(catalogSet(number, name, year));
        context().save();
        return set;
    }

    CachedPriceGuide savedGuide(const ObjectID &set, const QString &condition, const QString &type,
                                const QString &average, const QDateTime &fetched,
                                const QList<PriceGrowthRate> &growth = {})
    {
        CachedPriceGuide price = guide(set, condition, type, fetched, average);
        price.currency = u"USD"_s;
        if (!growth.isEmpty())
            price.growthRatesJSON = CachedPriceGuide::encodeGrowthRates(growth);
        price = context().insert(price);
        context().save();
        return price;
    }

    std::unique_ptr<SetDetailViewModel> model(const BrickSet &copy)
    {
        auto viewModel = std::make_unique<SetDetailViewModel>(copy, context());
        viewModel->setCatalogSyncStep(m_sync.catalogStep());
        viewModel->setPriceSyncStep(m_sync.priceStep());
        return viewModel;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_store = openStore(*m_folder);
        m_sync = HeldSync();
    }

    void cleanup()
    {
        m_store.reset();
        m_folder.reset();
    }

    void tabsStandInOrderWithTheirNamesAndIcons()
    {
        using Tab = SetDetailViewModel::DetailTab;
        QCOMPARE(SetDetailViewModel::allTabs(), (QList<Tab>{Tab::overview, Tab::inventory, Tab::parts}));
        QCOMPARE(SetDetailViewModel::rawValue(Tab::overview), u"Overview"_s);
        QCOMPARE(SetDetailViewModel::rawValue(Tab::inventory), u"Inventory"_s);
        QCOMPARE(SetDetailViewModel::rawValue(Tab::parts), u"Parts"_s);
        QCOMPARE(SetDetailViewModel::displayName(Tab::inventory), u"Inventory"_s);
        QCOMPARE(SetDetailViewModel::iconName(Tab::overview), u"info.circle"_s);
        QCOMPARE(SetDetailViewModel::iconName(Tab::inventory), u"archivebox"_s);
        QCOMPARE(SetDetailViewModel::iconName(Tab::parts), u"square.grid.3x3"_s);
        const BrickSet copy = saveCopy(context(), std::nullopt);
        const auto viewModel = model(copy);
        QCOMPARE(viewModel->selectedTab(), Tab::overview);
        QVERIFY(!viewModel->isEditing());
        QVERIFY(!viewModel->isSyncing());
        QVERIFY(!viewModel->syncError());
        QCOMPARE(viewModel->refreshToken(), 0);
    }

    void titleIsTheNameElseTheNumberElseUnknownSet()
    {
        const CatalogSet named = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        CatalogSet unnamed = context().insert(catalogSet(u"10305-1"_s, QString()));
        unnamed.name.reset();
        context().update(unnamed);
        context().save();
        QCOMPARE(model(saveCopy(context(), named.objectID))->title(), u"Millennium Falcon"_s);
        QCOMPARE(model(saveCopy(context(), unnamed.objectID))->title(), u"10305-1"_s);
        QCOMPARE(model(saveCopy(context(), std::nullopt))->title(), u"Unknown Set"_s);
    }

    void marketValueWithOnlyANewGuideIsThatGuidesAverage()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        savedGuide(set.objectID, u"new"_s, u"sold"_s, u"849.99"_s, QDateTime::currentDateTimeUtc());
        const auto viewModel = model(saveCopy(context(), set.objectID));
        const std::optional<SetDetailViewModel::MarketValue> value = viewModel->marketValue();
        QVERIFY(value);
        QCOMPARE(value->amount, *Decimal::fromString(u"849.99"_s));
        QCOMPARE(value->currency, u"USD"_s);
    }

    void setWithoutGuidesHasNoMarketValueAndNoGrowth()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const auto viewModel = model(saveCopy(context(), set.objectID));
        QVERIFY(!viewModel->marketValue());
        QVERIFY(!viewModel->growthPercent());
        QVERIFY(viewModel->priceGuidesByProvider().isEmpty());
    }

    void usedSoldGuideIsPreferredOverANewerNewGuide()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const QDateTime now = QDateTime::currentDateTimeUtc();
        savedGuide(set.objectID, u"used"_s, u"sold"_s, u"600"_s, now.addDays(-2));
        savedGuide(set.objectID, u"new"_s, u"sold"_s, u"900"_s, now);
        const auto viewModel = model(saveCopy(context(), set.objectID));
        QCOMPARE(viewModel->marketValue()->amount, Decimal(600));
    }

    void growthIsTheFirstRateOfTheLatestNewGuide()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const QDateTime now = QDateTime::currentDateTimeUtc();
        savedGuide(set.objectID, u"new"_s, u"sold"_s, u"800"_s, now.addDays(-5), {{u"12 Months"_s, Decimal(9)}});
        savedGuide(set.objectID, u"new"_s, u"stock"_s, u"850"_s, now,
                   {{u"12 Months"_s, *Decimal::fromString(u"-3.45"_s)}, {u"5 Years"_s, Decimal(40)}});
        const auto viewModel = model(saveCopy(context(), set.objectID));
        QCOMPARE(viewModel->growthPercent(), Decimal::fromString(u"-3.45"_s));
        QCOMPARE(SetDetailViewModel::growthText(*viewModel->growthPercent()), u"-3.5%"_s);
    }

    void newGuideWithoutGrowthRatesShowsNoGrowth()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        savedGuide(set.objectID, u"new"_s, u"sold"_s, u"800"_s, QDateTime::currentDateTimeUtc());
        QVERIFY(!model(saveCopy(context(), set.objectID))->growthPercent());
    }

    void growthRateOfExactlyZeroIsWrittenWithAPlusSign()
    {
        QCOMPARE(SetDetailViewModel::growthText(Decimal(0)), u"+0.0%"_s);
        QCOMPARE(SetDetailViewModel::growthText(*Decimal::fromString(u"12.34"_s)), u"+12.3%"_s);
        QCOMPARE(SetDetailViewModel::growthText(*Decimal::fromString(u"-0.04"_s)), u"+0.0%"_s);
    }

    void moneyIsShownExactlyInTheCurrencyPattern()
    {
        const QLocale us(QLocale::English, QLocale::UnitedStates);
        QCOMPARE(MoneyText::text(Decimal::fromString(u"1234.5"_s), u"USD"_s, us), u"$1,234.50"_s);
        QCOMPARE(MoneyText::text(Decimal::fromString(u"99.995"_s), u"USD"_s, us), u"$100.00"_s);
        QCOMPARE(MoneyText::text(Decimal::fromString(u"12345678901234567.89"_s), u"USD"_s, us),
                 u"$12,345,678,901,234,567.89"_s);
        QCOMPARE(MoneyText::text(Decimal::fromString(u"500"_s), u"JPY"_s, us), u"¥500"_s);
        QCOMPARE(MoneyText::text(std::nullopt, u"USD"_s, us), QString());
        const QLocale german(QLocale::German, QLocale::Germany);
        QCOMPARE(MoneyText::text(Decimal::fromString(u"1234.5"_s), u"EUR"_s, german), u"1.234,50\u00a0€"_s);
    }

    void inventoryCountsStockAndDisposedCopiesOutsideTheTrash()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const CatalogSet other = savedSet(u"10305-1"_s, u"Lion Knights' Castle"_s);
        const BrickSet shown = saveCopy(context(), set.objectID);
        saveCopy(context(), set.objectID);
        saveCopy(context(), set.objectID, [](BrickSet &copy) { copy.isDisposed = true; });
        saveCopy(context(), set.objectID, [](BrickSet &copy) { copy.isTrashed = true; });
        saveCopy(context(), set.objectID, [](BrickSet &copy) {
            copy.isTrashed = true;
            copy.isDisposed = true;
        });
        saveCopy(context(), other.objectID);
        const SetDetailViewModel::InventorySummary summary = model(shown)->inventorySummary();
        QCOMPARE(summary.inStock, 2);
        QCOMPARE(summary.disposed, 1);
        QVERIFY(model(saveCopy(context(), std::nullopt))->inventorySummary().isEmpty());
    }

    void favoriteToggleFlipsTheFlagAndSaves()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const BrickSet copy = saveCopy(context(), set.objectID);
        const auto viewModel = model(copy);
        viewModel->toggleFavorite();
        QVERIFY(!context().hasChanges());
        auto other = m_store->newBackgroundContext();
        const auto stored = [&] {
            return other->performAndWait([id = copy.objectID](ManagedObjectContext &c) { return c.existingObject<BrickSet>(id); });
        };
        QVERIFY(stored()->isFavorite);
        viewModel->toggleFavorite();
        QVERIFY(!stored()->isFavorite);
    }

    void aCommitElsewhereIsReadAgain()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const BrickSet copy = saveCopy(context(), set.objectID);
        const auto viewModel = model(copy);
        QSignalSpy changed(viewModel.get(), &SetDetailViewModel::contentChanged);
        auto other = m_store->newBackgroundContext();
        other->performAndWait([id = copy.objectID](ManagedObjectContext &c) {
            BrickSet stored = *c.existingObject<BrickSet>(id);
            stored.notes = u"Sealed"_s;
            c.update(stored);
            c.save();
        });
        QTRY_COMPARE(viewModel->brickSet().notes, std::optional<QString>(u"Sealed"_s));
        QVERIFY(!changed.isEmpty());
    }

    void twoRefreshCallsInQuickSuccessionRunOneSynchronisation()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const auto viewModel = model(saveCopy(context(), set.objectID));
        m_sync.answer = set.objectID;
        m_sync.holdCatalog = true;
        viewModel->refresh();
        viewModel->refresh();
        QVERIFY(viewModel->isSyncing());
        QCOMPARE(m_sync.catalogCalls.size(), 1);
        m_sync.release(0);
        QTRY_VERIFY(!viewModel->isSyncing());
        QCOMPARE(m_sync.catalogCalls.size(), 1);
        QCOMPARE(m_sync.priceCalls.size(), 1);
        QCOMPARE(viewModel->refreshToken(), 1);
    }

    void refreshSyncsTheNumberThenItsPricesAndRaisesTheToken()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const auto viewModel = model(saveCopy(context(), set.objectID));
        m_sync.answer = set.objectID;
        QSignalSpy token(viewModel.get(), &SetDetailViewModel::refreshTokenChanged);
        viewModel->refresh();
        QTRY_COMPARE(token.size(), 1);
        QCOMPARE(m_sync.catalogCalls.constFirst()->setNumber, u"75192-1"_s);
        QCOMPARE(m_sync.priceCalls, (QList<std::pair<QString, ObjectID>>{{u"75192-1"_s, set.objectID}}));
        QVERIFY(!viewModel->syncError());
        QVERIFY(!viewModel->isSyncing());
    }

    void refreshTakesTheCatalogSetTheSyncWrote()
    {
        const CatalogSet old = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const CatalogSet synced = savedSet(u"75192"_s, u"Millennium Falcon (synced)"_s);
        const BrickSet copy = saveCopy(context(), old.objectID);
        const auto viewModel = model(copy);
        m_sync.answer = synced.objectID;
        viewModel->refresh();
        QTRY_COMPARE(viewModel->refreshToken(), 1);
        QCOMPARE(viewModel->brickSet().catalogSet, std::optional<ObjectID>(synced.objectID));
        QCOMPARE(context().existingObject<BrickSet>(copy.objectID)->catalogSet, std::optional<ObjectID>(synced.objectID));
        QCOMPARE(viewModel->title(), u"Millennium Falcon (synced)"_s);
    }

    void aFailedCatalogSyncLeavesItsErrorAndNothingElse()
    {
        const CatalogSet set = savedSet(u"4242-1"_s, u"Not in the Catalog"_s);
        const BrickSet copy = saveCopy(context(), set.objectID);
        const auto viewModel = model(copy);
        m_sync.answer = set.objectID;
        m_sync.failCatalog = true;
        QSignalSpy syncing(viewModel.get(), &SetDetailViewModel::syncingChanged);
        viewModel->refresh();
        QTRY_VERIFY(!viewModel->isSyncing());
        QCOMPARE(viewModel->syncError(), std::optional<QString>(u"The catalog has no set 4242."_s));
        QCOMPARE(viewModel->refreshToken(), 0);
        QVERIFY(m_sync.priceCalls.isEmpty());
        QCOMPARE(*context().existingObject<BrickSet>(copy.objectID), copy);
        QCOMPARE(syncing.size(), 2);
    }

    void aFailedPriceSyncLeavesItsErrorAndTheNextRefreshClearsIt()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const auto viewModel = model(saveCopy(context(), set.objectID));
        m_sync.answer = set.objectID;
        m_sync.failPrices = true;
        viewModel->refresh();
        QTRY_VERIFY(!viewModel->isSyncing());
        QCOMPARE(viewModel->syncError(), std::optional<QString>(u"No price service is set up."_s));
        m_sync.failPrices = false;
        viewModel->refresh();
        QTRY_COMPARE(viewModel->refreshToken(), 1);
        QVERIFY(!viewModel->syncError());
    }

    void aCopyWithoutCatalogSetIsNotRefreshed()
    {
        const auto viewModel = model(saveCopy(context(), std::nullopt));
        viewModel->refresh();
        QVERIFY(!viewModel->isSyncing());
        QVERIFY(m_sync.catalogCalls.isEmpty());
        QCOMPARE(viewModel->refreshToken(), 0);
    }
};

QTEST_GUILESS_MAIN(SetDetailViewModelTest)
#include "SetDetailViewModelTest.moc"
