// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/PersistentContainer.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

namespace {

// Far below the ten seconds SQLite would wait for a busy lock, and far above anything a
// save or a fetch of a handful of rows takes: a call that waited for the writer shows.
constexpr qint64 promptMilliseconds = 2000;

// A background context in the middle of a write: it holds the store's write turn and
// SQLite's write lock (an uncommitted catalog set "9999-1") until finish(). Its work is
// then rolled back, so nothing of it reaches the store or its notices.
class RunningWriter
{
public:
    explicit RunningWriter(PersistentContainer &store, int finishOnItsOwnAfterMilliseconds = -1)
        : m_context(store.newBackgroundContext())
    {
        m_done = m_context->perform([this, finishOnItsOwnAfterMilliseconds](ManagedObjectContext &context) {
            context.insert(catalogSet(u"9999-1"_s, u"Uncommitted"_s));
            // Showing the pending insert to a read opens the write transaction.
            context.count(FetchRequest<CatalogSet>());
            m_holding.release();
            m_mayFinish.tryAcquire(1, finishOnItsOwnAfterMilliseconds);
            context.rollback();
        });
        m_holding.acquire();
    }
    ~RunningWriter() { finish(); }

    void finish()
    {
        if (m_finished)
            return;
        m_finished = true;
        m_mayFinish.release();
        m_done.waitForFinished();
    }

private:
    std::shared_ptr<ManagedObjectContext> m_context;
    QSemaphore m_holding;
    QSemaphore m_mayFinish;
    QFuture<void> m_done;
    bool m_finished = false;
};

} // namespace

