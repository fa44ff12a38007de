// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>
#include <string_view>

struct sqlite3_stmt;

namespace RebrickableKit {

// One prepared statement. Ownership is explicit: whoever called prepare() calls
// finalize() exactly once, on every path. The destructor deliberately does nothing, so a
// statement handed around by value can never be finalised twice.
//
// Binding and stepping never throw and never report errors: a constraint failure on one
// row is passed over by the builder's import loop.
class SQLiteStatement
{
public:
    explicit SQLiteStatement(sqlite3_stmt *statement);
    SQLiteStatement(SQLiteStatement &&other) noexcept;
    SQLiteStatement &operator=(SQLiteStatement &&other) noexcept;
    SQLiteStatement(const SQLiteStatement &) = delete;
    SQLiteStatement &operator=(const SQLiteStatement &) = delete;
    ~SQLiteStatement() = default;

    sqlite3_stmt *handle() const { return m_statement; }
    // The number of the next parameter to be bound; starts at 1.
    int bindIndex() const { return m_bindIndex; }

    // Each bind uses the parameter at bindIndex(), then moves on by one. Texts are passed
    // as NUL-terminated UTF-8, so a text with an embedded NUL is cut at it.
    void bind(const QString &value);
    void bind(const std::optional<QString> &value);
    void bind(qint64 value);
    void bind(int value) { bind(qint64(value)); }
    void bind(bool value);
    // A C string would silently convert to bool; say which text is meant instead.
    void bind(const char *) = delete;

    // The import's hot path: binds UTF-8 bytes as they stand (no copy, no NUL cut, no
    // conversion). The bytes must stay unchanged until the statement is stepped and reset.
    void bindUnownedUtf8(std::string_view utf8);
    void bindNull();

    // True exactly when a row is available. Done and every error both give false.
    bool step();
    // Clears the bindings too, so the next bind lands on parameter 1 again.
    void reset();
    void finalize();

    // Column reads, 0-based.
    qint64 integer(int column) const;
    QString string(int column) const;
    std::optional<QString> optionalString(int column) const;
    bool boolean(int column) const;
    std::optional<qint64> optionalInt(int column) const;

private:
    void advanceBindIndex();

    sqlite3_stmt *m_statement = nullptr;
    int m_bindIndex = 1;
};

} // namespace RebrickableKit
