// SPDX-License-Identifier: GPL-3.0-or-later
#include "../ImageCache/TestPictures.h"
#include "../Store/StoreFixtures.h"
#include "CatalogFixture.h"
#include "HeldSync.h"
#include "LoopbackHttpServer.h"
#include "TestEnvironment.h"

#include "Endpoints.h"
#include "Services/ImageCacheService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/CachedInstructionURL.h"
#include "Store/CachedPriceGuide.h"
#include "Store/CatalogSetPart.h"
#include "Store/PartInventoryEntry.h"
#include "ViewModels/CollectionTrash.h"
#include "Views/CachedAsyncImage.h"
#include "Views/InventoryTab.h"
#include "Views/LazyTabContent.h"
#include "Views/OverviewTab.h"
#include "Views/OwnedSetInstructionsView.h"
#include "Views/PartsTab.h"
#include "Views/SetDetailView.h"
#include "Views/SetImagePreviewWindow.h"
#include "Views/TranslationLoader.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// The detail column of an owned copy offscreen, over a real store file: the header, the
// lazily built tabs, every line of the overview, the inventory's rows and actions, and
// the booklets kept in the store. Booklet lookups and the refresh's steps are played by
// the test; nothing leaves the machine.
class SetDetailViewTest : public QObject
{
    Q_OBJECT

private:
    using Tab = SetDetailViewModel::DetailTab;
    using Instruction = LegoInstructionsService::Instruction;

    QTemporaryDir m_catalogFolder;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    // One picture cache for the whole run: loads started in one test may still be on their
    // way when the next begins.
    std::unique_ptr<ImageCacheService> m_pictures;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    HeldSync m_sync;
    QList<QString> m_lookups;
    QList<Instruction> m_booklets;
    std::unique_ptr<SetDetailView> m_view;

    ManagedObjectContext &context() { return m_store->viewContext(); }

    LegoInstructionsService::Fetcher fetcher()
    {
        return [this](QString setNumber) -> QCoro::Task<QList<Instruction>> {
            m_lookups.append(setNumber);
            co_return m_booklets;
        };
    }

    CatalogSet savedSet(const QString &number, const QString &name, qint16 year = 2020)
    {
        CatalogSet set = catalogSet(number, name, year);
        set.themeName = u"Star Wars"_s;
        set.pieceCount = 7541;
        set.retailPrice = Decimal::fromString(u"849.99"_s);
        set.retailPriceCurrency = u"USD"_s;
        set = context().insert(set);
        context().save();
        return set;
    }

    void savedGuide(const ObjectID &set, const QString &condition, const QString &average,
                    const QList<PriceGrowthRate> &growth = {}, const QString &provider = u"brickeconomy"_s)
    {
        CachedPriceGuide price = guide(set, condition, u"sold"_s, QDateTime::currentDateTimeUtc(), average);
        price.currency = u"USD"_s;
        price.providerName = provider;
        if (!growth.isEmpty())
            price.growthRatesJSON = CachedPriceGuide::encodeGrowthRates(growth);
        context().insert(price);
        context().save();
    }

    SetDetailView &show(const BrickSet &copy)
    {
        m_view = std::make_unique<SetDetailView>(copy, context(), fetcher());
        m_view->setCatalogSyncStep(m_sync.catalogStep());
        m_view->setPriceSyncStep(m_sync.priceStep());
        m_view->setUrlOpener([](const QUrl &) {});
        m_view->resize(600, 900);
        m_view->show();
        if (!QTest::qWaitForWindowExposed(m_view.get()))
            qFatal("the detail did not show");
        return *m_view;
    }

