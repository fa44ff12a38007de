// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/SqlStatement.h"

#include <QHash>
#include <QString>

struct sqlite3;
struct sqlite3_stmt;

// One SQLite connection to the collection store, used by one context at a time: WAL,
// foreign keys on, a busy timeout so that a writer waits for another rather than failing,
// the folding function registered, and a cache of prepared statements.
class StoreConnection
{
public:
    // Opens an existing store file (or the in-memory database named by `path` when
    // `inMemory` is true). Throws StoreError.
    StoreConnection(const QString &path, bool inMemory, bool create);
    ~StoreConnection();
    StoreConnection(const StoreConnection &) = delete;
    StoreConnection &operator=(const StoreConnection &) = delete;

    sqlite3 *handle() const { return m_database; }

    // A cached prepared statement for `sql`. Throws StoreError.
    SqlStatement prepare(const QString &sql);
    // Runs statements without results. Throws StoreError of `kind`.
    void execute(const char *sql);

    bool inTransaction() const;

private:
    sqlite3 *m_database = nullptr;
    QHash<QString, sqlite3_stmt *> m_statements;
};
