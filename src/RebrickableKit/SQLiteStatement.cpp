// SPDX-License-Identifier: GPL-3.0-or-later
#include "SQLiteStatement.h"

#include <sqlite3.h>

#include <limits>
#include <utility>

namespace RebrickableKit {

SQLiteStatement::SQLiteStatement(sqlite3_stmt *statement)
    : m_statement(statement)
{
}

SQLiteStatement::~SQLiteStatement()
{
    release();
}

SQLiteStatement::SQLiteStatement(SQLiteStatement &&other) noexcept
    : m_statement(std::exchange(other.m_statement, nullptr))
    , m_bindIndex(std::exchange(other.m_bindIndex, 1))
    , m_owned(other.m_owned)
    , m_failureHandler(other.m_failureHandler)
{
}

SQLiteStatement &SQLiteStatement::operator=(SQLiteStatement &&other) noexcept
{
    if (this == &other)
        return *this;
    release();
    m_statement = std::exchange(other.m_statement, nullptr);
    m_bindIndex = std::exchange(other.m_bindIndex, 1);
    m_owned = other.m_owned;
    m_failureHandler = other.m_failureHandler;
    return *this;
}

void SQLiteStatement::release() noexcept
{
    if (!m_statement)
        return;
    if (m_owned) {
        sqlite3_finalize(m_statement);
    } else {
        // Its owner runs it again later: leave it as if freshly prepared. A statement left
        // in the middle of its rows would keep a read transaction open on the connection.
        sqlite3_reset(m_statement);
        sqlite3_clear_bindings(m_statement);
    }
    m_statement = nullptr;
    m_bindIndex = 1;
}

SQLiteStatement SQLiteStatement::borrow()
{
    SQLiteStatement borrowed(m_statement);
    borrowed.m_owned = false;
    borrowed.m_failureHandler = m_failureHandler;
    return borrowed;
}

void SQLiteStatement::advanceBindIndex()
{
    if (m_bindIndex == std::numeric_limits<int>::max())
        qFatal("SQLiteStatement: parameter index overflow");
    ++m_bindIndex;
}

void SQLiteStatement::bindIndexAfter(int index)
{
    m_bindIndex = index;
    advanceBindIndex();
}

void SQLiteStatement::bind(const QString &value)
{
    // Length -1: SQLite reads up to the first NUL, which is where a C string ends.
    const QByteArray utf8 = value.toUtf8();
    sqlite3_bind_text(m_statement, m_bindIndex, utf8.constData(), -1, SQLITE_TRANSIENT);
    advanceBindIndex();
}

void SQLiteStatement::bind(const std::optional<QString> &value)
{
    if (value)
        bind(*value);
    else
        bindNull();
}

void SQLiteStatement::bind(qint64 value)
{
    sqlite3_bind_int64(m_statement, m_bindIndex, value);
    advanceBindIndex();
}

void SQLiteStatement::bind(bool value)
{
    sqlite3_bind_int(m_statement, m_bindIndex, value ? 1 : 0);
    advanceBindIndex();
}

void SQLiteStatement::bindUnownedUtf8(std::string_view utf8)
{
    // A non-null pointer even for an empty view: a null pointer would bind NULL.
    const char *data = utf8.empty() ? "" : utf8.data();
    sqlite3_bind_text(m_statement, m_bindIndex, data, int(utf8.size()), SQLITE_STATIC);
    advanceBindIndex();
}

void SQLiteStatement::bindNull()
{
    sqlite3_bind_null(m_statement, m_bindIndex);
    advanceBindIndex();
}

void SQLiteStatement::bindNull(int index)
{
    sqlite3_bind_null(m_statement, index);
    bindIndexAfter(index);
}

void SQLiteStatement::bindInteger(int index, qint64 value)
{
    sqlite3_bind_int64(m_statement, index, value);
    bindIndexAfter(index);
}

void SQLiteStatement::bindText(int index, const QString &value)
{
    const QByteArray utf8 = value.toUtf8();
    sqlite3_bind_text(m_statement, index, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
    bindIndexAfter(index);
}

SQLiteStatement::StepResult SQLiteStatement::stepWithResult()
{
    const int result = sqlite3_step(m_statement);
    if (result == SQLITE_ROW)
        return StepResult::row;
    if (result == SQLITE_DONE)
        return StepResult::done;
    if (m_failureHandler)
        m_failureHandler(sqlite3_db_handle(m_statement));
    return StepResult::failed;
}

bool SQLiteStatement::step()
{
    return stepWithResult() == StepResult::row;
}

void SQLiteStatement::run()
{
    while (step()) {
    }
}

void SQLiteStatement::reset()
{
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
    m_bindIndex = 1;
}

void SQLiteStatement::finalize()
{
    release();
}

qint64 SQLiteStatement::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

QString SQLiteStatement::string(int column) const
{
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    if (!text)
        return QString();
    // fromUtf8 repairs invalid sequences with replacement characters rather than failing.
    return QString::fromUtf8(text, sqlite3_column_bytes(m_statement, column));
}

std::optional<QString> SQLiteStatement::optionalString(int column) const
{
    if (sqlite3_column_type(m_statement, column) == SQLITE_NULL)
        return std::nullopt;
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    if (!text)
        return std::nullopt;
    return QString::fromUtf8(text, sqlite3_column_bytes(m_statement, column));
}

bool SQLiteStatement::boolean(int column) const
{
    return sqlite3_column_int(m_statement, column) != 0;
}

std::optional<qint64> SQLiteStatement::optionalInt(int column) const
{
    if (sqlite3_column_type(m_statement, column) == SQLITE_NULL)
        return std::nullopt;
    return sqlite3_column_int64(m_statement, column);
}

bool SQLiteStatement::isNull(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

} // namespace RebrickableKit
