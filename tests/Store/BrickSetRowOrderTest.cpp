// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/BrickSetListModel.h"
#include "Store/BrickSetRowOrder.h"
#include "Store/PersistenceController.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

namespace {

QList<qint64> keys(const QList<BrickSetWithCatalogSet> &rows)
{
    QList<qint64> list;
    for (const BrickSetWithCatalogSet &row : rows)
        list << row.brickSet.objectID.primaryKey;
    return list;
}

} // namespace

// Re-sorting copies in memory must give exactly the order the store's fetch gives.
class BrickSetRowOrderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PersistenceController> m_store;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        m_store = PersistenceController::open(QString(), true);
        // Names with equal values, absent ones, accents, and a character outside the basic
        // plane beside one just below it (bytewise and UTF-16 order disagree on those two).
        const QList<std::optional<QString>> names{u"Castle"_s, u"castle"_s, u"Çastle"_s, std::nullopt,
                                                  u"Castle"_s, u"\U0001F600 Smile"_s, u"\uFF21 Wide"_s, QString()};
        QList<CatalogSet> sets;
        for (qsizetype index = 0; index < names.size(); ++index) {
            CatalogSet set;
            set.setNumber = QString::number(900 - index * 37 % 11) + u"-1"_s;
            set.name = names[index];
            set.year = qint16(2000 + index % 3);
            set.pieceCount = qint32(index % 4 * 100);
            sets << context().insert(set);
        }
        const QDateTime start = QDateTime::currentDateTimeUtc();
        for (int index = 0; index < 40; ++index) {
            BrickSet copy = newCopy(index % 9 == 8 ? std::nullopt : std::optional(sets[index % sets.size()].objectID),
                                    start.addSecs(index % 6 * 60));
            if (index % 5 == 4)
                copy.dateAdded.reset();
            if (index % 3 != 0)
                copy.overallCondition = index % 2 ? u"used"_s : u"new"_s;
            context().insert(copy);
        }
        context().save();
    }

    void cleanupTestCase() { m_store.reset(); }

    void sortsAsTheStoreDoes_data()
    {
        QTest::addColumn<QList<SortDescriptor>>("descriptors");
        for (const QString &keyPath : {u"catalogSet.name"_s, u"catalogSet.setNumber"_s, u"catalogSet.year"_s,
                                       u"catalogSet.pieceCount"_s, u"dateAdded"_s, u"overallCondition"_s}) {
            for (const bool ascending : {true, false}) {
                const QString row = keyPath + (ascending ? u" ascending"_s : u" descending"_s);
                QTest::newRow(qPrintable(row)) << QList<SortDescriptor>{{keyPath, ascending}};
            }
        }
        QTest::newRow("year descending, then name")
            << QList<SortDescriptor>{{u"catalogSet.year"_s, false}, {u"catalogSet.name"_s, true}};
        QTest::newRow("no sort at all") << QList<SortDescriptor>{};
    }

    void sortsAsTheStoreDoes()
    {
        QFETCH(QList<SortDescriptor>, descriptors);
        const QList<BrickSetWithCatalogSet> fetched = context().fetchBrickSetsWithCatalogSets(
            FetchRequest<BrickSet>(Predicate(), descriptors));
        QCOMPARE(fetched.size(), 40);
        // Start from another order, so that the sort has work to do.
        const QList<BrickSetWithCatalogSet> rows = context().fetchBrickSetsWithCatalogSets(
            FetchRequest<BrickSet>(Predicate(), {{u"dateAdded"_s, false}, {u"catalogSet.pieceCount"_s, true}}));
        const std::optional<BrickSetRowOrder> order = BrickSetRowOrder::forDescriptors(descriptors);
        QVERIFY(order);
        QCOMPARE(keys(order->sorted(rows)), keys(fetched));
        // Each row comes before the next one and not after it: the order a live list keeps
        // when it places a single changed row between its neighbours.
        for (qsizetype row = 0; row + 1 < fetched.size(); ++row) {
            QVERIFY(order->lessThan(fetched[row], fetched[row + 1]));
            QVERIFY(!order->lessThan(fetched[row + 1], fetched[row]));
        }
    }

    void keysTheRowsDoNotCarryAreLeftToTheStore()
    {
        QVERIFY(!BrickSetRowOrder::forDescriptors({{u"catalogSet.themeName"_s, true}}));
        QVERIFY(!BrickSetRowOrder::forDescriptors({{u"catalogSet.name"_s, true}, {u"purchasePrice"_s, true}}));
    }

    void aLiveListReSortedInMemoryMatchesARefetch()
    {
        BrickSetListModel list(m_store->container());
        list.setFetchRequest(FetchRequest<BrickSet>(Predicate(), {{u"catalogSet.name"_s, true}}));
        list.setSortDescriptors({{u"catalogSet.pieceCount"_s, false}});
        QCOMPARE(list.fetchRequest().sortDescriptors, (QList<SortDescriptor>{{u"catalogSet.pieceCount"_s, false}}));
        const QList<BrickSetWithCatalogSet> inMemory = list.rows();
        list.refetch();
        QCOMPARE(keys(inMemory), keys(list.rows()));
        // A key the rows lack is sorted by the store instead.
        list.setSortDescriptors({{u"catalogSet.themeName"_s, true}, {u"catalogSet.name"_s, false}});
        QCOMPARE(list.count(), 40);
        QCOMPARE(keys(list.rows()),
                 keys(context().fetchBrickSetsWithCatalogSets(FetchRequest<BrickSet>(
                     Predicate(), {{u"catalogSet.themeName"_s, true}, {u"catalogSet.name"_s, false}}))));
    }
};

QTEST_MAIN(BrickSetRowOrderTest)
#include "BrickSetRowOrderTest.moc"
