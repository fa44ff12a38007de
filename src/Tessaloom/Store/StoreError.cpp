// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/StoreError.h"

#include <QDir>

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

QString StoreError::detailFor(const QString &path, const QString &message)
{
    return u"(%1) %2"_s.arg(QDir::toNativeSeparators(path), message);
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
    case Kind::pathIsFolder:
        return u"The place of the collection store file is taken by a folder."_s;
    case Kind::unreadable:
        return u"The collection store file cannot be read."_s;
    case Kind::damaged:
        return u"The collection store file is damaged."_s;
    case Kind::foreignFile:
        return u"The file in the place of the collection store belongs to another program."_s;
    case Kind::newerVersion:
        return u"The collection store was written by a newer version of Tessaloom."_s;
    }
    return {};
}

QString StoreError::description() const
{
    if (m_detail.isEmpty())
        return sentence(m_kind);
    return sentence(m_kind) + u' ' + m_detail;
}
