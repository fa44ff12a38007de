// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixtures.h"
#include "StoreTestProcesses.h"
#include "TestEnvironment.h"

#include "Store/PersistenceController.h"
#include "Store/StoreConnection.h"
#include "Store/StoreFileInspector.h"
#include "Store/StoreSchema.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;
using namespace StoreFixtures;

// What lies at the store's path decides whether the store opens: our own store (marked
// or from before the mark), a missing or empty file (a new store), or anything else,
// which is refused with its own kind and left exactly as it was, side files included.
class StoreFileRefusalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { TestEnvironment::isolate(); }

    void fileOfRandomBytesIsRefusedUnchanged()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        QByteArray bytes(64 * 1024, Qt::Uninitialized);
        QRandomGenerator generator(20261124);
        for (char &byte : bytes)
            byte = char(generator.bounded(256));
        writeFile(path, bytes);
        const StoreError error = openFailure(path);
        QCOMPARE(error.kind(), StoreError::Kind::notADatabase);
        QVERIFY2(error.description().contains(path), qPrintable(error.description()));
        QCOMPARE(readAll(path), bytes);
        verifyNoSideFiles(path);
    }

    void folderAtTheStorePathIsRefusedWithItsOwnSentence()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        QVERIFY(QDir().mkpath(path));
        writeFile(path + u"/inside.txt"_s, "kept");
        const StoreError error = openFailure(path);
        QCOMPARE(error.kind(), StoreError::Kind::pathIsFolder);
        QVERIFY2(error.description().startsWith(StoreError::sentence(StoreError::Kind::pathIsFolder)),
                 qPrintable(error.description()));
        QVERIFY2(error.description().contains(path), qPrintable(error.description()));
        QCOMPARE(QDir(path).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList{u"inside.txt"_s});
        verifyNoSideFiles(path);
    }

    void storeCutInHalfIsRefusedAsDamagedUnchanged()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        {
            auto store = PersistentContainer::open(path);
            auto &context = store->viewContext();
            for (int index = 0; index < 2000; ++index) {
                const auto set = context.insert(catalogSet(u"%1-1"_s.arg(10000 + index), u"A set with a name"_s));
                context.insert(newCopy(set.objectID));
            }
            context.save();
        }
        const QByteArray whole = readAll(path);
        QVERIFY(whole.size() > 8 * 4096);
        const QByteArray half = whole.left(whole.size() / 2);
        writeFile(path, half);
        const StoreError error = openFailure(path);
        QCOMPARE(error.kind(), StoreError::Kind::damaged);
        QVERIFY2(error.description().contains(path), qPrintable(error.description()));
        QCOMPARE(readAll(path), half);
        verifyNoSideFiles(path);
    }

    void unreadableFileIsRefusedUnchanged()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        {
            auto store = PersistentContainer::open(path);
            store->viewContext().insert(catalogSet(u"1-1"_s, u"Mine"_s));
            store->viewContext().save();
        }
        const QByteArray before = readAll(path);
        QVERIFY(QFile::setPermissions(path, {}));
        if (!StoreTestProcesses::canOpenAsAnOrdinaryUser())
            QSKIP("running as the superuser without setpriv to drop privileges");
        StoreTestProcesses::verifyRefusedToAnOrdinaryUser(QStringLiteral(STORE_WRITER_PROCESS), folder.path(), path,
                                                          StoreError::Kind::unreadable);
        QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        QCOMPARE(readAll(path), before);
        verifyNoSideFiles(path);
    }

    void anotherProgramsDatabaseIsRefusedByteForByteUnchanged()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        createDatabase(path, "CREATE TABLE notes (id INTEGER PRIMARY KEY, body TEXT);"
                             "INSERT INTO notes (body) VALUES ('buy milk'), ('call the bank');");
        const QByteArray before = readAll(path);
        const StoreError error = openFailure(path);
        QCOMPARE(error.kind(), StoreError::Kind::foreignFile);
        QVERIFY2(error.description().contains(path), qPrintable(error.description()));
        QVERIFY2(error.description().contains(u"notes"_s), qPrintable(error.description()));
        QCOMPARE(readAll(path), before);
        verifyNoSideFiles(path);
        QCOMPARE(journalMode(path), u"delete"_s);
        QCOMPARE(readAll(path), before);
    }

    void catalogFileIsRefusedUnchanged()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        createDatabase(path, "CREATE TABLE themes (id INTEGER PRIMARY KEY, name TEXT, parent_id INTEGER);"
                             "CREATE TABLE sets (set_num TEXT PRIMARY KEY, name TEXT, year INTEGER, theme_id INTEGER);"
                             "INSERT INTO themes VALUES (158, 'Star Wars', NULL);"
                             "INSERT INTO sets VALUES ('75192-1', 'Millennium Falcon', 2017, 158);"
                             "PRAGMA user_version = 2;");
        const QByteArray before = readAll(path);
        const StoreError error = openFailure(path);
        QCOMPARE(error.kind(), StoreError::Kind::foreignFile);
        QCOMPARE(readAll(path), before);
        verifyNoSideFiles(path);
    }

    void foreignDatabaseInWalModeLeavesNoSideFiles()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        createDatabase(path, "PRAGMA journal_mode = WAL; CREATE TABLE notes (body TEXT); INSERT INTO notes VALUES ('x');");
        verifyNoSideFiles(path); // closing the last connection folded the WAL back in
        const QByteArray before = readAll(path);
        const StoreError error = openFailure(path);
        QCOMPARE(error.kind(), StoreError::Kind::foreignFile);
        QCOMPARE(readAll(path), before);
        verifyNoSideFiles(path);
    }

    void databaseWithOurTablesButAnotherApplicationIdIsRefused()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        {
            StoreConnection connection(path, false, true);
            StoreSchema::migrate(connection.sqliteConnection());
            connection.execute("PRAGMA application_id = 42");
        }
        const QByteArray before = readAll(path);
        QCOMPARE(openFailure(path).kind(), StoreError::Kind::foreignFile);
        QCOMPARE(readAll(path), before);
    }

    void storeFromANewerVersionIsRefusedUnchanged()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        {
            StoreConnection connection(path, false, true);
            StoreSchema::migrate(connection.sqliteConnection());
            connection.execute("PRAGMA user_version = 99");
        }
        const QByteArray before = readAll(path);
        QCOMPARE(openFailure(path).kind(), StoreError::Kind::newerVersion);
        QCOMPARE(readAll(path), before);
        verifyNoSideFiles(path);
    }

    void newStoreCarriesTheApplicationId()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        PersistentContainer::open(path);
        QCOMPARE(applicationId(path), qint64(StoreSchema::applicationId));
        QCOMPARE(StoreFileInspector::inspect(path), StoreFileInspector::Identity::ours);
    }

    void emptyFileBecomesANewStore()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        writeFile(path, {});
        QCOMPARE(StoreFileInspector::inspect(path), StoreFileInspector::Identity::newStore);
        auto store = PersistentContainer::open(path);
        QCOMPARE(store->viewContext().count(FetchRequest<BrickSet>()), qint64(0));
        QCOMPARE(applicationId(path), qint64(StoreSchema::applicationId));
    }

    void storeFromBeforeTheMarkOpensAndGetsIt()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        ObjectID copyID;
        {
            auto store = PersistentContainer::open(path);
            auto &context = store->viewContext();
            const auto set = context.insert(catalogSet(u"10179-1"_s, u"Millennium Falcon"_s, 2007));
            copyID = saveCopy(context, set.objectID, [](BrickSet &copy) { copy.notes = u"kept"_s; }).objectID;
        }
        {
            StoreConnection connection(path, false, false);
            connection.execute("PRAGMA application_id = 0");
        }
        QCOMPARE(applicationId(path), qint64(0));
        QCOMPARE(StoreFileInspector::inspect(path), StoreFileInspector::Identity::oursUnmarked);
        auto store = PersistentContainer::open(path);
        QCOMPARE(applicationId(path), qint64(StoreSchema::applicationId));
        const auto copy = store->viewContext().existingObject<BrickSet>(copyID);
        QVERIFY(copy);
        QCOMPARE(copy->notes, std::optional<QString>(u"kept"_s));
        QCOMPARE(store->viewContext().count(FetchRequest<CatalogSet>()), qint64(1));
    }

    void firstReleaseStoreWithoutTheMarkIsMigratedAndMarkedInOneGo()
    {
        QTemporaryDir folder;
        const QString path = storePath(folder);
        {
            StoreConnection connection(path, false, true);
            StoreSchema::migrate(connection.sqliteConnection(), 1);
            connection.execute("PRAGMA application_id = 0");
            connection.execute("INSERT INTO WishlistItem (pk, setNumber) VALUES (1, '21309-1')");
        }
        QCOMPARE(StoreFileInspector::inspect(path), StoreFileInspector::Identity::oursUnmarked);
        auto store = PersistentContainer::open(path);
        QCOMPARE(applicationId(path), qint64(StoreSchema::applicationId));
        QCOMPARE(store->viewContext().count(FetchRequest<WishlistItem>()), qint64(1));
    }

