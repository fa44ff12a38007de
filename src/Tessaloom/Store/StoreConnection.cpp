// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/StoreConnection.h"

#include "Store/StoreError.h"
#include "Store/TextFolding.h"

#include <QUrl>

#include <sqlite3.h>

using namespace Qt::StringLiterals;
using RebrickableKit::SQLiteError;
using RebrickableKit::SQLiteStatement;

namespace {
// Long enough for a large background save to finish before a reader or another writer
// gives up; short enough that a stuck writer shows up as an error rather than a hang.
constexpr int busyTimeoutMilliseconds = 10000;

// A failed step of a store statement is an error of the store: a save must not pass over
// a row that a constraint refused.
void throwQueryFailed(sqlite3 *database)
{
    throw StoreError::fromDatabase(StoreError::Kind::queryFailed, database);
}
} // namespace

StoreConnection::StoreConnection(const QString &path, bool inMemory, bool create)
{
    int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;
    if (create)
        flags |= SQLITE_OPEN_CREATE;
    QByteArray name = path.toUtf8();
    if (inMemory) {
        // The memdb VFS shares one in-memory database among the connections of this
        // process that use the same name, so background contexts see the view context's
        // store; it disappears with the last connection.
        flags |= SQLITE_OPEN_URI;
        name = "file:/" + QUrl::toPercentEncoding(path) + "?vfs=memdb";
    }
    try {
        m_connection = std::make_unique<RebrickableKit::SQLiteConnection>(name, flags);
    } catch (const SQLiteError &error) {
        throw StoreError(StoreError::Kind::openFailed, error.message(), error.code());
    }
    // From here on a failure leaves through the members' destructors, which close the file.
    sqlite3 *database = m_connection->handle();
    sqlite3_extended_result_codes(database, 1);
    sqlite3_busy_timeout(database, busyTimeoutMilliseconds);
    if (!TextFolding::registerFunction(database))
        throw StoreError::fromDatabase(StoreError::Kind::openFailed, database);
    execute("PRAGMA foreign_keys = ON");
    // NORMAL is durable in WAL mode up to the last checkpointed commit and never
    // corrupts; FULL additionally survives a power cut for the last commit, which is
    // what the user's own records deserve.
    execute("PRAGMA synchronous = FULL");
}

StoreConnection::~StoreConnection() = default;

SQLiteStatement StoreConnection::prepare(const QString &sql)
{
    auto cached = m_statements.find(sql);
    if (cached == m_statements.end()) {
        try {
            SQLiteStatement statement = m_connection->prepareForReuse(sql);
            statement.setFailureHandler(&throwQueryFailed);
            cached = m_statements.emplace(sql, std::move(statement)).first;
        } catch (const SQLiteError &error) {
            throw StoreError(StoreError::Kind::queryFailed, error.message(), error.code());
        }
    }
    return cached->second.borrow();
}

void StoreConnection::execute(const char *sql)
{
    try {
        m_connection->execute(QString::fromUtf8(sql));
    } catch (const SQLiteError &error) {
        throw StoreError(StoreError::Kind::queryFailed, error.message(), error.code());
    }
}

bool StoreConnection::inTransaction() const
{
    return sqlite3_get_autocommit(m_connection->handle()) == 0;
}
