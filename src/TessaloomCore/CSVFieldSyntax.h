// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

// The text level of the collection CSV file: lines, fields and quoting, with nothing known
// of columns or values. Shared by CSVCodec and by the collection's import and export, which
// write the same file with two more columns.
//
// Reading and writing are deliberately not mirror images. The reader cuts the text into
// lines before it looks at quotes, so a quoted field holding a line break is cut in two;
// the writer still quotes such a field. Files written by earlier versions depend on both
// halves staying as they are.
class CSVFieldSyntax
{
public:
    // Which line-end characters make the writer quote a field. The codec quotes on both; the
    // collection export quotes on a line feed only, leaving a lone carriage return bare.
    enum class LineEndQuoting {
        lineFeedAndCarriageReturn,
        lineFeedOnly,
    };

    // True for the characters that end a line: line feed, vertical tab, form feed, carriage
    // return, next line (U+0085), line separator (U+2028) and paragraph separator (U+2029).
    static bool isNewline(char16_t unit)
    {
        return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
    }

    // The text of a file's UTF-8 bytes with a byte-order mark at its start kept as U+FEFF.
    // QString::fromUtf8() drops the mark silently; kept, it stays part of the first column's
    // name, so a file that starts with one has no "id" column, whichever way it is read.
    static QString textFromUtf8(QByteArrayView bytes);

    // The text cut at every newline character, without the empty pieces: "\r\n", "\n" and
    // "\r" files read alike, and blank lines vanish. The views point into `text`.
    static QList<QStringView> lines(QStringView text);

    // The fields of one line. A double quote outside quotes opens a quoted stretch wherever
    // it stands in the field and is dropped; inside quotes, two double quotes are one and
    // a lone one closes the stretch; a comma outside quotes ends the field. The last field
    // is always there, also when empty ("a," is two fields), and an unclosed quote runs to
    // the end of the line.
    static QStringList fields(QStringView line);

    // The same for reading many lines fast: the unquoted text of the fields goes into
    // `buffer` and `fields` receives views into it, both reused from line to line. The
    // views stay valid until the next call with the same buffer.
    static void parseFields(QStringView line, QString &buffer, QList<QStringView> &fields);

    // Whether the writer wraps `field` in double quotes: when it holds a comma, a double
    // quote or a line end that `quoting` names.
    static bool needsQuotes(QStringView field, LineEndQuoting quoting = LineEndQuoting::lineFeedAndCarriageReturn);

    // Appends `field` to `line` as the writer writes it: bare, or in double quotes with each
    // double quote inside doubled. An empty field stays empty.
    static void appendField(QString &line, QStringView field,
                            LineEndQuoting quoting = LineEndQuoting::lineFeedAndCarriageReturn);
    static QString escapedField(QStringView field,
                                LineEndQuoting quoting = LineEndQuoting::lineFeedAndCarriageReturn);
};
