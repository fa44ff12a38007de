// SPDX-License-Identifier: GPL-3.0-or-later
#include "ChecklistFixture.h"
#include "TestEnvironment.h"

#include "Store/CatalogColor.h"
#include "Store/CatalogPart.h"
#include "Store/CatalogSetPart.h"
#include "ViewModels/PartsChecklistViewModel.h"
#include "Views/TranslationLoader.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace ChecklistFixture;
using Mode = PartsChecklistViewModel::FilterMode;
using Sort = PartsChecklistViewModel::SortMode;
using Group = PartsChecklistViewModel::GroupMode;

namespace {

QStringList ids(const QList<ChecklistItem> &items)
{
    QStringList result;
    for (const ChecklistItem &item : items)
        result.append(item.id);
    return result;
}

} // namespace

// The checklist of one copy over a real catalog and a real store: rows from the newest
// inventory, counts kept as entries made at the first tick and gone at zero, whole-list
// actions with one save each, filters and facets, the four orders, blocks and figures.
class PartsChecklistViewModelTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<PersistentContainer> m_store;
    QString m_storePath;
    int m_storeNumber = 0;

    ManagedObjectContext &context() { return m_store->viewContext(); }

    // A view model over a new copy of `setNumber`, loaded.
    std::unique_ptr<PartsChecklistViewModel> loaded(const QString &setNumber)
    {
        return loaded(saveCopyOf(context(), setNumber));
    }

    std::unique_ptr<PartsChecklistViewModel> loaded(const BrickSet &copy)
    {
        auto model = std::make_unique<PartsChecklistViewModel>(copy, context());
        model->loadItems();
        if (!QTest::qWaitFor([&model] { return !model->isLoading(); }, 10000))
            qFatal("the checklist never finished loading");
        return model;
    }

    const ChecklistItem &item(const PartsChecklistViewModel &model, const QString &id)
    {
        for (const ChecklistItem &candidate : model.items()) {
            if (candidate.id == id)
                return candidate;
        }
        qFatal("no item %s", qPrintable(id));
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_folder.isValid());
        QVERIFY(TranslationLoader::install(*QCoreApplication::instance(), QLocale(QLocale::English)));
        m_catalog = RebrickableCatalog::openFile(standardFixture().build(m_folder.filePath(u"catalog"_s)));
        QVERIFY(m_catalog);
    }

    void init()
    {
        RebrickableCatalog::replaceShared(m_catalog);
        m_storePath = m_folder.filePath(u"store%1/Tessaloom.sqlite"_s.arg(++m_storeNumber));
        QDir().mkpath(QFileInfo(m_storePath).path());
        m_store = PersistentContainer::open(m_storePath);
        QVERIFY(m_store);
    }

    void cleanup()
    {
        m_store.reset();
        RebrickableCatalog::replaceShared(nullptr);
    }

    // --- Loading

    void isLoadingUntilTheFirstLoadHasLanded()
    {
        PartsChecklistViewModel model(saveCopyOf(context(), u"1000-1"_s), context());
        QVERIFY(model.isLoading());
        QVERIFY(model.items().isEmpty());
        QSignalSpy loading(&model, &PartsChecklistViewModel::isLoadingChanged);
        model.loadItems();
        // The catalog is read in the call: the rows are there when it returns.
        QVERIFY(!model.isLoading());
        QCOMPARE(loading.count(), 1);
        QCOMPARE(model.items().size(), 6);
    }

    void backgroundLoadLandsItsRowsLater()
    {
        PartsChecklistViewModel model(saveCopyOf(context(), u"1000-1"_s), context());
        QSignalSpy loading(&model, &PartsChecklistViewModel::isLoadingChanged);
        model.loadItemsInBackground();
        // The catalog is read on the pool: nothing lands before the event loop runs.
        QVERIFY(model.isLoading());
        QVERIFY(model.items().isEmpty());
        QTRY_VERIFY(!model.isLoading());
        QCOMPARE(loading.count(), 1);
        QCOMPARE(model.items().size(), 6);
    }

    void overlappingLoadsLandOnlyTheLatest()
    {
        PartsChecklistViewModel model(saveCopyOf(context(), u"1000-1"_s), context());
        QSignalSpy items(&model, &PartsChecklistViewModel::itemsChanged);
        QSignalSpy loading(&model, &PartsChecklistViewModel::isLoadingChanged);
        model.loadItemsInBackground();
        model.loadItemsInBackground();
        QTRY_VERIFY(!model.isLoading());
        QCOMPARE(items.count(), 1);
        QCOMPARE(loading.count(), 1);
        QCOMPARE(model.items().size(), 6);
    }

    void itemsComeFromTheNewestInventoryInPartNumberOrderWithCatalogNames()
    {
        const auto model = loaded(u"1000-1"_s);
        const QList<ChecklistItem> items = model->items();
        QCOMPARE(items.size(), 6);
        QCOMPARE(items.at(0).id, u"10-4"_s);
        QCOMPARE(items.at(0).partName, u"brick Round 2 x 2"_s);
        QCOMPARE(items.at(0).colorName, u"Red"_s);
        QCOMPARE(items.at(0).colorHex, u"C91A09"_s);
        QCOMPARE(items.at(0).category, u"Bricks"_s);
        QCOMPARE(items.at(0).quantity, 2);
        QCOMPARE(items.at(0).imgURL, std::optional<QString>(u"https://example.invalid/10.png"_s));
        QCOMPARE(items.at(1).id, u"3001-1"_s);
        QCOMPARE(items.at(1).quantity, 3); // not the 99 of the older version
        QCOMPARE(items.at(1).imgURL, std::nullopt);
        QCOMPARE(items.last().id, u"99999-9999"_s);
    }

    void unknownPartAndColourFallBackToNumberUnknownGreyAndOther()
    {
        const auto model = loaded(u"1000-1"_s);
        const ChecklistItem unknown = item(*model, u"99999-9999"_s);
        QCOMPARE(unknown.partName, u"99999"_s);
        QCOMPARE(unknown.colorName, u"Unknown"_s);
        QCOMPARE(unknown.colorHex, u"808080"_s);
        QCOMPARE(unknown.category, u"Other"_s);
    }

    void regularAndSpareRowOfOnePartYieldOneItemWithTheRegularQuantity()
    {
        const auto model = loaded(u"1000-1"_s);
        QCOMPARE(ids(model->items()).count(u"3001-1"_s), 1);
        QCOMPARE(item(*model, u"3001-1"_s).quantity, 3);
    }

    void setWithOnlySpareRowsYieldsAnEmptyList()
    {
        const auto model = loaded(u"2000-1"_s);
        QVERIFY(model->items().isEmpty());
        QVERIFY(!model->isLoading());
    }

    void twoRegularRowsOfOnePartStayTwoItemsSharingOneEntry()
    {
        const auto model = loaded(u"8000-1"_s);
        QCOMPARE(ids(model->items()), (QStringList{u"3001-1"_s, u"3001-1"_s}));
        QCOMPARE(model->totalPieces(), 7);
        model->increment(model->items().at(0));
        QCOMPARE(model->ownedCount(model->items().at(1)), 1);
        QCOMPARE(model->entriesByKey().size(), 1);
        // Each item sets the shared count in turn; the last one stands.
        model->markAllComplete();
        QCOMPARE(storedCounts(m_storePath, model->brickSet().objectID), (QMap<QString, int>{{u"3001-1"_s, 5}}));
        QCOMPARE(model->completeItemCount(), 2);
    }

    void reloadWithoutCatalogKeepsTheRowsItHad()
    {
        const auto model = loaded(u"1000-1"_s);
        const QList<ChecklistItem> before = model->items();
        RebrickableCatalog::replaceShared(nullptr);
        QSignalSpy items(model.get(), &PartsChecklistViewModel::itemsChanged);
        model->loadItems();
        QVERIFY(!model->isLoading());
        QCOMPARE(model->items(), before);
        QCOMPARE(items.count(), 0);
    }

    void withoutCatalogTheListStaysEmptyAndLoadingEnds()
    {
        RebrickableCatalog::replaceShared(nullptr);
        const auto model = loaded(u"1000-1"_s);
        QVERIFY(model->items().isEmpty());
        QVERIFY(!model->isLoading());
    }

    void copyWithoutCatalogSetHasAnEmptyListAndCannotBeTicked()
    {
        BrickSet copy = context().insert(newCopy(std::nullopt));
        context().save();
        const auto model = loaded(copy);
        QVERIFY(model->items().isEmpty());
        QVERIFY(!model->isLoading());

        ChecklistItem lone{u"3001-1"_s, u"3001"_s, u"Brick 2 x 4"_s, 1, u"Blue"_s, u"0055BF"_s, u"Bricks"_s, 3, {}};
        QTest::ignoreMessage(QtCriticalMsg, "BrickSet has no catalogSet — cannot create inventory entry");
        model->increment(lone);
        QCOMPARE(model->revision(), 0);
        QCOMPARE(model->ownedCount(lone), 0);
        QCOMPARE(storedEntryRows(m_storePath), 0);
    }

    void loadFindsStoredCountsByPartAndColour()
    {
        const BrickSet copy = saveCopyOf(context(), u"1000-1"_s);
        {
            const auto first = loaded(copy);
            first->increment(item(*first, u"3020-4"_s));
            first->increment(item(*first, u"3020-4"_s));
        }
        const auto second = loaded(copy);
        QCOMPARE(second->entriesByKey().size(), 1);
        QCOMPARE(second->ownedCount(item(*second, u"3020-4"_s)), 2);
    }

    // --- Counts

    void tickingUpToTheRequiredQuantitySavesEachCount()
    {
        const auto model = loaded(u"1000-1"_s);
        const ChecklistItem bricks = item(*model, u"3001-1"_s);
        QCOMPARE(storedEntryRows(m_storePath), 0);
        for (int expected = 1; expected <= 3; ++expected) {
            model->increment(bricks);
            QCOMPARE(model->ownedCount(bricks), expected);
            QCOMPARE(model->revision(), expected);
            QCOMPARE(storedCounts(m_storePath, model->brickSet().objectID),
                     (QMap<QString, int>{{u"3001-1"_s, expected}}));
        }
        QVERIFY(model->isComplete(bricks));
        QCOMPARE(storedEntryRows(m_storePath), 1);
    }

    void incrementAtTheQuantityChangesNothingAndKeepsTheRevision()
    {
        const auto model = loaded(u"1000-1"_s);
        const ChecklistItem white = item(*model, u"3021-15"_s); // quantity 1
        model->increment(white);
        QCOMPARE(model->revision(), 1);
        QSignalSpy revisions(model.get(), &PartsChecklistViewModel::revisionChanged);
        QSignalSpy saves(m_store.get(), &PersistentContainer::objectsDidChange);
        model->increment(white);
        QCOMPARE(model->ownedCount(white), 1);
        QCOMPARE(model->revision(), 1);
        QCOMPARE(revisions.count(), 0);
        QCOMPARE(saves.count(), 0);
        QCOMPARE(storedCounts(m_storePath, model->brickSet().objectID), (QMap<QString, int>{{u"3021-15"_s, 1}}));
    }

    void itemWithQuantityZeroCountsAsCompleteAndCannotBeTicked()
    {
        const auto model = loaded(u"6000-1"_s);
        const ChecklistItem nothing = model->items().constFirst();
        QVERIFY(model->isComplete(nothing));
        model->increment(nothing);
        QCOMPARE(model->revision(), 0);
        QCOMPARE(storedEntryRows(m_storePath), 0);
    }

    void firstTickOfAnUnsynchronisedSetCreatesPartColourAndLine()
    {
        const auto model = loaded(u"1000-1"_s);
        model->increment(item(*model, u"99999-9999"_s));
        const auto part = context().fetchFirst(FetchRequest<CatalogPart>(Predicate::equal(u"partNumber"_s, u"99999"_s)));
        QVERIFY(part);
        QCOMPARE(part->name, std::optional<QString>(u"99999"_s));
        const auto color = context().fetchFirst(FetchRequest<CatalogColor>(Predicate::equal(u"colorID"_s, 9999)));
        QVERIFY(color);
        QCOMPARE(color->name, std::optional<QString>(u"Unknown"_s));
        QCOMPARE(color->hexCode, std::optional<QString>(u"808080"_s));
        QVERIFY(!color->isTransparent);
        const QList<CatalogSetPart> lines = context().fetch(FetchRequest<CatalogSetPart>());
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.first().catalogSet, model->brickSet().catalogSet);
        QCOMPARE(lines.first().catalogPart, std::optional<ObjectID>(part->objectID));
        QCOMPARE(lines.first().catalogColor, std::optional<ObjectID>(color->objectID));
        QCOMPARE(lines.first().quantity, 1);
        QVERIFY(!lines.first().isSpare);
    }

    void firstTickReusesTheSynchronisedPartColourAndLine()
    {
        const BrickSet copy = saveCopyOf(context(), u"1000-1"_s);
        CatalogPart part;
        part.partNumber = u"3001"_s;
        part.name = u"Synced name"_s;
        part = context().insert(part);
        CatalogColor color;
        color.colorID = 1;
        color.name = u"Synced Blue"_s;
        color = context().insert(color);
        CatalogSetPart line;
        line.catalogSet = copy.catalogSet;
        line.catalogPart = part.objectID;
        line.catalogColor = color.objectID;
        line.quantity = 3;
        line = context().insert(line);
        context().save();

        const auto model = loaded(copy);
        model->increment(item(*model, u"3001-1"_s));
        QCOMPARE(context().count(FetchRequest<CatalogPart>()), 1);
        QCOMPARE(context().count(FetchRequest<CatalogColor>()), 1);
        QCOMPARE(context().count(FetchRequest<CatalogSetPart>()), 1);
        QCOMPARE(model->entriesByKey().value(u"3001-1"_s).catalogSetPart, std::optional<ObjectID>(line.objectID));
        QCOMPARE(context().existingObject<CatalogPart>(part.objectID)->name, std::optional<QString>(u"Synced name"_s));
    }

    void decrementFromOneLeavesNoEntryRowAndRemovesTheKey()
    {
        const auto model = loaded(u"1000-1"_s);
        const ChecklistItem red = item(*model, u"3020-4"_s);
        model->increment(red);
        QCOMPARE(storedEntryRows(m_storePath), 1);
        model->decrement(red);
        QVERIFY(!model->entriesByKey().contains(red.id));
        QCOMPARE(model->ownedCount(red), 0);
        QCOMPARE(model->revision(), 2);
        QCOMPARE(storedEntryRows(m_storePath), 0);
    }

    void decrementAboveOneLowersTheStoredCount()
    {
        const auto model = loaded(u"1000-1"_s);
        const ChecklistItem red = item(*model, u"3020-4"_s);
        model->increment(red);
        model->increment(red);
        model->decrement(red);
        QCOMPARE(model->ownedCount(red), 1);
        QCOMPARE(storedCounts(m_storePath, model->brickSet().objectID), (QMap<QString, int>{{u"3020-4"_s, 1}}));
    }

    void decrementWithoutEntryChangesNothingAndKeepsTheRevision()
    {
        const auto model = loaded(u"1000-1"_s);
        QSignalSpy revisions(model.get(), &PartsChecklistViewModel::revisionChanged);
        QSignalSpy saves(m_store.get(), &PersistentContainer::objectsDidChange);
        model->decrement(item(*model, u"3001-1"_s));
        QCOMPARE(model->revision(), 0);
        QCOMPARE(revisions.count(), 0);
        QCOMPARE(saves.count(), 0);
        QVERIFY(model->entriesByKey().isEmpty());
    }

    // --- Whole-list actions

    void markAllCompleteSetsEveryCountToItsQuantityInOneSave()
    {
        const auto model = loaded(u"1000-1"_s);
        const ChecklistItem red = item(*model, u"3020-4"_s);
        model->increment(red);
        QSignalSpy saves(m_store.get(), &PersistentContainer::objectsDidChange);
        model->markAllComplete();
        QCOMPARE(saves.count(), 1);
        QCOMPARE(model->revision(), 2);
        QCOMPARE(model->completeItemCount(), 6);
        QCOMPARE(storedCounts(m_storePath, model->brickSet().objectID),
                 (QMap<QString, int>{{u"10-4"_s, 2}, {u"3001-1"_s, 3}, {u"3020-4"_s, 4}, {u"3021-15"_s, 1},
                                     {u"9-15"_s, 1}, {u"99999-9999"_s, 1}}));
        QCOMPARE(model->completion().percent(), 100);
    }

    void markAllCompleteOverwritesAHigherStoredCount()
    {
        const BrickSet copy = saveCopyOf(context(), u"3000-1"_s);
        {
            const auto first = loaded(copy);
            first->markAllComplete();
        }
        // A count above the quantity, as an older, larger inventory may have left it.
        auto entries = context().fetch(FetchRequest<PartInventoryEntry>());
        QCOMPARE(entries.size(), 2);
        for (PartInventoryEntry &entry : entries) {
            entry.quantityOwned = 7;
            context().update(entry);
        }
        context().save();
        const auto model = loaded(copy);
        QCOMPARE(model->ownedPieces(), 14);
        model->markAllComplete();
        QCOMPARE(storedCounts(m_storePath, copy.objectID), (QMap<QString, int>{{u"3001-1"_s, 3}, {u"3020-4"_s, 3}}));
        QCOMPARE(model->ownedPieces(), 6);
    }

    void markAllCompleteCreatesEntriesWithCountZeroForItemsOfQuantityZero()
    {
        const auto model = loaded(u"6000-1"_s);
        model->markAllComplete();
        QCOMPARE(storedCounts(m_storePath, model->brickSet().objectID), (QMap<QString, int>{{u"3001-1"_s, 0}}));
        QCOMPARE(model->revision(), 1);
    }

    void resetAllRemovesEveryEntryInOneSave()
    {
        const auto model = loaded(u"1000-1"_s);
        model->increment(item(*model, u"3001-1"_s));
        model->increment(item(*model, u"9-15"_s));
        QSignalSpy saves(m_store.get(), &PersistentContainer::objectsDidChange);
        model->resetAll();
        QCOMPARE(saves.count(), 1);
        QCOMPARE(model->revision(), 3);
        QVERIFY(model->entriesByKey().isEmpty());
        QCOMPARE(storedEntryRows(m_storePath), 0);
    }

    void resetAllAfterMarkAllCompleteLeavesTheCopyWithNoEntryAtAll()
    {
        const auto model = loaded(u"1000-1"_s);
        model->markAllComplete();
        QCOMPARE(storedEntryRows(m_storePath), 6);
        model->resetAll();
        QCOMPARE(storedCounts(m_storePath, model->brickSet().objectID), (QMap<QString, int>{}));
        QCOMPARE(storedEntryRows(m_storePath), 0);
        QCOMPARE(model->ownedPieces(), 0);
    }

    void resetAllAlsoRemovesEntriesWhosePartsLeftTheNewestInventory()
    {
        const BrickSet copy = saveCopyOf(context(), u"1000-1"_s);
        // A count on a line of the older inventory only, in a colour that the newest
        // inventory lacks; and an entry without a line, which the checklist cannot key.
        CatalogPart part;
        part.partNumber = u"3001"_s;
        part = context().insert(part);
        CatalogColor color;
        color.colorID = 15;
        color = context().insert(color);
        CatalogSetPart line;
        line.catalogSet = copy.catalogSet;
        line.catalogPart = part.objectID;
        line.catalogColor = color.objectID;
        line.quantity = 99;
        line = context().insert(line);
        PartInventoryEntry gone;
        gone.brickSet = copy.objectID;
        gone.catalogSetPart = line.objectID;
        gone.quantityOwned = 5;
        context().insert(gone);
        PartInventoryEntry unkeyed;
        unkeyed.brickSet = copy.objectID;
        unkeyed.quantityOwned = 2;
        unkeyed = context().insert(unkeyed);
        context().save();

        const auto model = loaded(copy);
        QVERIFY(!ids(model->items()).contains(u"3001-15"_s));
        QVERIFY(model->entriesByKey().contains(u"3001-15"_s));
        QCOMPARE(model->entriesByKey().size(), 1);
        QCOMPARE(model->ownedPieces(), 5); // counted though its part is no longer listed
        model->resetAll();
        const QList<PartInventoryEntry> left = context().fetch(FetchRequest<PartInventoryEntry>());
        QCOMPARE(left.size(), 1);
        QCOMPARE(left.first().objectID, unkeyed.objectID);
    }

    void twoEntriesWithOneKeyLeaveTheLaterFetchedInTheMap()
    {
        const BrickSet copy = saveCopyOf(context(), u"3000-1"_s);
        CatalogPart part;
        part.partNumber = u"3001"_s;
        part = context().insert(part);
        CatalogColor color;
        color.colorID = 1;
        color = context().insert(color);
        CatalogSetPart line;
        line.catalogSet = copy.catalogSet;
        line.catalogPart = part.objectID;
        line.catalogColor = color.objectID;
        line = context().insert(line);
        PartInventoryEntry first;
        first.brickSet = copy.objectID;
        first.catalogSetPart = line.objectID;
        first.quantityOwned = 1;
        context().insert(first);
        PartInventoryEntry second = first;
        second.quantityOwned = 2;
        second = context().insert(second);
        context().save();
        const auto model = loaded(copy);
        QCOMPARE(model->entriesByKey().value(u"3001-1"_s).objectID, second.objectID);
        QCOMPARE(model->ownedCount(item(*model, u"3001-1"_s)), 2);
    }

    // --- Filters and search

    void filterModesKeepAllMissingOrCompleteItems()
    {
        const auto model = loaded(u"1000-1"_s);
        model->increment(item(*model, u"9-15"_s));     // complete
        model->increment(item(*model, u"3001-1"_s));   // 1 of 3
        model->setSortBy(Sort::partNumber);
        QCOMPARE(model->filteredItems().size(), 6);
        model->setFilterMode(Mode::complete);
        QCOMPARE(ids(model->filteredItems()), (QStringList{u"9-15"_s}));
        model->setFilterMode(Mode::incomplete);
        QCOMPARE(ids(model->filteredItems()),
                 (QStringList{u"10-4"_s, u"3001-1"_s, u"3020-4"_s, u"3021-15"_s, u"99999-9999"_s}));
    }

    void colourFacetKeepsOnlyTheSelectedColours()
    {
        const auto model = loaded(u"1000-1"_s);
        model->setSortBy(Sort::partNumber);
        model->toggleColor(15);
        QCOMPARE(ids(model->filteredItems()), (QStringList{u"3021-15"_s, u"9-15"_s}));
        model->toggleColor(1);
        QCOMPARE(ids(model->filteredItems()), (QStringList{u"3001-1"_s, u"3021-15"_s, u"9-15"_s}));
        model->toggleColor(15);
        QCOMPARE(ids(model->filteredItems()), (QStringList{u"3001-1"_s}));
    }

    void categoryFacetKeepsOnlyTheSelectedCategories()
    {
        const auto model = loaded(u"1000-1"_s);
        model->setSortBy(Sort::partNumber);
        model->toggleCategory(u"Plates"_s);
        QCOMPARE(ids(model->filteredItems()), (QStringList{u"3020-4"_s, u"3021-15"_s}));
        model->toggleCategory(u"Other"_s);
        QCOMPARE(ids(model->filteredItems()), (QStringList{u"3020-4"_s, u"3021-15"_s, u"99999-9999"_s}));
    }

    void availableColoursFollowTheSelectedCategoriesInNameOrder()
    {
        const auto model = loaded(u"1000-1"_s);
        using Info = PartsChecklistViewModel::ColorInfo;
        QCOMPARE(model->availableColors(),
                 (QList<Info>{{1, u"Blue"_s, u"0055BF"_s}, {4, u"Red"_s, u"C91A09"_s}, {9999, u"Unknown"_s, u"808080"_s},
                              {15, u"White"_s, u"FFFFFF"_s}}));
        model->toggleCategory(u"Plates"_s);
        QCOMPARE(model->availableColors(), (QList<Info>{{4, u"Red"_s, u"C91A09"_s}, {15, u"White"_s, u"FFFFFF"_s}}));
    }

    void availableCategoriesFollowTheSelectedColoursInNameOrder()
    {
        const auto model = loaded(u"1000-1"_s);
        QCOMPARE(model->availableCategories(),
                 (QStringList{u"Bricks"_s, u"Other"_s, u"Plates"_s, u"Technic Axles"_s}));
        model->toggleColor(15);
        QCOMPARE(model->availableCategories(), (QStringList{u"Plates"_s, u"Technic Axles"_s}));
    }

    void facetsIgnoreTheFilterModeAndTheSearch()
    {
        const auto model = loaded(u"1000-1"_s);
        model->setFilterMode(Mode::complete);
        model->setSearchText(u"axle"_s);
        QCOMPARE(model->availableColors().size(), 4);
        QCOMPARE(model->availableCategories().size(), 4);
    }

    void withCategoriesAAndBSelectedTogglingAColourOnlyOfADropsB()
    {
        const auto model = loaded(u"1000-1"_s);
        model->toggleCategory(u"Bricks"_s);
        model->toggleCategory(u"Plates"_s);
        QSignalSpy categories(model.get(), &PartsChecklistViewModel::selectedCategoriesChanged);
        model->toggleColor(1); // Blue occurs only with Bricks
        QCOMPARE(model->selectedColors(), (QSet<int>{1}));
        QCOMPARE(model->selectedCategories(), (QSet<QString>{u"Bricks"_s}));
        QCOMPARE(categories.count(), 1);
    }

    void togglingACategoryDropsSelectedColoursItLacks()
    {
        const auto model = loaded(u"1000-1"_s);
        model->toggleColor(1);
        model->toggleColor(15);
        model->toggleCategory(u"Technic Axles"_s); // only in White
        QCOMPARE(model->selectedColors(), (QSet<int>{15}));
        QCOMPARE(model->selectedCategories(), (QSet<QString>{u"Technic Axles"_s}));
    }

    void clearFiltersKeepsTheSearchAndTheFilterMode()
    {
        const auto model = loaded(u"1000-1"_s);
        model->toggleColor(4);
        model->toggleCategory(u"Plates"_s);
        model->setSearchText(u"plate"_s);
        model->setFilterMode(Mode::incomplete);
        model->clearFilters();
        QVERIFY(model->selectedColors().isEmpty());
        QVERIFY(model->selectedCategories().isEmpty());
        QCOMPARE(model->searchText(), u"plate"_s);
        QCOMPARE(model->filterMode(), Mode::incomplete);
        QCOMPARE(model->filteredItems().size(), 2);
    }

    void searchFindsItemsByColourNameAndByCategoryNameWhateverTheCase()
    {
        const auto model = loaded(u"1000-1"_s);
        model->setSortBy(Sort::partNumber);
        model->setSearchText(u"WHITE"_s);
        QCOMPARE(ids(model->filteredItems()), (QStringList{u"3021-15"_s, u"9-15"_s}));
        model->setSearchText(u"tEcHnIc"_s);
        QCOMPARE(ids(model->filteredItems()), (QStringList{u"9-15"_s}));
    }

    void searchMatchesPartNameAndNumberAsAPlainUntrimmedSubstring()
    {
        const auto model = loaded(u"1000-1"_s);
        model->setSortBy(Sort::partNumber);
        model->setSearchText(u"2 x 4"_s);
        QCOMPARE(ids(model->filteredItems()), (QStringList{u"3001-1"_s, u"3020-4"_s, u"3021-15"_s}));
        model->setSearchText(u"999"_s);
        QCOMPARE(ids(model->filteredItems()), (QStringList{u"99999-9999"_s}));
        model->setSearchText(u" 2 x 4 "_s); // not trimmed: no name ends in a space
        QVERIFY(model->filteredItems().isEmpty());
        model->setSearchText(u"plate red"_s); // not split into words
        QVERIFY(model->filteredItems().isEmpty());
    }

    // --- Orders

    void nameOrderIsCaseInsensitiveAndStable()
    {
        const auto model = loaded(u"1000-1"_s);
        QCOMPARE(model->sortBy(), Sort::name);
        // "99999" (a part the catalog lacks, named by its number), "axle 2", "Brick 2 x 4",
        // "brick Round 2 x 2", and "Plate 2 x 4" twice, in the catalog's order.
        QCOMPARE(ids(model->filteredItems()),
                 (QStringList{u"99999-9999"_s, u"9-15"_s, u"3001-1"_s, u"10-4"_s, u"3020-4"_s, u"3021-15"_s}));
    }

    void quantityOrderIsDescendingAndStable()
    {
        const auto model = loaded(u"1000-1"_s);
        model->setSortBy(Sort::quantity);
        const QStringList order = ids(model->filteredItems());
        QCOMPARE(order.mid(0, 3), (QStringList{u"3020-4"_s, u"3001-1"_s, u"10-4"_s}));
        // Quantity 1 thrice, in the catalog's order.
        const QStringList ones = order.mid(3);
        QStringList catalogOrder;
        for (const ChecklistItem &each : model->items()) {
            if (each.quantity == 1)
                catalogOrder.append(each.id);
        }
        QCOMPARE(ones, catalogOrder);
    }

    void partNumberOrderIsPlainTextSoTenComesBeforeNine()
    {
        const auto model = loaded(u"1000-1"_s);
        model->setSortBy(Sort::partNumber);
        const QStringList order = ids(model->filteredItems());
        QCOMPARE(order.first(), u"10-4"_s);
        QVERIFY(order.indexOf(u"10-4"_s) < order.indexOf(u"9-15"_s));
        QCOMPARE(order.last(), u"99999-9999"_s);
    }

    void completionOrderPutsTheLeastFinishedFirst()
    {
        const auto model = loaded(u"1000-1"_s);
        model->setSortBy(Sort::completion);
        model->increment(item(*model, u"3020-4"_s));                                  // 1/4
        model->increment(item(*model, u"3001-1"_s));
        model->increment(item(*model, u"3001-1"_s));                                  // 2/3
        model->increment(item(*model, u"9-15"_s));                                    // 1/1
        model->increment(item(*model, u"10-4"_s));                                    // 1/2
        QCOMPARE(ids(model->filteredItems()),
                 (QStringList{u"3021-15"_s, u"99999-9999"_s, u"3020-4"_s, u"10-4"_s, u"3001-1"_s, u"9-15"_s}));
    }

    void incompleteFilterSortedByCompletionBeginsWithItemsAtZero()
    {
        const auto model = loaded(u"1000-1"_s);
        model->increment(item(*model, u"10-4"_s));
        model->increment(item(*model, u"3020-4"_s));
        model->setFilterMode(Mode::incomplete);
        model->setSortBy(Sort::completion);
        const QList<ChecklistItem> items = model->filteredItems();
        QCOMPARE(items.size(), 6);
        for (int index = 0; index < 4; ++index)
            QCOMPARE(model->ownedCount(items.at(index)), 0);
        QCOMPARE(ids(items).mid(4), (QStringList{u"3020-4"_s, u"10-4"_s}));
    }

    // --- Blocks

    void colourBlocksAreOrderedByColourNameWithItemsInListOrder()
    {
        const auto model = loaded(u"1000-1"_s);
        QCOMPARE(model->groupBy(), Group::color);
        model->setSortBy(Sort::partNumber);
        const QList<ChecklistGroup> groups = model->groupedItems();
        QStringList titles;
        for (const ChecklistGroup &group : groups)
            titles.append(group.title);
        QCOMPARE(titles, (QStringList{u"Blue"_s, u"Red"_s, u"Unknown"_s, u"White"_s}));
        QCOMPARE(groups.at(1).colorID, std::optional<int>(4));
        QCOMPARE(groups.at(1).colorHex, u"C91A09"_s);
        QCOMPARE(ids(groups.at(1).items), (QStringList{u"10-4"_s, u"3020-4"_s}));
        QCOMPARE(ids(groups.at(3).items), (QStringList{u"3021-15"_s, u"9-15"_s}));
    }

    void categoryBlocksAreOrderedByCategoryName()
    {
        const auto model = loaded(u"1000-1"_s);
        model->setGroupBy(Group::category);
        model->setSortBy(Sort::quantity);
        const QList<ChecklistGroup> groups = model->groupedItems();
        QStringList titles;
        for (const ChecklistGroup &group : groups)
            titles.append(group.title);
        QCOMPARE(titles, (QStringList{u"Bricks"_s, u"Other"_s, u"Plates"_s, u"Technic Axles"_s}));
        QCOMPARE(ids(groups.at(0).items), (QStringList{u"3001-1"_s, u"10-4"_s}));
        QCOMPARE(groups.at(0).colorID, std::nullopt);
    }

    void noGroupingGivesOneBlockOfTheFilteredList()
    {
        const auto model = loaded(u"1000-1"_s);
        model->setGroupBy(Group::none);
        model->setSearchText(u"plate"_s);
        const QList<ChecklistGroup> groups = model->groupedItems();
        QCOMPARE(groups.size(), 1);
        QCOMPARE(groups.first().items, model->filteredItems());
        QVERIFY(groups.first().title.isEmpty());
    }

    // --- Figures

    void oneOfThreeAndTwoOfThreeGiveNoCompletePartsAndHalfThePieces()
    {
        const auto model = loaded(u"3000-1"_s);
        model->increment(item(*model, u"3001-1"_s));
        model->increment(item(*model, u"3020-4"_s));
        model->increment(item(*model, u"3020-4"_s));
        const ChecklistCompletion completion = model->completion();
        QCOMPARE(completion.completeItems, 0);
        QCOMPARE(completion.items, 2);
        QCOMPARE(completion.ownedPieces, 3);
        QCOMPARE(completion.totalPieces, 6);
        QCOMPARE(completion.fraction(), 0.5);
        QCOMPARE(completion.percent(), 50);
        QCOMPARE(completion.partsText(), u"0 of 2 parts"_s);
        QCOMPARE(completion.piecesText(), u"3 of 6 pieces"_s);
        QCOMPARE(completion.percentText(), u"50% complete"_s);
    }

    void noPiecesGivePercentZeroWithoutDividing()
    {
        const auto model = loaded(u"6000-1"_s);
        QCOMPARE(model->totalPieces(), 0);
        QCOMPARE(model->completion().fraction(), 0.0);
        QCOMPARE(model->completion().percent(), 0);
        // Owned pieces of lines no longer listed, over nothing required: still 0.
        const ChecklistCompletion leftovers{0, 0, 5, 0};
        QCOMPARE(leftovers.fraction(), 0.0);
        QCOMPARE(leftovers.percent(), 0);
        QCOMPARE(leftovers.ringText(), u"0%"_s);
    }

    void nineteenNinetyNineOfTwoThousandPiecesShowNinetyNine()
    {
        const auto model = loaded(u"5000-1"_s);
        model->markAllComplete();
        model->decrement(model->items().constFirst());
        QCOMPARE(model->ownedPieces(), 1999);
        QCOMPARE(model->totalPieces(), 2000);
        QCOMPARE(model->completion().percent(), 99);
        QCOMPARE(model->completion().percentText(), u"99% complete"_s);
    }

    void percentTextAtNinetyNinePointNineAndAtOneHundred()
    {
        const auto model = loaded(u"4000-1"_s);
        model->markAllComplete();
        QCOMPARE(model->completion().percentText(), u"100% complete"_s);
        QCOMPARE(model->completion().ringText(), u"100%"_s);
        QCOMPARE(model->completion().accessibilityText(), u"100 percent complete"_s);
        model->decrement(model->items().constFirst());
        QCOMPARE(model->completion().fraction(), 0.999);
        QCOMPARE(model->completion().percentText(), u"99% complete"_s);
        QCOMPARE(model->completion().ringText(), u"99%"_s);
    }

    void fractionIsCappedAtOne()
    {
        const ChecklistCompletion over{1, 1, 12, 6};
        QCOMPARE(over.fraction(), 1.0);
        QCOMPARE(over.percent(), 100);
    }

    // --- Labels

    void modesCarryTheirRawValuesAndLocalisedLabels()
    {
        using VM = PartsChecklistViewModel;
        QStringList raw;
        QStringList labels;
        for (const Mode mode : VM::allFilterModes()) {
            raw.append(VM::rawValue(mode));
            labels.append(VM::label(mode));
        }
        for (const Group mode : VM::allGroupModes()) {
            raw.append(VM::rawValue(mode));
            labels.append(VM::label(mode));
        }
        for (const Sort mode : VM::allSortModes()) {
            raw.append(VM::rawValue(mode));
            labels.append(VM::label(mode));
        }
        const QStringList expected{u"All"_s,  u"Missing"_s,  u"Complete"_s, u"None"_s,        u"Color"_s,
                                   u"Category"_s, u"Name"_s, u"Quantity"_s, u"Part Number"_s, u"Completion"_s};
        QCOMPARE(raw, expected);
        QCOMPARE(labels, expected);
    }
};

QTEST_GUILESS_MAIN(PartsChecklistViewModelTest)
#include "PartsChecklistViewModelTest.moc"
