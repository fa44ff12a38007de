// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/StoreSnapshotCopier.h"

#include "RebrickableKit/SQLiteConnection.h"
#include "Services/CollectionBackupError.h"
#include "Services/CollectionBackupFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <sqlite3.h>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using RebrickableKit::SQLiteConnection;
using RebrickableKit::SQLiteError;
using Kind = CollectionBackupError::Kind;

namespace {

// Long enough for a checkpoint of another connection to finish; the read itself never
// waits for a writer in WAL mode.
constexpr int busyTimeoutMilliseconds = 5000;

CollectionBackupError failure(Kind kind, const QString &path, const QString &message)
{
    return CollectionBackupError(kind, u"(%1) %2"_s.arg(QDir::toNativeSeparators(path), message));
}

QString messageOf(sqlite3 *database)
{
    return QString::fromUtf8(sqlite3_errmsg(database));
}

std::unique_ptr<SQLiteConnection> openSource(const QString &path, StoreSnapshotCopier::Source source)
{
    if (!QFileInfo(path).isFile())
        throw failure(Kind::storeUnreadable, path, u"There is no file."_s);
    QByteArray uri = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toEncoded() + "?mode=ro";
    if (source == StoreSnapshotCopier::Source::frozenFile)
        uri += "&immutable=1";
    std::unique_ptr<SQLiteConnection> connection;
    try {
        connection = std::make_unique<SQLiteConnection>(uri, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX);
    } catch (const SQLiteError &error) {
        throw failure(Kind::storeUnreadable, path, error.message());
    }
    sqlite3_extended_result_codes(connection->handle(), 1);
    sqlite3_busy_timeout(connection->handle(), busyTimeoutMilliseconds);
    return connection;
}

// Held over every step, the read transaction pins one snapshot of the store: steps never
// see a commit that lands between them, and no commit makes the backup start over.
void beginSnapshot(SQLiteConnection &connection, const QString &path)
{
    sqlite3 *database = connection.handle();
    if (sqlite3_exec(database, "BEGIN", nullptr, nullptr, nullptr) != SQLITE_OK)
        throw failure(Kind::storeUnreadable, path, messageOf(database));
    bool read = false;
    try {
        read = connection.prepare(u"SELECT count(*) FROM sqlite_schema"_s).step();
    } catch (const SQLiteError &) {
    }
    if (!read)
        throw failure(Kind::storeUnreadable, path, messageOf(database));
}

// The backup API copies the source's header, which in WAL mode says "WAL". The copy is
// opened once more and switched to a rollback journal, so that it is one self-contained
// file that any reader, even in a read-only folder, opens without side files.
void makeSelfContained(const QString &path)
{
    SQLiteConnection connection(path.toUtf8(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX);
    sqlite3_extended_result_codes(connection.handle(), 1);
    std::optional<QString> mode;
    try {
        auto statement = connection.prepare(u"PRAGMA journal_mode = DELETE"_s);
        if (statement.step())
            mode = statement.string(0);
    } catch (const SQLiteError &) {
    }
    if (mode != u"delete"_s)
        throw failure(Kind::writeFailed, path, messageOf(connection.handle()));
}

} // namespace

void StoreSnapshotCopier::copy(const QString &sourcePath, Source source, const QString &destinationPath)
{
    // Checked outside the clean-up below, which must never remove a file it did not write.
    if (QFileInfo::exists(destinationPath))
        throw failure(Kind::writeFailed, destinationPath, u"The file exists already."_s);
    try {
        std::unique_ptr<SQLiteConnection> reader = openSource(sourcePath, source);
        beginSnapshot(*reader, sourcePath);
        {
            std::unique_ptr<SQLiteConnection> writer;
            try {
                writer = std::make_unique<SQLiteConnection>(
                    destinationPath.toUtf8(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX);
            } catch (const SQLiteError &error) {
                throw failure(Kind::writeFailed, destinationPath, error.message());
            }
            sqlite3 *destination = writer->handle();
            sqlite3_extended_result_codes(destination, 1);
            sqlite3_backup *backup = sqlite3_backup_init(destination, "main", reader->handle(), "main");
            if (!backup)
                throw failure(Kind::writeFailed, destinationPath, messageOf(destination));
            int result = SQLITE_OK;
            int busyRetries = 0;
            while (result == SQLITE_OK || result == SQLITE_BUSY || result == SQLITE_LOCKED) {
                result = sqlite3_backup_step(backup, pagesPerStep);
                if (result == SQLITE_BUSY || result == SQLITE_LOCKED) {
                    if (++busyRetries > 200)
                        break;
                    sqlite3_sleep(5);
                }
            }
            sqlite3_backup_finish(backup);
            if (result != SQLITE_DONE) {
                // The step's code tells which side failed: a full disk or a read-only
                // folder is the destination's, a damaged page the source's.
                const int code = result & 0xff;
                const bool sourceFailed = code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
                throw failure(sourceFailed ? Kind::storeUnreadable : Kind::writeFailed,
                              sourceFailed ? sourcePath : destinationPath, QString::fromUtf8(sqlite3_errstr(result)));
            }
        }
        sqlite3_exec(reader->handle(), "COMMIT", nullptr, nullptr, nullptr);
        reader.reset();
        makeSelfContained(destinationPath);
    } catch (const CollectionBackupError &) {
        CollectionBackupFolder::removePartial(destinationPath);
        throw;
    } catch (const SQLiteError &error) {
        CollectionBackupFolder::removePartial(destinationPath);
        throw failure(Kind::writeFailed, destinationPath, error.message());
    }
}
