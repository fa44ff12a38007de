// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <optional>

// Turns what the user typed into a full-text match for the catalog's set index. Every word
// becomes a prefix match and all must match; words of digits are looked for in the set
// number only; four-digit numbers from 1949 to 2100 filter by year instead of matching.
// (This year range is deliberately wider than the search tokenizer's 2000–2999: the two
// serve different paths.)
class CatalogMatchBuilder
{
public:
    struct Match
    {
        std::optional<QString> matchText; // absent when no word made a clause
        QList<int> years;

        friend bool operator==(const Match &, const Match &) = default;
    };

    static Match build(const QString &query);

    // The characters the full-text syntax would read as operators; removed before matching.
    static bool isRemovedCharacter(char32_t character);
};
