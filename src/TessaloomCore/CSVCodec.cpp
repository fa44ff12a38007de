// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVCodec.h"

#include "CSVColumnMap.h"
#include "CSVRowReader.h"
#include "CSVValueFormat.h"

using namespace Qt::StringLiterals;

namespace {

using Column = CSVColumn;
using RowReader = CSVRowReader;

void appendSeparator(QString &line)
{
    line.append(u',');
}

void appendText(QString &line, const std::optional<QString> &value, CSVFieldSyntax::LineEndQuoting quoting)
{
    appendSeparator(line);
    if (value)
        CSVFieldSyntax::appendField(line, *value, quoting);
}

void appendInteger(QString &line, std::optional<qint64> value)
{
    appendSeparator(line);
    if (value)
        CSVValueFormat::appendInteger(line, *value);
}

void appendDate(QString &line, const std::optional<QDateTime> &value)
{
    appendSeparator(line);
    if (value)
        CSVValueFormat::appendDate(line, *value);
}

void appendDecimal(QString &line, const std::optional<Decimal> &value)
{
    appendSeparator(line);
    if (value)
        line.append(CSVValueFormat::decimalText(*value));
}

void appendBoolean(QString &line, bool value)
{
    appendSeparator(line);
    line.append(CSVValueFormat::booleanText(value));
}

// Raw values are lower-case words and underscores: they never need quotes.
template <ClosedVocabulary E>
void appendVocabulary(QString &line, std::optional<E> value)
{
    appendSeparator(line);
    if (value)
        line.append(Vocabulary::entry(*value).rawValue);
}

} // namespace

CSVCodec::DecodeError::DecodeError(Kind kind)
    : m_kind(kind)
    , m_what(description().toUtf8())
{
}

QString CSVCodec::DecodeError::description() const
{
    switch (m_kind) {
    case Kind::emptyFile:
        return u"The CSV file is empty."_s;
    case Kind::missingRequiredColumns:
        return u"The CSV file is missing required columns (id, set_number)."_s;
    }
    Q_UNREACHABLE();
    return {};
}

const QStringList &CSVCodec::columnNames()
{
    static const QStringList names{
        u"id"_s,
        u"set_number"_s,
        u"set_name"_s,
        u"year"_s,
        u"theme"_s,
        u"piece_count"_s,
        u"date_added"_s,
        u"is_favorite"_s,
        u"rating"_s,
        u"notes"_s,
        u"acquisition_type"_s,
        u"acquisition_date"_s,
        u"acquisition_source"_s,
        u"price_paid"_s,
        u"price_currency"_s,
        u"overall_condition"_s,
        u"box_condition"_s,
        u"instructions_condition"_s,
        u"built_status"_s,
        u"sticker_status"_s,
        u"completeness"_s,
        u"is_disposed"_s,
        u"disposal_type"_s,
        u"disposal_date"_s,
        u"disposal_price"_s,
        u"disposal_currency"_s,
        u"disposal_notes"_s,
        u"is_trashed"_s,
        u"trashed_date"_s,
    };
    Q_ASSERT(names.size() == csvRecordColumnCount);
    return names;
}

QString CSVCodec::headerLine()
{
    return columnNames().join(u',');
}

QString CSVCodec::encode(const QList<InventoryRecord> &records)
{
    QString text = headerLine();
    // About 200 characters make a typical line; one reservation spares most regrowth.
    text.reserve(text.size() + records.size() * 224);
    for (const InventoryRecord &record : records) {
        text.append(u'\n');
        appendRecord(text, record);
    }
    return text;
}

void CSVCodec::appendRecord(QString &line, const InventoryRecord &record, CSVFieldSyntax::LineEndQuoting quoting)
{
    // The first field has no separator before it; every later append starts with one.
    CSVValueFormat::appendUuid(line, record.id);
    appendText(line, record.setNumber, quoting);
    appendText(line, record.setName, quoting);
    appendInteger(line, record.year);
    appendText(line, record.theme, quoting);
    appendInteger(line, record.pieceCount);
    appendDate(line, record.dateAdded);
    appendBoolean(line, record.isFavorite);
    appendInteger(line, record.rating);
    appendText(line, record.notes, quoting);
    appendVocabulary(line, record.acquisitionType);
    appendDate(line, record.acquisitionDate);
    appendText(line, record.acquisitionSource, quoting);
    appendDecimal(line, record.pricePaid);
    appendText(line, record.priceCurrency, quoting);
    appendVocabulary(line, record.overallCondition);
    appendVocabulary(line, record.boxCondition);
    appendVocabulary(line, record.instructionsCondition);
    appendVocabulary(line, record.builtStatus);
    appendVocabulary(line, record.stickerStatus);
    appendVocabulary(line, record.completeness);
    appendBoolean(line, record.isDisposed);
    appendVocabulary(line, record.disposalType);
    appendDate(line, record.disposalDate);
    appendDecimal(line, record.disposalPrice);
    appendText(line, record.disposalCurrency, quoting);
    appendText(line, record.disposalNotes, quoting);
    appendBoolean(line, record.isTrashed);
    appendDate(line, record.trashedDate);
}

