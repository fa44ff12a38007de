// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"
#include "ViewModels/CollectionTrash.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// The two stages of leaving the collection, over a real store file: the trash flag, and
// deletion, which takes only the copy and its part inventory entries.
class CollectionTrashTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    std::unique_ptr<CollectionTrash> m_trash;

    ManagedObjectContext &context() { return m_store->viewContext(); }

    template <StoreEntity T>
    qint64 count(const Predicate &predicate = Predicate())
    {
        return context().count(FetchRequest<T>(predicate));
    }

    // What the store file holds, read through a context of its own.
    std::optional<BrickSet> stored(const ObjectID &id)
    {
        auto other = m_store->newBackgroundContext();
        return other->performAndWait([id](ManagedObjectContext &context) { return context.existingObject<BrickSet>(id); });
    }

    BrickSet trashedCopy(const std::optional<ObjectID> &catalogSet)
    {
        return saveCopy(context(), catalogSet, [](BrickSet &copy) {
            copy.isTrashed = true;
            copy.trashedDate = QDateTime::currentDateTimeUtc().addDays(-3);
        });
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_store = openStore(*m_folder);
        m_trash = std::make_unique<CollectionTrash>(context());
    }

    void cleanup()
    {
        m_trash.reset();
        m_store.reset();
        m_folder.reset();
    }

    void movingToTheTrashSetsTheFlagAndTheDateAndSaves()
    {
        const CatalogSet set = context().insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s));
        context().save();
        const BrickSet copy = saveCopy(context(), set.objectID);
        QSignalSpy moved(m_trash.get(), &CollectionTrash::copyMovedToTrash);
        const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);

        m_trash->moveToTrash(copy.objectID);

        QVERIFY(!context().hasChanges());
        const std::optional<BrickSet> trashed = stored(copy.objectID);
        QVERIFY(trashed);
        QVERIFY(trashed->isTrashed);
        QVERIFY(trashed->trashedDate);
        QVERIFY(*trashed->trashedDate >= before);
        QVERIFY(*trashed->trashedDate <= QDateTime::currentDateTimeUtc().addSecs(1));
        QCOMPARE(trashed->catalogSet, std::optional<ObjectID>(set.objectID));
        QCOMPARE(moved.size(), 1);
        QCOMPARE(moved.first().first().value<ObjectID>(), copy.objectID);
    }

    void restoringKeepsEveryFieldAndTheDateAdded()
    {
        const CatalogSet set = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s));
        context().save();
        const QDateTime added = QDateTime(QDate(2021, 6, 14), QTime(9, 30), Qt::UTC);
        const BrickSet original = saveCopy(context(), set.objectID, [&added](BrickSet &copy) {
            copy.dateAdded = added;
            copy.isFavorite = true;
            copy.notes = u"Bought at the store's opening"_s;
            copy.rating = 5;
            copy.pricePaid = Decimal::fromString(u"849.99"_s);
            copy.priceCurrency = u"USD"_s;
            copy.overallCondition = u"new"_s;
            copy.boxCondition = u"good"_s;
            copy.acquisitionSource = u"LEGO Store"_s;
        });
        BrickSetListModel collection(*m_store);
        collection.setFetchRequest(FetchRequest<BrickSet>(BrickSetQueries::notTrashed()));
        QCOMPARE(collection.count(), 1);
        m_trash->moveToTrash(original.objectID);
        QCOMPARE(collection.count(), 0);
        QSignalSpy restored(m_trash.get(), &CollectionTrash::copyRestored);

        m_trash->restore(original.objectID);

        const std::optional<BrickSet> back = stored(original.objectID);
        QVERIFY(back);
        QCOMPARE(*back, original);
        QCOMPARE(back->dateAdded, std::optional<QDateTime>(added));
        QVERIFY(!back->isTrashed);
        QVERIFY(!back->trashedDate);
        // The collection's live list has it again at once.
        QCOMPARE(collection.count(), 1);
        QCOMPARE(collection.rowAt(0).brickSet.objectID, original.objectID);
        QCOMPARE(restored.size(), 1);
        QCOMPARE(restored.first().first().value<ObjectID>(), original.objectID);
    }

    void deletingPermanentlyTakesTheInventoryEntriesAndNothingOfTheCatalog()
    {
        const CatalogSet set = context().insert(catalogSet(u"31203-1"_s, u"World Map"_s));
        CatalogPart part;
        part.partNumber = u"98138"_s;
        part = context().insert(part);
        CatalogColor color;
        color.colorID = 1;
        color.name = u"Blue"_s;
        color = context().insert(color);
        QList<ObjectID> lines;
        for (const qint32 quantity : {120, 40}) {
            CatalogSetPart line;
            line.quantity = quantity;
            line.catalogSet = set.objectID;
            line.catalogPart = part.objectID;
            line.catalogColor = color.objectID;
            lines.append(context().insert(line).objectID);
        }
        context().insert(guide(set.objectID, u"new"_s, u"sold"_s, QDateTime::currentDateTimeUtc()));
        CachedInstructionURL booklet;
        booklet.pdfURL = u"https://www.lego.com/cdn/product-assets/6350000.pdf"_s;
        booklet.catalogSet = set.objectID;
        context().insert(booklet);
        WishlistItem wanted;
        wanted.setNumber = u"31203-1"_s;
        wanted.setName = u"World Map"_s;
        wanted.dateAdded = QDateTime::currentDateTimeUtc();
        context().insert(wanted);
        context().save();

        const BrickSet doomed = trashedCopy(set.objectID);
        const BrickSet kept = saveCopy(context(), set.objectID);
        for (const BrickSet &copy : {doomed, kept}) {
            for (const ObjectID &line : std::as_const(lines)) {
                PartInventoryEntry entry;
                entry.quantityOwned = 3;
                entry.brickSet = copy.objectID;
                entry.catalogSetPart = line;
                context().insert(entry);
            }
        }
        context().save();
        QCOMPARE(count<PartInventoryEntry>(), qint64(4));
        QSignalSpy deleted(m_trash.get(), &CollectionTrash::copiesDeleted);

        m_trash->deletePermanently(doomed.objectID);

        QVERIFY(!stored(doomed.objectID));
        QVERIFY(stored(kept.objectID));
        QCOMPARE(count<PartInventoryEntry>(Predicate::equal(u"brickSet"_s, QVariant::fromValue(doomed.objectID))), qint64(0));
        QCOMPARE(count<PartInventoryEntry>(Predicate::equal(u"brickSet"_s, QVariant::fromValue(kept.objectID))), qint64(2));
        QCOMPARE(count<CatalogSet>(), qint64(1));
        QCOMPARE(count<CatalogSetPart>(), qint64(2));
        QCOMPARE(count<CatalogPart>(), qint64(1));
        QCOMPARE(count<CatalogColor>(), qint64(1));
        QCOMPARE(count<CachedPriceGuide>(), qint64(1));
        QCOMPARE(count<CachedInstructionURL>(), qint64(1));
        QCOMPARE(count<WishlistItem>(), qint64(1));
        QCOMPARE(deleted.size(), 1);
        QCOMPARE(deleted.first().first().toInt(), 1);
    }

    void deletingTheLastCopyKeepsTheCatalogSetWithItsPriceGuides()
    {
        const CatalogSet set = context().insert(catalogSet(u"10497-1"_s, u"Galaxy Explorer"_s));
        const CachedPriceGuide price = context().insert(guide(set.objectID, u"used"_s, u"sold"_s, QDateTime::currentDateTimeUtc(), u"99.5"_s));
        context().save();
        const BrickSet only = trashedCopy(set.objectID);

        m_trash->deletePermanently(only.objectID);

        QCOMPARE(count<BrickSet>(), qint64(0));
        const QList<CachedPriceGuide> guides = context().related<CachedPriceGuide>(set.objectID, u"cachedPriceGuides"_s);
        QCOMPARE(guides.size(), 1);
        QCOMPARE(guides.first().objectID, price.objectID);
        QCOMPARE(guides.first().avgPrice, price.avgPrice);
    }

    void emptyingTheTrashDeletesEveryCopyWithOneSave()
    {
        const CatalogSet set = context().insert(catalogSet(u"21318-1"_s, u"Tree House"_s));
        context().save();
        const QList<ObjectID> trashed{trashedCopy(set.objectID).objectID, trashedCopy(set.objectID).objectID,
                                      trashedCopy(std::nullopt).objectID};
        const BrickSet kept = saveCopy(context(), set.objectID);
        QSignalSpy commits(m_store.get(), &PersistentContainer::objectsDidChange);
        QSignalSpy deleted(m_trash.get(), &CollectionTrash::copiesDeleted);

        m_trash->emptyTrash(trashed);

        QCOMPARE(commits.size(), 1);
        const auto changes = commits.first().first().value<StoreChanges>();
        QCOMPARE(changes.deleted, QSet<ObjectID>(trashed.cbegin(), trashed.cend()));
        QCOMPARE(count<BrickSet>(BrickSetQueries::trashed()), qint64(0));
        QVERIFY(stored(kept.objectID));
        QCOMPARE(count<CatalogSet>(), qint64(1));
        QCOMPARE(deleted.size(), 1);
        QCOMPARE(deleted.first().first().toInt(), 3);
    }

    void emptyingAnEmptyTrashWritesNothing()
    {
        QSignalSpy commits(m_store.get(), &PersistentContainer::objectsDidChange);
        QSignalSpy deleted(m_trash.get(), &CollectionTrash::copiesDeleted);
        m_trash->emptyTrash({});
        QCOMPARE(commits.size(), 0);
        QCOMPARE(deleted.size(), 0);
    }

    void aFailedSaveIsDroppedAndTheChangeStaysPending()
    {
        const CatalogSet set = context().insert(catalogSet(u"6080-1"_s, u"King's Castle"_s));
        context().save();
        const BrickSet copy = saveCopy(context(), set.objectID);
        // A copy of a catalog set that does not exist cannot be committed: every save fails
        // while it is pending.
        context().insert(newCopy(ObjectID{EntityType::CatalogSet, 4242}));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"Saving a change of the trash failed"_s));

        m_trash->moveToTrash(copy.objectID);

        QVERIFY(context().hasChanges());
        const std::optional<BrickSet> pending = context().existingObject<BrickSet>(copy.objectID);
        QVERIFY(pending && pending->isTrashed);
        const std::optional<BrickSet> onDisk = stored(copy.objectID);
        QVERIFY(onDisk && !onDisk->isTrashed);
    }

    void restoringACopyThatIsGoneDoesNothing()
    {
        QSignalSpy restored(m_trash.get(), &CollectionTrash::copyRestored);
        m_trash->restore(ObjectID{EntityType::BrickSet, 777});
        QCOMPARE(restored.size(), 0);
        QVERIFY(!context().hasChanges());
    }
};

QTEST_GUILESS_MAIN(CollectionTrashTest)
#include "CollectionTrashTest.moc"
