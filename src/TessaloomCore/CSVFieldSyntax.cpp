// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVFieldSyntax.h"

#include <QStringDecoder>

QString CSVFieldSyntax::textFromUtf8(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(bytes);
}

QList<QStringView> CSVFieldSyntax::lines(QStringView text)
{
    QList<QStringView> pieces;
    const char16_t *const begin = text.utf16();
    const qsizetype size = text.size();
    qsizetype start = 0;
    for (qsizetype position = 0; position < size; ++position) {
        if (!isNewline(begin[position]))
            continue;
        if (position > start)
            pieces.append(text.sliced(start, position - start));
        start = position + 1;
    }
    if (size > start)
        pieces.append(text.sliced(start));
    return pieces;
}

QStringList CSVFieldSyntax::fields(QStringView line)
{
    QString buffer;
    QList<QStringView> views;
    parseFields(line, buffer, views);
    QStringList result;
    result.reserve(views.size());
    for (const QStringView view : std::as_const(views))
        result.append(view.toString());
    return result;
}

void CSVFieldSyntax::parseFields(QStringView line, QString &buffer, QList<QStringView> &fields)
{
    fields.clear();
    // The unquoted text is never longer than the line, so the buffer never grows while the
    // views into it are made.
    buffer.resize(line.size());
    char16_t *const output = reinterpret_cast<char16_t *>(buffer.data());
    const char16_t *const input = line.utf16();
    const qsizetype size = line.size();

    qsizetype written = 0;
    qsizetype fieldStart = 0;
    bool insideQuotes = false;
    for (qsizetype position = 0; position < size; ++position) {
        const char16_t unit = input[position];
        if (insideQuotes) {
            if (unit == u'"') {
                if (position + 1 < size && input[position + 1] == u'"') {
                    output[written++] = u'"';
                    ++position;
                } else {
                    insideQuotes = false;
                }
            } else {
                output[written++] = unit;
            }
        } else if (unit == u'"') {
            insideQuotes = true;
        } else if (unit == u',') {
            fields.append(QStringView(output + fieldStart, written - fieldStart));
            fieldStart = written;
        } else {
            output[written++] = unit;
        }
    }
    fields.append(QStringView(output + fieldStart, written - fieldStart));
}

bool CSVFieldSyntax::needsQuotes(QStringView field, LineEndQuoting quoting)
{
    const bool carriageReturnQuotes = quoting == LineEndQuoting::lineFeedAndCarriageReturn;
    for (const QChar character : field) {
        const char16_t unit = character.unicode();
        if (unit == u',' || unit == u'"' || unit == u'\n' || (unit == u'\r' && carriageReturnQuotes))
            return true;
    }
    return false;
}

void CSVFieldSyntax::appendField(QString &line, QStringView field, LineEndQuoting quoting)
{
    if (!needsQuotes(field, quoting)) {
        line.append(field);
        return;
    }
    line.append(u'"');
    qsizetype start = 0;
    for (qsizetype position = 0; position < field.size(); ++position) {
        if (field[position] == u'"') {
            // Up to and including this quote, then the quote once more.
            line.append(field.sliced(start, position + 1 - start));
            line.append(u'"');
            start = position + 1;
        }
    }
    line.append(field.sliced(start));
    line.append(u'"');
}

QString CSVFieldSyntax::escapedField(QStringView field, LineEndQuoting quoting)
{
    QString result;
    appendField(result, field, quoting);
    return result;
}