CSVCodec::DecodeResult CSVCodec::decode(QStringView text)
{
    const QList<QStringView> lines = CSVFieldSyntax::lines(text);
    if (lines.isEmpty())
        throw DecodeError(DecodeError::Kind::emptyFile);

    QString buffer;
    QList<QStringView> fields;
    CSVFieldSyntax::parseFields(lines.first(), buffer, fields);
    const CSVColumnMap columns(fields);
    if (!columns.contains(u"id"_s) || !columns.contains(u"set_number"_s))
        throw DecodeError(DecodeError::Kind::missingRequiredColumns);

    // Each column's position is looked up once for the whole file, not once per row.
    const CSVRowReader::Positions positions = CSVRowReader::positions(columns, columnNames());

    // One time for every row that has no readable date_added: the rows of one import were
    // added together.
    const QDateTime importTime = QDateTime::currentDateTimeUtc();

    DecodeResult result;
    result.records.reserve(lines.size() - 1);
    for (qsizetype index = 1; index < lines.size(); ++index) {
        CSVFieldSyntax::parseFields(lines.at(index), buffer, fields);
        const RowReader row(positions, fields);

        const std::optional<QStringView> idText = row.value(Column::id);
        const std::optional<QUuid> id = idText ? CSVValueFormat::uuid(*idText) : std::nullopt;
        std::optional<QString> setNumber = row.text(Column::setNumber);
        if (!id || !setNumber) {
            // Counted among the non-blank lines, header first: blank lines in the file do not
            // move the number, so it can differ from an editor's line number.
            result.errors.append(u"Line "_s + QString::number(index + 1) + u": missing id or set_number"_s);
            continue;
        }

        InventoryRecord record;
        record.id = *id;
        record.setNumber = std::move(*setNumber);
        record.setName = row.text(Column::setName);
        record.year = row.integer(Column::year);
        record.theme = row.text(Column::theme);
        record.pieceCount = row.integer(Column::pieceCount);
        record.dateAdded = row.date(Column::dateAdded).value_or(importTime);
        record.isFavorite = row.boolean(Column::isFavorite);
        record.rating = row.integer(Column::rating).value_or(0);
        record.notes = row.text(Column::notes);
        record.acquisitionType = row.vocabulary<AcquisitionType>(Column::acquisitionType);
        record.acquisitionDate = row.date(Column::acquisitionDate);
        record.acquisitionSource = row.text(Column::acquisitionSource);
        record.pricePaid = row.decimal(Column::pricePaid);
        record.priceCurrency = row.text(Column::priceCurrency);
        record.overallCondition = row.vocabulary<OverallCondition>(Column::overallCondition);
        record.boxCondition = row.vocabulary<BoxCondition>(Column::boxCondition);
        record.instructionsCondition = row.vocabulary<InstructionsCondition>(Column::instructionsCondition);
        record.builtStatus = row.vocabulary<BuiltStatus>(Column::builtStatus);
        record.stickerStatus = row.vocabulary<StickerStatus>(Column::stickerStatus);
        record.completeness = row.vocabulary<SetCompleteness>(Column::completeness);
        record.isDisposed = row.boolean(Column::isDisposed);
        record.disposalType = row.vocabulary<DisposalType>(Column::disposalType);
        record.disposalDate = row.date(Column::disposalDate);
        record.disposalPrice = row.decimal(Column::disposalPrice);
        record.disposalCurrency = row.text(Column::disposalCurrency);
        record.disposalNotes = row.text(Column::disposalNotes);
        record.isTrashed = row.boolean(Column::isTrashed);
        record.trashedDate = row.date(Column::trashedDate);
        result.records.append(std::move(record));
    }
    return result;
}