private:
    static QString storePath(const QTemporaryDir &folder) { return folder.filePath(u"Tessaloom.sqlite"_s); }

    static void writeFile(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    static QByteArray readAll(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static void verifyNoSideFiles(const QString &path)
    {
        for (const char *suffix : {"-wal", "-shm", "-journal"}) {
            const QString side = path + QString::fromLatin1(suffix);
            QVERIFY2(!QFile::exists(side), qPrintable(side));
        }
    }

    // Another program's database, written with SQLite directly.
    static void createDatabase(const QString &path, const char *sql)
    {
        sqlite3 *database = nullptr;
        QCOMPARE(sqlite3_open(path.toUtf8().constData(), &database), SQLITE_OK);
        char *message = nullptr;
        const int result = sqlite3_exec(database, sql, nullptr, nullptr, &message);
        const QString text = QString::fromUtf8(message ? message : "");
        sqlite3_free(message);
        sqlite3_close(database);
        QVERIFY2(result == SQLITE_OK, qPrintable(text));
    }

    // Read through an ordinary connection, which also sees what the WAL of an open store
    // holds; only for our own stores, whose side files are theirs to have.
    static qint64 applicationId(const QString &path)
    {
        StoreConnection connection(path, false, false);
        return StoreSchema::storedApplicationId(connection.sqliteConnection());
    }

    // The journal mode as the file's header records it: bytes 18 and 19 are 1 for a
    // rollback journal and 2 for WAL.
    static QString journalMode(const QString &path)
    {
        const QByteArray header = readAll(path).left(20);
        if (header.size() < 20)
            return {};
        if (header[18] == 1 && header[19] == 1)
            return u"delete"_s;
        if (header[18] == 2 && header[19] == 2)
            return u"wal"_s;
        return u"unknown"_s;
    }
};

QTEST_GUILESS_MAIN(StoreFileRefusalTest)
#include "StoreFileRefusalTest.moc"
