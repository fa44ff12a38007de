// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"

#include <QHash>
#include <QList>
#include <QSet>

// Shapes the catalog's theme rows into what the screens show, in memory, without touching
// the database: the outline of themes that lead to sets, the flat list of themes that
// have sets of their own, and the path of a theme through its ancestors.
class CatalogThemeHierarchy
{
public:
    struct ThemeStats
    {
        int count = 0;
        int minYear = 0;
        int maxYear = 0;
    };

    // `themesByName`: every theme, in name order. A theme gives a node when a set uses it
    // or when one of its children gave a node; a theme whose parent does not exist is in
    // no tree.
    static QList<ThemeNode> tree(const QList<CatalogThemeResult> &themesByName, const QSet<int> &usedThemeIDs);

    // Themes with sets of their own only (sub-themes' sets are not added in), sorted by
    // path, case-insensitively for the user's language.
    static QList<FlatThemeResult> flat(const QList<CatalogThemeResult> &themesByName,
                                       const QHash<int, ThemeStats> &statsByThemeID);

    // The names from the outermost ancestor down to `id`, joined with " > ". The walk ends
    // at a theme without a parent or at an id not in `themesByID`.
    static QString path(int id, const QHash<int, CatalogThemeResult> &themesByID);
};
