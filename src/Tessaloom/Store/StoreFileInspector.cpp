// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/StoreFileInspector.h"

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

using namespace Qt::StringLiterals;

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

qint64 pragmaNumber(sqlite3 *database, const char *sql, const QString &path)
{
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK)
        throw databaseFailure(database, path);
    const int result = sqlite3_step(statement);
    const qint64 value = result == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : 0;
    sqlite3_finalize(statement);
    if (result != SQLITE_ROW)
        throw databaseFailure(database, path);
    return value;
}

struct SchemaObjects
{
    int count = 0;
    QStringList tables; // without SQLite's own sqlite_… tables
};

SchemaObjects schemaObjects(sqlite3 *database, const QString &path)
{
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(database, "SELECT type, name FROM sqlite_schema", -1, &statement, nullptr) != SQLITE_OK)
        throw databaseFailure(database, path);
    SchemaObjects objects;
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
        ++objects.count;
        const auto text = [statement](int column) {
            return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, column)));
        };
        const QString name = text(1);
        if (text(0) == u"table"_s && !name.startsWith(u"sqlite_"_s, Qt::CaseInsensitive))
            objects.tables.append(name);
    }
    sqlite3_finalize(statement);
    if (result != SQLITE_DONE)
        throw databaseFailure(database, path);
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
    sqlite3 *handle = nullptr;
    const int result = sqlite3_open_v2(uri.constData(), &handle, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3 *)> database(handle, &sqlite3_close);
    if (result != SQLITE_OK) {
        const QString message = handle ? QString::fromUtf8(sqlite3_errmsg(handle)) : QString::fromUtf8(sqlite3_errstr(result));
        const int code = handle ? sqlite3_extended_errcode(handle) : result;
        throw failure(kindForCode(code), path, message, code);
    }
    sqlite3_extended_result_codes(handle, 1);
    return identify(handle, path);
}

StoreFileInspector::Identity StoreFileInspector::identify(sqlite3 *database, const QString &path)
{
    const qint64 applicationId = pragmaNumber(database, "PRAGMA application_id", path);
    const qint64 version = pragmaNumber(database, "PRAGMA user_version", path);
    const SchemaObjects objects = schemaObjects(database, path);
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
