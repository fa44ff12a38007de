// SPDX-License-Identifier: GPL-3.0-or-later
#include "SQLiteConnection.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace RebrickableKit {

int SQLiteConnection::openFlags(OpenMode mode)
{
    // No mutex or URI flags: the layer is used by one thread at a time, and paths are paths.
    switch (mode) {
    case OpenMode::readOnly:
        return SQLITE_OPEN_READONLY;
    case OpenMode::readWrite:
        return SQLITE_OPEN_READWRITE;
    case OpenMode::create:
        return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    }
    Q_UNREACHABLE();
    return SQLITE_OPEN_READONLY;
}

SQLiteConnection::SQLiteConnection(const QString &path, OpenMode mode)
    : SQLiteConnection(path.toUtf8(), openFlags(mode))
{
}

SQLiteConnection::SQLiteConnection(const QByteArray &name, int flags)
{
    sqlite3 *db = nullptr;
    const int result = sqlite3_open_v2(name.constData(), &db, flags, nullptr);
    if (result == SQLITE_OK && db) {
        m_db = db;
        return;
    }
    QString message = u"Unknown error"_s;
    if (db) {
        message = QString::fromUtf8(sqlite3_errmsg(db));
        sqlite3_close(db);
    }
    // m_db stays null, and a constructor that throws runs no destructor: nothing closes twice.
    throw SQLiteError(SQLiteError::Kind::openFailed, message, result);
}

SQLiteConnection::~SQLiteConnection()
{
    // Not the _v2 form, and its result is not looked at: a statement still alive keeps
    // the connection open, which its owner has to fix by letting the statement end first.
    sqlite3_close(m_db);
}

void SQLiteConnection::execute(const QString &sql)
{
    char *errorText = nullptr;
    const int result = sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, &errorText);
    if (result == SQLITE_OK)
        return;
    const QString message = errorText ? QString::fromUtf8(errorText) : u"Unknown error"_s;
    sqlite3_free(errorText);
    throw SQLiteError(SQLiteError::Kind::executeFailed, message, sqlite3_extended_errcode(m_db));
}

SQLiteStatement SQLiteConnection::prepare(const QString &sql)
{
    sqlite3_stmt *statement = nullptr;
    const int result = sqlite3_prepare_v2(m_db, sql.toUtf8().constData(), -1, &statement, nullptr);
    // An empty or comment-only text succeeds without a statement: that is a failure here.
    if (result != SQLITE_OK || !statement)
        throw SQLiteError(SQLiteError::Kind::prepareFailed, QString::fromUtf8(sqlite3_errmsg(m_db)),
                          sqlite3_extended_errcode(m_db));
    return SQLiteStatement(statement);
}

SQLiteStatement SQLiteConnection::prepareForReuse(const QString &sql)
{
    sqlite3_stmt *statement = nullptr;
    const int result = sqlite3_prepare_v3(m_db, sql.toUtf8().constData(), -1, SQLITE_PREPARE_PERSISTENT, &statement,
                                          nullptr);
    if (result != SQLITE_OK || !statement)
        throw SQLiteError(SQLiteError::Kind::prepareFailed, QString::fromUtf8(sqlite3_errmsg(m_db)),
                          sqlite3_extended_errcode(m_db));
    return SQLiteStatement(statement);
}

int SQLiteConnection::changes() const
{
    return sqlite3_changes(m_db);
}

} // namespace RebrickableKit
