// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/StoreFileInspector.h"

#include "RebrickableKit/SQLiteConnection.h"
#include "Store/EntityTraits.h"
#include "Store/StoreError.h"
#include "Store/StoreSchema.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QStringList>
#include <QUrl>
#include <QtEndian>

#include <sqlite3.h>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using RebrickableKit::SQLiteConnection;
using RebrickableKit::SQLiteError;
using RebrickableKit::SQLiteStatement;

namespace {

// The fixed 100-byte header at the start of every SQLite database file.
constexpr qint64 headerSize = 100;
constexpr char headerMagic[] = "SQLite format 3"; // 16 bytes with its terminating zero
constexpr int pageSizeOffset = 16;
constexpr int changeCounterOffset = 24;
constexpr int pageCountOffset = 28;
constexpr int versionValidForOffset = 92;

StoreError failure(StoreError::Kind kind, const QString &path, const QString &message, int sqliteCode = 0)
{
    return StoreError(kind, StoreError::detailFor(path, message), sqliteCode);
}

quint32 headerNumber(const QByteArray &header, int offset)
{
    return qFromBigEndian<quint32>(header.constData() + offset);
}

StoreError::Kind kindForCode(int code)
{
    switch (code & 0xff) {
    case SQLITE_NOTADB:
        return StoreError::Kind::notADatabase;
    case SQLITE_CORRUPT:
        return StoreError::Kind::damaged;
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return StoreError::Kind::unreadable;
    default:
        return StoreError::Kind::openFailed;
    }
}

StoreError databaseFailure(sqlite3 *database, const QString &path)
{
    const int code = sqlite3_extended_errcode(database);
    return failure(kindForCode(code), path, QString::fromUtf8(sqlite3_errmsg(database)), code);
}

// A prepare that fails reports through the connection like a step that fails: both are
// judged by the connection's error once the statement has ended.
qint64 pragmaNumber(SQLiteConnection &connection, const char *sql, const QString &path)
{
    std::optional<qint64> value;
    try {
        SQLiteStatement statement = connection.prepare(QString::fromUtf8(sql));
        if (statement.step())
            value = statement.integer(0);
    } catch (const SQLiteError &) {
    }
    if (!value)
        throw databaseFailure(connection.handle(), path);
    return *value;
}

struct SchemaObjects
{
    int count = 0;
    QStringList tables; // without SQLite's own sqlite_… tables
};

SchemaObjects schemaObjects(SQLiteConnection &connection, const QString &path)
{
    SchemaObjects objects;
    SQLiteStatement::StepResult result = SQLiteStatement::StepResult::failed;
    try {
        SQLiteStatement statement = connection.prepare(u"SELECT type, name FROM sqlite_schema"_s);
        while ((result = statement.stepWithResult()) == SQLiteStatement::StepResult::row) {
            ++objects.count;
            const QString name = statement.string(1);
            if (statement.string(0) == u"table"_s && !name.startsWith(u"sqlite_"_s, Qt::CaseInsensitive))
                objects.tables.append(name);
        }
    } catch (const SQLiteError &) {
    }
    if (result != SQLiteStatement::StepResult::done)
        throw databaseFailure(connection.handle(), path);
    return objects;
}

bool hasExactlyOurTables(const QStringList &tables)
{
    QSet<QString> ours;
    for (EntityType entity : allEntityTypes)
        ours.insert(entityName(entity));
    return QSet<QString>(tables.cbegin(), tables.cend()) == ours && tables.size() == ours.size();
}

bool hasWal(const QString &path)
{
    const QFileInfo wal(path + u"-wal"_s);
    return wal.exists() && wal.size() > 0;
}

// Reads the header with plain file reads, so that a file that is not a database at all
// never reaches SQLite, and a store cut short (a copy that stopped half-way) is caught
// before SQLite reads pages that are not there.
void checkHeader(const QString &path, QFile &file)
{
    const qint64 size = file.size();
    const QByteArray header = file.read(headerSize);
    if (header.size() < headerSize || !header.startsWith(QByteArray(headerMagic, sizeof(headerMagic))))
        throw failure(StoreError::Kind::notADatabase, path, u"The file does not begin like an SQLite database."_s);
    const quint16 rawPageSize = qFromBigEndian<quint16>(header.constData() + pageSizeOffset);
    const qint64 pageSize = rawPageSize == 1 ? 65536 : rawPageSize;
    if (pageSize < 512 || (pageSize & (pageSize - 1)) != 0)
        throw failure(StoreError::Kind::damaged, path, u"The file's header names no valid page size."_s);

    // Beside a WAL file that holds commits the main file may rightly lag behind its own
    // header (a checkpoint was cut short), and SQLite completes it from the WAL.
    if (hasWal(path))
        return;
    // The page count in the header is trustworthy only while the change counter matches
    // the number it was written with; older writers leave it stale.
    const quint32 pageCount = headerNumber(header, pageCountOffset);
    const bool countIsValid = pageCount != 0
        && headerNumber(header, changeCounterOffset) == headerNumber(header, versionValidForOffset);
    if (countIsValid && size < qint64(pageCount) * pageSize) {
        throw failure(StoreError::Kind::damaged, path,
                      u"The file is shorter than its header says: %1 of %2 bytes."_s.arg(size).arg(qint64(pageCount)
                                                                                               * pageSize));
    }
    if (size % pageSize != 0) {
        throw failure(StoreError::Kind::damaged, path,
                      u"The file's size, %1 bytes, is not a whole number of %2-byte pages."_s.arg(size).arg(pageSize));
    }
}

} // namespace

