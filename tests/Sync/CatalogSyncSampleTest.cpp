// SPDX-License-Identifier: GPL-3.0-or-later
#include "SyncLogRecord.h"
#include "TaskOutcome.h"
#include "SyncedInventory.h"
#include "TestEnvironment.h"

#include "Services/CatalogSyncService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/PersistenceController.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

// CatalogSyncService against the sample catalog the program ships with.
class CatalogSyncSampleTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistenceController> m_controller;
    std::unique_ptr<CatalogSyncService> m_service;
    std::shared_ptr<RebrickableCatalog> m_catalog;

    ManagedObjectContext &view() { return m_controller->container().viewContext(); }

    // The set's identifier; a failure of the sync fails the test.
    ObjectID sync(const QString &number)
    {
        const TaskOutcome<ObjectID> outcome = waitForOutcome(m_service->syncSet(number));
        if (!outcome.value)
            qFatal("syncing %s failed: %s", qUtf8Printable(number), qUtf8Printable(outcome.failureText()));
        return *outcome.value;
    }

    CatalogSet storedSet(const ObjectID &id)
    {
        view().refresh(id, false);
        return view().existingObject<CatalogSet>(id).value_or(CatalogSet{});
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        m_catalog = RebrickableCatalog::openFile(QStringLiteral(TESSALOOM_SAMPLE_CATALOG));
        QVERIFY(m_catalog);
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_controller = PersistenceController::open(m_folder->filePath(u"Tessaloom.sqlite"_s));
        m_service = std::make_unique<CatalogSyncService>(*m_controller);
        RebrickableCatalog::replaceShared(m_catalog);
    }

    void cleanup()
    {
        m_service.reset();
        m_controller.reset();
        m_folder.reset();
    }

    void largeSetGetsOneLinePerPartAndColourOfItsInventory()
    {
        const int rows = int(m_catalog->inventoryParts(u"75192-1"_s).size());
        QVERIFY(rows > 800);
        SyncLogRecord log;
        const ObjectID id = sync(u"75192"_s);
        const CatalogSet set = storedSet(id);
        QCOMPARE(set.name, u"Millennium Falcon"_s);
        QCOMPARE(set.pieceCount, m_catalog->set(u"75192-1"_s)->numParts);
        QCOMPARE(set.themeGroup, u"Star Wars > Ultimate Collector Series"_s);
        QVERIFY(set.partsSyncDate);
        QCOMPARE(differenceFromCatalog(view(), *m_catalog, u"75192-1"_s, id), QString());
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{{QtInfoMsg, u"Synced %1 parts for 75192-1"_s.arg(rows)}}));
    }

    void secondSyncOfTheSameSetAddsNothing()
    {
        const ObjectID id = sync(u"75192-1"_s);
        const qint64 lines = view().count(FetchRequest<CatalogSetPart>(Predicate()));
        const qint64 parts = view().count(FetchRequest<CatalogPart>(Predicate()));
        QCOMPARE(sync(u"75192-1"_s), id);
        QCOMPARE(view().count(FetchRequest<CatalogSetPart>(Predicate())), lines);
        QCOMPARE(view().count(FetchRequest<CatalogPart>(Predicate())), parts);
        QCOMPARE(differenceFromCatalog(view(), *m_catalog, u"75192-1"_s, id), QString());
    }

    void threeLevelThemeChainIsWrittenOnce()
    {
        const CatalogSetResult row = *m_catalog->set(u"10538-1"_s);
        QCOMPARE(m_catalog->themePath(row.themeID), u"Duplo > Disney > Planes"_s);
        const ObjectID id = sync(u"10538-1"_s);
        QCOMPARE(storedSet(id).themeGroup, u"Duplo > Disney > Planes"_s);
        QCOMPARE(storedSet(id).themeName, u"Planes"_s);
        QCOMPARE(differenceFromCatalog(view(), *m_catalog, u"10538-1"_s, id), QString());

        CatalogSet edited = storedSet(id);
        edited.themeGroup = u"Duplo > Planes"_s;
        edited.themeName = u"Disney Planes"_s;
        view().update(edited);
        view().save();
        sync(u"10538-1"_s);
        QCOMPARE(storedSet(id).themeGroup, u"Duplo > Planes"_s);
        QCOMPARE(storedSet(id).themeName, u"Disney Planes"_s);
    }
};

QTEST_GUILESS_MAIN(CatalogSyncSampleTest)
#include "CatalogSyncSampleTest.moc"