// The view context lives on the main thread, which must never wait for another context's
// write: its saves queue behind the writer and its reads show its pending changes over
// the committed rows.
class ViewContextWriteTurnTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = openStore(*m_folder);
        auto &context = m_store->viewContext();
        m_set = context.insert(catalogSet(u"10497-1"_s, u"Galaxy Explorer"_s));
        context.save();
        m_copy = saveCopy(context, m_set.objectID);
        m_other = saveCopy(context, m_set.objectID, [](BrickSet &copy) { copy.notes = u"second copy"_s; });
    }
    void cleanup()
    {
        m_store.reset();
        m_folder.reset();
    }

    void viewContextSaveDuringABackgroundWriteReturnsAtOnceAndIsStoredWhenTheWriterEnds()
    {
        auto &context = m_store->viewContext();
        QSignalSpy notices(m_store.get(), &PersistentContainer::objectsDidChange);
        QSignalSpy finished(m_store.get(), &PersistentContainer::queuedSaveDidFinish);
        RunningWriter writer(*m_store);
        BrickSet copy = m_copy;
        copy.isFavorite = true;
        context.update(copy);
        QElapsedTimer timer;
        timer.start();
        context.save();
        QVERIFY(timer.elapsed() < promptMilliseconds);
        QVERIFY(context.hasQueuedSave());
        QVERIFY(context.hasChanges());
        QVERIFY(!storedCopy(copy.objectID).isFavorite);

        writer.finish();
        QVERIFY(finished.wait());
        QVERIFY(!context.hasQueuedSave());
        QVERIFY(!context.hasChanges());
        QVERIFY(storedCopy(copy.objectID).isFavorite);
        QCOMPARE(notices.size(), 1);
        QCOMPARE(notices.first().first().value<StoreChanges>().updated, QSet<ObjectID>{copy.objectID});
    }

    void failedQueuedSaveKeepsThePendingChangesForTheNextSave()
    {
        auto &context = m_store->viewContext();
        QSignalSpy failed(m_store.get(), &PersistentContainer::queuedSaveDidFail);
        QSignalSpy finished(m_store.get(), &PersistentContainer::queuedSaveDidFinish);
        RunningWriter writer(*m_store);
        // A copy pointing at a catalog set that does not exist cannot be committed.
        BrickSet orphan = context.insert(newCopy(ObjectID{EntityType::CatalogSet, 4242}));
        orphan.notes = u"keep me"_s;
        context.update(orphan);
        context.save();
        QVERIFY(context.hasQueuedSave());

        writer.finish();
        QVERIFY(failed.wait());
        QVERIFY(!failed.first().first().toString().isEmpty());
        QCOMPARE(finished.size(), 0);
        QVERIFY(!context.hasQueuedSave());
        QVERIFY(context.hasChanges());

        const auto set = context.insert(catalogSet(u"4242-1"_s, u"Recovered"_s));
        orphan.catalogSet = set.objectID;
        context.update(orphan);
        context.save();
        QVERIFY(!context.hasChanges());
        QCOMPARE(storedCopy(orphan.objectID).notes, std::optional<QString>(u"keep me"_s));
    }

    void twoQueuedSavesInARowAreBothStoredInOrder()
    {
        auto &context = m_store->viewContext();
        QSignalSpy finished(m_store.get(), &PersistentContainer::queuedSaveDidFinish);
        RunningWriter writer(*m_store);
        BrickSet copy = m_copy;
        copy.isFavorite = true;
        copy.notes = u"first"_s;
        context.update(copy);
        context.save();
        copy.notes = u"second"_s;
        context.update(copy);
        BrickSet other = m_other;
        other.isFavorite = true;
        context.update(other);
        context.save();
        QVERIFY(context.hasQueuedSave());

        writer.finish();
        QVERIFY(finished.wait());
        QVERIFY(!context.hasChanges());
        const BrickSet stored = storedCopy(copy.objectID);
        QVERIFY(stored.isFavorite);
        QCOMPARE(stored.notes, std::optional<QString>(u"second"_s)); // the later save's value
        QVERIFY(storedCopy(other.objectID).isFavorite);
    }

    void viewContextFetchDuringABackgroundWriteShowsItsPendingChangesWithoutWaiting()
    {
        auto &context = m_store->viewContext();
        const auto favouritesRequest = FetchRequest<BrickSet>(Predicate::equal(u"isFavorite"_s, true));
        // The same statement read once before, so its prepared form is cached already.
        QVERIFY(context.fetch(favouritesRequest).isEmpty());
        RunningWriter writer(*m_store);
        BrickSet copy = m_copy;
        copy.isFavorite = true;
        context.update(copy);
        context.deleteObject(m_other);
        const BrickSet added = context.insert(newCopy(m_set.objectID));

        QElapsedTimer timer;
        timer.start();
        const QList<BrickSet> favourites = context.fetch(favouritesRequest);
        const QList<ObjectID> all = context.fetchObjectIDs(FetchRequest<BrickSet>());
        const auto rows = context.fetchBrickSetsWithCatalogSets(
            FetchRequest<BrickSet>(Predicate::equal(u"catalogSet.setNumber"_s, u"10497-1"_s)));
        const qint64 catalogSets = context.count(FetchRequest<CatalogSet>());
        QVERIFY(timer.elapsed() < promptMilliseconds);

        QCOMPARE(favourites.size(), 1);
        QCOMPARE(favourites.first().objectID, copy.objectID);
        QCOMPARE(all, (QList<ObjectID>{m_copy.objectID, added.objectID}));
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.first().catalogSet->name, std::optional<QString>(u"Galaxy Explorer"_s));
        QCOMPARE(catalogSets, qint64(1)); // the writer's uncommitted set is not shown
        QVERIFY(context.existingObject<BrickSet>(added.objectID));
        QVERIFY(!context.existingObject<BrickSet>(m_other.objectID));
        QVERIFY(context.hasChanges());
        QVERIFY(!context.hasQueuedSave());
    }

    void readsAfterTheWriterEndsSeeTheSameChangesThroughTheStore()
    {
        auto &context = m_store->viewContext();
        {
            RunningWriter writer(*m_store);
            BrickSet copy = m_copy;
            copy.notes = u"changed"_s;
            context.update(copy);
            QCOMPARE(context.count(FetchRequest<BrickSet>(Predicate::equal(u"notes"_s, u"changed"_s))), qint64(1));
        }
        // The temporary views are gone: the ordinary read path shows the same.
        QCOMPARE(context.count(FetchRequest<BrickSet>(Predicate::equal(u"notes"_s, u"changed"_s))), qint64(1));
        context.rollback();
        QCOMPARE(context.count(FetchRequest<BrickSet>(Predicate::equal(u"notes"_s, u"changed"_s))), qint64(0));
    }

    void closingTheStoreWithAQueuedSaveWritesItFirst()
    {
        const QString path = m_store->path();
        const ObjectID id = m_copy.objectID;
        // The writer ends on its own shortly, while the store is being closed.
        RunningWriter writer(*m_store, 200);
        BrickSet copy = m_copy;
        copy.isFavorite = true;
        m_store->viewContext().update(copy);
        m_store->viewContext().save();
        QVERIFY(m_store->viewContext().hasQueuedSave());
        m_store.reset();

        auto reopened = PersistentContainer::open(path);
        QVERIFY(reopened->viewContext().existingObject<BrickSet>(id)->isFavorite);
    }

    void closingThePersistenceControllerWithAQueuedSaveWritesItFirst()
    {
        // The program's way out: the controller owns the container and closes it.
        const QString path = m_folder->filePath(u"Controller.sqlite"_s);
        auto controller = PersistenceController::open(path);
        auto &context = controller->container().viewContext();
        const auto set = context.insert(catalogSet(u"21309-1"_s, u"Saturn V"_s));
        BrickSet copy = saveCopy(context, set.objectID);
        RunningWriter writer(controller->container(), 200);
        copy.notes = u"written on the way out"_s;
        context.update(copy);
        context.save();
        QVERIFY(context.hasQueuedSave());
        controller.reset();

        auto reopened = PersistentContainer::open(path);
        QCOMPARE(reopened->viewContext().existingObject<BrickSet>(copy.objectID)->notes,
                 std::optional<QString>(u"written on the way out"_s));
    }

private:
    // The copy as committed, read through a store of its own.
    BrickSet storedCopy(const ObjectID &id) const
    {
        auto reader = PersistentContainer::open(m_store->path());
        const auto stored = reader->viewContext().existingObject<BrickSet>(id);
        return stored ? *stored : BrickSet{};
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    CatalogSet m_set;
    BrickSet m_copy;
    BrickSet m_other;
};

QTEST_GUILESS_MAIN(ViewContextWriteTurnTest)
#include "ViewContextWriteTurnTest.moc"
