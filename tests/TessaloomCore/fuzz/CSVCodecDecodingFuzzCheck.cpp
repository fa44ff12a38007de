// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVCodecDecodingFuzzCheck.h"

#include "CSVCodec.h"
#include "CSVColumnMap.h"
#include "CSVFieldSyntax.h"

using namespace Qt::StringLiterals;

namespace {

bool isTrimmed(const QString &text)
{
    return !text.isEmpty() && CSVColumnMap::trimmed(text).size() == text.size();
}

bool hasNoNewline(const QString &text)
{
    for (const QChar character : text) {
        if (CSVFieldSyntax::isNewline(character.unicode()))
            return false;
    }
    return true;
}

bool isReadText(const std::optional<QString> &text)
{
    return !text || (isTrimmed(*text) && hasNoNewline(*text));
}

// Dates the writer puts in the four-digit-year form that the reader takes back.
bool isWithinWritableYears(const std::optional<QDateTime> &date)
{
    static const qint64 first = QDateTime(QDate(1, 1, 1), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch()
        - qint64(366) * 86'400'000; // 0000-01-01, a leap year before year 1
    static const qint64 end = QDateTime(QDate(10000, 1, 1), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    if (!date)
        return true;
    const qint64 milliseconds = date->toMSecsSinceEpoch();
    return milliseconds >= first && milliseconds < end;
}

bool keepsTheRules(const InventoryRecord &record)
{
    if (!isTrimmed(record.setNumber) || !hasNoNewline(record.setNumber) || !record.dateAdded.isValid())
        return false;
    for (const std::optional<QString> *text : {&record.setName, &record.theme, &record.notes, &record.acquisitionSource,
                                               &record.priceCurrency, &record.disposalCurrency, &record.disposalNotes}) {
        if (!isReadText(*text))
            return false;
    }
    for (const std::optional<QDateTime> *date :
         {&record.acquisitionDate, &record.disposalDate, &record.trashedDate}) {
        if (*date && !(*date)->isValid())
            return false;
    }
    return true;
}

bool canBeWrittenAndReadBack(const InventoryRecord &record)
{
    return isWithinWritableYears(record.dateAdded) && isWithinWritableYears(record.acquisitionDate)
        && isWithinWritableYears(record.disposalDate) && isWithinWritableYears(record.trashedDate);
}

} // namespace

CSVCodecDecodingFuzzCheck::Verdict CSVCodecDecodingFuzzCheck::verdict(QByteArrayView bytes)
{
    const QString text = CSVFieldSyntax::textFromUtf8(bytes);
    const QList<QStringView> lines = CSVFieldSyntax::lines(text);
    QStringList header;
    if (!lines.isEmpty()) {
        QString buffer;
        QList<QStringView> names;
        CSVFieldSyntax::parseFields(lines.first(), buffer, names);
        if (CSVColumnMap::hasDuplicateNames(names))
            return Verdict::repeatedColumn;
        for (const QStringView name : std::as_const(names))
            header.append(name.toString());
    }
    const bool hasRequiredColumns = header.contains(u"id"_s) && header.contains(u"set_number"_s);

    try {
        const CSVCodec::DecodeResult result = CSVCodec::decode(text);
        if (lines.isEmpty() || !hasRequiredColumns)
            return Verdict::broken;
        // Every data line is a record or an error, and errors name their lines in order.
        if (result.records.size() + result.errors.size() != lines.size() - 1)
            return Verdict::broken;
        qsizetype previousLine = 1;
        for (const QString &error : result.errors) {
            if (!error.startsWith(u"Line "_s) || !error.endsWith(u": missing id or set_number"_s))
                return Verdict::broken;
            bool isNumber = false;
            const qsizetype line = error.section(u' ', 1, 1).chopped(1).toLongLong(&isNumber);
            if (!isNumber || line <= previousLine || line > lines.size())
                return Verdict::broken;
            previousLine = line;
        }
        QList<InventoryRecord> writable;
        for (const InventoryRecord &record : result.records) {
            if (!keepsTheRules(record))
                return Verdict::broken;
            if (canBeWrittenAndReadBack(record))
                writable.append(record);
        }
        // What was read is written and read again to the same file: every read value has a
        // written form that reads back as itself.
        const QString written = CSVCodec::encode(writable);
        const CSVCodec::DecodeResult again = CSVCodec::decode(written);
        if (!again.errors.isEmpty() || CSVCodec::encode(again.records) != written)
            return Verdict::broken;
        return Verdict::value;
    } catch (const CSVCodec::DecodeError &error) {
        if (lines.isEmpty())
            return error.kind() == CSVCodec::DecodeError::Kind::emptyFile ? Verdict::decodingError : Verdict::broken;
        if (!hasRequiredColumns && error.kind() == CSVCodec::DecodeError::Kind::missingRequiredColumns)
            return Verdict::decodingError;
        return Verdict::broken;
    } catch (...) {
        return Verdict::broken;
    }
}
