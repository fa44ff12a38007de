// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"
#include "Store/StoreObserver.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>
#include <QTimeZone>

#include <random>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

class BrickSetListModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = openStore(*m_folder);
        auto &context = m_store->viewContext();
        m_falcon = context.insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s));
        m_castle = context.insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s));
        context.save();
    }
    void cleanup()
    {
        m_store.reset();
        m_folder.reset();
    }

    void listShowsNonTrashedCopiesWithSetNumberAndName()
    {
        auto &context = m_store->viewContext();
        context.insert(newCopy(m_falcon.objectID));
        auto thrown = newCopy(m_castle.objectID);
        thrown.isTrashed = true;
        context.insert(thrown);
        context.insert(newCopy(std::nullopt));
        context.save();

        BrickSetListModel model(*m_store);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setFetchRequest(collectionRequest());
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(model.data(model.index(0), Qt::DisplayRole).toString(), u"Unknown Set"_s);
        QCOMPARE(model.data(model.index(1), BrickSetListModel::SetNumberRole).toString(), u"75192-1"_s);
        QCOMPARE(model.data(model.index(1), BrickSetListModel::NameRole).toString(), u"Millennium Falcon"_s);
        QCOMPARE(model.data(model.index(1), Qt::DisplayRole).toString(), u"75192-1  Millennium Falcon"_s);
        QCOMPARE(model.roleNames().value(BrickSetListModel::SetNumberRole), QByteArray("setNumber"));
    }

    void requestGivenAtConstructionListsOnlyItsCopiesAndFollowsSaves()
    {
        auto &context = m_store->viewContext();
        context.insert(newCopy(m_falcon.objectID));
        auto thrown = newCopy(m_castle.objectID);
        thrown.isTrashed = true;
        context.insert(thrown);
        context.save();

        BrickSetListModel model(*m_store, collectionRequest());
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(model.rowCount(), 1);
        QCOMPARE(model.data(model.index(0), BrickSetListModel::SetNumberRole).toString(), u"75192-1"_s);

        context.insert(newCopy(m_castle.objectID));
        context.save();
        QTRY_COMPARE(model.rowCount(), 2);
    }

    void backgroundSaveReachesTheListWithoutARefresh()
    {
        BrickSetListModel model(*m_store);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setFetchRequest(collectionRequest());
        QSignalSpy counts(&model, &BrickSetListModel::countChanged);
        auto background = m_store->newBackgroundContext();
        const ObjectID falcon = m_falcon.objectID;
        background->perform([falcon](ManagedObjectContext &context) {
            context.insert(newCopy(falcon));
            context.insert(newCopy(falcon));
            context.save();
        });
        QTRY_COMPARE(model.rowCount(), 2);
        QCOMPARE(counts.size(), 1);
    }

    void trashingACopyDropsItFromTheList()
    {
        auto &context = m_store->viewContext();
        auto copy = context.insert(newCopy(m_falcon.objectID));
        context.insert(newCopy(m_castle.objectID));
        context.save();
        BrickSetListModel model(*m_store);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setFetchRequest(collectionRequest());
        QCOMPARE(model.rowCount(), 2);
        copy.isTrashed = true;
        copy.trashedDate = QDateTime::currentDateTimeUtc();
        context.update(copy);
        context.save();
        QCOMPARE(model.rowCount(), 1);
        QCOMPARE(model.rowOf(copy.objectID), -1);
    }

    void editingACopyInPlaceReportsOnlyItsRow()
    {
        auto &context = m_store->viewContext();
        context.insert(newCopy(m_falcon.objectID));
        auto copy = context.insert(newCopy(m_castle.objectID));
        context.save();
        BrickSetListModel model(*m_store);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setFetchRequest(collectionRequest());
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        copy.isFavorite = true;
        context.update(copy);
        context.save();
        QCOMPARE(resets.size(), 0);
        QCOMPARE(changes.size(), 1);
        const int row = model.rowOf(copy.objectID);
        QCOMPARE(changes.first().first().toModelIndex().row(), row);
        QCOMPARE(model.data(model.index(row), BrickSetListModel::IsFavoriteRole).toBool(), true);
    }

    void renamingTheCatalogSetUpdatesAndReordersTheList()
    {
        auto &context = m_store->viewContext();
        const auto falconCopy = context.insert(newCopy(m_falcon.objectID));
        context.insert(newCopy(m_castle.objectID));
        context.save();
        BrickSetListModel model(*m_store);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setFetchRequest(collectionRequest());
        QCOMPARE(model.rowOf(falconCopy.objectID), 1);
        auto background = m_store->newBackgroundContext();
        const ObjectID falcon = m_falcon.objectID;
        background->perform([falcon](ManagedObjectContext &other) {
            auto set = *other.existingObject<CatalogSet>(falcon);
            set.name = u"A Falcon"_s;
            other.update(set);
            other.save();
        });
        QTRY_COMPARE(model.rowOf(falconCopy.objectID), 0);
        QCOMPARE(model.data(model.index(0), BrickSetListModel::NameRole).toString(), u"A Falcon"_s);
    }

    void changesToEntitiesTheListDoesNotReadAreIgnored()
    {
        BrickSetListModel model(*m_store);
        model.setFetchRequest(collectionRequest());
        QSignalSpy refetches(&model, &BrickSetListModel::refetched);
        auto &context = m_store->viewContext();
        context.insert(WishlistItem{{}, u"1-1"_s, u"Wanted"_s, 2000, 1, {}, {}, {}, {}});
        context.save();
        QCOMPARE(refetches.size(), 0);
        context.insert(guide(m_falcon.objectID, u"used"_s, u"sold"_s, QDateTime::currentDateTimeUtc()));
        context.save();
        QCOMPARE(refetches.size(), 0);

        // A list filtered on pricing reads the guides and follows them.
        model.setFetchRequest(FetchRequest<BrickSet>(BrickSetQueries::withoutPriceGuides()));
        refetches.clear();
        context.insert(guide(m_castle.objectID, u"used"_s, u"sold"_s, QDateTime::currentDateTimeUtc()));
        context.save();
        QCOMPARE(refetches.size(), 1);
    }

    void addingAndTrashingCopiesMovesSingleRowsWithoutReset()
    {
        auto &context = m_store->viewContext();
        auto castleCopy = context.insert(newCopy(m_castle.objectID));
        context.save();
        BrickSetListModel model(*m_store);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setFetchRequest(collectionRequest());
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
        const auto falconCopy = context.insert(newCopy(m_falcon.objectID));
        context.save();
        QCOMPARE(inserted.size(), 1);
        QCOMPARE(inserted.first().at(1).toInt(), 1); // "Lion..." sorts before "Millennium..."
        QCOMPARE(model.rowOf(falconCopy.objectID), 1);
        castleCopy.isTrashed = true;
        context.update(castleCopy);
        context.save();
        QCOMPARE(removed.size(), 1);
        QCOMPARE(removed.first().at(1).toInt(), 0);
        QCOMPARE(resets.size(), 0);
        QCOMPARE(model.rowCount(), 1);
    }

    void restoringACopyFromTheTrashPutsItBackInItsSortedPlace()
    {
        auto &context = m_store->viewContext();
        const auto bonsai = context.insert(catalogSet(u"10281-1"_s, u"Bonsai Tree"_s));
        context.save();
        context.insert(newCopy(m_castle.objectID));
        auto bonsaiCopy = context.insert(newCopy(bonsai.objectID));
        context.insert(newCopy(m_falcon.objectID));
        context.save();
        BrickSetListModel model(*m_store, collectionRequest());
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(model.rowOf(bonsaiCopy.objectID), 0);

        bonsaiCopy.isTrashed = true;
        context.update(bonsaiCopy);
        context.save();
        QCOMPARE(model.rowCount(), 2);

        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        bonsaiCopy.isTrashed = false;
        context.update(bonsaiCopy);
        context.save();
        QCOMPARE(resets.size(), 0);
        QCOMPARE(inserted.size(), 1);
        QCOMPARE(inserted.first().at(1).toInt(), 0);
        QCOMPARE(model.rowOf(bonsaiCopy.objectID), 0);
        QCOMPARE(model.data(model.index(0), BrickSetListModel::NameRole).toString(), u"Bonsai Tree"_s);
    }

    void anEditThatChangesASortKeyMovesTheRow()
    {
        auto &context = m_store->viewContext();
        const QDateTime start(QDate(2024, 1, 1), QTime(12, 0), QTimeZone::utc());
        auto oldest = context.insert(newCopy(m_falcon.objectID, start));
        const auto middle = context.insert(newCopy(m_falcon.objectID, start.addDays(1)));
        const auto newest = context.insert(newCopy(m_castle.objectID, start.addDays(2)));
        context.save();
        BrickSetListModel model(*m_store, FetchRequest<BrickSet>(BrickSetQueries::notTrashed(), {{u"dateAdded"_s, false}}));
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(model.rowOf(oldest.objectID), 2);

        oldest.dateAdded = start.addDays(3);
        context.update(oldest);
        context.save();
        QCOMPARE(model.rowOf(oldest.objectID), 0);
        QCOMPARE(model.rowOf(newest.objectID), 1);
        QCOMPARE(model.rowOf(middle.objectID), 2);
    }

    // Commits of one to three copies, each trashed, restored, favourited or re-dated at
    // random: after every commit the live list is exactly what a fresh fetch reads.
    void theListStaysTheFetchThroughManySmallCommits()
    {
        auto &context = m_store->viewContext();
        const QDateTime start(QDate(2024, 1, 1), QTime(12, 0), QTimeZone::utc());
        QList<BrickSet> copies;
        for (int index = 0; index < 40; ++index) {
            BrickSet copy = newCopy(index % 3 == 0 ? std::optional<ObjectID>() : (index % 2 ? m_falcon.objectID : m_castle.objectID),
                                    start.addDays(index % 7));
            copy.isTrashed = index % 5 == 0;
            copies.append(context.insert(copy));
        }
        context.save();
        const FetchRequest<BrickSet> request(BrickSetQueries::notTrashed(), {{u"catalogSet.name"_s, true}, {u"dateAdded"_s, false}});
        BrickSetListModel model(*m_store, request);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        std::mt19937 random(20261125);
        for (int commit = 0; commit < 150; ++commit) {
            const int edits = 1 + int(random() % 3);
            for (int edit = 0; edit < edits; ++edit) {
                BrickSet &copy = copies[qsizetype(random() % copies.size())];
                switch (random() % 4) {
                case 0:
                    copy.isTrashed = !copy.isTrashed;
                    break;
                case 1:
                    copy.isFavorite = !copy.isFavorite;
                    break;
                case 2:
                    copy.dateAdded = start.addDays(int(random() % 7));
                    break;
                default:
                    copy.notes = QString::number(commit);
                    break;
                }
                context.update(copy);
            }
            context.save();
            QList<ObjectID> shown;
            for (int row = 0; row < model.rowCount(); ++row)
                shown.append(model.rowAt(row).brickSet.objectID);
            QCOMPARE(shown, context.fetchObjectIDs(request));
            for (const BrickSet &copy : std::as_const(copies)) {
                const int row = model.rowOf(copy.objectID);
                if (row >= 0)
                    QCOMPARE(model.rowAt(row).brickSet.isFavorite, copy.isFavorite);
            }
        }
    }

    void observerAnnouncesOnlyCommitsThatTouchWhatAQueryReads()
    {
        const FetchRequest<BrickSet> outdated(BrickSetQueries::pricingOlderThan(QDateTime::currentDateTimeUtc()));
        QCOMPARE(StoreObserver::entitiesRead(outdated),
                 (QSet<EntityType>{EntityType::BrickSet, EntityType::CatalogSet, EntityType::CachedPriceGuide}));
        StoreObserver wishlist(*m_store, StoreObserver::entitiesRead(FetchRequest<WishlistItem>()));
        QSignalSpy changes(&wishlist, &StoreObserver::changed);
        auto &context = m_store->viewContext();
        context.insert(newCopy(m_falcon.objectID));
        context.save();
        QCOMPARE(changes.size(), 0);
        auto background = m_store->newBackgroundContext();
        background->perform([](ManagedObjectContext &other) {
            other.insert(WishlistItem{{}, u"1-1"_s, u"Wanted"_s, 2000, 1, {}, {}, {}, {}});
            other.save();
        });
        QTRY_COMPARE(changes.size(), 1);
    }

private:
    static FetchRequest<BrickSet> collectionRequest()
    {
        return FetchRequest<BrickSet>(BrickSetQueries::notTrashed(), {{u"catalogSet.name"_s, true}});
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    CatalogSet m_falcon;
    CatalogSet m_castle;
};

QTEST_MAIN(BrickSetListModelTest)
#include "BrickSetListModelTest.moc"
