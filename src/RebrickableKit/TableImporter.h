// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CatalogSchema.h"

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
class TableImporter
{
public:
    static constexpr qsizetype chunkSize = 1 << 20;

    // Throws CSVFileError for a missing, unreadable or non-UTF-8 file, and SQLiteError for
    // a failed BEGIN, prepare or COMMIT. Refused rows and failing inserts are passed over.
    static void importTable(SQLiteConnection &connection, const CatalogSchema::ImportTable &table,
                            const QString &csvPath);

    // Binds one data row to the table's INSERT. A refused row leaves nothing bound and
    // gives false.
    static bool bindRow(SQLiteStatement &statement, const CatalogSchema::ImportTable &table,
                        std::span<const std::string_view> fields);
};

} // namespace RebrickableKit
