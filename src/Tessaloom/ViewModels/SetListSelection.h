// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/SidebarItem.h"

#include <QString>

#include <optional>

// What the set list makes of the sidebar's selection, read from the item's stable id
// ("all_sets", "favorites", "catalog_theme_158", …; empty for no selection): the item's
// kind, which collection list it fetches, or whether it shows the catalog instead. The
// theme's name plays no part, so no catalog is asked for it.
class SetListSelection
{
public:
    SetListSelection() = default;
    // An id that names no item (or "catalog_theme_" without a decimal theme id) reads as
    // no selection, as the sidebar itself treats it.
    static SetListSelection fromItemID(const QString &itemID);

    // The item's kind; nothing for no selection, where the list behaves as the whole
    // collection.
    std::optional<SidebarItem::Kind> kind() const { return m_kind; }
    // The catalog theme of a catalogTheme selection.
    std::optional<int> themeID() const { return m_themeID; }

    // catalogAll, catalogAllThemes and a catalog theme: the list shows catalog results and
    // the search text goes to the catalog, not to the collection's fetch.
    bool isCatalog() const;

    friend bool operator==(const SetListSelection &, const SetListSelection &) = default;

private:
    std::optional<SidebarItem::Kind> m_kind;
    std::optional<int> m_themeID;
};
