// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace RebrickableKit {

// What importing one dump into its table came to: how many rows the dump held, how many
// were stored, how many were passed over and why, and whether the dump looks the way the
// table expects. The import itself never fails because of what this counts; the report
// is there so that a damaged dump doesn't go unnoticed.
//
// The signs of a damaged dump, each cheap to see while the rows go by:
// - a header that lacks one of the table's columns at its place (missingColumns); extra
//   columns after the expected ones are fine, colors.csv carries four of them;
// - a row with another number of fields than the header (rowsWithOtherFieldCount); in
//   elements.csv a row that leaves out the optional last column altogether is fine;
// - a row that takes more than one line, a line break inside quotes (rowsSpanningLines);
//   the dumps hold no such field, while a stray quote turns the lines up to the next quote
//   into one row;
// - a file that ends inside quotes (endsInsideQuotes): every quote that belongs to the
//   text comes in pairs, so one stray quote anywhere leaves the rest of the file in one
//   field, stored or not, whatever column it opened in.
struct TableImportReport {
    QString tableName;
    // Data rows of the dump, the header not counted. A row that runs over several lines
    // counts once.
    qint64 rowsRead = 0;
    qint64 rowsStored = 0;
    // Refused by the table's row rules: too few fields, a required number that isn't one,
    // an unknown relationship letter.
    qint64 rowsRefusedByRules = 0;
    // Accepted by the row rules but not stored by SQLite, such as a repeated key.
    qint64 rowsNotStored = 0;
    qint64 rowsWithOtherFieldCount = 0;
    qint64 rowsSpanningLines = 0;
    bool endsInsideQuotes = false;
    // The table's expected header columns that the dump's header lacks at their place,
    // in the table's order; all of them for a file without a header.
    QStringList missingColumns;

    qint64 rowsRefused() const { return rowsRefusedByRules + rowsNotStored; }
    bool headerMatches() const { return missingColumns.isEmpty(); }
    // Every row stored, the header as expected, no sign of a broken quote.
    bool isClean() const;
    // What is wrong, one plain phrase each; empty for a clean table.
    QStringList problems() const;
    // "Table sets: 26452 rows read, 26452 stored, 0 refused", then the problems after ";".
    QString summary() const;

    friend bool operator==(const TableImportReport &, const TableImportReport &) = default;
};

} // namespace RebrickableKit
