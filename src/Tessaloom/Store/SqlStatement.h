// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

struct sqlite3;
struct sqlite3_stmt;

// A prepared statement borrowed from its connection's cache: binds, steps and reads
// columns. Reset on destruction, so the cached statement is ready for its next use and
// never holds a read transaction open.
class SqlStatement
{
public:
    SqlStatement(sqlite3 *database, sqlite3_stmt *statement);
    ~SqlStatement();
    SqlStatement(const SqlStatement &) = delete;
    SqlStatement &operator=(const SqlStatement &) = delete;

    void bindNull(int index);
    void bindInteger(int index, qint64 value);
    void bindText(int index, const QString &text);

    // true while a row is available; throws StoreError on failure.
    bool step();
    // Steps to completion; throws StoreError on failure.
    void run();

    bool isNull(int column) const;
    qint64 integer(int column) const;
    QString text(int column) const;
    std::optional<QString> optionalText(int column) const;

private:
    sqlite3 *m_database;
    sqlite3_stmt *m_statement;
};
