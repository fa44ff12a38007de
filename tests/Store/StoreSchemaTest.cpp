// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "TestEnvironment.h"

#include "Store/StoreConnection.h"
#include "Store/StoreSchema.h"

#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

class StoreSchemaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void newStoreHasTheLatestVersionWalAndForeignKeys()
    {
        QTemporaryDir folder;
        auto store = openStore(folder);
        StoreConnection connection(store->path(), false, false);
        QCOMPARE(StoreSchema::userVersion(connection.sqliteConnection()), StoreSchema::latestVersion());
        QVERIFY(StoreSchema::latestVersion() >= 2);
        QCOMPARE(scalarText(connection, "PRAGMA journal_mode"), u"wal"_s);
        QCOMPARE(scalarText(connection, "PRAGMA foreign_keys"), u"1"_s);
        for (EntityType entity : allEntityTypes) {
            const QByteArray sql = "SELECT count(*) FROM " + entityName(entity).toUtf8();
            QCOMPARE(scalarText(connection, sql.constData()), u"0"_s);
        }
    }

    void versionOneFileOpensAfterLaterMigrationsWithItsDataIntact()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"Tessaloom.sqlite"_s);
        {
            // A file as the first release wrote it: migration 1 only, data added by hand.
            StoreConnection connection(path, false, true);
            StoreSchema::migrate(connection.sqliteConnection(), 1);
            QCOMPARE(StoreSchema::userVersion(connection.sqliteConnection()), 1);
            connection.execute("INSERT INTO CatalogSet (pk, setNumber, name, year, pieceCount) "
                               "VALUES (1, '10179-1', 'Ultimate Collector''s Millennium Falcon', 2007, 5195)");
            connection.execute("INSERT INTO BrickSet (pk, id, dateAdded, acquisitionType, pricePaid, catalogSet) "
                               "VALUES (1, '5a1e5b9e-2f4e-4a57-9b1e-2f1f6b0c1d2e', 1199145600000, 'purchased', '499.99', 1)");
        }
        auto store = PersistentContainer::open(path);
        StoreConnection connection(path, false, false);
        QCOMPARE(StoreSchema::userVersion(connection.sqliteConnection()), StoreSchema::latestVersion());
        QCOMPARE(scalarText(connection, "SELECT count(*) FROM sqlite_schema WHERE name = 'BrickSet_isTrashed_dateAdded'"),
                 u"1"_s);
        const auto copy = store->viewContext().existingObject<BrickSet>(ObjectID{EntityType::BrickSet, 1});
        QVERIFY(copy);
        QCOMPARE(copy->pricePaid->toString(), u"499.99"_s);
        QCOMPARE(copy->acquisitionType, std::optional<QString>(u"purchased"_s));
        QCOMPARE(copy->dateAdded->toMSecsSinceEpoch(), qint64(1199145600000));
        const auto set = store->viewContext().existingObject<CatalogSet>(*copy->catalogSet);
        QCOMPARE(set->name, std::optional<QString>(u"Ultimate Collector's Millennium Falcon"_s));
        // New objects continue after the old keys.
        const auto added = store->viewContext().insert(newCopy(set->objectID));
        QVERIFY(added.objectID.primaryKey > 1);
    }

    void fileFromANewerVersionIsRefused()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"Tessaloom.sqlite"_s);
        {
            StoreConnection connection(path, false, true);
            StoreSchema::migrate(connection.sqliteConnection());
            connection.execute("PRAGMA user_version = 99");
        }
        QVERIFY_THROWS_EXCEPTION(StoreError, PersistentContainer::open(path));
        StoreConnection connection(path, false, false);
        QCOMPARE(StoreSchema::userVersion(connection.sqliteConnection()), 99);
    }

    void schemaDescribesEveryToManyRelationshipWithItsInverse()
    {
        const auto &catalog = StoreSchema::entity(EntityType::CatalogSet);
        QCOMPARE(catalog.toManyRelationship(u"cachedPriceGuides")->target, EntityType::CachedPriceGuide);
        QCOMPARE(catalog.toManyRelationship(u"brickSets")->inverseColumn, u"catalogSet"_s);
        QCOMPARE(StoreSchema::entity(EntityType::BrickSet).toManyRelationship(u"partInventoryEntries")->target,
                 EntityType::PartInventoryEntry);
        int cascades = 0;
        for (EntityType entity : allEntityTypes) {
            for (const auto &reference : StoreSchema::entity(entity).referencedBy)
                cascades += reference.cascades ? 1 : 0;
        }
        QCOMPARE(cascades, 1); // BrickSet -> PartInventoryEntry only
    }

private:
    static QString scalarText(StoreConnection &connection, const char *sql)
    {
        auto statement = connection.prepare(QString::fromUtf8(sql));
        return statement.step() ? statement.string(0) : QString();
    }
};

QTEST_GUILESS_MAIN(StoreSchemaTest)
#include "StoreSchemaTest.moc"
