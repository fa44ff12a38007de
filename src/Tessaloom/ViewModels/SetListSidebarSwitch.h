// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/SetListSelection.h"

#include <optional>

// What a change of the sidebar's item does to the set list: a catalog theme limits the
// catalog to it, clears the search and searches; the whole catalog does the same without
// a theme; "all themes" (where the theme browser stands in the list's place) keeps the
// search text and the theme and only empties the results; anything else, or no
// selection, clears the theme, the search and the results.
struct SetListSidebarSwitch
{
    bool keepsSearchText = false;
    std::optional<int> catalogThemeID;
    // Whether the catalog is searched at once; otherwise its results are emptied.
    bool searchesCatalog = false;

    static SetListSidebarSwitch to(const SetListSelection &selection, std::optional<int> currentCatalogThemeID);

    friend bool operator==(const SetListSidebarSwitch &, const SetListSidebarSwitch &) = default;
};
