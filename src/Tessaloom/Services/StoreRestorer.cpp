// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/StoreRestorer.h"

#include "RebrickableKit/SQLiteConnection.h"
#include "Services/CollectionBackupError.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"
#include "Store/StoreConnection.h"
#include "Store/StoreError.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <sqlite3.h>

#include <memory>

using namespace Qt::StringLiterals;
using RebrickableKit::SQLiteConnection;
using RebrickableKit::SQLiteError;

namespace {

CollectionBackupError failure(const QString &path, const QString &message)
{
    return CollectionBackupError(CollectionBackupError::Kind::restoreFailed,
                                 u"(%1) %2"_s.arg(QDir::toNativeSeparators(path), message));
}

// Every object of the store, read through plain statements that end at once: the backup
// API refuses a destination connection with a read transaction open.
QSet<ObjectID> allObjects(SQLiteConnection &connection, std::array<qint64, 9> *largestKeys = nullptr)
{
    QSet<ObjectID> objects;
    for (EntityType entity : allEntityTypes) {
        auto statement = connection.prepare(u"SELECT pk FROM "_s + entityName(entity));
        while (statement.step()) {
            const qint64 key = statement.integer(0);
            objects.insert(ObjectID{entity, key});
            if (largestKeys)
                (*largestKeys)[size_t(entity)] = std::max((*largestKeys)[size_t(entity)], key);
        }
    }
    return objects;
}

// The one step, on connections of its own. Returns SQLite's code.
int copyOver(SQLiteConnection &source, StoreConnection &destination)
{
    sqlite3_backup *backup = sqlite3_backup_init(destination.handle(), "main", source.handle(), "main");
    if (!backup)
        return sqlite3_extended_errcode(destination.handle());
    // All pages at once: the store is written in one transaction, so a failure half-way
    // (a full disk) rolls back to the store as it was.
    const int result = sqlite3_backup_step(backup, -1);
    sqlite3_backup_finish(backup);
    return result;
}

} // namespace

StoreRestorer::Outcome StoreRestorer::bringIn(PersistentContainer &container, const QString &sourcePath)
{
    const QByteArray uri = QUrl::fromLocalFile(QFileInfo(sourcePath).absoluteFilePath()).toEncoded()
        + "?mode=ro&immutable=1";
    std::unique_ptr<SQLiteConnection> source;
    std::unique_ptr<StoreConnection> destination;
    try {
        source = std::make_unique<SQLiteConnection>(uri, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX);
        destination = container.openConnection();
    } catch (const SQLiteError &error) {
        throw failure(sourcePath, error.message());
    } catch (const StoreError &error) {
        throw failure(container.path(), error.detail());
    }

    Outcome outcome;
    container.acquireWriteTurn();
    try {
        const QSet<ObjectID> before = allObjects(destination->sqliteConnection());
        const int result = copyOver(*source, *destination);
        if (result != SQLITE_DONE)
            throw failure(sourcePath, QString::fromUtf8(sqlite3_errstr(result)));
        const QSet<ObjectID> after = allObjects(destination->sqliteConnection(), &outcome.largestKeys);
        for (const ObjectID &id : after) {
            if (before.contains(id))
                outcome.changes.updated.insert(id);
            else
                outcome.changes.inserted.insert(id);
        }
        for (const ObjectID &id : before) {
            if (!after.contains(id))
                outcome.changes.deleted.insert(id);
        }
    } catch (const SQLiteError &error) {
        container.releaseWriteTurn();
        throw failure(container.path(), error.message());
    } catch (...) {
        container.releaseWriteTurn();
        throw;
    }
    container.releaseWriteTurn();
    // The WAL now holds the whole store once more; folding it back keeps it from growing
    // with every restore. A checkpoint that readers hold up finishes at a later commit.
    sqlite3_wal_checkpoint_v2(destination->handle(), "main", SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
    return outcome;
}

void StoreRestorer::announce(PersistentContainer &container, const Outcome &outcome)
{
    for (EntityType entity : allEntityTypes)
        container.reserveKeysUpTo(entity, outcome.largestKeys[size_t(entity)]);
    ManagedObjectContext &viewContext = container.viewContext();
    for (const QSet<ObjectID> *set : {&outcome.changes.inserted, &outcome.changes.updated, &outcome.changes.deleted}) {
        for (const ObjectID &id : *set)
            viewContext.refresh(id, false);
    }
    container.postChanges(outcome.changes);
}
