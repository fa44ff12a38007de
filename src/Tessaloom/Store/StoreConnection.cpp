// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/StoreConnection.h"

#include "Store/StoreError.h"
#include "Store/TextFolding.h"

#include <QUrl>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {
// Long enough for a large background save to finish before a reader or another writer
// gives up; short enough that a stuck writer shows up as an error rather than a hang.
constexpr int busyTimeoutMilliseconds = 10000;
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
    const int result = sqlite3_open_v2(name.constData(), &m_database, flags, nullptr);
    if (result != SQLITE_OK) {
        const QString message = m_database ? QString::fromUtf8(sqlite3_errmsg(m_database))
                                           : QString::fromUtf8(sqlite3_errstr(result));
        sqlite3_close(m_database);
        m_database = nullptr;
        throw StoreError(StoreError::Kind::openFailed, message, result);
    }
    sqlite3_extended_result_codes(m_database, 1);
    sqlite3_busy_timeout(m_database, busyTimeoutMilliseconds);
    try {
        if (!TextFolding::registerFunction(m_database))
            throw StoreError::fromDatabase(StoreError::Kind::openFailed, m_database);
        execute("PRAGMA foreign_keys = ON");
        // NORMAL is durable in WAL mode up to the last checkpointed commit and never
        // corrupts; FULL additionally survives a power cut for the last commit, which is
        // what the user's own records deserve.
        execute("PRAGMA synchronous = FULL");
    } catch (...) {
        sqlite3_close(m_database);
        m_database = nullptr;
        throw;
    }
}

StoreConnection::~StoreConnection()
{
    for (sqlite3_stmt *statement : std::as_const(m_statements))
        sqlite3_finalize(statement);
    sqlite3_close(m_database);
}

SqlStatement StoreConnection::prepare(const QString &sql)
{
    sqlite3_stmt *statement = m_statements.value(sql);
    if (!statement) {
        const QByteArray utf8 = sql.toUtf8();
        if (sqlite3_prepare_v3(m_database, utf8.constData(), int(utf8.size()), SQLITE_PREPARE_PERSISTENT,
                               &statement, nullptr)
            != SQLITE_OK)
            throw StoreError::fromDatabase(StoreError::Kind::queryFailed, m_database);
        m_statements.insert(sql, statement);
    }
    return SqlStatement(m_database, statement);
}

void StoreConnection::execute(const char *sql)
{
    char *message = nullptr;
    if (sqlite3_exec(m_database, sql, nullptr, nullptr, &message) != SQLITE_OK) {
        const QString text = QString::fromUtf8(message ? message : sqlite3_errmsg(m_database));
        sqlite3_free(message);
        throw StoreError(StoreError::Kind::queryFailed, text, sqlite3_extended_errcode(m_database));
    }
}

bool StoreConnection::inTransaction() const
{
    return sqlite3_get_autocommit(m_database) == 0;
}
