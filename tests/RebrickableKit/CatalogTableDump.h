// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// Test helpers that look at a built catalog from outside, through SQLite alone.
class CatalogTableDump
{
public:
    // Every row of a table in rowid order, each column as SQL's quote() writes it, so that
    // NULL, integers and texts are told apart.
    static QStringList rows(const QString &databasePath, const QString &table);
    // One value of a one-row query, as text.
    static QString value(const QString &databasePath, const QString &sql);

    // Fills the catalog tables the plain way: each dump read whole, parsed by CSVParser
    // into rows of strings, turned into records by CSVRowParsers and inserted one by one.
    // Streamed builds must store exactly what this stores.
    static void buildByRecords(const QString &csvDirectory, const QString &databasePath);
};
