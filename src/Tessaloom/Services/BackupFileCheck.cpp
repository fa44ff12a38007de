// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/BackupFileCheck.h"

#include "RebrickableKit/SQLiteConnection.h"
#include "Services/CollectionBackupError.h"
#include "Store/StoreError.h"
#include "Store/StoreFileInspector.h"
#include "Store/StoreSchema.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <QUrl>

#include <sqlite3.h>

#include <memory>

using namespace Qt::StringLiterals;
using RebrickableKit::SQLiteConnection;
using RebrickableKit::SQLiteError;
using Kind = CollectionBackupError::Kind;

namespace {

CollectionBackupError failure(Kind kind, const QString &path, const QString &message)
{
    return CollectionBackupError(kind, u"(%1) %2"_s.arg(QDir::toNativeSeparators(path), message));
}

Kind kindFor(StoreError::Kind kind)
{
    switch (kind) {
    case StoreError::Kind::damaged:
        return Kind::damaged;
    case StoreError::Kind::foreignFile:
        return Kind::foreignFile;
    case StoreError::Kind::newerVersion:
        return Kind::newerVersion;
    default:
        return Kind::notABackup;
    }
}

// SQLite's integrity check reads every page: a file cut short, a changed byte in a page's
// structure or an index that no longer matches its table all end in lines other than "ok".
void checkIntegrity(SQLiteConnection &connection, const QString &path)
{
    QStringList problems;
    bool finished = false;
    try {
        auto statement = connection.prepare(u"PRAGMA integrity_check(20)"_s);
        while (statement.step())
            problems.append(statement.string(0));
        finished = true;
    } catch (const SQLiteError &) {
    }
    if (!finished) {
        const int code = sqlite3_extended_errcode(connection.handle()) & 0xff;
        throw failure(code == SQLITE_NOTADB ? Kind::notABackup : Kind::damaged, path,
                      QString::fromUtf8(sqlite3_errmsg(connection.handle())));
    }
    if (problems != QStringList{u"ok"_s})
        throw failure(Kind::damaged, path, problems.mid(0, 3).join(u"; "_s));
}

} // namespace

BackupFileCheck::Result BackupFileCheck::check(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isFile())
        throw failure(Kind::notABackup, path, u"There is no such file."_s);
    StoreFileInspector::Identity identity;
    try {
        identity = StoreFileInspector::inspect(path);
    } catch (const StoreError &error) {
        throw CollectionBackupError(kindFor(error.kind()), error.detail()); // the detail names the file
    }
    if (identity == StoreFileInspector::Identity::newStore)
        throw failure(Kind::notABackup, path, u"The file holds no collection."_s);

    const QByteArray uri = QUrl::fromLocalFile(info.absoluteFilePath()).toEncoded() + "?mode=ro&immutable=1";
    std::unique_ptr<SQLiteConnection> connection;
    try {
        connection = std::make_unique<SQLiteConnection>(uri, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX);
    } catch (const SQLiteError &error) {
        throw failure(Kind::notABackup, path, error.message());
    }
    sqlite3_extended_result_codes(connection->handle(), 1);
    checkIntegrity(*connection, path);
    try {
        const int version = StoreSchema::userVersion(*connection);
        return Result{version, identity == StoreFileInspector::Identity::ours && version == StoreSchema::latestVersion()};
    } catch (const StoreError &error) {
        throw failure(Kind::damaged, path, error.detail());
    } catch (const SQLiteError &error) {
        throw failure(Kind::damaged, path, error.message());
    }
}
