// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "SQLiteError.h"
#include "SQLiteStatement.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <type_traits>

struct sqlite3;

namespace RebrickableKit {

// A deliberately thin connection to one SQLite file: no schema knowledge, no statement
// cache, no retry, no busy handling. Every query prepares and runs its own statement, which
// finalises itself when it ends. Not thread-safe: its owner makes sure one thread at a time
// uses it.
//
// The connection is closed by the destructor and nowhere else; there is no close(). Its
// statements must have ended by then, or the file stays open.
class SQLiteConnection
{
public:
    enum class OpenMode {
        readOnly,
        readWrite,
        create,
    };

    // Throws SQLiteError::openFailed.
    SQLiteConnection(const QString &path, OpenMode mode);
    // Opens with exactly these sqlite3_open_v2 flags, for an owner that needs more than
    // the three modes (a URI name, no mutex); `name` is what sqlite3_open_v2 takes, UTF-8.
    // Throws SQLiteError::openFailed.
    SQLiteConnection(const QByteArray &name, int flags);
    ~SQLiteConnection();
    SQLiteConnection(const SQLiteConnection &) = delete;
    SQLiteConnection &operator=(const SQLiteConnection &) = delete;

    // The flags handed to sqlite3_open_v2 for a mode.
    static int openFlags(OpenMode mode);

    sqlite3 *handle() const { return m_db; }

    // Runs one or more statements in one call; throws SQLiteError::executeFailed.
    void execute(const QString &sql);
    // Throws SQLiteError::prepareFailed, also for a text that holds no statement.
    SQLiteStatement prepare(const QString &sql);
    // The same for a statement that its owner keeps and runs many times: SQLite takes its
    // memory from the heap rather than the connection's small lookaside pool.
    SQLiteStatement prepareForReuse(const QString &sql);

    // All rows that map() turns into values. A step that fails ends the rows like the end
    // of the result: the caller gets what was read so far, and no error. An error thrown
    // by bind() or map() passes through; the statement ends with it.
    template <typename Bind, typename Map>
    auto query(const QString &sql, Bind &&bind, Map &&map) -> QList<std::invoke_result_t<Map, SQLiteStatement &>>;
    template <typename Map>
    auto query(const QString &sql, Map &&map) -> QList<std::invoke_result_t<Map, SQLiteStatement &>>
    {
        return query(sql, noBinding, std::forward<Map>(map));
    }

    // The first row only: the statement is stepped once, never twice.
    template <typename Bind, typename Map>
    auto queryOne(const QString &sql, Bind &&bind, Map &&map) -> std::optional<std::invoke_result_t<Map, SQLiteStatement &>>;
    template <typename Map>
    auto queryOne(const QString &sql, Map &&map) -> std::optional<std::invoke_result_t<Map, SQLiteStatement &>>
    {
        return queryOne(sql, noBinding, std::forward<Map>(map));
    }

    // Rows changed by the last INSERT, UPDATE or DELETE.
    int changes() const;

private:
    static void noBinding(SQLiteStatement &) { }

    sqlite3 *m_db = nullptr;
};

template <typename Bind, typename Map>
auto SQLiteConnection::query(const QString &sql, Bind &&bind, Map &&map) -> QList<std::invoke_result_t<Map, SQLiteStatement &>>
{
    SQLiteStatement statement = prepare(sql);
    bind(statement);
    QList<std::invoke_result_t<Map, SQLiteStatement &>> rows;
    while (statement.step())
        rows.append(map(statement));
    return rows;
}

template <typename Bind, typename Map>
auto SQLiteConnection::queryOne(const QString &sql, Bind &&bind, Map &&map) -> std::optional<std::invoke_result_t<Map, SQLiteStatement &>>
{
    SQLiteStatement statement = prepare(sql);
    bind(statement);
    if (!statement.step())
        return std::nullopt;
    return map(statement);
}

} // namespace RebrickableKit
