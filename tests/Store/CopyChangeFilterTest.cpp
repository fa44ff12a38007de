// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/BrickSetListModel.h"
#include "Store/BrickSetQueries.h"
#include "Store/CopyChangeFilter.h"
#include "Store/PersistentContainer.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// Which commits can change a list or count of copies: a change to a catalog set that no
// copy refers to cannot, so the lists do not read themselves again for it.
class CopyChangeFilterTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_store;
    CatalogSet m_owned;
    CatalogSet m_unowned;

    ManagedObjectContext &context() { return m_store->viewContext(); }
    static QSet<EntityType> copiesAndSets() { return {EntityType::BrickSet, EntityType::CatalogSet}; }

    // The changes of one save of `change`.
    StoreChanges changesOf(const std::function<void()> &change)
    {
        QSignalSpy commits(m_store.get(), &PersistentContainer::objectsDidChange);
        change();
        context().save();
        if (commits.size() != 1)
            qFatal("expected one commit, got %lld", qlonglong(commits.size()));
        return commits.first().first().value<StoreChanges>();
    }

    void rename(CatalogSet set, const QString &name)
    {
        set.name = name;
        context().update(set);
    }

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = openStore(*m_folder);
        m_owned = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s));
        m_unowned = context().insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s));
        context().save();
        saveCopy(context(), m_owned.objectID);
    }

    void cleanup()
    {
        m_store.reset();
        m_folder.reset();
    }

    void aNewCatalogSetWithoutCopiesChangesNoCopyList()
    {
        const StoreChanges changes = changesOf([&] { context().insert(catalogSet(u"21330-1"_s, u"Home Alone"_s)); });
        QVERIFY(!CopyChangeFilter(context(), changes).mayChange(copiesAndSets()));
    }

    void anUpdatedCatalogSetWithoutCopiesChangesNoCopyList()
    {
        const StoreChanges changes = changesOf([&] { rename(m_unowned, u"Castle"_s); });
        QVERIFY(!CopyChangeFilter(context(), changes).mayChange(copiesAndSets()));
    }

    void anUpdatedCatalogSetWithACopyMayChangeTheLists()
    {
        const StoreChanges changes = changesOf([&] { rename(m_owned, u"Falcon"_s); });
        QVERIFY(CopyChangeFilter(context(), changes).mayChange(copiesAndSets()));
    }

    void aCatalogSetWhoseOnlyCopyIsTrashedStillCounts()
    {
        // The trash lists copies too; a copy in it still refers to its set.
        BrickSet copy = saveCopy(context(), m_unowned.objectID);
        copy.isTrashed = true;
        context().update(copy);
        context().save();
        const StoreChanges changes = changesOf([&] { rename(m_unowned, u"Castle"_s); });
        QVERIFY(CopyChangeFilter(context(), changes).mayChange(copiesAndSets()));
    }

    void aNewCopyInTheSameCommitAsItsNewSetMayChangeTheLists()
    {
        const StoreChanges changes = changesOf([&] {
            const CatalogSet set = context().insert(catalogSet(u"21330-1"_s, u"Home Alone"_s));
            context().insert(newCopy(set.objectID));
        });
        QVERIFY(CopyChangeFilter(context(), changes).mayChange(copiesAndSets()));
    }

    void aChangeToAnotherReadEntityMayChangeTheLists()
    {
        const StoreChanges changes = changesOf(
            [&] { context().insert(guide(m_unowned.objectID, u"new"_s, u"sold"_s, QDateTime::currentDateTimeUtc())); });
        QVERIFY(CopyChangeFilter(context(), changes).mayChange({EntityType::BrickSet, EntityType::CachedPriceGuide}));
        QVERIFY(!CopyChangeFilter(context(), changes).mayChange(copiesAndSets()));
    }

    void manyChangedCatalogSetsAreNotLookedUp()
    {
        const StoreChanges changes = changesOf([&] {
            for (int number = 0; number <= CopyChangeFilter::lookUpLimit; ++number)
                context().insert(catalogSet(u"9%1-1"_s.arg(number), u"Set"_s));
        });
        QVERIFY(CopyChangeFilter(context(), changes).mayChange(copiesAndSets()));
    }

    void theCollectionListDoesNotReadItselfAgainForAnUnownedSet()
    {
        BrickSetListModel model(*m_store);
        model.setFetchRequest(FetchRequest<BrickSet>(BrickSetQueries::notTrashed(),
                                                     {SortDescriptor{u"catalogSet.name"_s, true}}));
        QCOMPARE(model.count(), 1);
        QSignalSpy refetched(&model, &BrickSetListModel::refetched);
        rename(m_unowned, u"Castle"_s);
        context().save();
        QCOMPARE(refetched.size(), 0);

        rename(m_owned, u"Falcon"_s);
        context().save();
        QCOMPARE(refetched.size(), 1);
        QCOMPARE(model.data(model.index(0), BrickSetListModel::NameRole).toString(), u"Falcon"_s);
    }
};

QTEST_MAIN(CopyChangeFilterTest)
#include "CopyChangeFilterTest.moc"
