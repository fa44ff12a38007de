// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RebrickableKit/SQLiteConnection.h"

#include <QString>

#include <memory>
#include <unordered_map>

struct sqlite3;

// One SQLite connection to the collection store, used by one context at a time: WAL,
// foreign keys on, a busy timeout so that a writer waits for another rather than failing,
// the folding function registered, and a cache of prepared statements. It is built on the
// catalog library's SQLite layer and speaks StoreError instead of SQLiteError.
class StoreConnection
{
public:
    // Opens an existing store file (or the in-memory database named by `path` when
    // `inMemory` is true). Throws StoreError.
    StoreConnection(const QString &path, bool inMemory, bool create);
    ~StoreConnection();
    StoreConnection(const StoreConnection &) = delete;
    StoreConnection &operator=(const StoreConnection &) = delete;

    sqlite3 *handle() const { return m_connection->handle(); }
    // The plain connection, for work that sorts failures itself (opening checks, migration).
    RebrickableKit::SQLiteConnection &sqliteConnection() { return *m_connection; }

    // The prepared statement for `sql`, borrowed from this connection's cache: it resets
    // itself when it ends, and a step that fails throws StoreError. Throws StoreError.
    RebrickableKit::SQLiteStatement prepare(const QString &sql);
    // Runs statements without results. Throws StoreError::Kind::queryFailed.
    void execute(const char *sql);

    bool inTransaction() const;

private:
    std::unique_ptr<RebrickableKit::SQLiteConnection> m_connection;
    // Declared after the connection so that every statement ends before it closes.
    std::unordered_map<QString, RebrickableKit::SQLiteStatement> m_statements;
};
