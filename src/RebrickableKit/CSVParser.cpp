// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVParser.h"

#include "CSVTokenizer.h"
#include "Utf8Validator.h"

namespace RebrickableKit {

QList<QStringList> CSVParser::parse(const QString &text)
{
    return parse(QByteArrayView(text.toUtf8()));
}

QList<QStringList> CSVParser::parse(QByteArrayView utf8)
{
    QList<QStringList> rows;
    bool isHeader = true;
    CSVTokenizer tokenizer([&rows, &isHeader](std::span<const std::string_view> fields) {
        if (isHeader) {
            isHeader = false;
            return;
        }
        QStringList row;
        row.reserve(qsizetype(fields.size()));
        for (const std::string_view field : fields) {
            const QByteArrayView bytes(field.data(), qsizetype(field.size()));
            row.append(Utf8Validator::isValid(bytes) ? QString::fromUtf8(bytes) : QString());
        }
        rows.append(std::move(row));
    });
    tokenizer.feed(utf8);
    tokenizer.finish();
    return rows;
}

} // namespace RebrickableKit