    static QStringList texts(const QList<QPushButton *> &buttons)
    {
        QStringList result;
        for (const QPushButton *button : buttons)
            result.append(button->accessibleName());
        return result;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QVERIFY(m_catalogFolder.isValid());
        m_pictures = std::make_unique<ImageCacheService>(m_catalogFolder.filePath(u"Caches"_s));
        CatalogFixture fixture;
        fixture.addRows(u"themes"_s, "158,Star Wars,\n");
        fixture.addRows(u"sets"_s, "75192-1,Millennium Falcon,2017,158,3,\n");
        fixture.addRows(u"inventories"_s, "1,1,75192-1\n");
        fixture.addRows(u"colors"_s, "0,Black,05131D,False\n71,Light Bluish Gray,A0A5A9,False\n");
        fixture.addRows(u"part_categories"_s, "11,Bricks\n");
        fixture.addRows(u"parts"_s, "3001,Brick 2 x 4,11,Plastic\n3003,Brick 2 x 2,11,Plastic\n");
        fixture.addRows(u"inventory_parts"_s, "1,3001,71,2,False,\n1,3003,0,1,False,\n");
        m_catalog = RebrickableCatalog::openFile(fixture.build(m_catalogFolder.path() + u"/catalog"_s));
        QVERIFY(m_catalog);
    }

    void init()
    {
        RebrickableCatalog::replaceShared(m_catalog);
        // Part pictures and LEGO's pages go to a port where nothing listens.
        qputenv(Endpoints::overrideVariable, "rebrickable=http://127.0.0.1:9;lego=http://127.0.0.1:9");
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_store = openStore(*m_folder);
        m_sync = HeldSync();
        m_lookups.clear();
        m_booklets.clear();
    }

    void cleanup()
    {
        m_view.reset();
        RebrickableCatalog::replaceShared(nullptr);
        m_store.reset();
        m_folder.reset();
    }

    void headerShowsTheNameElseTheNumberElseUnknownSet()
    {
        const CatalogSet named = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        QCOMPARE(show(saveCopy(context(), named.objectID)).titleLabel()->text(), u"Millennium Falcon"_s);
        CatalogSet unnamed = savedSet(u"10305-1"_s, QString());
        unnamed.name.reset();
        context().update(unnamed);
        context().save();
        QCOMPARE(show(saveCopy(context(), unnamed.objectID)).titleLabel()->text(), u"10305-1"_s);
        QCOMPARE(show(saveCopy(context(), std::nullopt)).titleLabel()->text(), u"Unknown Set"_s);
    }

