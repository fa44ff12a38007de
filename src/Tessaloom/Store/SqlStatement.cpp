// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/SqlStatement.h"

#include "Store/StoreError.h"

#include <sqlite3.h>

SqlStatement::SqlStatement(sqlite3 *database, sqlite3_stmt *statement)
    : m_database(database)
    , m_statement(statement)
{
}

SqlStatement::~SqlStatement()
{
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
}

void SqlStatement::bindNull(int index)
{
    sqlite3_bind_null(m_statement, index);
}

void SqlStatement::bindInteger(int index, qint64 value)
{
    sqlite3_bind_int64(m_statement, index, value);
}

void SqlStatement::bindText(int index, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    sqlite3_bind_text(m_statement, index, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}

bool SqlStatement::step()
{
    const int result = sqlite3_step(m_statement);
    if (result == SQLITE_ROW)
        return true;
    if (result == SQLITE_DONE)
        return false;
    throw StoreError::fromDatabase(StoreError::Kind::queryFailed, m_database);
}

void SqlStatement::run()
{
    while (step()) {
    }
}

bool SqlStatement::isNull(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

qint64 SqlStatement::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

QString SqlStatement::text(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    return QString::fromUtf8(bytes, sqlite3_column_bytes(m_statement, column));
}

std::optional<QString> SqlStatement::optionalText(int column) const
{
    if (isNull(column))
        return std::nullopt;
    return text(column);
}
