// SPDX-License-Identifier: GPL-3.0-or-later
#include "../Store/StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/PersistenceController.h"
#include "ViewModels/OwnedSetIndex.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

class OwnedSetIndexTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PersistenceController> m_store;
    CatalogSet m_falcon;
    CatalogSet m_castle;

    ManagedObjectContext &context() { return m_store->container().viewContext(); }

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void init()
    {
        m_store = PersistenceController::open(QString(), true);
        m_falcon = context().insert(catalogSet(u"75192-1"_s, u"Millennium Falcon"_s, 2017));
        m_castle = context().insert(catalogSet(u"10305-1"_s, u"Lion Knights' Castle"_s, 2022));
        context().save();
    }

    void cleanup() { m_store.reset(); }

    void holdsTheNumbersOfCopiesOutsideTheTrashAndNothingForACopyWithoutASet()
    {
        saveCopy(context(), m_falcon.objectID);
        saveCopy(context(), m_castle.objectID, [](BrickSet &copy) { copy.isTrashed = true; });
        saveCopy(context(), std::nullopt);
        const OwnedSetIndex index(m_store->container());
        QCOMPARE(index.setNumbers(), QSet<QString>{u"75192-1"_s});
    }

    void aNewCopyOfAnotherSetIsAddedWithOneSignal()
    {
        saveCopy(context(), m_falcon.objectID);
        OwnedSetIndex index(m_store->container());
        QSignalSpy changed(&index, &OwnedSetIndex::setNumbersChanged);
        saveCopy(context(), m_castle.objectID);
        QTRY_COMPARE(index.setNumbers(), (QSet<QString>{u"75192-1"_s, u"10305-1"_s}));
        QCOMPARE(changed.count(), 1);
    }

    void aSecondCopyOfAnOwnedSetSignalsNothing()
    {
        saveCopy(context(), m_falcon.objectID);
        OwnedSetIndex index(m_store->container());
        QSignalSpy changed(&index, &OwnedSetIndex::setNumbersChanged);
        saveCopy(context(), m_falcon.objectID);
        // A later save that does change the numbers shows that the one above was seen.
        saveCopy(context(), m_castle.objectID);
        QTRY_COMPARE(index.setNumbers(), (QSet<QString>{u"75192-1"_s, u"10305-1"_s}));
        QCOMPARE(changed.count(), 1);
    }

    void trashingTheLastCopyOfASetRemovesItsNumber()
    {
        const BrickSet copy = saveCopy(context(), m_castle.objectID);
        saveCopy(context(), m_falcon.objectID);
        OwnedSetIndex index(m_store->container());
        QSignalSpy changed(&index, &OwnedSetIndex::setNumbersChanged);
        BrickSet trashed = copy;
        trashed.isTrashed = true;
        context().update(trashed);
        context().save();
        QTRY_COMPARE(index.setNumbers(), QSet<QString>{u"75192-1"_s});
        QCOMPARE(changed.count(), 1);
    }
};

QTEST_GUILESS_MAIN(OwnedSetIndexTest)
#include "OwnedSetIndexTest.moc"
