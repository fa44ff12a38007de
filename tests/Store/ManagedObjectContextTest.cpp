// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/PersistentContainer.h"
#include "Store/StoreConnection.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <atomic>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

class ManagedObjectContextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = openStore(*m_folder);
    }
    void cleanup()
    {
        m_store.reset();
        m_folder.reset();
    }

    void newCopyIsValidWithOnlyItsRequiredAttributesAndFalseBooleans()
    {
        auto &context = m_store->viewContext();
        const auto set = context.insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s));
        const auto copy = context.insert(newCopy(set.objectID));
        context.save();

        auto other = m_store->newBackgroundContext();
        const auto stored = other->performAndWait([&](ManagedObjectContext &background) {
            return background.existingObject<BrickSet>(copy.objectID);
        });
        QVERIFY(stored);
        QCOMPARE(stored->acquisitionType, u"unknown"_s);
        QCOMPARE(stored->catalogSet, std::optional<ObjectID>(set.objectID));
        QCOMPARE(stored->isFavorite, false);
        QCOMPARE(stored->isTrashed, false);
        QCOMPARE(stored->isDisposed, false);
        QCOMPARE(stored->rating, qint16(0));
        QVERIFY(!stored->notes);
        QVERIFY(!stored->pricePaid);
        QCOMPARE(*stored, copy);
    }

    void absentAndEmptyTextsStayDistinct()
    {
        auto &context = m_store->viewContext();
        BrickSet copy = newCopy(std::nullopt);
        copy.notes = QString();
        copy.disposalNotes = std::nullopt;
        copy = context.insert(copy);
        context.save();
        context.refresh(copy.objectID, false);
        const auto stored = context.existingObject<BrickSet>(copy.objectID);
        QVERIFY(stored->notes.has_value());
        QCOMPARE(*stored->notes, QString());
        QVERIFY(!stored->disposalNotes.has_value());
    }

    void decimalsDatesAndUuidsReadBackExactly()
    {
        auto &context = m_store->viewContext();
        BrickSet copy = newCopy(std::nullopt, QDateTime::fromMSecsSinceEpoch(1700000000123, Qt::UTC));
        copy.pricePaid = Decimal::fromString(u"12345678901234567890.123456789"_s);
        copy.disposalPrice = Decimal::fromString(u"99.99"_s);
        copy.acquisitionDate = QDateTime(QDate(2024, 2, 29), QTime(23, 59, 59, 999), Qt::OffsetFromUTC, 3600);
        copy = context.insert(copy);
        context.save();

        auto reopened = PersistentContainer::open(m_store->path());
        const auto stored = reopened->viewContext().existingObject<BrickSet>(copy.objectID);
        QVERIFY(stored);
        QCOMPARE(stored->pricePaid->toString(), u"12345678901234567890.123456789"_s);
        QCOMPARE(stored->disposalPrice->toString(), u"99.99"_s);
        QCOMPARE(stored->dateAdded->toMSecsSinceEpoch(), qint64(1700000000123));
        QCOMPARE(*stored->acquisitionDate, *copy.acquisitionDate); // the same instant
        QCOMPARE(stored->id, copy.id);
    }

    void integerColumnsRejectValuesOutsideTheirWidth()
    {
        // The structs cannot hold such values; the columns guard against files written
        // by hand or by a faulty older version.
        StoreConnection connection(m_store->path(), false, false);
        QVERIFY_THROWS_EXCEPTION(StoreError, connection.execute("INSERT INTO CatalogSet (pk, year) VALUES (900, 32768)"));
        QVERIFY_THROWS_EXCEPTION(StoreError,
                                 connection.execute("INSERT INTO CatalogSet (pk, pieceCount) VALUES (901, 2147483648)"));
        connection.execute("INSERT INTO CatalogSet (pk, year, pieceCount) VALUES (902, -32768, 2147483647)");
    }

    void fetchesSeeThePendingChangesOfTheirOwnContext()
    {
        auto &context = m_store->viewContext();
        const auto set = context.insert(catalogSet(u"10294-1"_s, u"Titanic"_s));
        const auto found = context.fetchFirst(FetchRequest<CatalogSet>(Predicate::equal(u"setNumber"_s, u"10294-1"_s)));
        QVERIFY(found);
        QCOMPARE(found->objectID, set.objectID);

        auto background = m_store->newBackgroundContext();
        const qint64 seenElsewhere = background->performAndWait(
            [](ManagedObjectContext &other) { return other.count(FetchRequest<CatalogSet>()); });
        QCOMPARE(seenElsewhere, qint64(0));
    }

    void saveWritesEveryPendingChangeInOneCommit()
    {
        auto &context = m_store->viewContext();
        QSignalSpy notices(m_store.get(), &PersistentContainer::objectsDidChange);
        const auto set = context.insert(catalogSet(u"21318-1"_s, u"Tree House"_s));
        const auto first = context.insert(newCopy(set.objectID));
        const auto second = context.insert(newCopy(set.objectID));
        context.save();
        QCOMPARE(notices.size(), 1);
        const auto changes = notices.first().first().value<StoreChanges>();
        QCOMPARE(changes.inserted, (QSet<ObjectID>{set.objectID, first.objectID, second.objectID}));
        QVERIFY(!context.hasChanges());
    }

    void failedSaveKeepsThePendingChangesForTheNextSave()
    {
        auto &context = m_store->viewContext();
        // A copy pointing at a catalog set that does not exist cannot be committed.
        BrickSet copy = context.insert(newCopy(ObjectID{EntityType::CatalogSet, 4242}));
        copy.notes = u"keep me"_s;
        context.update(copy);
        QVERIFY_THROWS_EXCEPTION(StoreError, context.save());
        QVERIFY(context.hasChanges());
        QCOMPARE(context.count(FetchRequest<BrickSet>()), qint64(1));

        const auto set = context.insert(catalogSet(u"4242-1"_s, u"Recovered"_s));
        copy.catalogSet = set.objectID;
        context.update(copy);
        context.save();
        auto reopened = PersistentContainer::open(m_store->path());
        const auto stored = reopened->viewContext().existingObject<BrickSet>(copy.objectID);
        QVERIFY(stored);
        QCOMPARE(stored->notes, std::optional<QString>(u"keep me"_s));
    }

    void rollbackForgetsThePendingChanges()
    {
        auto &context = m_store->viewContext();
        context.insert(catalogSet(u"1-1"_s, u"One"_s));
        context.rollback();
        QVERIFY(!context.hasChanges());
        QCOMPARE(context.count(FetchRequest<CatalogSet>()), qint64(0));
    }

    void deletingACopyRemovesItsPartEntriesAndNothingElse()
    {
        auto &context = m_store->viewContext();
        const auto set = context.insert(catalogSet(u"6020-1"_s, u"Magic Shop"_s));
        const auto part = context.insert(CatalogPart{{}, u"3001"_s, u"Brick 2 x 4"_s, {}, {}});
        const auto color = context.insert(CatalogColor{{}, 4, u"Red"_s, u"C91A09"_s, false});
        const auto line = context.insert(CatalogSetPart{{}, 3, false, set.objectID, part.objectID, color.objectID});
        const auto copy = context.insert(newCopy(set.objectID));
        const auto keptCopy = context.insert(newCopy(set.objectID));
        const auto entry = context.insert(PartInventoryEntry{{}, 2, {}, {}, copy.objectID, line.objectID});
        const auto keptEntry = context.insert(PartInventoryEntry{{}, 1, {}, {}, keptCopy.objectID, line.objectID});
        const auto priceGuide = context.insert(guide(set.objectID, u"used"_s, u"sold"_s, QDateTime::currentDateTimeUtc()));
        const auto booklet = context.insert(CachedInstructionURL{{}, u"https://example.test/a.pdf"_s, u"Book 1"_s, {}, {}, set.objectID});
        context.save();

        QSignalSpy notices(m_store.get(), &PersistentContainer::objectsDidChange);
        context.deleteObject(copy);
        context.save();
        QCOMPARE(notices.size(), 1);
        QCOMPARE(notices.first().first().value<StoreChanges>().deleted, (QSet<ObjectID>{copy.objectID, entry.objectID}));

        QVERIFY(!context.existingObject<BrickSet>(copy.objectID));
        QVERIFY(!context.existingObject<PartInventoryEntry>(entry.objectID));
        QVERIFY(context.existingObject<PartInventoryEntry>(keptEntry.objectID));
        QVERIFY(context.existingObject<BrickSet>(keptCopy.objectID));
        QVERIFY(context.existingObject<CatalogSet>(set.objectID));
        QVERIFY(context.existingObject<CatalogSetPart>(line.objectID));
        QVERIFY(context.existingObject<CatalogPart>(part.objectID));
        QVERIFY(context.existingObject<CatalogColor>(color.objectID));
        QVERIFY(context.existingObject<CachedPriceGuide>(priceGuide.objectID));
        QVERIFY(context.existingObject<CachedInstructionURL>(booklet.objectID));
    }

    void deletingAnUnsavedObjectOnlyForgetsIt()
    {
        auto &context = m_store->viewContext();
        const auto set = context.insert(catalogSet(u"2-1"_s, u"Two"_s));
        QCOMPARE(context.count(FetchRequest<CatalogSet>()), qint64(1));
        context.deleteObject(set);
        QVERIFY(!context.hasChanges());
        QCOMPARE(context.count(FetchRequest<CatalogSet>()), qint64(0));
    }

    void objectIDsResolveInAnotherContextOnAWorkerThread()
    {
        auto &context = m_store->viewContext();
        const auto set = context.insert(catalogSet(u"75313-1"_s, u"AT-AT"_s));
        context.save();
        auto background = m_store->newBackgroundContext();
        QCOMPARE(background->name(), u"backgroundContext"_s);
        QCOMPARE(background->mergePolicy(), ManagedObjectContext::MergePolicy::mergeByPropertyObjectTrump);
        QCOMPARE(context.name(), u"viewContext"_s);
        QThread *mainThread = QThread::currentThread();
        const auto result = background->performAndWait([&](ManagedObjectContext &other) {
            const auto found = other.existingObject<CatalogSet>(set.objectID);
            return std::pair(QThread::currentThread() != mainThread, found ? found->name.value_or(QString()) : QString());
        });
        QVERIFY(result.first);
        QCOMPARE(result.second, u"AT-AT"_s);
        QVERIFY(!context.existingObject<BrickSet>(set.objectID)); // the wrong entity resolves to nothing
        QVERIFY(!context.existingObject<CatalogSet>(ObjectID{EntityType::CatalogSet, 999}));
    }

    void backgroundSaveIsAnnouncedOnceOnTheMainThread()
    {
        QSignalSpy notices(m_store.get(), &PersistentContainer::objectsDidChange);
        QThread *noticeThread = nullptr;
        connect(m_store.get(), &PersistentContainer::objectsDidChange, this,
                [&noticeThread] { noticeThread = QThread::currentThread(); });
        auto background = m_store->newBackgroundContext();
        const ObjectID id = background
                                ->perform([](ManagedObjectContext &other) {
                                    const auto set = other.insert(catalogSet(u"10497-1"_s, u"Galaxy Explorer"_s));
                                    other.save();
                                    return set.objectID;
                                })
                                .result();
        QTRY_COMPARE(notices.size(), 1);
        QCOMPARE(noticeThread, QThread::currentThread());
        QCOMPARE(notices.first().first().value<StoreChanges>().inserted, QSet<ObjectID>{id});
        QVERIFY(m_store->viewContext().existingObject<CatalogSet>(id));
    }

    void laterSaveWinsPropertyByPropertyAndNothingElseIsLost()
    {
        auto &context = m_store->viewContext();
        const auto copy = context.insert(newCopy(std::nullopt));
        context.save();

        auto first = m_store->newBackgroundContext();
        auto second = m_store->newBackgroundContext();
        auto firstCopy = first->performAndWait([&](ManagedObjectContext &c) { return *c.existingObject<BrickSet>(copy.objectID); });
        auto secondCopy = second->performAndWait([&](ManagedObjectContext &c) { return *c.existingObject<BrickSet>(copy.objectID); });
        firstCopy.notes = u"first"_s;
        firstCopy.rating = 4;
        secondCopy.notes = u"second"_s;
        secondCopy.isFavorite = true;
        first->performAndWait([&](ManagedObjectContext &c) { c.update(firstCopy); c.save(); });
        second->performAndWait([&](ManagedObjectContext &c) { c.update(secondCopy); c.save(); });

        context.refresh(copy.objectID, true);
        const auto stored = context.existingObject<BrickSet>(copy.objectID);
        QCOMPARE(stored->notes, std::optional<QString>(u"second"_s));
        QCOMPARE(stored->rating, qint16(4));
        QCOMPARE(stored->isFavorite, true);
        QCOMPARE(stored->acquisitionType, std::optional<QString>(u"unknown"_s));
    }

    void viewContextEditOfAStaleValueKeepsAnotherContextsChanges()
    {
        auto &context = m_store->viewContext();
        auto copy = context.insert(newCopy(std::nullopt));
        context.save();
        QSignalSpy notices(m_store.get(), &PersistentContainer::objectsDidChange);
        auto background = m_store->newBackgroundContext();
        background->performAndWait([&](ManagedObjectContext &c) {
            auto other = *c.existingObject<BrickSet>(copy.objectID);
            other.overallCondition = u"new"_s;
            c.update(other);
            c.save();
        });
        // The background save has been announced on this thread before the view edits.
        QTRY_COMPARE(notices.size(), 1);
        QVERIFY(notices.first().first().value<StoreChanges>().updated.contains(copy.objectID));
        copy.isTrashed = true; // the view still holds the value from before the background save
        context.update(copy);
        context.save();
        context.refresh(copy.objectID, true);
        const auto stored = context.existingObject<BrickSet>(copy.objectID);
        QCOMPARE(stored->isTrashed, true);
        QCOMPARE(stored->overallCondition, std::optional<QString>(u"new"_s));
    }

    void batchDeleteRemovesEveryObjectOfAnEntityAndAnnouncesThem()
    {
        auto &context = m_store->viewContext();
        const auto set = context.insert(catalogSet(u"3-1"_s, u"Three"_s));
        const auto copy = context.insert(newCopy(set.objectID));
        const auto entry = context.insert(PartInventoryEntry{{}, 1, {}, {}, copy.objectID, {}});
        context.insert(WishlistItem{{}, u"4-1"_s, u"Four"_s, 2001, 10, {}, {}, {}, {}});
        context.save();
        QSignalSpy notices(m_store.get(), &PersistentContainer::objectsDidChange);
        auto background = m_store->newBackgroundContext();
        background->performAndWait([](ManagedObjectContext &c) {
            c.batchDelete(EntityType::PartInventoryEntry);
            c.batchDelete(EntityType::BrickSet);
            c.batchDelete(EntityType::WishlistItem);
        });
        QTRY_COMPARE(notices.size(), 3);
        QCOMPARE(notices[0].first().value<StoreChanges>().deleted, QSet<ObjectID>{entry.objectID});
        QCOMPARE(notices[1].first().value<StoreChanges>().deleted, QSet<ObjectID>{copy.objectID});
        QCOMPARE(context.count(FetchRequest<BrickSet>()), qint64(0));
        QCOMPARE(context.count(FetchRequest<WishlistItem>()), qint64(0));
        QCOMPARE(context.count(FetchRequest<CatalogSet>()), qint64(1));
    }

    void relatedObjectsAreTheRowsThatPointBack()
    {
        auto &context = m_store->viewContext();
        const auto set = context.insert(catalogSet(u"5-1"_s, u"Five"_s));
        const auto other = context.insert(catalogSet(u"6-1"_s, u"Six"_s));
        const auto mine = context.insert(guide(set.objectID, u"new"_s, u"sold"_s, std::nullopt));
        context.insert(guide(other.objectID, u"new"_s, u"sold"_s, std::nullopt));
        const auto guides = context.related<CachedPriceGuide>(set.objectID, u"cachedPriceGuides"_s);
        QCOMPARE(guides.size(), 1);
        QCOMPARE(guides.first().objectID, mine.objectID);
        QVERIFY_THROWS_EXCEPTION(StoreError, context.related<BrickSet>(set.objectID, u"cachedPriceGuides"_s));
    }

    void partsCountSumsOwnedAgainstTheLinesQuantities()
    {
        auto &context = m_store->viewContext();
        const auto set = context.insert(catalogSet(u"7-1"_s, u"Seven"_s));
        const auto lineA = context.insert(CatalogSetPart{{}, 4, false, set.objectID, {}, {}});
        const auto lineB = context.insert(CatalogSetPart{{}, 2, false, set.objectID, {}, {}});
        const auto copy = context.insert(newCopy(set.objectID));
        context.insert(PartInventoryEntry{{}, 3, {}, {}, copy.objectID, lineA.objectID});
        context.insert(PartInventoryEntry{{}, 2, {}, {}, copy.objectID, lineB.objectID});
        context.save();
        const auto counted = context.partsCount(copy.objectID);
        QCOMPARE(counted.owned, qint64(5));
        QCOMPARE(counted.required, qint64(6));
        QCOMPARE(counted.entries, qint64(2));
    }

    void findOrCreateInOneBackgroundBlockCreatesEachObjectOnce()
    {
        auto background = m_store->newBackgroundContext();
        const qint64 parts = background->performAndWait([](ManagedObjectContext &c) {
            for (int round = 0; round < 3; ++round) {
                for (int number = 0; number < 50; ++number) {
                    const QString partNumber = QString::number(3000 + number);
                    if (!c.fetchFirst(FetchRequest<CatalogPart>(Predicate::equal(u"partNumber"_s, partNumber))))
                        c.insert(CatalogPart{{}, partNumber, {}, {}, {}});
                }
            }
            c.save();
            return c.count(FetchRequest<CatalogPart>());
        });
        QCOMPARE(parts, qint64(50));
    }

    void longBackgroundBlockWithPendingChangesLetsOtherWritersIn()
    {
        std::atomic<bool> otherSaved = false;
        std::atomic<bool> readingWithPendingChanges = false;
        auto reader = m_store->newBackgroundContext();
        auto writer = m_store->newBackgroundContext();
        // A long find-or-create loop: pending changes keep a write transaction open for
        // its reads, which must be let go now and then.
        auto loop = reader->perform([&otherSaved, &readingWithPendingChanges](ManagedObjectContext &context) {
            context.insert(catalogSet(u"1-1"_s, u"Pending"_s));
            QElapsedTimer timer;
            timer.start();
            while (!otherSaved && timer.elapsed() < 8000) {
                context.count(FetchRequest<CatalogSet>(Predicate::equal(u"setNumber"_s, u"1-1"_s)));
                readingWithPendingChanges = true;
            }
            context.save();
            return bool(otherSaved);
        });
        // The other writer comes only once the loop has read with its changes pending.
        QTRY_VERIFY(readingWithPendingChanges.load());
        writer->performAndWait([](ManagedObjectContext &context) {
            context.insert(catalogSet(u"2-1"_s, u"Other"_s));
            context.save();
        });
        otherSaved = true;
        QVERIFY(loop.result());
        QCOMPARE(m_store->viewContext().count(FetchRequest<CatalogSet>()), qint64(2));
    }

    void listValuesUpdateOnlyThePropertiesTheyChange()
    {
        auto &context = m_store->viewContext();
        const auto set = context.insert(catalogSet(u"8-1"_s, u"Eight"_s));
        context.insert(newCopy(set.objectID));
        context.save();
        auto other = PersistentContainer::open(m_store->path()); // a context with no snapshots at all
        auto rows = other->viewContext().fetchBrickSetsWithCatalogSets(FetchRequest<BrickSet>());
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.first().catalogSet->name, std::optional<QString>(u"Eight"_s));
        other->viewContext().update(rows.first().brickSet);
        QVERIFY(!other->viewContext().hasChanges());
        BrickSet copy = rows.first().brickSet;
        copy.isFavorite = true;
        other->viewContext().update(copy);
        QVERIFY(other->viewContext().hasChanges());
        other->viewContext().save();
        context.refresh(copy.objectID, true);
        QCOMPARE(*context.existingObject<BrickSet>(copy.objectID), copy);
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
};

QTEST_GUILESS_MAIN(ManagedObjectContextTest)
#include "ManagedObjectContextTest.moc"
