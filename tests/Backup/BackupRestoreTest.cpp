// SPDX-License-Identifier: GPL-3.0-or-later
#include "BackupFixtures.h"
#include "FileDigest.h"
#include "TaskOutcome.h"
#include "TestEnvironment.h"

#include "RebrickableKit/SQLiteConnection.h"
#include "Services/CollectionBackupError.h"
#include "Services/CollectionBackupService.h"
#include "Views/TranslationLoader.h"
#include "Store/BrickSetListModel.h"
#include "Store/StoreSchema.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace BackupFixtures;
using Kind = CollectionBackupError::Kind;

Q_DECLARE_METATYPE(CollectionBackupError::Kind)

// A backup brought back in place of the open store, and files that are refused.
class BackupRestoreTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PersistentContainer> m_container;
    std::unique_ptr<CollectionBackupService> m_service;
    QDateTime m_now;
    QString m_backupPath;
    QStringList m_backupRows;

    QString storePath() const { return m_folder->filePath(u"Tessaloom.sqlite"_s); }
    QString backupsPath() const { return m_folder->filePath(u"Backups"_s); }
    ManagedObjectContext &context() const { return m_container->viewContext(); }

    template <StoreEntity T>
    QStringList notesOf(ManagedObjectContext &context)
    {
        QStringList notes;
        for (const T &object : context.fetch(FetchRequest<T>()))
            notes.append(object.notes.value_or(QString()));
        notes.sort();
        return notes;
    }

    QStringList wishNames(ManagedObjectContext &context)
    {
        QStringList names;
        for (const WishlistItem &wish : context.fetch(FetchRequest<WishlistItem>()))
            names.append(wish.setName.value_or(QString()));
        names.sort();
        return names;
    }

    // Changes the live store after the backup: a copy and its entry gone, two new copies, a
    // wish renamed, an entry's count changed.
    void changeTheCollection()
    {
        const QList<BrickSet> copies = context().fetch(FetchRequest<BrickSet>());
        context().deleteObject(copies.first());
        QList<WishlistItem> wishes = context().fetch(FetchRequest<WishlistItem>());
        wishes.first().setName = u"renamed wish"_s;
        context().update(wishes.first());
        QList<PartInventoryEntry> entries = context().fetch(FetchRequest<PartInventoryEntry>());
        entries.last().quantityOwned = 99;
        context().update(entries.last());
        context().save();
        fillCollection(context(), 2, 0, u"new"_s);
    }

    QString copyOfBackup(const QString &name)
    {
        const QString path = backupsPath() + u'/' + name;
        QFile::remove(path);
        if (!QFile::copy(m_backupPath, path))
            return {};
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        return path;
    }

    TaskOutcome<bool> restore(const QString &path)
    {
        return waitForOutcome([](CollectionBackupService &service, QString path) -> QCoro::Task<bool> {
            co_await service.restore(path);
            co_return true;
        }(*m_service, path));
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(TranslationLoader::install(*qApp, QLocale(QLocale::English, QLocale::UnitedStates)));
        qRegisterMetaType<CollectionBackupError::Kind>();
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_container = StoreFixtures::openStore(*m_folder);
        fillCollection(context(), 4, 3, u"old"_s);
        m_now = QDateTime(QDate(2026, 11, 25), QTime(6, 0, 0));
        m_service = std::make_unique<CollectionBackupService>(*m_container);
        m_service->setClock([this] { return m_now; });
        const auto outcome = waitForOutcome(m_service->backUp());
        QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
        m_backupPath = (*outcome.value)->path;
        m_backupRows = storeRows(m_backupPath);
        m_now = m_now.addSecs(60);
        changeTheCollection();
        QVERIFY(storeRows(storePath()) != m_backupRows);
    }

    void cleanup()
    {
        m_service.reset();
        m_container.reset();
        m_folder.reset();
    }

    void aRestoreBringsBackExactlyTheObjectsOfTheBackup()
    {
        BrickSetListModel liveList(*m_container);
        QCOMPARE(liveList.count(), 5);
        {
            // A background context that ends gives its connection, with its prepared
            // statements, to the pool; the one after the restore gets it back.
            const auto earlier = m_container->newBackgroundContext();
            QCOMPARE(earlier->performAndWait([this](ManagedObjectContext &store) { return notesOf<BrickSet>(store); }).size(),
                     5);
        }
        QSignalSpy notices(m_container.get(), &PersistentContainer::objectsDidChange);
        QSignalSpy restored(m_service.get(), &CollectionBackupService::storeRestored);

        const auto outcome = restore(m_backupPath);
        QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
        QCOMPARE(restored.size(), 1);

        // The rows, as the file holds them.
        QCOMPARE(storeRows(storePath()), m_backupRows);
        // The view context, a live list and a new background context all see them.
        const QStringList oldCopies{u"old copy 0"_s, u"old copy 1"_s, u"old copy 2"_s, u"old copy 3"_s};
        QCOMPARE(notesOf<BrickSet>(context()), oldCopies);
        QCOMPARE(notesOf<PartInventoryEntry>(context()),
                 (QStringList{u"old entry 0"_s, u"old entry 1"_s, u"old entry 2"_s, u"old entry 3"_s}));
        QCOMPARE(wishNames(context()), (QStringList{u"old wish 0"_s, u"old wish 1"_s, u"old wish 2"_s}));
        QCOMPARE(notices.size(), 1);
        const auto changes = notices.first().first().value<StoreChanges>();
        QVERIFY(changes.touches(EntityType::BrickSet) && changes.touches(EntityType::WishlistItem)
                && changes.touches(EntityType::PartInventoryEntry));
        QCOMPARE(liveList.count(), 4);
        QStringList listed;
        for (const BrickSetWithCatalogSet &row : liveList.rows())
            listed.append(row.brickSet.notes.value_or(QString()));
        listed.sort();
        QCOMPARE(listed, oldCopies);
        const auto background = m_container->newBackgroundContext();
        const QStringList seenInBackground = background->performAndWait([this](ManagedObjectContext &store) {
            return notesOf<BrickSet>(store);
        });
        QCOMPARE(seenInBackground, oldCopies);
    }

    void theStoreKeepsWorkingAfterARestore()
    {
        QVERIFY(!restore(m_backupPath).failure);
        // New objects take keys above every restored row, and edits of restored objects save.
        fillCollection(context(), 3, 1, u"later"_s);
        QCOMPARE(rowCount(storePath(), u"BrickSet"_s), qint64(7));
        QList<BrickSet> copies = context().fetch(FetchRequest<BrickSet>());
        copies.first().notes = u"edited"_s;
        context().update(copies.first());
        context().save();
        QVERIFY(notesOf<BrickSet>(context()).contains(u"edited"_s));
        QCOMPARE(pragmaText(storePath(), "PRAGMA integrity_check"), u"ok"_s);
    }

    void aRestoreBacksUpTheCurrentStoreFirst()
    {
        const QStringList rowsBeforeRestore = storeRows(storePath());
        QSignalSpy added(m_service.get(), &CollectionBackupService::backupAdded);
        QVERIFY(!restore(m_backupPath).failure);
        QCOMPARE(added.size(), 1);
        const auto safety = added.first().first().value<CollectionBackup>();
        QCOMPARE(storeRows(safety.path), rowsBeforeRestore);
    }

    void theChosenBackupIsNotPrunedByTheBackupBeforeItsRestore()
    {
        // Thirteen newer backups: the one before the restore would make fifteen.
        for (int index = 0; index < 13; ++index) {
            m_now = m_now.addSecs(1);
            QVERIFY(!waitForOutcome(m_service->backUp()).failure);
        }
        const auto outcome = restore(m_backupPath);
        QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
        QCOMPARE(storeRows(storePath()), m_backupRows);
    }

    void anOlderBackupIsBroughtUpToDateOnTheWay()
    {
        const QString older = backupsPath() + u"/Tessaloom 2026-01-01 08-00-00.sqlite"_s;
        {
            RebrickableKit::SQLiteConnection connection(older, RebrickableKit::SQLiteConnection::OpenMode::create);
            StoreSchema::migrate(connection, StoreSchema::latestVersion() - 1);
        }
        QCOMPARE(pragmaText(older, "PRAGMA user_version"), QString::number(StoreSchema::latestVersion() - 1));
        const auto outcome = restore(older);
        QVERIFY2(!outcome.failure, qPrintable(outcome.failureText()));
        QCOMPARE(pragmaText(storePath(), "PRAGMA user_version"), QString::number(StoreSchema::latestVersion()));
        QCOMPARE(rowCount(storePath(), u"BrickSet"_s), qint64(0));
        QCOMPARE(pragmaText(older, "PRAGMA user_version"), QString::number(StoreSchema::latestVersion() - 1));
        QCOMPARE(QDir(backupsPath()).entryList({u"*.partial*"_s}, QDir::Files), QStringList());
    }

    void aDamagedOrForeignFileIsRefusedAndTheStoreStaysAsItWas_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<CollectionBackupError::Kind>("kind");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("cut short") << u"truncated"_s << Kind::damaged
                                   << u"The chosen backup is damaged and cannot be restored."_s;
        QTest::newRow("bytes changed") << u"changedBytes"_s << Kind::damaged
                                       << u"The chosen backup is damaged and cannot be restored."_s;
        QTest::newRow("not SQLite") << u"text"_s << Kind::notABackup
                                    << u"The chosen file is not a backup of a collection."_s;
        QTest::newRow("empty") << u"empty"_s << Kind::notABackup
                               << u"The chosen file is not a backup of a collection."_s;
        QTest::newRow("another schema") << u"foreign"_s << Kind::foreignFile
                                        << u"The chosen file belongs to another program and cannot be restored."_s;
        QTest::newRow("newer version") << u"newer"_s << Kind::newerVersion
                                       << u"The chosen backup was made by a newer version of Tessaloom and cannot be restored."_s;
    }

    void aDamagedOrForeignFileIsRefusedAndTheStoreStaysAsItWas()
    {
        QFETCH(QString, damage);
        QFETCH(CollectionBackupError::Kind, kind);
        QFETCH(QString, sentence);
        const QString path = copyOfBackup(u"Tessaloom 2026-11-20 12-00-00.sqlite"_s);
        QVERIFY(!path.isEmpty());
        QFile file(path);
        if (damage == u"truncated"_s) {
            QVERIFY(file.resize(file.size() / 2));
        } else if (damage == u"changedBytes"_s) {
            // The second page is the first table's: its page header and cell pointers.
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.seek(4096));
            file.write(QByteArray(64, '\xA5'));
            file.close();
        } else if (damage == u"text"_s || damage == u"empty"_s) {
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            if (damage == u"text"_s)
                file.write(QByteArray("Set Number,Quantity\n10497-1,1\n").repeated(200));
            file.close();
        } else if (damage == u"foreign"_s) {
            QVERIFY(file.remove());
            RebrickableKit::SQLiteConnection foreign(path, RebrickableKit::SQLiteConnection::OpenMode::create);
            foreign.execute(u"CREATE TABLE recipes (name TEXT); INSERT INTO recipes VALUES ('bread')"_s);
        } else if (damage == u"newer"_s) {
            RebrickableKit::SQLiteConnection newer(path, RebrickableKit::SQLiteConnection::OpenMode::readWrite);
            newer.execute(u"PRAGMA user_version = %1"_s.arg(StoreSchema::latestVersion() + 1));
        }

        const QStringList rowsBefore = storeRows(storePath());
        const QByteArray storeBytes = FileDigest::of(storePath());
        const QByteArray walBytes = FileDigest::of(storePath() + u"-wal"_s);
        const QStringList backupsBefore = QDir(backupsPath()).entryList(QDir::Files, QDir::Name);
        QSignalSpy notices(m_container.get(), &PersistentContainer::objectsDidChange);
        QSignalSpy restored(m_service.get(), &CollectionBackupService::storeRestored);
        const auto outcome = restore(path);
        const auto error = outcome.error<CollectionBackupError>();
        QVERIFY2(error, qPrintable(outcome.failureText()));
        QCOMPARE(error->kind(), kind);
        QCOMPARE(error->sentence(), sentence);
        QCOMPARE(storeRows(storePath()), rowsBefore);
        QCOMPARE(FileDigest::of(storePath()), storeBytes);
        QCOMPARE(FileDigest::of(storePath() + u"-wal"_s), walBytes);
        QCOMPARE(notices.size(), 0);
        QCOMPARE(restored.size(), 0);
        // Refused before anything else: not even the backup that precedes a restore.
        QCOMPARE(QDir(backupsPath()).entryList(QDir::Files, QDir::Name), backupsBefore);
        QCOMPARE(notesOf<BrickSet>(context()).size(), 5);
    }
};

QTEST_GUILESS_MAIN(BackupRestoreTest)
#include "BackupRestoreTest.moc"
