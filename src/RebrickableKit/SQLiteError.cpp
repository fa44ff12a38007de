// SPDX-License-Identifier: GPL-3.0-or-later
#include "SQLiteError.h"

using namespace Qt::StringLiterals;

namespace RebrickableKit {

SQLiteError::SQLiteError(Kind kind, QString message, int code)
    : m_kind(kind)
    , m_message(std::move(message))
    , m_code(code)
    , m_what(description().toUtf8())
{
}

QString SQLiteError::description() const
{
    switch (m_kind) {
    case Kind::openFailed:
        return u"Failed to open database: "_s + m_message;
    case Kind::executeFailed:
        return u"SQL execution failed: "_s + m_message;
    case Kind::prepareFailed:
        return u"Failed to prepare statement: "_s + m_message;
    }
    Q_UNREACHABLE();
    return m_message;
}

const char *SQLiteError::what() const noexcept
{
    return m_what.constData();
}

} // namespace RebrickableKit