    void favoriteToggleFlipsTheFlagWithItsIconAndText()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const BrickSet copy = saveCopy(context(), set.objectID);
        SetDetailView &view = show(copy);
        QCOMPARE(view.favoriteButton()->text(), u"Favorite"_s);
        QCOMPARE(view.favoriteButton()->accessibleName(), u"Add to Favorites"_s);
        view.favoriteButton()->click();
        QVERIFY(context().existingObject<BrickSet>(copy.objectID)->isFavorite);
        QVERIFY(!context().hasChanges());
        QCOMPARE(view.favoriteButton()->accessibleName(), u"Remove from Favorites"_s);
        QVERIFY(view.favoriteButton()->isChecked());
        view.favoriteButton()->click();
        QVERIFY(!context().existingObject<BrickSet>(copy.objectID)->isFavorite);
        QCOMPARE(view.favoriteButton()->accessibleName(), u"Add to Favorites"_s);
    }

    void tabsAreBuiltWhenFirstOpenedAndKept()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        SetDetailView &view = show(saveCopy(context(), set.objectID));
        QCOMPARE(view.tabBar()->count(), 3);
        QCOMPARE(view.tabBar()->tabText(0), u"Overview"_s);
        QCOMPARE(view.tabBar()->tabText(1), u"Inventory"_s);
        QCOMPARE(view.tabBar()->tabText(2), u"Parts"_s);
        QVERIFY(view.overviewTab());
        QVERIFY(!view.inventoryTab());
        QVERIFY(!view.partsTab());
        QVERIFY(!view.tabPage(Tab::inventory)->hasAppeared());

        view.tabBar()->setCurrentIndex(1);
        QCOMPARE(view.selectedTab(), Tab::inventory);
        InventoryTab *inventory = view.inventoryTab();
        QVERIFY(inventory);
        QVERIFY(inventory->isVisible());
        QVERIFY(!view.overviewTab()->isVisible());

        view.selectTab(Tab::parts);
        QCOMPARE(view.tabBar()->currentIndex(), 2);
        QVERIFY(view.partsTab());
        QCOMPARE(view.partsTab()->setNumber(), u"75192-1"_s);
        QVERIFY(!inventory->isVisible());

        view.selectTab(Tab::inventory);
        QCOMPARE(view.inventoryTab(), inventory);
        QVERIFY(inventory->isVisible());
        QVERIFY(view.tabPage(Tab::parts)->hasAppeared());
        QVERIFY(!view.tabPage(Tab::parts)->isSelected());
    }

    void overviewShowsEachLineOfACopyWithGuides()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        savedGuide(set.objectID, u"used"_s, u"720.5"_s, {}, u"bricklink"_s);
        savedGuide(set.objectID, u"new"_s, u"999"_s, {{u"12 Months"_s, *Decimal::fromString(u"4.25"_s)}});
        const BrickSet copy = saveCopy(context(), set.objectID, [](BrickSet &copy) {
            copy.pricePaid = Decimal::fromString(u"799.99"_s);
            copy.priceCurrency = u"EUR"_s;
            copy.notes = u"Bought at the store's opening"_s;
        });
        saveCopy(context(), set.objectID, [](BrickSet &copy) { copy.isDisposed = true; });
        saveCopy(context(), set.objectID, [](BrickSet &copy) { copy.isTrashed = true; });
        OverviewTab &overview = *show(copy).overviewTab();

        QCOMPARE(overview.setNumberLabel()->text(), u"75192-1"_s);
        QCOMPARE(overview.themeLabel()->text(), u"Star Wars"_s);
        QCOMPARE(overview.yearLabel()->text(), u"2020"_s);
        QCOMPARE(overview.pieceCountLabel()->text(), u"7,541 pieces"_s);
        QCOMPARE(overview.picture()->accessibleName(), u"Picture of Millennium Falcon"_s);
        QCOMPARE(overview.retailPriceLabel()->text(), u"$849.99"_s);
        // The used sold guide is the preferred one.
        QCOMPARE(overview.marketValueLabel()->text(), u"$720.50"_s);
        QCOMPARE(overview.marketValueLabel()->palette().color(QPalette::WindowText), OverviewTab::positiveColor());
        QVERIFY(overview.growthRow()->isVisible());
        QCOMPARE(overview.growthLabel()->text(), u"+4.3%"_s);
        QCOMPARE(overview.growthIconName(), u"arrow.up"_s);
        QCOMPARE(overview.pricePaidLabel()->text(), u"€799.99"_s);
        QCOMPARE(overview.priceGuideLines(),
                 (QStringList{u"brickeconomy: new sold: $999.00"_s, u"bricklink: used sold: $720.50"_s}));
        QVERIFY(overview.refreshButton()->isEnabled());
        QCOMPARE(overview.refreshButton()->text(), u"Refresh"_s);
        QVERIFY(!overview.syncErrorLabel()->isVisible());
        QVERIFY(!overview.inventoryNoneLabel()->isVisible());
        QCOMPARE(overview.inStockLabel()->text(), u"1 in stock"_s);
        QCOMPARE(overview.disposedLabel()->text(), u"1 disposed"_s);
        QVERIFY(overview.notesSection()->isVisible());
        QCOMPARE(overview.notesLabel()->text(), u"Bought at the store's opening"_s);
    }

    void overviewOfACopyWithoutGuidesShowsNoMarketValue()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        OverviewTab &overview = *show(saveCopy(context(), set.objectID)).overviewTab();
        QCOMPARE(overview.marketValueLabel()->text(), QString());
        QVERIFY(!overview.growthRow()->isVisible());
        QVERIFY(overview.priceGuideLines().isEmpty());
        QCOMPARE(overview.pricePaidLabel()->text(), QString());
        QVERIFY(!overview.notesSection()->isVisible());
    }

    void overviewMarketValueWithOnlyANewGuideIsThatGuidesAverage()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        savedGuide(set.objectID, u"new"_s, u"1049.5"_s);
        OverviewTab &overview = *show(saveCopy(context(), set.objectID)).overviewTab();
        QCOMPARE(overview.marketValueLabel()->text(), u"$1,049.50"_s);
    }

    void growthRateOfExactlyZeroShowsAPlusSignAndTheGreenUpwardArrow()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        savedGuide(set.objectID, u"new"_s, u"800"_s, {{u"12 Months"_s, Decimal(0)}});
        OverviewTab &overview = *show(saveCopy(context(), set.objectID)).overviewTab();
        QCOMPARE(overview.growthLabel()->text(), u"+0.0%"_s);
        QCOMPARE(overview.growthIconName(), u"arrow.up"_s);
        QCOMPARE(overview.growthLabel()->palette().color(QPalette::WindowText), OverviewTab::positiveColor());
    }

    void fallingGrowthShowsTheRedDownwardArrow()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        savedGuide(set.objectID, u"new"_s, u"800"_s, {{u"12 Months"_s, *Decimal::fromString(u"-2.5"_s)}});
        OverviewTab &overview = *show(saveCopy(context(), set.objectID)).overviewTab();
        QCOMPARE(overview.growthLabel()->text(), u"-2.5%"_s);
        QCOMPARE(overview.growthIconName(), u"arrow.down.right"_s);
        QCOMPARE(overview.growthLabel()->palette().color(QPalette::WindowText), OverviewTab::negativeColor());
    }

    void copyWithoutCatalogSetShowsNoneInTheInventoryAndNoValues()
    {
        OverviewTab &overview = *show(saveCopy(context(), std::nullopt)).overviewTab();
        QCOMPARE(overview.setNumberLabel()->text(), QString());
        QCOMPARE(overview.retailPriceLabel()->text(), QString());
        QCOMPARE(overview.marketValueLabel()->text(), QString());
        QVERIFY(overview.inventoryNoneLabel()->isVisible());
        QCOMPARE(overview.inventoryNoneLabel()->text(), u"None in your collection"_s);
        QVERIFY(!overview.inStockLabel()->isVisible());
        QVERIFY(m_lookups.isEmpty());
        overview.refreshButton()->click();
        QVERIFY(m_sync.catalogCalls.isEmpty());
        QVERIFY(overview.refreshButton()->isEnabled());
    }

    void clickingThePictureOpensTheLargePreview()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        OverviewTab &overview = *show(saveCopy(context(), set.objectID)).overviewTab();
        QVERIFY(!overview.imagePreviewWindow());
        QTest::mouseClick(overview.picture(), Qt::LeftButton);
        QVERIFY(overview.imagePreviewWindow());
        QVERIFY(overview.imagePreviewWindow()->isVisible());
        overview.imagePreviewWindow()->close();
    }

    void refreshButtonIsDisabledWhileSyncingAndShowsTheError()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        m_sync.answer = set.objectID;
        m_sync.holdCatalog = true;
        m_sync.failCatalog = true;
        OverviewTab &overview = *show(saveCopy(context(), set.objectID)).overviewTab();
        overview.refreshButton()->click();
        QVERIFY(!overview.refreshButton()->isEnabled());
        overview.refreshButton()->click();
        QCOMPARE(m_sync.catalogCalls.size(), 1);
        m_sync.release(0);
        QTRY_VERIFY(overview.refreshButton()->isEnabled());
        QVERIFY(overview.syncErrorLabel()->isVisible());
        QCOMPARE(overview.syncErrorLabel()->text(), u"The catalog has no set 4242."_s);
    }

    void openingACopyNeverStartsARefresh()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        SetDetailView &view = show(saveCopy(context(), set.objectID));
        view.selectTab(Tab::inventory);
        view.selectTab(Tab::overview);
        QVERIFY(m_sync.catalogCalls.isEmpty());
        QVERIFY(m_sync.priceCalls.isEmpty());
    }

    void setWithOneBookletOfOneShowsBuildingInstructions()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017);
        m_booklets = {Instruction{1, 1, QUrl(u"http://127.0.0.1:9/6217000.pdf"_s), 0, false, std::nullopt}};
        OverviewTab &overview = *show(saveCopy(context(), set.objectID)).overviewTab();
        QTRY_COMPARE(texts(overview.instructionsView()->bookletButtons()), QStringList{u"Building Instructions"_s});
        QCOMPARE(m_lookups, QList<QString>{u"75192-1"_s});
        QVERIFY(overview.instructionsView()->bookletButtons().constFirst()->findChild<QLabel *>(u"bookClosed"_s));
        QVERIFY(overview.instructionsView()->pdfFallbackLabel()->isVisible());
        QVERIFY(!overview.instructionsView()->isLoading());
    }

    void twoBookletsShowBookOneOfTwoAndBookTwoOfTwo()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017);
        m_booklets = {Instruction{2, 2, QUrl(u"http://127.0.0.1:9/b.pdf"_s), 0, false, u"http://127.0.0.1:9/b.png"_s},
                      Instruction{1, 2, QUrl(u"http://127.0.0.1:9/a.pdf"_s), 0, false, std::nullopt}};
        OverviewTab &overview = *show(saveCopy(context(), set.objectID)).overviewTab();
        QTRY_COMPARE(texts(overview.instructionsView()->bookletButtons()),
                     (QStringList{u"Book 1 of 2"_s, u"Book 2 of 2"_s}));
        const QList<CachedInstructionURL> stored =
            context().related<CachedInstructionURL>(set.objectID, u"cachedInstructions"_s);
        QCOMPARE(stored.size(), 2);
    }

    void setWithoutBookletsGetsTheMarkerAndIsNotAskedAgain()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017);
        const BrickSet copy = saveCopy(context(), set.objectID);
        OverviewTab *overview = show(copy).overviewTab();
        QTRY_COMPARE(context().related<CachedInstructionURL>(set.objectID, u"cachedInstructions"_s).size(), 1);
        QVERIFY(context().related<CachedInstructionURL>(set.objectID, u"cachedInstructions"_s).constFirst().isNoneMarker());
        QVERIFY(overview->instructionsView()->bookletButtons().isEmpty());
        QVERIFY(!overview->instructionsView()->pdfFallbackLabel()->isVisible());
        show(copy);
        QCoreApplication::processEvents();
        QCOMPARE(m_lookups.size(), 1);
    }

    void setFromBefore2016IsNeverAskedForBooklets()
    {
        const CatalogSet set = savedSet(u"10179-1"_s, u"Ultimate Millennium Falcon"_s, 2007);
        show(saveCopy(context(), set.objectID));
        QCoreApplication::processEvents();
        QVERIFY(m_lookups.isEmpty());
        QVERIFY(context().related<CachedInstructionURL>(set.objectID, u"cachedInstructions"_s).isEmpty());
    }

    void inventoryListsTheCopiesOutsideTheTrashOldestFirstWithTheirFacts()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const CatalogSet other = savedSet(u"10305-1"_s, u"Lion Knights' Castle"_s);
        CatalogSetPart line;
        line.quantity = 4;
        line.catalogSet = set.objectID;
        line = context().insert(line);
        CatalogSetPart secondLine;
        secondLine.quantity = 6;
        secondLine.catalogSet = set.objectID;
        secondLine = context().insert(secondLine);
        context().save();
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const BrickSet newer = saveCopy(context(), set.objectID, [&now](BrickSet &copy) {
            copy.dateAdded = now;
            copy.isDisposed = true;
            copy.setAcquisitionType(AcquisitionType::gwp);
        });
        const BrickSet older = saveCopy(context(), set.objectID, [&now](BrickSet &copy) {
            copy.dateAdded = now.addDays(-10);
            copy.overallCondition = u"new"_s;
            copy.pricePaid = Decimal::fromString(u"849.99"_s);
            copy.priceCurrency = u"USD"_s;
            copy.builtStatus = u"built"_s;
            copy.setAcquisitionType(AcquisitionType::purchased);
        });
        saveCopy(context(), set.objectID, [](BrickSet &copy) { copy.isTrashed = true; });
        saveCopy(context(), other.objectID);
        for (const auto &[part, owned, copyID] : {std::tuple{line.objectID, 4, older.objectID},
                                                   std::tuple{secondLine.objectID, 6, older.objectID},
                                                   std::tuple{line.objectID, 1, newer.objectID}}) {
            PartInventoryEntry entry;
            entry.quantityOwned = owned;
            entry.catalogSetPart = part;
            entry.brickSet = copyID;
            context().insert(entry);
        }
        context().save();

        SetDetailView &view = show(newer);
        view.selectTab(Tab::inventory);
        InventoryTab &inventory = *view.inventoryTab();
        QCOMPARE(inventory.ownCountLabel()->text(), u"Copies owned: 2"_s);
        QCOMPARE(inventory.addCopyButton()->text(), u"Add Copy"_s);
        QCOMPARE(inventory.partsChecklistButton()->text(), u"Parts Checklist"_s);
        const QList<InventoryTab::RowFacts> rows = inventory.rows();
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows[0].copy, older.objectID);
        QCOMPARE(rows[0].pricePaid, u"$849.99"_s);
        QCOMPARE(rows[0].acquisition, u"Purchased"_s);
        QVERIFY(!rows[0].isDisposed);
        QVERIFY(rows[0].allPartsComplete());
        QCOMPARE(rows[0].partsText(), u"All parts complete"_s);
        QCOMPARE(rows[1].copy, newer.objectID);
        QCOMPARE(rows[1].acquisition, u"Gift With Purchase"_s);
        QVERIFY(rows[1].isDisposed);
        QCOMPARE(rows[1].partsText(), u"1/4 parts · 25% complete"_s);
        QCOMPARE(inventory.list()->count(), 2);
        QVERIFY(inventory.list()->item(1)->text().contains(u"Disposed"_s));
        QVERIFY(!inventory.list()->item(0)->icon().isNull());
        // Nothing was selected: the first copy is.
        QCOMPARE(inventory.selectedID(), std::optional<ObjectID>(older.objectID));
    }

    void selectedCopysEditorComesThroughTheFactoryAfterTheDelay()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const BrickSet first = saveCopy(context(), set.objectID);
        const BrickSet second = saveCopy(context(), set.objectID);
        SetDetailView &view = show(first);
        QList<ObjectID> made;
        view.setEditorFactory([&made](const ObjectID &copy, QWidget *parent) {
            made.append(copy);
            auto *editor = new QWidget(parent);
            editor->setObjectName(u"editor"_s);
            return editor;
        });
        view.selectTab(Tab::inventory);
        InventoryTab &inventory = *view.inventoryTab();
        QVERIFY(!inventory.isEditorReady());
        QVERIFY(inventory.selectCopyPlaceholder()->isVisible());
        QTRY_VERIFY(inventory.isEditorReady());
        QCOMPARE(made, QList<ObjectID>{first.objectID});
        QVERIFY(inventory.editor());
        QVERIFY(inventory.editor()->isVisible());

        inventory.list()->setCurrentRow(1);
        QCOMPARE(inventory.selectedID(), std::optional<ObjectID>(second.objectID));
        QCOMPARE(made, (QList<ObjectID>{first.objectID, second.objectID}));

        inventory.setSelectedID(ObjectID{EntityType::BrickSet, 999});
        QVERIFY(!inventory.editor());
        QVERIFY(inventory.selectCopyPlaceholder()->isVisible());
    }

    void addingACopyMakesOneWithOnlyTheNewCopyValuesAndSelectsIt()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const BrickSet copy = saveCopy(context(), set.objectID, [](BrickSet &copy) { copy.notes = u"First"_s; });
        SetDetailView &view = show(copy);
        view.selectTab(Tab::inventory);
        InventoryTab &inventory = *view.inventoryTab();
        const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
        inventory.addCopyButton()->click();
        QCOMPARE(inventory.activeInstances().size(), 2);
        const BrickSet added = inventory.activeInstances().constLast();
        QCOMPARE(inventory.selectedID(), std::optional<ObjectID>(added.objectID));
        QVERIFY(!context().hasChanges());
        BrickSet expected;
        expected.objectID = added.objectID;
        expected.id = added.id;
        expected.dateAdded = added.dateAdded;
        expected.catalogSet = set.objectID;
        expected.acquisitionType = u"unknown"_s;
        QCOMPARE(*context().existingObject<BrickSet>(added.objectID), expected);
        QVERIFY(!added.id.isNull());
        QVERIFY(*added.dateAdded >= before);
        QCOMPARE(view.overviewTab()->inStockLabel()->text(), u"2 in stock"_s);
    }

    void movingACopyToTheTrashFromItsMenuTakesItOffTheList()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const BrickSet first = saveCopy(context(), set.objectID);
        const BrickSet second = saveCopy(context(), set.objectID);
        SetDetailView &view = show(first);
        CollectionTrash trash(context());
        QSignalSpy moved(&trash, &CollectionTrash::copyMovedToTrash);
        view.setCollectionTrash(&trash);
        view.selectTab(Tab::inventory);
        InventoryTab &inventory = *view.inventoryTab();
        QObject owner;
        const QList<QAction *> actions = inventory.contextActions(second.objectID, &owner);
        QCOMPARE(actions.size(), 1);
        QCOMPARE(actions.constFirst()->text(), u"Move to Trash"_s);
        actions.constFirst()->trigger();
        QCOMPARE(moved.size(), 1);
        QVERIFY(context().existingObject<BrickSet>(second.objectID)->isTrashed);
        QTRY_COMPARE(inventory.activeInstances().size(), 1);
        QCOMPARE(inventory.activeInstances().constFirst().objectID, first.objectID);
    }

    void partsChecklistButtonAsksForTheSelectedCopysURI()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const BrickSet copy = saveCopy(context(), set.objectID);
        SetDetailView &view = show(copy);
        QSignalSpy requested(&view, &SetDetailView::partsChecklistRequested);
        view.selectTab(Tab::inventory);
        view.inventoryTab()->partsChecklistButton()->click();
        QCOMPARE(requested.size(), 1);
        QCOMPARE(requested.first().first().toUrl(), copy.objectID.uriRepresentation());
    }

    // A tall picture is scaled into the overview's picture area, which keeps its height
    // and its place at the top, above the facts.
    void aTallPictureIsScaledIntoTheOverviewsPictureArea()
    {
        LoopbackHttpServer server;
        QVERIFY(server.listen());
        const QColor brick(0, 90, 170);
        server.serveBytes(u"/media/sets/75192-1.jpg"_s, TestPictures::png(QSize(900, 1400), brick));
        CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017);
        set.imageURL = server.url(u"/media/sets/75192-1.jpg"_s).toString();
        context().update(set);
        context().save();
        SetDetailView &view = show(saveCopy(context(), set.objectID));
        view.setImageCache(m_pictures.get());
        OverviewTab &overview = *view.overviewTab();
        CachedAsyncImage *picture = overview.picture();
        QTRY_COMPARE(picture->phase(), CachedAsyncImage::Phase::success);
        QCOMPARE(picture->height(), 240);
        QVERIFY(picture->width() >= overview.width() - 60);
        QVERIFY(picture->mapTo(&overview, QPoint(0, 0)).y() <= 24);
        const QImage shown = picture->grab().toImage();
        QCOMPARE(shown.pixelColor(shown.width() / 2, 2), brick);
        QCOMPARE(shown.pixelColor(shown.width() / 2, shown.height() - 3), brick);
    }

    void partsTabListsTheSetsInventoryFromTheCatalog()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017);
        m_booklets = {Instruction{1, 1, QUrl(u"http://127.0.0.1:9/6217000.pdf"_s), 0, false, std::nullopt}};
        SetDetailView &view = show(saveCopy(context(), set.objectID));
        view.setImageCache(m_pictures.get());
        view.selectTab(Tab::parts);
        PartsTab &parts = *view.partsTab();
        QCOMPARE(parts.setNumber(), u"75192-1"_s);
        QTRY_VERIFY(!parts.isLoading());
        QCOMPARE(parts.uniqueCountLabel()->text(), u"2 unique parts"_s);
        QCOMPARE(parts.model().parts().size(), 2);
        QVERIFY(parts.isVisible());
    }

    void aCommitElsewhereRedrawsTheHeaderAndTheOverview()
    {
        const CatalogSet set = savedSet(u"75192-1"_s, u"Millennium Falcon"_s);
        const BrickSet copy = saveCopy(context(), set.objectID);
        SetDetailView &view = show(copy);
        auto other = m_store->newBackgroundContext();
        other->performAndWait([&set, &copy](ManagedObjectContext &c) {
            CatalogSet stored = *c.existingObject<CatalogSet>(set.objectID);
            stored.name = u"Millennium Falcon UCS"_s;
            c.update(stored);
            BrickSet storedCopy = *c.existingObject<BrickSet>(copy.objectID);
            storedCopy.notes = u"Signed box"_s;
            c.update(storedCopy);
            c.save();
        });
        QTRY_COMPARE(view.titleLabel()->text(), u"Millennium Falcon UCS"_s);
        QTRY_COMPARE(view.overviewTab()->notesLabel()->text(), u"Signed box"_s);
    }
};

QTEST_MAIN(SetDetailViewTest)
#include "SetDetailViewTest.moc"
