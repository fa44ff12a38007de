// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringView>

#include <optional>
#include <string_view>

namespace RebrickableKit {

// How one field of a dump becomes a number or a truth value. Both the record parsers
// (on decoded text) and the builder's streaming import (on raw bytes) use these, so the
// two paths agree on every field.
class CSVFieldRules
{
public:
    // Strict decimal: an optional single "+" or "-", then one or more ASCII digits and
    // nothing else, within the 64-bit signed range. Blanks, decimal points, a lone sign and
    // the empty text all fail.
    static std::optional<qint64> integer(std::string_view field);
    static std::optional<qint64> integer(QStringView field);

    // True exactly for "True" and "t"; everything else, the empty text too, is false.
    static bool boolean(std::string_view field);
    static bool boolean(QStringView field);
};

} // namespace RebrickableKit
