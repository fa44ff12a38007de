// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// The search of the theme browser: a typed text narrowed to an optional year and text
// tokens, and the themes that pass them, in the order they came.
//
// The year here asks whether a theme was active in that year (its first year at most the
// year, its last at least), unlike the catalog's set searches, which match a set's year.
class ThemeFilter
{
public:
    struct Query
    {
        std::optional<int> year;
        QStringList tokens; // lowercased

        friend bool operator==(const Query &, const Query &) = default;
    };

    // Splits at the space character only (a tab stays inside its piece) and drops empty
    // pieces. A piece of four ASCII digits beginning with "19" or "20" is the year; when
    // there are several, the last one counts and the earlier ones are dropped, not kept as
    // text. Every other piece, lowercased, is a token.
    static Query parse(const QString &searchText);

    static bool matches(const FlatThemeResult &theme, const Query &query);

    // Everything when the text is empty; otherwise the themes that match, order kept.
    static QList<FlatThemeResult> filter(const QList<FlatThemeResult> &themes, const QString &searchText);
};
