// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVParserFuzzCheck.h"

#include <RebrickableKit/CSVParser.h>
#include <RebrickableKit/CSVRowParsers.h>
#include <RebrickableKit/CSVTokenizer.h>

#include <QList>

using namespace RebrickableKit;

namespace {

using ByteRows = QList<QList<QByteArray>>;

ByteRows tokenize(QByteArrayView input, qsizetype pieceSize)
{
    ByteRows rows;
    CSVTokenizer tokenizer([&rows](std::span<const std::string_view> fields) {
        QList<QByteArray> row;
        for (const std::string_view field : fields)
            row.append(QByteArray(field.data(), qsizetype(field.size())));
        rows.append(row);
    });
    for (qsizetype start = 0; start < input.size(); start += pieceSize)
        tokenizer.feed(input.sliced(start, std::min(pieceSize, input.size() - start)));
    tokenizer.finish();
    return rows;
}

} // namespace

bool CSVParserFuzzCheck::check(QByteArrayView input)
{
    const QList<QStringList> rows = CSVParser::parse(input);
    for (const QStringList &row : rows) {
        CSVRowParsers::parseTheme(row);
        CSVRowParsers::parseColor(row);
        CSVRowParsers::parsePartCategory(row);
        CSVRowParsers::parsePart(row);
        CSVRowParsers::parseElement(row);
        CSVRowParsers::parseMinifig(row);
        CSVRowParsers::parseSet(row);
        CSVRowParsers::parseInventory(row);
        CSVRowParsers::parseInventoryPart(row);
        CSVRowParsers::parseInventorySet(row);
        CSVRowParsers::parseInventoryMinifig(row);
    }
    const ByteRows whole = tokenize(input, std::max<qsizetype>(1, input.size()));
    if (whole.size() != rows.size() + (whole.isEmpty() ? 0 : 1))
        return false;
    // Piece sizes from the input itself, so the fuzzer explores the cuts too.
    const qsizetype pieceSize = input.isEmpty() ? 1 : 1 + qsizetype(static_cast<unsigned char>(input.front()) % 7);
    return tokenize(input, pieceSize) == whole && tokenize(input, 1) == whole;
}
