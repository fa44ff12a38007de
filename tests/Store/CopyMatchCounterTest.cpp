// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/BrickSetQueries.h"
#include "Store/CopyMatchCounter.h"

#include <QTest>
#include <QTimeZone>

#include <random>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

class CopyMatchCounterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = openStore(*m_folder);
        auto &context = m_store->viewContext();
        for (int index = 0; index < 4; ++index) {
            CatalogSet set = catalogSet(u"1000%1-1"_s.arg(index), u"Set %1"_s.arg(index));
            if (index % 2)
                set.dateLastAvailable = cutoff().addYears(-1);
            m_sets.append(context.insert(set));
        }
        context.save();
    }
    void cleanup()
    {
        m_sets.clear();
        m_store.reset();
        m_folder.reset();
    }

    void countsEachPredicateInOnePass()
    {
        auto &context = m_store->viewContext();
        saveCopy(context, m_sets[0].objectID, [](BrickSet &copy) { copy.isFavorite = true; });
        saveCopy(context, m_sets[1].objectID, [](BrickSet &copy) { copy.isTrashed = true; });
        saveCopy(context, m_sets[3].objectID);
        saveCopy(context, std::nullopt);
        CopyMatchCounter counter(context, predicates());
        QCOMPARE(counter.count(0), 0); // nothing until counted
        counter.recountAll();
        QCOMPARE(counter.count(0), 3); // not trashed
        QCOMPARE(counter.count(1), 1); // favourite
        QCOMPARE(counter.count(2), 1); // retired and not trashed
        QCOMPARE(counter.count(3), 1); // trashed
    }

    // Copies inserted, updated and deleted, and catalog sets retired and brought back, in
    // random commits: after each one the counts are what counting afresh gives.
    void followingCommitsGivesTheSameCountsAsCountingAfresh()
    {
        auto &context = m_store->viewContext();
        CopyMatchCounter counter(context, predicates());
        counter.recountAll();
        connect(m_store.get(), &PersistentContainer::objectsDidChange, this,
                [&counter](const StoreChanges &changes) { counter.follow(changes); });
        QList<BrickSet> copies;
        std::mt19937 random(1125);
        for (int commit = 0; commit < 200; ++commit) {
            const int edits = 1 + int(random() % 3);
            for (int edit = 0; edit < edits; ++edit) {
                const unsigned what = copies.isEmpty() ? 0 : random() % 6;
                if (what == 0) {
                    BrickSet copy = newCopy(m_sets[qsizetype(random() % m_sets.size())].objectID);
                    copy.isTrashed = random() % 4 == 0;
                    copies.append(context.insert(copy));
                } else if (what == 1 && copies.size() > 1) {
                    context.deleteObject(copies.takeAt(qsizetype(random() % copies.size())));
                } else if (what == 2) {
                    CatalogSet &set = m_sets[qsizetype(random() % m_sets.size())];
                    set.dateLastAvailable = set.dateLastAvailable ? std::nullopt : std::optional(cutoff().addDays(-3));
                    context.update(set);
                } else {
                    BrickSet &copy = copies[qsizetype(random() % copies.size())];
                    if (what == 3)
                        copy.isTrashed = !copy.isTrashed;
                    else if (what == 4)
                        copy.isFavorite = !copy.isFavorite;
                    else
                        copy.catalogSet = m_sets[qsizetype(random() % m_sets.size())].objectID;
                    context.update(copy);
                }
            }
            context.save();
            const QList<Predicate> each = predicates();
            for (qsizetype index = 0; index < each.size(); ++index)
                QCOMPARE(counter.count(index), context.count(FetchRequest<BrickSet>(each[index])));
        }
    }

    void aBackgroundSaveIsFollowed()
    {
        auto &context = m_store->viewContext();
        CopyMatchCounter counter(context, predicates());
        counter.recountAll();
        connect(m_store.get(), &PersistentContainer::objectsDidChange, this,
                [&counter](const StoreChanges &changes) { counter.follow(changes); });
        auto background = m_store->newBackgroundContext();
        const ObjectID set = m_sets[1].objectID;
        background->perform([set](ManagedObjectContext &other) {
            other.insert(newCopy(set));
            other.save();
        });
        QTRY_COMPARE(counter.count(0), 1);
        QCOMPARE(counter.count(2), 1);
    }

private:
    static QDateTime cutoff() { return QDateTime(QDate(2026, 1, 1), QTime(0, 0), QTimeZone::utc()); }

    static QList<Predicate> predicates()
    {
        return {BrickSetQueries::notTrashed(), BrickSetQueries::notTrashed() && BrickSetQueries::favorite(),
                BrickSetQueries::notTrashed() && BrickSetQueries::retiredBefore(cutoff()), BrickSetQueries::trashed()};
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    QList<CatalogSet> m_sets;
};

QTEST_MAIN(CopyMatchCounterTest)
#include "CopyMatchCounterTest.moc"
