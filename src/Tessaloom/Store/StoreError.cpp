// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/StoreError.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

StoreError::StoreError(Kind kind, QString detail, int sqliteCode)
    : m_kind(kind)
    , m_detail(std::move(detail))
    , m_sqliteCode(sqliteCode)
    , m_what(description().toUtf8())
{
}

StoreError StoreError::fromDatabase(Kind kind, sqlite3 *database)
{
    return StoreError(kind, QString::fromUtf8(sqlite3_errmsg(database)), sqlite3_extended_errcode(database));
}

QString StoreError::sentence(Kind kind)
{
    switch (kind) {
    case Kind::directoryNotCreatable:
        return u"The folder of the collection store could not be created."_s;
    case Kind::openFailed:
        return u"The collection store could not be opened."_s;
    case Kind::notADatabase:
        return u"The collection store file is not a database."_s;
    case Kind::readOnly:
        return u"The collection store file cannot be written."_s;
    case Kind::migrationFailed:
        return u"The collection store could not be brought up to date."_s;
    case Kind::queryFailed:
        return u"The collection store could not be read."_s;
    case Kind::saveFailed:
        return u"The changes could not be saved."_s;
    }
    return {};
}

QString StoreError::description() const
{
    if (m_detail.isEmpty())
        return sentence(m_kind);
    return sentence(m_kind) + u' ' + m_detail;
}
