// SPDX-License-Identifier: GPL-3.0-or-later
#include "CSVFieldRules.h"

#include <cstdint>
#include <limits>

using namespace Qt::StringLiterals;

namespace RebrickableKit {

namespace {

template <typename Char>
std::optional<qint64> parseInteger(const Char *characters, qsizetype size)
{
    qsizetype position = 0;
    bool negative = false;
    if (size > 0 && (characters[0] == Char('+') || characters[0] == Char('-'))) {
        negative = characters[0] == Char('-');
        position = 1;
    }
    if (position == size)
        return std::nullopt;
    // Accumulated as a magnitude so that the most negative value still fits.
    const std::uint64_t limit = negative ? std::uint64_t(std::numeric_limits<qint64>::max()) + 1
                                         : std::uint64_t(std::numeric_limits<qint64>::max());
    std::uint64_t magnitude = 0;
    for (; position < size; ++position) {
        const auto character = characters[position];
        if (character < Char('0') || character > Char('9'))
            return std::nullopt;
        const unsigned digit = unsigned(character - Char('0'));
        if (magnitude > (limit - digit) / 10)
            return std::nullopt;
        magnitude = magnitude * 10 + digit;
    }
    if (negative)
        return magnitude == limit ? std::numeric_limits<qint64>::min() : -qint64(magnitude);
    return qint64(magnitude);
}

} // namespace

std::optional<qint64> CSVFieldRules::integer(std::string_view field)
{
    return parseInteger(field.data(), qsizetype(field.size()));
}

std::optional<qint64> CSVFieldRules::integer(QStringView field)
{
    return parseInteger(field.utf16(), field.size());
}

bool CSVFieldRules::boolean(std::string_view field)
{
    return field == "True" || field == "t";
}

bool CSVFieldRules::boolean(QStringView field)
{
    return field == u"True" || field == u"t";
}

} // namespace RebrickableKit
