// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace RebrickableKit {

// One prepared statement, the only one there is: the catalog builder, the catalog reader
// and the collection store all bind, step and read through it.
//
// It owns its statement and finalises it when it ends, on every path, so a connection
// never closes with a statement left open. It moves, it never copies; a moved-from
// statement holds nothing and its destructor does nothing. finalize() ends a statement
// early.
//
// A borrowed statement (borrow()) is a second handle on a statement that its owner keeps
// for reuse, such as the store's statement cache: when it ends it resets the statement and
// clears its bindings instead of finalising it, so the statement is ready for its next use
// and holds no read transaction open in between.
//
// Binding and stepping never throw and never report errors by themselves: a constraint
// failure on one row is passed over by the builder's import loop. An owner that wants a
// failed step to throw (the store) gives the statement a failure handler.
class SQLiteStatement
{
public:
    enum class StepResult {
        row,
        done,
        failed,
    };
    // Called with the statement's connection when a step fails, before the step returns;
    // it may throw, which is how the store turns a failed step into its own error.
    using FailureHandler = void (*)(sqlite3 *database);

    // Takes ownership of a statement prepared by SQLiteConnection.
    explicit SQLiteStatement(sqlite3_stmt *statement);
    ~SQLiteStatement();
    SQLiteStatement(SQLiteStatement &&other) noexcept;
    SQLiteStatement &operator=(SQLiteStatement &&other) noexcept;
    SQLiteStatement(const SQLiteStatement &) = delete;
    SQLiteStatement &operator=(const SQLiteStatement &) = delete;

    // A handle on the same statement that does not own it, with the same failure handler.
    // It must end before this statement does.
    SQLiteStatement borrow();
    void setFailureHandler(FailureHandler handler) { m_failureHandler = handler; }

    sqlite3_stmt *handle() const { return m_statement; }
    bool isBorrowed() const { return !m_owned; }
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

    // Binds at the parameter given, for callers that number their parameters themselves;
    // a following bind without a number goes to the parameter after it. bindText binds the
    // whole text, an embedded NUL included.
    void bindNull(int index);
    void bindInteger(int index, qint64 value);
    void bindText(int index, const QString &value);

    // True exactly when a row is available. Done and every error both give false (after
    // the failure handler, if there is one, has had its say).
    bool step();
    // The same step, telling the end of the rows from a failure.
    StepResult stepWithResult();
    // Steps until no row is left: a statement that changes rows and returns none.
    void run();
    // Clears the bindings too, so the next bind lands on parameter 1 again.
    void reset();
    // Ends the statement now rather than at destruction: finalises an owned statement,
    // resets a borrowed one. Either way this object holds nothing afterwards.
    void finalize();

    // Column reads, 0-based.
    qint64 integer(int column) const;
    QString string(int column) const;
    std::optional<QString> optionalString(int column) const;
    bool boolean(int column) const;
    std::optional<qint64> optionalInt(int column) const;
    bool isNull(int column) const;

private:
    void advanceBindIndex();
    void bindIndexAfter(int index);
    void release() noexcept;

    sqlite3_stmt *m_statement = nullptr;
    int m_bindIndex = 1;
    bool m_owned = true;
    FailureHandler m_failureHandler = nullptr;
};

} // namespace RebrickableKit
