// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"
#include "SyncLogRecord.h"
#include "TaskOutcome.h"
#include "SyncedInventory.h"
#include "TestEnvironment.h"

#include "Services/CatalogSyncService.h"
#include "Services/RebrickableCatalog.h"
#include "Store/PersistenceController.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

// The first column of the first row of `sql` run on the catalog file, or empty.
QString firstValue(const QString &databasePath, const char *sql)
{
    sqlite3 *database = nullptr;
    QString value;
    if (sqlite3_open_v2(QFile::encodeName(databasePath).constData(), &database, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt *statement = nullptr;
        if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW)
            value = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, 0)));
        sqlite3_finalize(statement);
    }
    sqlite3_close(database);
    return value;
}

} // namespace

// CatalogSyncService against a catalog built from the full-size dumps: the set with the
// most inventory lines, a set without inventory, and a set three themes deep.
class CatalogSyncFullDumpTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;
    QString m_databasePath;
    std::shared_ptr<RebrickableCatalog> m_catalog;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistenceController> m_controller;
    std::unique_ptr<CatalogSyncService> m_service;

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

    qint64 lineCount() { return view().count(FetchRequest<CatalogSetPart>(Predicate())); }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        if (TestEnvironment::sharedDumpDirectory().isEmpty())
            QSKIP("the full-size dumps are not beside this checkout");
        QVERIFY(m_directory.isValid());
        m_databasePath = CatalogFixture::buildFullCatalog(m_directory.path());
        QVERIFY(!m_databasePath.isEmpty());
        m_catalog = RebrickableCatalog::openFile(m_databasePath);
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

    void setWithTheMostInventoryLinesIsSyncedWhole()
    {
        // The latest inventory of each set, as the sync reads it.
        const QString number = firstValue(m_databasePath, R"sql(
            SELECT i.set_num FROM inventory_parts ip JOIN inventories i ON ip.inventory_id = i.id
            WHERE i.version = (SELECT MAX(i2.version) FROM inventories i2 WHERE i2.set_num = i.set_num)
            GROUP BY i.set_num ORDER BY COUNT(*) DESC, i.set_num LIMIT 1)sql");
        QVERIFY(!number.isEmpty());
        const qsizetype rows = m_catalog->inventoryParts(number).size();
        QVERIFY2(rows > 1000, qPrintable(u"%1 has %2 rows"_s.arg(number).arg(rows)));

        SyncLogRecord log;
        const ObjectID id = sync(number);
        QCOMPARE(storedSet(id).setNumber, number);
        QCOMPARE(storedSet(id).name, m_catalog->set(number)->name);
        QVERIFY(storedSet(id).partsSyncDate);
        QCOMPARE(differenceFromCatalog(view(), *m_catalog, number, id), QString());
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{{QtInfoMsg, u"Synced %1 parts for %2"_s.arg(rows).arg(number)}}));

        const qint64 lines = lineCount();
        QCOMPARE(sync(number), id);
        QCOMPARE(lineCount(), lines);
        QCOMPARE(differenceFromCatalog(view(), *m_catalog, number, id), QString());
    }

    void setWithoutInventoryGetsNoLines()
    {
        const QString number = firstValue(m_databasePath, R"sql(
            SELECT s.set_num FROM sets s WHERE NOT EXISTS (
                SELECT 1 FROM inventories i JOIN inventory_parts ip ON ip.inventory_id = i.id WHERE i.set_num = s.set_num)
            ORDER BY s.set_num LIMIT 1)sql");
        QVERIFY(!number.isEmpty());
        QVERIFY(m_catalog->inventoryParts(number).isEmpty());

        SyncLogRecord log;
        const ObjectID id = sync(number);
        QCOMPARE(storedSet(id).name, m_catalog->set(number)->name);
        QVERIFY(storedSet(id).partsSyncDate);
        QCOMPARE(lineCount(), 0);
        QCOMPARE(log.lines(), (QList<SyncLogRecord::Line>{{QtInfoMsg, u"Synced 0 parts for %1"_s.arg(number)}}));
    }

    void threeLevelThemeChainIsWrittenOnce()
    {
        const QString number = firstValue(m_databasePath, R"sql(
            SELECT s.set_num FROM sets s JOIN themes t ON s.theme_id = t.id JOIN themes p ON t.parent_id = p.id
            JOIN themes r ON p.parent_id = r.id
            WHERE r.parent_id IS NULL AND s.set_num IN (SELECT set_num FROM inventories)
            ORDER BY s.set_num LIMIT 1)sql");
        QVERIFY(!number.isEmpty());
        const int themeID = m_catalog->set(number)->themeID;
        const CatalogThemeResult theme = *m_catalog->theme(themeID);
        const CatalogThemeResult parent = *m_catalog->theme(*theme.parentID);
        const CatalogThemeResult root = *m_catalog->theme(*parent.parentID);
        const QString path = root.name + u" > "_s + parent.name + u" > "_s + theme.name;

        const ObjectID id = sync(number);
        QCOMPARE(storedSet(id).themeGroup, path);
        QCOMPARE(storedSet(id).themeName, theme.name);
        QCOMPARE(differenceFromCatalog(view(), *m_catalog, number, id), QString());

        CatalogSet edited = storedSet(id);
        edited.themeGroup = root.name;
        edited.themeName = parent.name;
        view().update(edited);
        view().save();
        QCOMPARE(sync(number), id);
        QCOMPARE(storedSet(id).themeGroup, root.name);
        QCOMPARE(storedSet(id).themeName, parent.name);
    }
};

QTEST_GUILESS_MAIN(CatalogSyncFullDumpTest)
#include "CatalogSyncFullDumpTest.moc"
