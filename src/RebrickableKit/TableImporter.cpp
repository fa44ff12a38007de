// SPDX-License-Identifier: GPL-3.0-or-later
#include "TableImporter.h"

#include "CSVFieldRules.h"
#include "CSVFileError.h"
#include "CSVTokenizer.h"
#include "PartRelationship.h"
#include "SQLiteConnection.h"
#include "Utf8Validator.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace RebrickableKit {

namespace {

// Texts are bound as C strings elsewhere (length -1), which ends them at the first NUL.
// Binding from bytes must cut them at the same place to store the same value.
std::string_view upToNul(std::string_view field)
{
    const size_t nul = field.find('\0');
    return nul == std::string_view::npos ? field : field.substr(0, nul);
}

} // namespace

bool TableImporter::bindRow(SQLiteStatement &statement, const CatalogSchema::ImportTable &table,
                            std::span<const std::string_view> fields)
{
    if (qsizetype(fields.size()) < table.leastFields)
        return false;
    using Column = CatalogSchema::Column;
    static constexpr std::string_view prefix(CatalogSchema::partImagePrefix);
    const qsizetype columnCount = table.columns.size();
    for (qsizetype index = 0; index < columnCount; ++index) {
        // Only an optional last column may lie beyond the row's end; it binds NULL.
        if (index >= qsizetype(fields.size())) {
            statement.bindNull();
            continue;
        }
        const std::string_view field = fields[size_t(index)];
        switch (table.columns[index]) {
        case Column::requiredInteger: {
            const auto value = CSVFieldRules::integer(field);
            if (!value) {
                statement.reset();
                return false;
            }
            statement.bind(*value);
            break;
        }
        case Column::forgivingInteger: {
            const auto value = CSVFieldRules::integer(field);
            if (value)
                statement.bind(*value);
            else
                statement.bindNull();
            break;
        }
        case Column::text:
            statement.bindUnownedUtf8(upToNul(field));
            break;
        case Column::optionalText:
            if (field.empty())
                statement.bindNull();
            else
                statement.bindUnownedUtf8(upToNul(field));
            break;
        case Column::boolean:
            statement.bind(CSVFieldRules::boolean(field));
            break;
        case Column::relationType: {
            // One ASCII letter or nothing: a longer field can't match, whatever it holds.
            const char16_t letter = field.size() == 1 ? char16_t(static_cast<unsigned char>(field[0])) : u'\0';
            if (!PartRelationship::relationType(QStringView(&letter, 1))) {
                statement.reset();
                return false;
            }
            statement.bindUnownedUtf8(field);
            break;
        }
        case Column::partImageURL:
            if (field.empty())
                statement.bindNull();
            else if (field.starts_with(prefix))
                statement.bindUnownedUtf8(upToNul(field.substr(prefix.size())));
            else
                statement.bindUnownedUtf8(upToNul(field));
            break;
        }
    }
    return true;
}

namespace {

// The header's fields against the names the table expects at each place. Extra columns
// after the expected ones are no difference; a missing or renamed one is.
QStringList missingHeaderColumns(const CatalogSchema::ImportTable &table, std::span<const std::string_view> header)
{
    static constexpr std::string_view byteOrderMark("\xEF\xBB\xBF");
    QStringList missing;
    for (qsizetype index = 0; index < table.headerColumns.size(); ++index) {
        const QString &expected = table.headerColumns.at(index);
        std::string_view field = index < qsizetype(header.size()) ? header[size_t(index)] : std::string_view();
        if (index == 0 && field.starts_with(byteOrderMark))
            field.remove_prefix(byteOrderMark.size());
        if (index >= qsizetype(header.size()) || QString::fromUtf8(field.data(), qsizetype(field.size())) != expected)
            missing.append(expected);
    }
    return missing;
}

template <bool counted>
TableImportReport importRows(SQLiteConnection &connection, const CatalogSchema::ImportTable &table,
                             const QString &csvPath)
{
    QFile file(csvPath);
    if (!file.exists())
        throw CSVFileError(CSVFileError::Kind::fileNotFound, csvPath);
    if (!file.open(QIODevice::ReadOnly))
        throw CSVFileError(CSVFileError::Kind::readFailed, csvPath);

    connection.execute(u"BEGIN TRANSACTION"_s);
    // Ends on every path, so that an error thrown mid-table still lets the connection close.
    SQLiteStatement statement = connection.prepare(table.insertStatement);

    TableImportReport report;
    report.tableName = table.tableName;
    report.missingColumns = table.headerColumns; // until a header shows otherwise
    // Only elements.csv may leave out its last column altogether.
    const bool lastColumnMayBeMissing = table.leastFields < table.columns.size();
    size_t headerFieldCount = 0;
    const CSVTokenizer *source = nullptr;

    bool isHeader = true;
    CSVTokenizer tokenizer([&](std::span<const std::string_view> fields) {
        if (isHeader) {
            // Rows are read by position only; the header is looked at just to tell whether
            // the dump still has the columns its table expects.
            isHeader = false;
            if constexpr (counted) {
                report.missingColumns = missingHeaderColumns(table, fields);
                headerFieldCount = fields.size();
            }
            return;
        }
        if constexpr (counted) {
            ++report.rowsRead;
            if (fields.size() != headerFieldCount && !(lastColumnMayBeMissing && fields.size() + 1 == headerFieldCount))
                ++report.rowsWithOtherFieldCount;
            if (source->rowSpansLines())
                ++report.rowsSpanningLines;
        }
        if (!TableImporter::bindRow(statement, table, fields)) {
            if constexpr (counted)
                ++report.rowsRefusedByRules;
            return;
        }
        // A row that breaks a constraint (a repeated key) simply isn't stored, and the
        // import goes on; the result only decides which count the row goes to. An ignored
        // row of INSERT OR IGNORE is done with no change.
        const SQLiteStatement::StepResult result = statement.stepWithResult();
        if constexpr (counted) {
            if (result == SQLiteStatement::StepResult::done && connection.changes() > 0)
                ++report.rowsStored;
            else
                ++report.rowsNotStored;
        } else {
            Q_UNUSED(result);
        }
        statement.reset();
    });
    source = &tokenizer;

    Utf8Validator validator;
    QByteArray chunk(TableImporter::chunkSize, Qt::Uninitialized);
    for (;;) {
        const qint64 count = file.read(chunk.data(), TableImporter::chunkSize);
        if (count < 0)
            throw CSVFileError(CSVFileError::Kind::readFailed, csvPath);
        if (count == 0)
            break;
        const QByteArrayView piece(chunk.constData(), count);
        if (!validator.feed(piece))
            throw CSVFileError(CSVFileError::Kind::invalidUTF8, csvPath);
        tokenizer.feed(piece);
    }
    if (!validator.finish())
        throw CSVFileError(CSVFileError::Kind::invalidUTF8, csvPath);
    tokenizer.finish();
    if constexpr (counted)
        report.endsInsideQuotes = tokenizer.endedInsideQuotes();

    // The statement was reset after its last row, so it does not stand in the way of the
    // commit; it ends with this function.
    connection.execute(u"COMMIT"_s);
    return report;
}

} // namespace

TableImportReport TableImporter::importTable(SQLiteConnection &connection, const CatalogSchema::ImportTable &table,
                                             const QString &csvPath)
{
    return importRows<true>(connection, table, csvPath);
}

void TableImporter::importTableUncounted(SQLiteConnection &connection, const CatalogSchema::ImportTable &table,
                                         const QString &csvPath)
{
    importRows<false>(connection, table, csvPath);
}

} // namespace RebrickableKit
