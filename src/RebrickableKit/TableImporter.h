// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CatalogSchema.h"
#include "TableImportReport.h"

#include <QString>

#include <span>
#include <string_view>

namespace RebrickableKit {

class SQLiteConnection;
class SQLiteStatement;

// Fills one table from its dump in one transaction, streaming: the file is read in pieces
// of bounded size, checked as UTF-8, split into rows, and each row's fields are bound
// straight from the bytes. No file is ever held whole, and no row becomes strings. The
// rows stored are exactly those of parsing the whole text with CSVParser and the record
// parsers of CSVRowParsers.
//
// Along the way it counts what became of the rows and looks for the signs of a damaged dump
// (see TableImportReport). Counting changes nothing about what is stored: refused rows and
// failing inserts are still passed over and the import goes on.
class TableImporter
{
public:
    static constexpr qsizetype chunkSize = 1 << 20;

    // Throws CSVFileError for a missing, unreadable or non-UTF-8 file, and SQLiteError for
    // a failed BEGIN, prepare or COMMIT. Refused rows and failing inserts are passed over.
    static TableImportReport importTable(SQLiteConnection &connection, const CatalogSchema::ImportTable &table,
                                         const QString &csvPath);
    // The same import with no counting and no looking at the header: only there to measure
    // what the accounting costs.
    static void importTableUncounted(SQLiteConnection &connection, const CatalogSchema::ImportTable &table,
                                     const QString &csvPath);

    // Binds one data row to the table's INSERT. A refused row leaves nothing bound and
    // gives false.
    static bool bindRow(SQLiteStatement &statement, const CatalogSchema::ImportTable &table,
                        std::span<const std::string_view> fields);
};

} // namespace RebrickableKit
