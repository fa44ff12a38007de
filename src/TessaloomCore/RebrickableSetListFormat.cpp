// SPDX-License-Identifier: GPL-3.0-or-later
#include "RebrickableSetListFormat.h"

#include "CSVColumnMap.h"
#include "CSVFieldSyntax.h"
#include "SetListQuantity.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

// Where the columns the reader uses stand in the header; the other two only have to be
// there for the file to be recognised.
struct HeaderPositions
{
    qsizetype setNumber = -1;
    qsizetype quantity = -1;
};

// A spreadsheet saving as "CSV UTF-8" puts a byte-order mark first; the header must be
// found behind it.
QStringView withoutByteOrderMark(QStringView text)
{
    return text.startsWith(QChar(0xFEFF)) ? text.sliced(1) : text;
}

// The positions of the four columns in `header`, matched trimmed and in any case, or
// nothing when one of them is missing. A name given twice counts at its first place.
std::optional<HeaderPositions> headerPositions(QStringView header)
{
    QString buffer;
    QList<QStringView> names;
    CSVFieldSyntax::parseFields(header, buffer, names);

    const QStringList &wanted = RebrickableSetListFormat::columnNames();
    std::array<qsizetype, 4> found{-1, -1, -1, -1};
    for (qsizetype position = 0; position < names.size(); ++position) {
        const QStringView name = CSVColumnMap::trimmed(names.at(position));
        for (std::size_t column = 0; column < found.size(); ++column) {
            if (found[column] < 0 && name.compare(wanted.at(qsizetype(column)), Qt::CaseInsensitive) == 0)
                found[column] = position;
        }
    }
    for (const qsizetype position : found) {
        if (position < 0)
            return std::nullopt;
    }
    return HeaderPositions{found[0], found[1]};
}

QString lineText(qsizetype lineNumber, QStringView reason)
{
    return u"Line "_s + QString::number(lineNumber) + u": "_s + reason;
}

} // namespace

const QStringList &RebrickableSetListFormat::columnNames()
{
    static const QStringList names{u"Set Number"_s, u"Quantity"_s, u"Includes Spares"_s, u"Inventory Ver"_s};
    return names;
}

bool RebrickableSetListFormat::recognises(QStringView text)
{
    const QList<QStringView> lines = CSVFieldSyntax::lines(withoutByteOrderMark(text));
    return !lines.isEmpty() && headerPositions(lines.first()).has_value();
}

ImportedSetList RebrickableSetListFormat::read(QStringView text)
{
    ImportedSetList result;
    const QList<QStringView> lines = CSVFieldSyntax::lines(withoutByteOrderMark(text));
    if (lines.isEmpty())
        return result;
    const std::optional<HeaderPositions> positions = headerPositions(lines.first());
    if (!positions)
        return result;

    QString buffer;
    QList<QStringView> fields;
    result.entries.reserve(lines.size() - 1);
    for (qsizetype index = 1; index < lines.size(); ++index) {
        // Counted among the non-blank lines, header first, as the collection CSV import
        // counts them: blank lines in the file do not move the number.
        const qsizetype lineNumber = index + 1;
        CSVFieldSyntax::parseFields(lines.at(index), buffer, fields);
        // A row shorter than the header simply lacks the later fields.
        const std::optional<QStringView> setNumber = CSVColumnMap::value(fields, positions->setNumber);
        if (!setNumber) {
            result.skipped.append(lineText(lineNumber, u"missing set number"));
            continue;
        }
        const std::optional<QStringView> quantityText = CSVColumnMap::value(fields, positions->quantity);
        const std::optional<qint64> quantity = quantityText ? SetListQuantity::fromText(*quantityText) : std::nullopt;
        if (!quantity) {
            result.skipped.append(lineText(lineNumber, u"invalid quantity"));
            continue;
        }
        result.entries.append({setNumber->toString(), *quantity, lineNumber});
    }
    return result;
}

QString RebrickableSetListFormat::write(const QList<QPair<QString, qint64>> &counts)
{
    QString text = columnNames().join(u',');
    text.append(u'\n');
    for (const auto &[setNumber, quantity] : counts) {
        CSVFieldSyntax::appendField(text, setNumber);
        text.append(u',');
        text.append(QString::number(quantity));
        // Every copy is counted with its spare pieces and the first inventory, as the
        // collection does not track either.
        text.append(u",True,1\n"_s);
    }
    return text;
}
