// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace RebrickableKit {

// Splits the bytes of a dump into rows of fields, fed in pieces of any size. Pieces may
// end anywhere: inside quotes, between CR and LF, inside a multi-byte character. The rows
// are the same whichever way the text is cut, and the same as those of CSVParser.
//
// Rules: comma delimiter, double-quote quoting; a quote opens quoting anywhere in a field;
// "" inside quotes is one quote; LF, CRLF and a lone CR each end a row; line breaks inside
// quotes belong to the field; nothing is trimmed. Fields come out as raw bytes with the
// quoting removed; decoding is the consumer's business. Every row is handed on, the first
// (header) row too.
class CSVTokenizer
{
public:
    // The views are valid only during the call.
    using RowHandler = std::function<void(std::span<const std::string_view> fields)>;

    explicit CSVTokenizer(RowHandler onRow);

    void feed(QByteArrayView bytes);
    // Ends the text: a last row without a line break is handed on here. An unterminated
    // quote is accepted and its field runs to the end.
    void finish();

    // Whether the row being handed on holds a line break inside quotes, so that it took
    // more than one line of the text. Meant to be asked from within the row handler.
    bool rowSpansLines() const { return m_rowSpansLines; }
    // Whether the text given to the last finish() ended inside quotes: its last field ran
    // to the end of the text.
    bool endedInsideQuotes() const { return m_endedInsideQuotes; }

private:
    struct FieldRef {
        qsizetype offset;
        qsizetype length;
        bool inScratch;
    };

    void scan();
    void endField(qsizetype end);
    void endRow();
    void discardConsumedBytes();

    RowHandler m_onRow;
    // Bytes from the start of the current row (or the last row end) onwards.
    QByteArray m_buffer;
    qsizetype m_position = 0;
    qsizetype m_fieldStart = 0;
    bool m_inQuotes = false;
    bool m_sawQuote = false;
    // A quote inside quotes whose meaning depends on the byte after it.
    bool m_quotePending = false;
    // A CR ended the last row; an LF right after it belongs to the same line break.
    bool m_skipLineFeed = false;
    bool m_rowSpansLines = false;
    bool m_endedInsideQuotes = false;
    std::vector<FieldRef> m_fields;
    // Unquoted copies of the current row's quoted fields.
    QByteArray m_scratch;
    std::vector<std::string_view> m_views;
};

} // namespace RebrickableKit
