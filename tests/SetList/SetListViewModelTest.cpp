// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/BrickSetListModel.h"
#include "Store/PersistenceController.h"
#include "ViewModels/SetListGroupModel.h"
#include "ViewModels/SetListViewModel.h"

#include <QAbstractItemModelTester>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

namespace {

// The set numbers of the list's cells, in order; "?" for a copy without a catalog set.
QStringList cellNumbers(const SetListGroupModel &groups)
{
    QStringList numbers;
    for (const SetListGroupModel::Group &group : groups.groups())
        numbers << (group.copy->catalogSet ? group.copy->catalogSet->setNumber.value_or(QString()) : u"?"_s);
    return numbers;
}

} // namespace

class SetListViewModelTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PersistenceController> m_store;
    CatalogSet m_falcon;
    CatalogSet m_oldFalcon;
    CatalogSet m_castle;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }

    BrickSet addCopy(const std::optional<ObjectID> &catalogSet, const std::function<void(BrickSet &)> &configure = {})
    {
        return saveCopy(context(), catalogSet, configure);
    }

    // The set numbers that the list of `itemID` fetches, in the request's order.
    QStringList fetchedNumbers(const SetListViewModel &model, const QString &itemID)
    {
        QStringList numbers;
        for (const BrickSetWithCatalogSet &row : context().fetchBrickSetsWithCatalogSets(model.fetchRequest(itemID)))
            numbers << (row.catalogSet ? row.catalogSet->setNumber.value_or(QString()) : u"?"_s);
        return numbers;
    }

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void init()
    {
        QSettings().clear();
        m_store = PersistenceController::open(QString(), true);
        m_falcon = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017));
        m_oldFalcon = context().insert(catalogSet(u"7965-1"_s, u"Millennium Falcon"_s, 2011));
        CatalogSet castle = catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s, 2022);
        castle.themeName = u"Castle"_s;
        m_castle = context().insert(castle);
        context().save();
    }

    void cleanup() { m_store.reset(); }

    // ---- Search tokens --------------------------------------------------------------------

    void numberAndWordMustBothMatchEachInAnyField()
    {
        addCopy(m_falcon.objectID);
        addCopy(m_oldFalcon.objectID);
        addCopy(m_castle.objectID);
        SetListViewModel model(m_store->container());
        model.setSearchText(u"75192 falcon"_s);
        QCOMPARE(fetchedNumbers(model, u"all_sets"_s), QStringList{u"75192-1"_s});
        model.setSearchText(u"falcon 75192"_s);
        QCOMPARE(fetchedNumbers(model, u"all_sets"_s), QStringList{u"75192-1"_s});
        model.setSearchText(u"75192 castle"_s);
        QVERIFY(fetchedNumbers(model, u"all_sets"_s).isEmpty());
        model.setSearchText(u"FALCON"_s);
        QCOMPARE(fetchedNumbers(model, u"all_sets"_s).size(), 2);
    }

    void yearTokenAlsoMatchesTheSetsYear()
    {
        addCopy(m_falcon.objectID);
        addCopy(m_castle.objectID);
        SetListViewModel model(m_store->container());
        model.setSearchText(u"2022"_s);
        QCOMPARE(fetchedNumbers(model, u"all_sets"_s), QStringList{u"10305-1"_s});
    }

    void searchTextHasNoEffectOnTheFetchOfACatalogList()
    {
        addCopy(m_falcon.objectID);
        addCopy(m_castle.objectID);
        SetListViewModel model(m_store->container());
        model.setSearchText(u"castle"_s);
        QCOMPARE(fetchedNumbers(model, u"all_sets"_s), QStringList{u"10305-1"_s});
        QCOMPARE(fetchedNumbers(model, u"catalog_all"_s).size(), 2);
        QCOMPARE(fetchedNumbers(model, u"catalog_theme_158"_s).size(), 2);
    }

    void themeSelectionIsACatalogListLimitedToThatTheme()
    {
        SetListViewModel model(m_store->container());
        model.setSelectionID(u"catalog_theme_158"_s);
        QVERIFY(model.isCatalogList());
        QCOMPARE(model.selection().themeID(), std::optional<int>(158));
        QCOMPARE(model.copies()->count(), 0);
    }

    void searchOverCopiesAppliesAtOnceWithoutWaiting()
    {
        addCopy(m_falcon.objectID);
        addCopy(m_castle.objectID);
        SetListViewModel model(m_store->container());
        model.setSelectionID(u"all_sets"_s);
        model.setSearchText(u"castle"_s);
        QCOMPARE(cellNumbers(*model.groups()), QStringList{u"10305-1"_s});
    }

    // ---- Smart lists ----------------------------------------------------------------------

    void trashListHoldsOnlyTrashedCopiesAndTheOthersNone()
    {
        addCopy(m_falcon.objectID);
        addCopy(m_castle.objectID, [](BrickSet &copy) { copy.isTrashed = true; });
        SetListViewModel model(m_store->container());
        QCOMPARE(fetchedNumbers(model, u"trash"_s), QStringList{u"10305-1"_s});
        QCOMPARE(fetchedNumbers(model, u"all_sets"_s), QStringList{u"75192-1"_s});
        QCOMPARE(fetchedNumbers(model, u"favorites"_s), QStringList());
    }

    void favoritesHoldFavouriteCopies()
    {
        addCopy(m_falcon.objectID, [](BrickSet &copy) { copy.isFavorite = true; });
        addCopy(m_castle.objectID);
        SetListViewModel model(m_store->container());
        QCOMPARE(fetchedNumbers(model, u"favorites"_s), QStringList{u"75192-1"_s});
    }

    void recentlyAddedHoldsTheLastThirtyDays()
    {
        addCopy(m_falcon.objectID, [](BrickSet &copy) { copy.dateAdded = QDateTime::currentDateTime().addDays(-10); });
        addCopy(m_castle.objectID, [](BrickSet &copy) { copy.dateAdded = QDateTime::currentDateTime().addDays(-40); });
        SetListViewModel model(m_store->container());
        QCOMPARE(fetchedNumbers(model, u"recently_added"_s), QStringList{u"75192-1"_s});
    }

    void unknownAndAbsentAcquisitionAreBothInUnknownAcquisition()
    {
        addCopy(m_falcon.objectID, [](BrickSet &copy) { copy.acquisitionType = u"unknown"_s; });
        addCopy(m_oldFalcon.objectID, [](BrickSet &copy) { copy.acquisitionType.reset(); });
        addCopy(m_castle.objectID, [](BrickSet &copy) { copy.acquisitionType = u"purchased"_s; });
        SetListViewModel model(m_store->container());
        QCOMPARE(fetchedNumbers(model, u"unknown_acquisition"_s), (QStringList{u"75192-1"_s, u"7965-1"_s}));
    }

    void unknownConditionListTakesOnlyAnAbsentConditionNotTheStoredWordUnknown()
    {
        addCopy(m_falcon.objectID, [](BrickSet &copy) { copy.overallCondition.reset(); });
        addCopy(m_oldFalcon.objectID, [](BrickSet &copy) { copy.overallCondition = u"unknown"_s; });
        addCopy(m_castle.objectID, [](BrickSet &copy) { copy.overallCondition = u"new"_s; });
        SetListViewModel model(m_store->container());
        QCOMPARE(fetchedNumbers(model, u"unknown_condition"_s), QStringList{u"75192-1"_s});
    }

    void retiredHoldsSetsWhoseLastAvailabilityHasPassed()
    {
        CatalogSet retired = m_falcon;
        retired.dateLastAvailable = QDateTime::currentDateTime().addDays(-1);
        context().update(retired);
        CatalogSet current = m_castle;
        current.dateLastAvailable = QDateTime::currentDateTime().addDays(30);
        context().update(current);
        context().save();
        addCopy(m_falcon.objectID);
        addCopy(m_castle.objectID);
        addCopy(m_oldFalcon.objectID);
        addCopy(std::nullopt);
        SetListViewModel model(m_store->container());
        QCOMPARE(fetchedNumbers(model, u"retired"_s), QStringList{u"75192-1"_s});
    }

    void setWithAnOldAndAFreshGuideIsOutdatedAndOneWithoutGuidesHasNoPricing()
    {
        const QDateTime now = QDateTime::currentDateTime();
        context().insert(guide(m_falcon.objectID, u"used"_s, u"sold"_s, now.addDays(-8)));
        context().insert(guide(m_falcon.objectID, u"new"_s, u"sold"_s, now));
        context().insert(guide(m_castle.objectID, u"used"_s, u"sold"_s, now));
        context().save();
        addCopy(m_falcon.objectID);
        addCopy(m_castle.objectID);
        addCopy(m_oldFalcon.objectID);
        SetListViewModel model(m_store->container());
        QCOMPARE(fetchedNumbers(model, u"outdated_pricing"_s), QStringList{u"75192-1"_s});
        QCOMPARE(fetchedNumbers(model, u"no_pricing"_s), QStringList{u"7965-1"_s});
    }

    void unknownSelectionIdBehavesAsNoSelection()
    {
        addCopy(m_falcon.objectID);
        addCopy(m_castle.objectID, [](BrickSet &copy) { copy.isTrashed = true; });
        SetListViewModel model(m_store->container());
        QCOMPARE(fetchedNumbers(model, u"catalog_theme_"_s), QStringList{u"75192-1"_s});
        QCOMPARE(fetchedNumbers(model, u"catalog_theme_abc"_s), QStringList{u"75192-1"_s});
        QCOMPARE(fetchedNumbers(model, u"catalog_theme_ 5"_s), QStringList{u"75192-1"_s});
        QCOMPARE(fetchedNumbers(model, u"no_such_item"_s), QStringList{u"75192-1"_s});
        QCOMPARE(fetchedNumbers(model, QString()), QStringList{u"75192-1"_s});
    }

    void sidebarItemsFetchLikeTheirIds()
    {
        addCopy(m_falcon.objectID, [](BrickSet &copy) { copy.isFavorite = true; });
        addCopy(m_castle.objectID);
        SetListViewModel model(m_store->container());
        QStringList favorites;
        for (const BrickSet &copy : context().fetch(model.fetchRequest(SidebarItem(SidebarItem::Kind::favorites))))
            favorites << copy.id.toString();
        QCOMPARE(favorites.size(), 1);
        QCOMPARE(context().count(model.fetchRequest(std::optional<SidebarItem>())), qint64(2));
        model.sidebarSelectionChanged(SidebarItem(SidebarItem::Kind::favorites));
        QCOMPARE(model.selectionID(), u"favorites"_s);
        QCOMPARE(cellNumbers(*model.groups()), QStringList{u"75192-1"_s});
    }

    // ---- Filters --------------------------------------------------------------------------

    void filtersOfThemeYearAndConditionNarrowTheList()
    {
        addCopy(m_falcon.objectID, [](BrickSet &copy) { copy.overallCondition = u"new"_s; });
        addCopy(m_oldFalcon.objectID, [](BrickSet &copy) { copy.overallCondition = u"used"_s; });
        addCopy(m_castle.objectID, [](BrickSet &copy) { copy.overallCondition = u"used"_s; });
        SetListViewModel model(m_store->container());
        model.setFilterTheme(u"Castle"_s);
        QCOMPARE(fetchedNumbers(model, u"all_sets"_s), QStringList{u"10305-1"_s});
        model.setFilterTheme(std::nullopt);
        model.setFilterYear(2011);
        QCOMPARE(fetchedNumbers(model, u"all_sets"_s), QStringList{u"7965-1"_s});
        model.setFilterYear(std::nullopt);
        model.setFilterCondition(OverallCondition::new_);
        QCOMPARE(fetchedNumbers(model, u"all_sets"_s), QStringList{u"75192-1"_s});
    }

    // ---- Sort settings --------------------------------------------------------------------

    void withoutStoredKeysCopiesSortByNameAscendingInAGridAndCatalogByYearAscending()
    {
        SetListViewModel model(m_store->container());
        QCOMPARE(model.collectionSortColumn(), SetListViewModel::SortColumn::name);
        QVERIFY(model.collectionSortAscending());
        QCOMPARE(model.catalogSortColumn(), SetListViewModel::SortColumn::year);
        QVERIFY(model.catalogSortAscending());
        QVERIFY(model.isGridView());
        QCOMPARE(model.sortDescriptors(), (QList<SortDescriptor>{{u"catalogSet.name"_s, true}}));
        QCOMPARE(model.catalogSortOrder(), (QList<SortDescriptor>{{u"year"_s, true}, {u"name"_s, true}}));
    }

    void unknownStoredSortColumnFallsBackToName()
    {
        QSettings().setValue(u"collectionSortColumn"_s, u"colour"_s);
        QSettings().setValue(u"catalogSortColumn"_s, u"Year"_s);
        SetListViewModel model(m_store->container());
        QCOMPARE(model.collectionSortColumn(), SetListViewModel::SortColumn::name);
        QCOMPARE(model.catalogSortColumn(), SetListViewModel::SortColumn::year);
    }

    void sortSettingsAreStoredAndRestored()
    {
        {
            SetListViewModel model(m_store->container());
            model.setCollectionSortColumn(SetListViewModel::SortColumn::pieces);
            model.setCollectionSortAscending(false);
            model.setCatalogSortColumn(SetListViewModel::SortColumn::setNumber);
            model.setCatalogSortAscending(false);
            model.setGridView(false);
        }
        const QSettings settings;
        QCOMPARE(settings.value(u"collectionSortColumn"_s).toString(), u"pieces"_s);
        QCOMPARE(settings.value(u"collectionSortAscending"_s).toBool(), false);
        QCOMPARE(settings.value(u"catalogSortColumn"_s).toString(), u"setNumber"_s);
        QCOMPARE(settings.value(u"catalogSortAscending"_s).toBool(), false);
        QCOMPARE(settings.value(u"collectionIsGridView"_s).toBool(), false);
        SetListViewModel restored(m_store->container());
        QCOMPARE(restored.collectionSortColumn(), SetListViewModel::SortColumn::pieces);
        QVERIFY(!restored.collectionSortAscending());
        QCOMPARE(restored.catalogSortColumn(), SetListViewModel::SortColumn::setNumber);
        QVERIFY(!restored.catalogSortAscending());
        QVERIFY(!restored.isGridView());
    }

    void yearSortsByYearThenAlwaysAscendingName()
    {
        SetListViewModel model(m_store->container());
        model.setCollectionSortColumn(SetListViewModel::SortColumn::year);
        model.setCollectionSortAscending(false);
        QCOMPARE(model.sortDescriptors(),
                 (QList<SortDescriptor>{{u"catalogSet.year"_s, false}, {u"catalogSet.name"_s, true}}));
        QCOMPARE(model.collectionSortOrder().size(), 2);
    }

    void clickingATableHeaderStoresItsColumnAndDirectionAndRefetches()
    {
        addCopy(m_falcon.objectID);
        addCopy(m_oldFalcon.objectID);
        addCopy(m_castle.objectID);
        SetListViewModel model(m_store->container());
        model.setSelectionID(u"all_sets"_s);
        QSignalSpy sortChanged(&model, &SetListViewModel::collectionSortChanged);
        model.groups()->sort(SetListGroupModel::YearColumn, Qt::DescendingOrder);
        QCOMPARE(sortChanged.count(), 1);
        QCOMPARE(model.collectionSortColumn(), SetListViewModel::SortColumn::year);
        QVERIFY(!model.collectionSortAscending());
        QCOMPARE(QSettings().value(u"collectionSortColumn"_s).toString(), u"year"_s);
        QCOMPARE(cellNumbers(*model.groups()), (QStringList{u"10305-1"_s, u"75192-1"_s, u"7965-1"_s}));
        QCOMPARE(SetListGroupModel::columnOfSortOrder(model.collectionSortOrder()), int(SetListGroupModel::YearColumn));
    }

    void valueSortsByMarketPriceInMemoryWhileItsTableIndicatorShowsTheName()
    {
        const QDateTime now = QDateTime::currentDateTime();
        context().insert(guide(m_falcon.objectID, u"used"_s, u"sold"_s, now, u"500"_s));
        context().insert(guide(m_castle.objectID, u"used"_s, u"sold"_s, now, u"80.5"_s));
        context().save();
        addCopy(m_falcon.objectID);
        addCopy(m_castle.objectID);
        addCopy(m_oldFalcon.objectID);
        SetListViewModel model(m_store->container());
        model.setSelectionID(u"all_sets"_s);
        model.setCollectionSortColumn(SetListViewModel::SortColumn::value);
        QCOMPARE(cellNumbers(*model.groups()), (QStringList{u"7965-1"_s, u"10305-1"_s, u"75192-1"_s}));
        model.setCollectionSortAscending(false);
        QCOMPARE(cellNumbers(*model.groups()), (QStringList{u"75192-1"_s, u"10305-1"_s, u"7965-1"_s}));
        QCOMPARE(model.collectionSortOrder(), (QList<SortDescriptor>{{u"catalogSet.name"_s, false}}));
        const QModelIndex falconValue = model.groups()->index(0, SetListGroupModel::ValueColumn);
        QCOMPARE(falconValue.data(SetListGroupModel::PriceRole).value<Decimal>(), *Decimal::fromString(u"500"_s));
    }

    // ---- Grouping -------------------------------------------------------------------------

    void twoCopiesOfOneSetShowOneCellWithCountTwoStandingForTheFirstInSortOrder()
    {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const BrickSet older = addCopy(m_falcon.objectID, [&](BrickSet &copy) { copy.dateAdded = now.addDays(-5); });
        const BrickSet newer = addCopy(m_falcon.objectID, [&](BrickSet &copy) { copy.dateAdded = now; });
        addCopy(m_castle.objectID);
        SetListViewModel model(m_store->container());
        model.setSelectionID(u"all_sets"_s);
        model.setCollectionSortColumn(SetListViewModel::SortColumn::dateAdded);
        SetListGroupModel &groups = *model.groups();
        QCOMPARE(cellNumbers(groups), (QStringList{u"75192-1"_s, u"10305-1"_s}));
        QCOMPARE(groups.index(0, 0).data(SetListGroupModel::CopyCountRole).toInt(), 2);
        QCOMPARE(groups.index(1, 0).data(SetListGroupModel::CopyCountRole).toInt(), 1);
        QCOMPARE(groups.groupAt(0).copy->brickSet.objectID, older.objectID);
        QCOMPARE(groups.rowOf(newer.objectID), 0);
        model.setCollectionSortAscending(false);
        QCOMPARE(groups.groupAt(groups.rowOf(newer.objectID)).copy->brickSet.objectID, newer.objectID);
    }

    void copyWithoutCatalogSetGetsItsOwnCellNamedUnknownSet()
    {
        addCopy(std::nullopt);
        addCopy(std::nullopt);
        addCopy(m_castle.objectID);
        SetListViewModel model(m_store->container());
        model.setSelectionID(u"all_sets"_s);
        SetListGroupModel &groups = *model.groups();
        QCOMPARE(groups.count(), 3);
        QCOMPARE(cellNumbers(groups), (QStringList{u"?"_s, u"?"_s, u"10305-1"_s}));
        QCOMPARE(groups.index(0, SetListGroupModel::NameColumn).data().toString(), u"Unknown Set"_s);
        QCOMPARE(groups.index(0, 0).data(SetListGroupModel::CopyCountRole).toInt(), 1);
    }

    void groupsFollowSavesAndPassTheModelTester()
    {
        SetListViewModel model(m_store->container());
        QAbstractItemModelTester tester(model.groups(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setSelectionID(u"all_sets"_s);
        addCopy(m_falcon.objectID);
        QTRY_COMPARE(model.groups()->count(), 1);
        addCopy(m_falcon.objectID, [](BrickSet &copy) { copy.isFavorite = true; });
        QTRY_COMPARE(model.groups()->index(0, 0).data(SetListGroupModel::CopyCountRole).toInt(), 2);
        addCopy(m_castle.objectID);
        QTRY_COMPARE(model.groups()->count(), 2);
        model.setSearchText(u"castle"_s);
        QCOMPARE(model.groups()->count(), 1);
    }

    // ---- Selection after a search ---------------------------------------------------------

    void searchLeavingOneSetSelectsTheCopyThatStandsForIt()
    {
        const BrickSet castle = addCopy(m_castle.objectID);
        addCopy(m_falcon.objectID);
        addCopy(m_oldFalcon.objectID);
        SetListViewModel model(m_store->container());
        model.setSelectionID(u"all_sets"_s);
        QSignalSpy selected(&model, &SetListViewModel::brickSetSelectedBySearch);
        model.setSearchText(u"falcon"_s);
        QCOMPARE(selected.count(), 0);
        model.setSearchText(u"castle"_s);
        QCOMPARE(selected.count(), 1);
        QCOMPARE(selected.first().first().value<ObjectID>(), castle.objectID);
    }

    void twoCopiesOfTheOneSetLeftBySearchCountAsOneSetAndSelectTheFirst()
    {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        addCopy(m_castle.objectID);
        const BrickSet first = addCopy(m_falcon.objectID, [&](BrickSet &copy) { copy.dateAdded = now.addDays(-3); });
        addCopy(m_falcon.objectID, [&](BrickSet &copy) { copy.dateAdded = now; });
        SetListViewModel model(m_store->container());
        model.setSelectionID(u"all_sets"_s);
        model.setCollectionSortColumn(SetListViewModel::SortColumn::dateAdded);
        QSignalSpy selected(&model, &SetListViewModel::brickSetSelectedBySearch);
        model.setSearchText(u"75192"_s);
        QCOMPARE(selected.count(), 1);
        QCOMPARE(selected.first().first().value<ObjectID>(), first.objectID);
    }

    void clearingTheSearchSelectsNothing()
    {
        addCopy(m_castle.objectID);
        SetListViewModel model(m_store->container());
        model.setSelectionID(u"all_sets"_s);
        model.setSearchText(u"x"_s);
        QSignalSpy selected(&model, &SetListViewModel::brickSetSelectedBySearch);
        model.setSearchText(QString());
        QCOMPARE(model.groups()->count(), 1);
        QCOMPARE(selected.count(), 0);
    }

    // ---- Owned set numbers, focus, view ---------------------------------------------------

    void ownedSetNumbersFollowTheCopiesOutsideTheTrash()
    {
        addCopy(m_falcon.objectID);
        addCopy(m_castle.objectID, [](BrickSet &copy) { copy.isTrashed = true; });
        addCopy(std::nullopt);
        SetListViewModel model(m_store->container());
        QCOMPARE(model.ownedSetNumbers(), QSet<QString>{u"75192-1"_s});
        QSignalSpy changed(&model, &SetListViewModel::ownedSetNumbersChanged);
        addCopy(m_oldFalcon.objectID);
        QTRY_COMPARE(model.ownedSetNumbers(), (QSet<QString>{u"75192-1"_s, u"7965-1"_s}));
        QCOMPARE(changed.count(), 1);
    }

    void eachFocusRequestFlipsTheTrigger()
    {
        SetListViewModel model(m_store->container());
        QSignalSpy spy(&model, &SetListViewModel::searchFocusTriggerChanged);
        model.toggleSearchFocusTrigger();
        model.toggleSearchFocusTrigger();
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.at(0).first().toBool(), true);
        QCOMPARE(spy.at(1).first().toBool(), false);
    }

    void leavingForAnotherCollectionListClearsTheSearch()
    {
        addCopy(m_castle.objectID);
        addCopy(m_falcon.objectID, [](BrickSet &copy) { copy.isFavorite = true; });
        SetListViewModel model(m_store->container());
        model.sidebarSelectionChanged(u"all_sets"_s);
        model.setSearchText(u"castle"_s);
        model.sidebarSelectionChanged(u"favorites"_s);
        QVERIFY(model.searchText().isEmpty());
        QCOMPARE(cellNumbers(*model.groups()), QStringList{u"75192-1"_s});
        QVERIFY(!model.isCatalogList());
    }
};

QTEST_MAIN(SetListViewModelTest)
#include "SetListViewModelTest.moc"