StoreFileInspector::Identity StoreFileInspector::inspect(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        throw failure(StoreError::Kind::pathIsFolder, path, u"A folder has the name the file should have."_s);
    if (!info.exists())
        return Identity::newStore;
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            throw failure(StoreError::Kind::unreadable, path, file.errorString());
        if (file.size() == 0)
            return Identity::newStore;
        checkHeader(path, file);
    }

    // Immutable: SQLite reads the main file as it is, takes no lock, and neither replays
    // nor creates a journal, WAL or shared-memory file. Where a WAL with commits already
    // lies beside the file (a crash, or another instance at work), an ordinary read-only
    // connection reads through it with the proper locks instead, so that a checkpoint in
    // progress is not mistaken for damage; its side files exist already.
    QByteArray uri = QUrl::fromLocalFile(info.absoluteFilePath()).toEncoded() + "?mode=ro";
    if (!hasWal(path))
        uri += "&immutable=1";
    std::unique_ptr<SQLiteConnection> connection;
    try {
        connection = std::make_unique<SQLiteConnection>(uri, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    } catch (const SQLiteError &error) {
        throw failure(kindForCode(error.code()), path, error.message(), error.code());
    }
    sqlite3_extended_result_codes(connection->handle(), 1);
    return identify(*connection, path);
}

StoreFileInspector::Identity StoreFileInspector::identify(SQLiteConnection &connection, const QString &path)
{
    const qint64 applicationId = pragmaNumber(connection, "PRAGMA application_id", path);
    const qint64 version = pragmaNumber(connection, "PRAGMA user_version", path);
    const SchemaObjects objects = schemaObjects(connection, path);
    if (applicationId == StoreSchema::applicationId) {
        if (version > StoreSchema::latestVersion()) {
            throw failure(StoreError::Kind::newerVersion, path,
                          u"The file has schema version %1; this version knows up to %2."_s.arg(version).arg(
                              StoreSchema::latestVersion()));
        }
        return Identity::ours;
    }
    if (applicationId == 0) {
        if (objects.count == 0 && version == 0)
            return Identity::newStore;
        if (version >= 1 && version <= StoreSchema::latestVersion() && hasExactlyOurTables(objects.tables))
            return Identity::oursUnmarked;
    }
    QStringList shown = objects.tables.mid(0, 6);
    if (objects.tables.size() > shown.size())
        shown.append(u"…"_s);
    throw failure(StoreError::Kind::foreignFile, path,
                  u"It is a database with application id %1, schema version %2 and the tables [%3]; "
                  "it was left as it was."_s.arg(applicationId)
                      .arg(version)
                      .arg(shown.join(u", "_s)));
}
