// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CSVFieldSyntax.h"
#include "InventoryRecord.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <exception>

// Turns a list of InventoryRecord values into the text of the collection CSV file and back.
// No state, no store: the one definition of the file's 29 columns and of how each value
// stands in them. The collection's import and export write the same file with two more
// columns behind these (`retired_date`, `entry_type`); the codec ignores them on reading,
// as it ignores every column it does not know.
class CSVCodec
{
public:
    struct DecodeResult
    {
        QList<InventoryRecord> records;
        QStringList errors; // one text per rejected row, "Line 3: missing id or set_number"

        friend bool operator==(const DecodeResult &, const DecodeResult &) = default;
    };

    // Why a whole file is refused. Rows of bad data never refuse the file: they go to
    // DecodeResult::errors.
    class DecodeError : public std::exception
    {
    public:
        enum class Kind {
            emptyFile,              // "The CSV file is empty."
            missingRequiredColumns, // "The CSV file is missing required columns (id, set_number)."
        };

        explicit DecodeError(Kind kind);

        Kind kind() const { return m_kind; }
        // The sentence a screen shows as it is.
        QString description() const;
        const char *what() const noexcept override { return m_what.constData(); }

    private:
        Kind m_kind;
        QByteArray m_what;
    };

    // The 29 column names in file order, "id" to "trashed_date".
    static const QStringList &columnNames();
    // The header line: the column names joined by ",".
    static QString headerLine();

    // The file's text: the header line, then one line per record, joined by line feeds,
    // with no line end after the last line and no byte-order mark. Never fails.
    static QString encode(const QList<InventoryRecord> &records);
    // The 29 fields of one record joined by ",", appended to `line`. An absent value is an
    // empty field. `quoting` is the writer's choice of line ends that call for quotes.
    static void appendRecord(QString &line, const InventoryRecord &record,
                             CSVFieldSyntax::LineEndQuoting quoting = CSVFieldSyntax::LineEndQuoting::lineFeedAndCarriageReturn);

    // Reads the records of a file's text. Throws DecodeError when the text has no line at
    // all, or its header lacks "id" or "set_number"; a header that names one column twice
    // stops the process (see CSVColumnMap). A row without a readable `id` or without a
    // `set_number` adds "Line N: missing id or set_number", N counting the non-blank lines
    // from 1 for the header, and reading goes on.
    static DecodeResult decode(QStringView text);
    // For texts that are built in place ("header + rows"), which do not turn into a view.
    static DecodeResult decode(const QString &text) { return decode(QStringView(text)); }
};
