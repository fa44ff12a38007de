// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVTokenizer.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace RebrickableKit {

namespace {

constexpr char quote = '"';
constexpr char comma = ',';
constexpr char lineFeed = '\n';
constexpr char carriageReturn = '\r';

// The bytes that mean something outside quotes; everything else is skipped in a tight
// loop, which is where the time of a large dump goes.
constexpr auto specialBytes = [] {
    std::array<bool, 256> table {};
    table[static_cast<unsigned char>(quote)] = true;
    table[static_cast<unsigned char>(comma)] = true;
    table[static_cast<unsigned char>(lineFeed)] = true;
    table[static_cast<unsigned char>(carriageReturn)] = true;
    return table;
}();

bool containsLineBreak(const char *bytes, qsizetype length)
{
    return length > 0
        && (std::memchr(bytes, lineFeed, size_t(length)) || std::memchr(bytes, carriageReturn, size_t(length)));
}

} // namespace

CSVTokenizer::CSVTokenizer(RowHandler onRow)
    : m_onRow(std::move(onRow))
{
}

void CSVTokenizer::feed(QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return;
    m_buffer.append(bytes.data(), bytes.size());
    scan();
    discardConsumedBytes();
}

void CSVTokenizer::finish()
{
    // A quote that is the text's last byte closed its field.
    m_endedInsideQuotes = m_inQuotes && !m_quotePending;
    // Bytes after the last field start, or a row that already has fields (the text ended
    // right after a comma), make a last row. Right after a line break there is none.
    if (m_position > m_fieldStart || !m_fields.empty()) {
        endField(m_position);
        endRow();
    }
    m_buffer.clear();
    m_position = 0;
    m_fieldStart = 0;
    m_inQuotes = false;
    m_sawQuote = false;
    m_quotePending = false;
    m_skipLineFeed = false;
    m_rowSpansLines = false;
}

void CSVTokenizer::scan()
{
    const char *data = m_buffer.constData();
    const qsizetype size = m_buffer.size();
    while (m_position < size) {
        if (m_skipLineFeed) {
            m_skipLineFeed = false;
            if (data[m_position] == lineFeed) {
                ++m_position;
                m_fieldStart = m_position;
                continue;
            }
        }
        if (m_quotePending) {
            m_quotePending = false;
            if (data[m_position] == quote) {
                ++m_position; // a doubled quote: still inside quotes
                continue;
            }
            m_inQuotes = false; // this byte is looked at again as one outside quotes
        }
        if (m_inQuotes) {
            const void *found = std::memchr(data + m_position, quote, size_t(size - m_position));
            const qsizetype quotedEnd = found ? static_cast<const char *>(found) - data : size;
            // Only quoted bytes are searched, and only until the row's first line break in
            // them: dumps without quotes pay nothing.
            if (!m_rowSpansLines)
                m_rowSpansLines = containsLineBreak(data + m_position, quotedEnd - m_position);
            if (!found) {
                m_position = size;
                break;
            }
            m_position = quotedEnd + 1;
            m_quotePending = true;
            continue;
        }
        while (m_position < size && !specialBytes[static_cast<unsigned char>(data[m_position])])
            ++m_position;
        if (m_position == size)
            break;
        const char byte = data[m_position];
        switch (byte) {
        case quote:
            m_inQuotes = true;
            m_sawQuote = true;
            ++m_position;
            break;
        case comma:
            endField(m_position);
            ++m_position;
            m_fieldStart = m_position;
            break;
        case lineFeed:
            endField(m_position);
            endRow();
            ++m_position;
            m_fieldStart = m_position;
            break;
        case carriageReturn:
            endField(m_position);
            endRow();
            ++m_position;
            m_fieldStart = m_position;
            m_skipLineFeed = true;
            break;
        default:
            Q_UNREACHABLE();
        }
    }
}

void CSVTokenizer::endField(qsizetype end)
{
    const qsizetype length = end - m_fieldStart;
    if (!m_sawQuote) {
        m_fields.push_back({m_fieldStart, length, false});
        return;
    }
    m_sawQuote = false;
    const char *field = m_buffer.constData() + m_fieldStart;
    const qsizetype scratchStart = m_scratch.size();
    m_scratch.reserve(scratchStart + length);
    qsizetype index = field[0] == quote ? 1 : 0;
    while (index < length) {
        const char byte = field[index];
        if (byte != quote) {
            m_scratch.append(byte);
            ++index;
        } else if (index + 1 < length && field[index + 1] == quote) {
            m_scratch.append(quote);
            index += 2;
        } else {
            ++index; // a lone quote only opened or closed quoting
        }
    }
    m_fields.push_back({scratchStart, m_scratch.size() - scratchStart, true});
}

void CSVTokenizer::endRow()
{
    m_views.clear();
    for (const FieldRef &field : m_fields) {
        const char *base = field.inScratch ? m_scratch.constData() : m_buffer.constData();
        m_views.emplace_back(base + field.offset, size_t(field.length));
    }
    m_onRow(std::span<const std::string_view>(m_views));
    m_fields.clear();
    m_scratch.clear();
    m_rowSpansLines = false;
}

void CSVTokenizer::discardConsumedBytes()
{
    // Keep only what the current row still needs. Offsets of its finished unquoted fields
    // move with the bytes.
    qsizetype keepFrom = m_fieldStart;
    for (const FieldRef &field : m_fields)
        if (!field.inScratch)
            keepFrom = std::min(keepFrom, field.offset);
    if (keepFrom == 0)
        return;
    m_buffer.remove(0, keepFrom);
    m_position -= keepFrom;
    m_fieldStart -= keepFrom;
    for (FieldRef &field : m_fields)
        if (!field.inScratch)
            field.offset -= keepFrom;
}

} // namespace RebrickableKit
