// SPDX-License-Identifier: GPL-3.0-or-later
#include "SidebarFixture.h"
#include "Services/CatalogDatabaseService.h"
#include "Store/BrickSetQueries.h"
#include "Store/PersistenceController.h"
#include "TestEnvironment.h"
#include "ViewModels/SidebarViewModel.h"
#include "ViewModels/SidebarVisibilitySettings.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <atomic>

using namespace Qt::StringLiterals;
using Kind = SidebarItem::Kind;
using SidebarFixture::copy;

class SidebarViewModelTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::shared_ptr<RebrickableCatalog> m_rebuiltCatalog;
    std::unique_ptr<PersistenceController> m_store;
    std::unique_ptr<CatalogDatabaseService> m_catalogService;

    ManagedObjectContext &context() const { return m_store->container().viewContext(); }

    // A model whose outline of themes has landed.
    std::unique_ptr<SidebarViewModel> makeModel() const
    {
        auto model = std::make_unique<SidebarViewModel>(context(), *m_catalogService);
        if (!QTest::qWaitFor([&model] { return !model->isLoadingThemeTree(); }))
            qWarning("The outline of themes did not land");
        return model;
    }

    static QString storedSelection() { return QSettings().value(u"sidebar.lastSelectedItem"_s).toString(); }

    std::optional<qint64> badge(const SidebarViewModel &model, Kind kind) const
    {
        return model.badgeCount(SidebarItem(kind));
    }

    qint64 listCount(const Predicate &predicate) const
    {
        return context().count(FetchRequest<BrickSet>(predicate));
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_directory.isValid());
        m_catalog = SidebarFixture::firstCatalog(m_directory.filePath(u"first"_s));
        m_rebuiltCatalog = SidebarFixture::rebuiltCatalog(m_directory.filePath(u"rebuilt"_s));
        QVERIFY(m_catalog);
        QVERIFY(m_rebuiltCatalog);
    }

    void init()
    {
        QSettings().clear();
        RebrickableCatalog::replaceShared(m_catalog);
        m_store = PersistenceController::open(QString(), true);
        m_catalogService = std::make_unique<CatalogDatabaseService>(m_directory.filePath(u"app"_s), QUrl());
    }

    void cleanup()
    {
        m_catalogService.reset();
        m_store.reset();
        RebrickableCatalog::replaceShared(nullptr);
    }

    // Selection

    void atFirstStartTheSelectionIsAllSets()
    {
        const auto model = makeModel();
        QCOMPARE(model->selectedItem(), std::optional(SidebarItem(Kind::allSets)));
    }

    void theStoredSelectionIsRestored()
    {
        QSettings().setValue(u"sidebar.lastSelectedItem"_s, u"outdated_pricing"_s);
        const auto model = makeModel();
        QCOMPARE(model->selectedItem(), std::optional(SidebarItem(Kind::outdatedPricing)));
    }

    void aStoredThemeTheCatalogKnowsIsRestoredWithItsName()
    {
        QSettings().setValue(u"sidebar.lastSelectedItem"_s, u"catalog_theme_171"_s);
        const auto model = makeModel();
        QCOMPARE(model->selectedItem(), std::optional(SidebarItem::catalogTheme(171, u"Ultimate Collector Series"_s)));
    }

    void aStoredThemeThatLeftTheCatalogIsRestoredWithoutName()
    {
        QSettings().setValue(u"sidebar.lastSelectedItem"_s, u"catalog_theme_999"_s);
        const auto model = makeModel();
        QCOMPARE(model->selectedItem(), std::optional(SidebarItem::catalogTheme(999, QString())));
    }

    void aStoredThemeWithoutCatalogIsRestoredWithoutName()
    {
        RebrickableCatalog::replaceShared(nullptr);
        QSettings().setValue(u"sidebar.lastSelectedItem"_s, u"catalog_theme_158"_s);
        const auto model = makeModel();
        QCOMPARE(model->selectedItem(), std::optional(SidebarItem::catalogTheme(158, QString())));
        QVERIFY(model->themeTree().isEmpty());
    }

    void aStoredSelectionThatNamesNoItemLeavesTheSelectionAbsent_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::newRow("theme prefix alone") << u"catalog_theme_"_s;
        QTest::newRow("theme prefix and letters") << u"catalog_theme_abc"_s;
        QTest::newRow("not in the table") << u"smart_list"_s;
        QTest::newRow("empty") << QString();
    }

    void aStoredSelectionThatNamesNoItemLeavesTheSelectionAbsent()
    {
        QFETCH(QString, stored);
        QSettings().setValue(u"sidebar.lastSelectedItem"_s, stored);
        const auto model = makeModel();
        QCOMPARE(model->selectedItem(), std::nullopt);
        // Nothing is written back: the bad value stays until the user picks something.
        QCOMPARE(storedSelection(), stored);
    }

    void everySelectedItemIsStoredUnderItsID()
    {
        const auto model = makeModel();
        model->setSelectedItem(SidebarItem(Kind::trash));
        QCOMPARE(storedSelection(), u"trash"_s);
        model->setSelectedItem(SidebarItem::catalogTheme(186, u"Castle"_s));
        QCOMPARE(storedSelection(), u"catalog_theme_186"_s);
    }

    void clearingTheSelectionKeepsTheStoredValue()
    {
        const auto model = makeModel();
        model->setSelectedItem(SidebarItem(Kind::favorites));
        model->setSelectedItem(std::nullopt);
        QCOMPARE(model->selectedItem(), std::nullopt);
        QCOMPARE(storedSelection(), u"favorites"_s);
        const auto next = makeModel();
        QCOMPARE(next->selectedItem(), std::optional(SidebarItem(Kind::favorites)));
    }

    void aChangedSelectionIsAnnouncedOnce()
    {
        const auto model = makeModel();
        QSignalSpy changed(model.get(), &SidebarViewModel::selectedItemChanged);
        model->setSelectedItem(SidebarItem(Kind::wishlist));
        model->setSelectedItem(SidebarItem(Kind::wishlist));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().value<std::optional<SidebarItem>>(), std::optional(SidebarItem(Kind::wishlist)));
    }

    void aHiddenRowDoesNotChangeTheSelection()
    {
        QSettings().setValue(u"sidebar.lastSelectedItem"_s, u"retired"_s);
        QSettings().setValue(u"sidebar.show.retired"_s, false);
        const auto model = makeModel();
        QCOMPARE(model->selectedItem(), std::optional(SidebarItem(Kind::retired)));
        QVERIFY(!model->visibleCollectionItems().contains(SidebarItem(Kind::retired)));
    }

    void hidingTheSelectedRowKeepsTheSelection()
    {
        const auto model = makeModel();
        model->setSelectedItem(SidebarItem(Kind::noPricing));
        QSignalSpy changed(model.get(), &SidebarViewModel::selectedItemChanged);
        SidebarVisibilitySettings::shared().setVisible(Kind::noPricing, false);
        QCOMPARE(model->selectedItem(), std::optional(SidebarItem(Kind::noPricing)));
        QCOMPARE(changed.count(), 0);
    }

    // The outline of themes

    void theOutlineShowsTheCatalogsThemesWithSubThemesUnderTheirParent()
    {
        const auto model = makeModel();
        const QList<ThemeNode> tree = model->themeTree();
        QCOMPARE(tree.size(), 2);
        QCOMPARE(tree.at(0).name, u"Castle"_s);
        QCOMPARE(tree.at(1).name, u"Star Wars"_s);
        QCOMPARE(tree.at(1).children.size(), 1);
        QCOMPARE(tree.at(1).children.at(0).id, 171);
    }

    void theOutlineIsEmptyWithoutCatalog()
    {
        RebrickableCatalog::replaceShared(nullptr);
        const auto model = makeModel();
        QVERIFY(model->themeTree().isEmpty());
    }

    void aCatalogRebuildReloadsTheOutlineWithoutMovingTheSelection()
    {
        const auto model = makeModel();
        const SidebarItem castle = SidebarItem::catalogTheme(186, u"Castle"_s);
        model->setSelectedItem(castle);
        QSignalSpy treeChanged(model.get(), &SidebarViewModel::themeTreeChanged);
        QSignalSpy selectionChanged(model.get(), &SidebarViewModel::selectedItemChanged);

        RebrickableCatalog::replaceShared(m_rebuiltCatalog);
        Q_EMIT m_catalogService->catalogDatabaseDidUpdate();

        QTRY_COMPARE(treeChanged.count(), 1);
        QCOMPARE(model->themeTree(), m_rebuiltCatalog->themeTree());
        QCOMPARE(model->themeTree().size(), 3);
        QCOMPARE(model->selectedItem(), std::optional(castle));
        QCOMPARE(selectionChanged.count(), 0);
    }

    void anUpdateWhileNoCatalogIsPresentKeepsTheOutline()
    {
        const auto model = makeModel();
        const QList<ThemeNode> before = model->themeTree();
        QVERIFY(!before.isEmpty());
        QSignalSpy treeChanged(model.get(), &SidebarViewModel::themeTreeChanged);
        RebrickableCatalog::replaceShared(nullptr);
        Q_EMIT m_catalogService->catalogDatabaseDidUpdate();
        QTRY_VERIFY(!model->isLoadingThemeTree());
        QCOMPARE(model->themeTree(), before);
        QCOMPARE(treeChanged.count(), 0);
    }

    void theOutlineIsReadOffTheMainThreadAndLandsOnIt()
    {
        QThread *mainThread = QThread::currentThread();
        std::atomic<QThread *> queryThread = nullptr;
        SidebarViewModel model(context(), *m_catalogService, [&queryThread] {
            queryThread = QThread::currentThread();
            return SidebarViewModel::sharedCatalogThemeTree();
        });
        QThread *landingThread = nullptr;
        connect(&model, &SidebarViewModel::themeTreeChanged, this,
                [&landingThread] { landingThread = QThread::currentThread(); });
        QTRY_COMPARE(model.themeTree().size(), 2);
        QVERIFY(queryThread.load() != nullptr);
        QVERIFY(queryThread.load() != mainThread);
        QCOMPARE(landingThread, mainThread);
        QCOMPARE(model.themeTree(), m_catalog->themeTree());
    }

    void aCatalogQueryThatTakesLongDoesNotStallTheMainThread()
    {
        // The query waits as it would behind a long search holding the catalog's lock.
        QSemaphore release;
        QElapsedTimer timer;
        timer.start();
        SidebarViewModel model(context(), *m_catalogService, [&release] {
            release.acquire();
            return SidebarViewModel::sharedCatalogThemeTree();
        });
        QVERIFY(timer.elapsed() < 2000);
        QVERIFY(model.isLoadingThemeTree());
        QVERIFY(model.themeTree().isEmpty());
        // The main thread keeps serving its events meanwhile.
        bool served = false;
        QTimer::singleShot(0, this, [&served] { served = true; });
        QTRY_VERIFY(served);
        QVERIFY(model.isLoadingThemeTree());

        release.release();
        QTRY_VERIFY(!model.isLoadingThemeTree());
        QCOMPARE(model.themeTree().size(), 2);
    }

    void anOlderCatalogsOutlineLandingLateIsDropped()
    {
        QSemaphore firstMayAnswer;
        std::atomic<int> calls = 0;
        SidebarViewModel model(context(), *m_catalogService, [&firstMayAnswer, &calls] {
            if (++calls == 1) {
                firstMayAnswer.acquire();
                return std::optional<QList<ThemeNode>>(QList<ThemeNode>{});
            }
            return SidebarViewModel::sharedCatalogThemeTree();
        });
        RebrickableCatalog::replaceShared(m_rebuiltCatalog);
        Q_EMIT m_catalogService->catalogDatabaseDidUpdate();
        QTRY_COMPARE(model.themeTree().size(), 3);
        firstMayAnswer.release();
        QTRY_VERIFY(!model.isLoadingThemeTree());
        QCOMPARE(model.themeTree().size(), 3);
    }

    // Visibility

    void everyRowIsShownByDefault()
    {
        const auto model = makeModel();
        QCOMPARE(model->visibleCollectionItems(), SidebarViewModel::allCollectionItems());
        QCOMPARE(SidebarViewModel::allCollectionItems().size(), 11);
    }

    void eachVisibilitySettingHidesItsRow_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<Kind>("kind");
        QTest::newRow("recentlyAdded") << u"sidebar.show.recentlyAdded"_s << Kind::recentlyAdded;
        QTest::newRow("unknownAcquisition") << u"sidebar.show.unknownAcquisition"_s << Kind::unknownAcquisition;
        QTest::newRow("unknownCondition") << u"sidebar.show.unknownCondition"_s << Kind::unknownCondition;
        QTest::newRow("retired") << u"sidebar.show.retired"_s << Kind::retired;
        QTest::newRow("noPricing") << u"sidebar.show.noPricing"_s << Kind::noPricing;
        QTest::newRow("outdatedPricing") << u"sidebar.show.outdatedPricing"_s << Kind::outdatedPricing;
    }

    void eachVisibilitySettingHidesItsRow()
    {
        QFETCH(QString, key);
        QFETCH(Kind, kind);
        QSettings().setValue(key, false);
        const auto model = makeModel();
        QList<SidebarItem> expected = SidebarViewModel::allCollectionItems();
        expected.removeOne(SidebarItem(kind));
        QCOMPARE(model->visibleCollectionItems(), expected);
        QCOMPARE(SidebarVisibilitySettings::settingsKey(kind), std::optional(key));
    }

    void theSettingsScreenListsTheSixSettingsInOrder()
    {
        QCOMPARE(SidebarVisibilitySettings::configurableKinds(),
                 (QList<Kind>{Kind::recentlyAdded, Kind::unknownAcquisition, Kind::unknownCondition, Kind::retired,
                              Kind::noPricing, Kind::outdatedPricing}));
        QCOMPARE(SidebarVisibilitySettings::settingsKey(Kind::allSets), std::nullopt);
    }

    void changingAVisibilitySettingIsAnnouncedAndStored()
    {
        const auto model = makeModel();
        QSignalSpy changed(model.get(), &SidebarViewModel::visibilityChanged);
        SidebarVisibilitySettings::shared().setVisible(Kind::retired, false);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(QSettings().value(u"sidebar.show.retired"_s).toBool(), false);
        QVERIFY(!model->isVisible(Kind::retired));
        SidebarVisibilitySettings::shared().setVisible(Kind::retired, true);
        QCOMPARE(changed.count(), 2);
        QVERIFY(model->isVisible(Kind::retired));
    }

    void theCatalogSectionStartsWithTheWholeCatalogAndTheThemeBrowser()
    {
        QCOMPARE(SidebarViewModel::catalogItems(),
                 (QList<SidebarItem>{SidebarItem(Kind::catalogAll), SidebarItem(Kind::catalogAllThemes)}));
    }

    // Badges

    void onlySevenRowsHaveABadge()
    {
        const auto model = makeModel();
        QList<Kind> withBadge;
        for (Kind kind : SidebarItem::plainKinds()) {
            if (model->badgeCount(SidebarItem(kind)))
                withBadge << kind;
            QCOMPARE(bool(model->badgeCount(SidebarItem(kind))), SidebarViewModel::hasBadge(kind));
        }
        QCOMPARE(withBadge, (QList<Kind>{Kind::allSets, Kind::favorites, Kind::wishlist, Kind::unknownAcquisition,
                                         Kind::unknownCondition, Kind::retired, Kind::trash}));
        QCOMPARE(model->badgeCount(SidebarItem::catalogTheme(158, u"Star Wars"_s)), std::nullopt);
    }

    void anEmptyCollectionCountsZeroEverywhere()
    {
        const auto model = makeModel();
        for (Kind kind : {Kind::allSets, Kind::favorites, Kind::wishlist, Kind::unknownAcquisition,
                          Kind::unknownCondition, Kind::retired, Kind::trash})
            QCOMPARE(badge(*model, kind), std::optional<qint64>(0));
    }

    void theBadgesCountTheirCopies()
    {
        const CatalogSet retiredSet = [this] {
            CatalogSet set;
            set.setNumber = u"6080-1"_s;
            set.dateLastAvailable = QDateTime::currentDateTimeUtc().addYears(-30);
            return context().insert(set);
        }();
        const CatalogSet currentSet = [this] {
            CatalogSet set;
            set.setNumber = u"10305-1"_s;
            set.dateLastAvailable = QDateTime::currentDateTimeUtc().addYears(1);
            return context().insert(set);
        }();
        BrickSet favorite = copy(currentSet.objectID);
        favorite.isFavorite = true;
        context().insert(favorite);
        context().insert(copy(retiredSet.objectID));
        BrickSet trashedFavorite = copy(retiredSet.objectID);
        trashedFavorite.isFavorite = true;
        trashedFavorite.isTrashed = true;
        context().insert(trashedFavorite);
        WishlistItem wanted;
        wanted.setNumber = u"75192-1"_s;
        context().insert(wanted);
        context().save();

        const auto model = makeModel();
        QCOMPARE(badge(*model, Kind::allSets), 2);
        QCOMPARE(badge(*model, Kind::favorites), 1);
        QCOMPARE(badge(*model, Kind::retired), 1);
        QCOMPARE(badge(*model, Kind::trash), 1);
        QCOMPARE(badge(*model, Kind::wishlist), 1);
        QCOMPARE(badge(*model, Kind::unknownAcquisition), 0);
        QCOMPARE(badge(*model, Kind::unknownCondition), 0);
    }

    void unknownAndAbsentAcquisitionAreBothInUnknownAcquisition()
    {
        BrickSet unknown = copy();
        unknown.acquisitionType = u"unknown"_s;
        BrickSet absent = copy();
        absent.acquisitionType.reset();
        context().insert(unknown);
        context().insert(absent);
        context().insert(copy());
        context().save();

        const auto model = makeModel();
        QCOMPARE(badge(*model, Kind::unknownAcquisition), 2);
        QCOMPARE(listCount(BrickSetQueries::notTrashed() && BrickSetQueries::acquisitionUnknownOrAbsent()), 2);
    }

    void aForeignUnknownConditionIsCountedByTheBadgeButNotInTheList()
    {
        BrickSet foreign = copy();
        foreign.overallCondition = u"unknown"_s;
        BrickSet absent = copy();
        absent.overallCondition.reset();
        const ObjectID foreignID = context().insert(foreign).objectID;
        const ObjectID absentID = context().insert(absent).objectID;
        context().save();

        const auto model = makeModel();
        QCOMPARE(badge(*model, Kind::unknownCondition), 2);
        const QList<ObjectID> list = context().fetchObjectIDs(
            FetchRequest<BrickSet>(BrickSetQueries::notTrashed() && BrickSetQueries::conditionAbsent()));
        QCOMPARE(list, QList<ObjectID>{absentID});
        QVERIFY(!list.contains(foreignID));
    }

    void aSetWithAnEightDayOldGuideAndAFreshOneIsInOutdatedPricing()
    {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        CatalogSet set;
        set.setNumber = u"75192-1"_s;
        set = context().insert(set);
        for (const QDateTime &fetched : {now.addDays(-8), now}) {
            CachedPriceGuide guide;
            guide.catalogSet = set.objectID;
            guide.providerName = u"brickeconomy"_s;
            guide.lastFetchDate = fetched;
            context().insert(guide);
        }
        const ObjectID priced = context().insert(copy(set.objectID)).objectID;
        context().insert(copy());
        context().save();

        const auto model = makeModel();
        QCOMPARE(model->badgeCount(SidebarItem(Kind::outdatedPricing)), std::nullopt);
        const QList<ObjectID> outdated = context().fetchObjectIDs(
            FetchRequest<BrickSet>(BrickSetQueries::notTrashed() && BrickSetQueries::pricingOlderThan(now.addDays(-7))));
        QCOMPARE(outdated, QList<ObjectID>{priced});
    }

    void countsFollowASaveOfTheViewContext()
    {
        const auto model = makeModel();
        QSignalSpy changed(model.get(), &SidebarViewModel::badgeCountChanged);
        BrickSet favorite = copy();
        favorite.isFavorite = true;
        context().insert(favorite);
        context().save();
        QTRY_COMPARE(badge(*model, Kind::favorites), 1);
        QCOMPARE(badge(*model, Kind::allSets), 1);
        QVERIFY(changed.count() >= 2);
    }

    void countsFollowABackgroundSave()
    {
        const auto model = makeModel();
        auto background = m_store->container().newBackgroundContext();
        background
            ->perform([](ManagedObjectContext &context) {
                BrickSet trashed = copy();
                trashed.isTrashed = true;
                context.insert(trashed);
                context.insert(copy());
                WishlistItem wanted;
                wanted.setNumber = u"10305-1"_s;
                context.insert(wanted);
                context.save();
            })
            .waitForFinished();
        QTRY_COMPARE(badge(*model, Kind::allSets), 1);
        QTRY_COMPARE(badge(*model, Kind::trash), 1);
        QTRY_COMPARE(badge(*model, Kind::wishlist), 1);
    }

    void countsFollowACopyMovedToTheTrash()
    {
        BrickSet kept = context().insert(copy());
        context().save();
        const auto model = makeModel();
        QCOMPARE(badge(*model, Kind::allSets), 1);
        kept.isTrashed = true;
        context().update(kept);
        context().save();
        QTRY_COMPARE(badge(*model, Kind::allSets), 0);
        QCOMPARE(badge(*model, Kind::trash), 1);
    }

    void theRetiredCountFollowsAChangedCatalogSet()
    {
        CatalogSet set;
        set.setNumber = u"6080-1"_s;
        set = context().insert(set);
        context().insert(copy(set.objectID));
        context().save();
        const auto model = makeModel();
        QCOMPARE(badge(*model, Kind::retired), 0);
        set.dateLastAvailable = QDateTime::currentDateTimeUtc().addDays(-2);
        context().update(set);
        context().save();
        QTRY_COMPARE(badge(*model, Kind::retired), 1);
    }

    void aSaveThatChangesNoCountAnnouncesNothing()
    {
        const auto model = makeModel();
        QSignalSpy changed(model.get(), &SidebarViewModel::badgeCountChanged);
        QSignalSpy announced(&m_store->container(), &PersistentContainer::objectsDidChange);
        CatalogPart part;
        part.partNumber = u"3001"_s;
        context().insert(part);
        context().save();
        QTRY_COMPARE(announced.count(), 1);
        QCOMPARE(changed.count(), 0);
    }
};

QTEST_GUILESS_MAIN(SidebarViewModelTest)
#include "SidebarViewModelTest.moc"
